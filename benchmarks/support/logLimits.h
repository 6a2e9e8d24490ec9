// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_LOGLIMITS_H
#define BENCHMARKS_SUPPORT_LOGLIMITS_H

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/support/logPeers.h"
#include "benchmarks/support/logTarget.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogMacros.h"
#include "core/platform/inline/nxClock.h"

// The least that a log costs: bare rings, and lines that were made before.
namespace LogBenchmark
{
// What no log does without: one reading of the counter and one copy of 64 bytes, into a ring of the thread's own.
class Ring
{
public:
    explicit Ring(std::size_t size) : _bytes(size) {}

    // False when there is no room.
    bool Put(const char* data)
    {
        const std::size_t head = _head.load(std::memory_order_relaxed);
        if (head - _knownTail == _bytes.size())
        {
            _knownTail = _tail.load(std::memory_order_acquire);
            if (head - _knownTail == _bytes.size())
                return false;
        }
        char* const at = &_bytes[head & (_bytes.size() - 1)];
        const std::uint64_t ticks = nxClock::Ticks();
        std::memcpy(at, data, recordSize);
        std::memcpy(at, &ticks, sizeof ticks);
        _head.store(head + recordSize, std::memory_order_release);
        return true;
    }
    // The reader's side: looks at every byte.
    std::uint64_t Take()
    {
        std::uint64_t sum = 0;
        std::size_t tail = _tail.load(std::memory_order_relaxed);
        for (const std::size_t head = _head.load(std::memory_order_acquire); tail != head; tail += sizeof sum)
        {
            std::uint64_t word;
            std::memcpy(&word, &_bytes[tail & (_bytes.size() - 1)], sizeof word);
            sum += word;
        }
        _tail.store(tail, std::memory_order_release);
        return sum;
    }
    void Forget() { _tail.store(_head.load(std::memory_order_relaxed), std::memory_order_relaxed); }

    static constexpr std::size_t recordSize = 64;

private:
    std::vector<char> _bytes;
    alignas(64) std::atomic<std::size_t> _head{0};
    std::size_t _knownTail = 0;
    alignas(64) std::atomic<std::size_t> _tail{0};
};

inline const char* RecordBytes(std::size_t index)
{
    static const std::vector<char> bytes(sampleCount * Ring::recordSize, 'x');
    return &bytes[index % sampleCount * Ring::recordSize];
}

// Nobody reads, and the ring stays in the first cache.
class HotRing : public Peer
{
public:
    explicit HotRing(const Target& target) : Peer(target) {}
    void Log(std::size_t index)
    {
        static thread_local Ring ring(std::size_t{16} << 10);
        if (!ring.Put(RecordBytes(index)))
        {
            ring.Forget();
            ring.Put(RecordBytes(index));
        }
    }
    void Finish() {}
};

// One thread reads the rings of all, every one and a half milliseconds.
class RingToReader : public Peer
{
public:
    explicit RingToReader(const Target& target) : Peer(target) {}
    ~RingToReader()
    {
        _stop = true;
        _thread.join();
    }
    void Log(std::size_t index)
    {
        // A number for each thread of this benchmark.
        static std::atomic<std::size_t> next{0};
        static thread_local const std::size_t own = next++;
        Ring& ring = *_rings[own % _rings.size()];
        while (!ring.Put(RecordBytes(index)))
            std::this_thread::yield();
    }
    void Finish() {}

    static constexpr auto ReaderPause = std::chrono::microseconds(1500);
    static constexpr std::size_t Records = 4096;  ///< That a ring holds.

private:
    void Read()
    {
        while (!_stop)
        {
            for (const auto& ring : _rings)
                benchmark::DoNotOptimize(ring->Take());
            std::this_thread::sleep_for(ReaderPause);
        }
    }

    std::vector<std::unique_ptr<Ring>> _rings = []
    {
        std::vector<std::unique_ptr<Ring>> rings(16);
        for (auto& ring : rings)
            ring = std::make_unique<Ring>(Records * Ring::recordSize);
        return rings;
    }();
    std::atomic<bool> _stop{false};
    std::thread _thread{[this] { Read(); }};
};

// Lines that were made before, copied into a mebibyte at a time and written; each thread has its own.
class FinishedLines : public Peer
{
public:
    explicit FinishedLines(const Target& target)
        : Peer(target), _descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600))
    {
        for (const Sample& sample : Samples())
        {
            nxLog record(NX_LOG_LEVEL_INFO, "logBenchmark.cpp", 100, nxTimeStamp::Now());
            record << "filled " << sample.quantity << sample.price << sample.symbol;
            _lines.emplace_back();
            nxLogLine::Append(_lines.back(), record, {nxLogLineStyle::Full, true});
        }
    }
    FinishedLines(const FinishedLines&) = delete;
    FinishedLines& operator=(const FinishedLines&) = delete;
    ~FinishedLines() { close(_descriptor); }

    // The lines of one thread; the rest goes out at its end.
    class Writer
    {
    public:
        explicit Writer(const FinishedLines& lines) : _lines(lines), _buffer(size + 256) {}
        ~Writer() { Flush(); }
        Writer(const Writer&) = delete;
        Writer& operator=(const Writer&) = delete;
        void Log(std::size_t index)
        {
            const std::string& line = _lines._lines[index % sampleCount];
            std::memcpy(_buffer.data() + _used, line.data(), line.size());
            _used += line.size();
            if (_used >= size)
                Flush();
        }

    private:
        static constexpr std::size_t size = std::size_t{1} << 20;
        void Flush()
        {
            if (write(_lines._descriptor, _buffer.data(), _used) != static_cast<ssize_t>(_used))
                std::abort();
            _used = 0;
        }
        const FinishedLines& _lines;
        std::vector<char> _buffer;
        std::size_t _used = 0;
    };
    void Finish() {}

private:
    std::vector<std::string> _lines;
    int _descriptor;
};

// How a thread writes the record of this number.
template <class Logger>
struct Caller
{
    explicit Caller(Logger& target) : logger(target) {}
    void Log(std::size_t index)
    {
        if constexpr (requires { logger.Log(index); })
            logger.Log(index);
        else
            logger.Log(SampleAt(index));
    }
    Logger& logger;
};
template <>
struct Caller<FinishedLines> : FinishedLines::Writer
{
    using Writer::Writer;
};
}  // namespace LogBenchmark

#endif
