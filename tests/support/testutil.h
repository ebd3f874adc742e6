// Helpers shared by the test programs.
#ifndef TESTS_TESTUTIL_H
#define TESTS_TESTUTIL_H

#include <cstdio>
#include <string>
#include <vector>

namespace testutil {

// A fresh directory under the system's temporary directory, removed with its
// contents when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::string &path() const { return path_; }
    std::string file(const std::string &name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

void WriteBytes(const std::string &path, const std::vector<unsigned char> &bytes);
void WriteText(const std::string &path, const std::string &text);
std::vector<unsigned char> ReadBytes(const std::string &path);
std::string ReadText(const std::string &path);

// A stream over a copy of the bytes (fmemopen), opened for reading; the
// caller closes it.
FILE *MemoryStream(const std::vector<unsigned char> &bytes);

// What a finished subprocess left: exit status (or 128 + signal), and its
// standard output and error.
struct RunResult {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs argv[0] with the arguments, without a shell, with stdin from
// /dev/null (or from stdin_file), in directory cwd (or the current one).
RunResult Run(const std::vector<std::string> &argv, const std::string &cwd = "",
              const std::string &stdin_file = "");

// Runs a shell command line and returns its status and output.
RunResult Shell(const std::string &command);

// Path of a built program named by an environment variable that CTest sets
// (TALVOR_BIN, MAKEFRACTAL_BIN); fails the test when it is missing.
std::string Env(const char *name);

// True when the named command is on PATH.
bool HaveCommand(const std::string &name);

} // namespace testutil

#endif
