# Talvor: a thin wrapper around CMake.
#   make          build the optimised program (build/release/talvor)
#   make demo     install what is missing, build, count the bundled carpet
#   make check    install, build twice (optimised; ASan+UBSan with clang) and run every test
#   make bench    build and run the benchmarks
#   make fuzz     run the TGA reader fuzzer (FUZZ_SECONDS, default 600)

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
RELEASE := build/release
ASAN := build/asan
FUZZ_SECONDS ?= 600
CTEST_FLAGS ?= --output-on-failure -j $(JOBS)

.PHONY: all deps release asan demo check check-release check-asan bench fuzz clean

all: release

deps:
	@scripts/install-deps

release: deps
	cmake -S . -B $(RELEASE) -DCMAKE_BUILD_TYPE=Release
	cmake --build $(RELEASE) -j $(JOBS)

asan: deps
	CC=clang CXX=clang++ cmake -S . -B $(ASAN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DTALVOR_SANITIZE=ON -DTALVOR_FUZZ=ON -DTALVOR_BENCH=OFF
	cmake --build $(ASAN) -j $(JOBS)

demo: release
	$(RELEASE)/talvor -q -i $(RELEASE)/examples/carpet.tga

check-release: release
	cd $(RELEASE) && ctest $(CTEST_FLAGS)

check-asan: asan
	cd $(ASAN) && ctest $(CTEST_FLAGS)

check: check-release check-asan

bench: release
	$(RELEASE)/bench/talvor_bench
	$(RELEASE)/bench/count_driver $(RELEASE)/talvor
	bench/interactive_rate.sh $(RELEASE)

fuzz: asan
	mkdir -p $(ASAN)/fuzz-corpus
	$(ASAN)/fuzz/tga_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=4096 \
	    $(ASAN)/fuzz-corpus fuzz/corpus fuzz/found

clean:
	rm -rf build
