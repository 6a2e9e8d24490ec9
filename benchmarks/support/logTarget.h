// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_LOGTARGET_H
#define BENCHMARKS_SUPPORT_LOGTARGET_H

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/numeric/nxDecimal.h"

// What the benchmarks of the log report, and where the lines go.
namespace LogBenchmark
{
using Clock = std::chrono::steady_clock;

struct Sample
{
    int quantity;
    nxDecimal price;
    double priceAsDouble;
    std::string symbol;
};

constexpr std::size_t sampleCount = 1024;

inline const std::array<Sample, sampleCount>& Samples()
{
    static const auto samples = []
    {
        static constexpr const char* symbols[] = {"CLZ5", "BRN", "FGBL", "ESH6", "NQ", "FDAX"};
        std::mt19937_64 random(1);
        std::array<Sample, sampleCount> made;
        for (Sample& sample : made)
        {
            const auto cents = static_cast<long long>(random() % 2'000'000);
            sample = {static_cast<int>(random() % 100'000), nxDecimal(static_cast<double>(cents) / 100, 2),
                      static_cast<double>(cents) / 100, symbols[random() % std::size(symbols)]};
        }
        return made;
    }();
    return samples;
}

inline const Sample& SampleAt(std::size_t index) { return Samples()[index % sampleCount]; }

// Where the lines go.
enum class Destination
{
    Null,     // /dev/null
    File,     // a new file below the system's temporary directory
    SlowPipe  // a pipe whose reader takes 16 MB/s, in bursts
};

// A folder of one logger's own, with everything in it gone at the end.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        const char* const parent = std::getenv("TMPDIR");
        _path = std::string(parent != nullptr ? parent : "/tmp") + "/nxLogBenchmark.XXXXXX";
        if (mkdtemp(_path.data()) == nullptr)
            std::abort();
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    const std::string& GetPath() const { return _path; }

private:
    std::string _path;
};

class SlowReader
{
public:
    explicit SlowReader(const std::string& path)
    {
        if (mkfifo(path.c_str(), 0600) != 0)
            std::abort();
        // For writing too, so that opening does not wait and the pipe has no end before the benchmark has.
        _descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC);
        _thread = std::thread([this] { Read(); });
    }
    SlowReader(const SlowReader&) = delete;
    SlowReader& operator=(const SlowReader&) = delete;
    ~SlowReader()
    {
        _stop = true;
        _thread.join();
        close(_descriptor);
    }

private:
    void Read()
    {
        std::vector<char> buffer(std::size_t{64} << 10);
        while (!_stop)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(4));
            pollfd pipe{_descriptor, POLLIN, 0};
            if (poll(&pipe, 1, 10) == 1 && read(_descriptor, buffer.data(), buffer.size()) < 0)
                return;
        }
    }

    int _descriptor = -1;
    std::atomic<bool> _stop{false};
    std::thread _thread;
};

// The path that a logger is to write to.
class Target
{
public:
    explicit Target(Destination destination) : _destination(destination)
    {
        if (destination == Destination::SlowPipe)
            _reader.emplace(GetPath());
    }
    Destination GetDestination() const { return _destination; }
    const std::string& GetFolder() const { return _folder.GetPath(); }
    std::string GetPath() const
    {
        return _destination == Destination::Null ? "/dev/null" : _folder.GetPath() + "/lines.log";
    }

private:
    Destination _destination;
    TemporaryFolder _folder;
    std::optional<SlowReader> _reader;
};

inline std::size_t CountLines(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}
}  // namespace LogBenchmark

#endif
