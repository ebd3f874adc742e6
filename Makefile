# Talvor: a thin wrapper around CMake.
#   make          build the optimised program (build/release/talvor)
#   make demo     install what is missing, build, count the bundled carpet
#   make check    install, build three times (optimised; ASan+UBSan with clang; without a
#                 window) and run every test
#   make headless install what a build without a window needs and build it (build/headless)
#   make bench    build and run the benchmarks
#   make fuzz     run the TGA reader fuzzer (FUZZ_SECONDS, default 600)
#   make install  install program, batch script, manual page, libraries (PREFIX, default /usr/local)
#   make accuracy measure known fractals and write build/accuracy.md

JOBS ?= $(shell nproc 2>/dev/null || echo 2)
RELEASE := build/release
ASAN := build/asan
HEADLESS := build/headless
FUZZ_SECONDS ?= 600
PREFIX ?= /usr/local
CTEST_FLAGS ?= --output-on-failure -j $(JOBS)

.PHONY: all deps release asan headless demo check check-release check-asan check-headless bench fuzz install accuracy clean

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

# No X11, OpenGL, GLUT or XForms: for cluster nodes and containers. Inside
# make check it is compared with the full build's quiet output.
headless:
	scripts/install-deps --headless
	cmake -S . -B $(HEADLESS) -DCMAKE_BUILD_TYPE=Release -DTALVOR_GUI=OFF \
	    -DTALVOR_REFERENCE_BUILD=$(if $(wildcard $(RELEASE)/talvor),$(abspath $(RELEASE)),)
	cmake --build $(HEADLESS) -j $(JOBS)

demo: release
	$(RELEASE)/talvor -q -i $(RELEASE)/examples/carpet.tga

check-release: release
	cd $(RELEASE) && ctest $(CTEST_FLAGS)

check-asan: asan
	cd $(ASAN) && ctest $(CTEST_FLAGS)

check-headless: release
	$(MAKE) headless
	cd $(HEADLESS) && ctest $(CTEST_FLAGS)

check: check-release check-asan check-headless

bench: release
	$(RELEASE)/bench/talvor_bench
	$(RELEASE)/bench/count_driver $(RELEASE)/talvor
	bench/interactive_rate.sh $(RELEASE)

fuzz: asan
	mkdir -p $(ASAN)/fuzz-corpus
	$(ASAN)/fuzz/tga_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=4096 \
	    $(ASAN)/fuzz-corpus fuzz/corpus fuzz/found

install: release
	cmake --install $(RELEASE) --prefix "$(PREFIX)"

accuracy: release
	bench/accuracy $(RELEASE) > build/accuracy.md
	cat build/accuracy.md

clean:
	rm -rf build
