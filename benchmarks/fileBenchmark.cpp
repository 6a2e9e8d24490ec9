// SPDX-License-Identifier: Apache-2.0
// Whole files, read beside a bare loop of read(2) into a text of the file's size, and replaced beside the bare calls that
// a replacement needs at least.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/app/nxFileHelper.h"

namespace
{
// A directory of its own, in memory where the system has one: the disk is not what is measured.
class Scratch
{
public:
    Scratch()
    {
        std::string name = std::filesystem::exists("/dev/shm") ? "/dev/shm/nxbenchXXXXXX" : "/tmp/nxbenchXXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            std::abort();
        _path = name;
    }
    ~Scratch()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    std::string GetFile() const { return _path + "/file"; }

private:
    std::string _path;
};

void Check(bool isGood)
{
    if (!isGood)
        std::abort();
}

std::string ReadBare(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status = {};
    Check(file >= 0 && fstat(file, &status) == 0);
    std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t used = 0;
    for (ssize_t taken = 1; taken > 0; used += static_cast<std::size_t>(taken))
    {
        taken = read(file, text.data() + used, text.size() - used);
        Check(taken >= 0);
    }
    close(file);
    text.resize(used);
    return text;
}

// The calls of a replacement without any of its care: no rights, no links, no signals, a name that others may use.
void ReplaceBare(const std::string& path, const std::string& content)
{
    const std::string between = path + ".new";
    const int file = open(between.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0640);
    Check(file >= 0 && write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
    close(file);
    Check(rename(between.c_str(), path.c_str()) == 0);
}

void Read(benchmark::State& state, bool isBare, std::size_t size)
{
    const Scratch scratch;
    const std::string path = scratch.GetFile();
    ReplaceBare(path, std::string(size, 'x'));
    for (auto _ : state)
    {
        std::string text;
        if (isBare)
            text = ReadBare(path);
        else
            Check(nxFileHelper::ReadFile(path, std::size_t{1} << 30, text).IsOK());
        benchmark::DoNotOptimize(text.data());
    }
}

void Replace(benchmark::State& state, bool isBare, std::size_t size)
{
    const Scratch scratch;
    const std::string path = scratch.GetFile();
    const std::string content(size, 'x');
    for (auto _ : state)
    {
        if (isBare)
            ReplaceBare(path, content);
        else
            Check(nxFileHelper::ReplaceFile(path, content, nxFileHelper::Durability::Atomic).IsOK());
    }
}

#define NX_FILE_ROW(Function, name, limit, size)                                 \
    BENCHMARK_CAPTURE(Function, name, false, size)->Name("file_" #name "/ours"); \
    BENCHMARK_CAPTURE(Function, name, true, size)->Name("file_" #name "/" limit)

NX_FILE_ROW(Read, read_20_bytes, "limit_bare_loop", 20);
NX_FILE_ROW(Read, read_64_KiB, "limit_bare_loop", 65'536);
NX_FILE_ROW(Read, read_1_MiB, "limit_bare_loop", 1'048'576);
NX_FILE_ROW(Replace, replace_20_bytes, "limit_bare_calls", 20);
NX_FILE_ROW(Replace, replace_64_KiB, "limit_bare_calls", 65'536);
#undef NX_FILE_ROW
}  // namespace
