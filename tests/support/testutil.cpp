#include "testutil.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include <gtest/gtest.h>

namespace testutil {

TempDir::TempDir()
{
    const char *base = std::getenv("TMPDIR");
    std::string templ = std::string(base && *base ? base : "/tmp") + "/talvor-test-XXXXXX";
    std::vector<char> buf(templ.begin(), templ.end());
    buf.push_back('\0');
    if (mkdtemp(buf.data()) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    path_ = buf.data();
}

TempDir::~TempDir()
{
    const std::string cmd = "rm -rf '" + path_ + "'";
    if (std::system(cmd.c_str()) != 0)
        std::fprintf(stderr, "could not remove %s\n", path_.c_str());
}

void WriteBytes(const std::string &path, const std::vector<unsigned char> &bytes)
{
    std::ofstream f(path, std::ios::binary);
    f.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!f)
        throw std::runtime_error("cannot write " + path);
}

void WriteText(const std::string &path, const std::string &text)
{
    WriteBytes(path, std::vector<unsigned char>(text.begin(), text.end()));
}

std::vector<unsigned char> ReadBytes(const std::string &path)
{
    std::ifstream f(path, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(f), {});
}

std::string ReadText(const std::string &path)
{
    const auto b = ReadBytes(path);
    return std::string(b.begin(), b.end());
}

FILE *MemoryStream(const std::vector<unsigned char> &bytes)
{
    // fmemopen on a zero-length buffer fails; a temporary file works for all.
    FILE *f = std::tmpfile();
    if (!f)
        throw std::runtime_error("tmpfile failed");
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size())
        throw std::runtime_error("tmpfile write failed");
    std::rewind(f);
    return f;
}

RunResult Run(const std::vector<std::string> &argv, const std::string &cwd,
              const std::string &stdin_file)
{
    TempDir tmp;
    const std::string outp = tmp.file("out"), errp = tmp.file("err");
    RunResult r;
    const pid_t pid = fork();
    if (pid < 0)
        throw std::runtime_error("fork failed");
    if (pid == 0) {
        const int in = open(stdin_file.empty() ? "/dev/null" : stdin_file.c_str(), O_RDONLY);
        const int out = open(outp.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int err = open(errp.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (in < 0 || out < 0 || err < 0)
            _exit(126);
        dup2(in, 0);
        dup2(out, 1);
        dup2(err, 2);
        if (!cwd.empty() && chdir(cwd.c_str()) != 0)
            _exit(126);
        std::vector<char *> args;
        for (const auto &a : argv)
            args.push_back(const_cast<char *>(a.c_str()));
        args.push_back(nullptr);
        execv(args[0], args.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    r.out = ReadText(outp);
    r.err = ReadText(errp);
    return r;
}

RunResult Shell(const std::string &command)
{
    return Run({"/bin/sh", "-c", command});
}

std::string Env(const char *name)
{
    const char *v = std::getenv(name);
    if (v == nullptr || *v == '\0') {
        ADD_FAILURE() << name << " is not set; run the tests through ctest";
        return "";
    }
    return v;
}

bool HaveCommand(const std::string &name)
{
    return Shell("command -v '" + name + "' >/dev/null 2>&1").status == 0;
}

} // namespace testutil
