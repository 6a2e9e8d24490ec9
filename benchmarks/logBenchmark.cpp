// SPDX-License-Identifier: Apache-2.0
// The log: what a record costs its caller, and how many records a second reach the system.
//
// The record is a literal, an integer, a decimal and a short string; its line has level, time, thread and source line.
// Callers write batches of 20 records with a pause after each, as programs do; a time is that of a record, averaged
// over its batch. Threads pause by sleeping where there are several, so that they do not take the processors from each
// other. Our writer sleeps between its looks, as it does by default.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxConfigurationKeys.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogFormSettings.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogLineSink.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/platform/inline/nxClock.h"

#if defined(NX_BENCHMARK_HAS_SPDLOG)
    #include <spdlog/async.h>
    #include <spdlog/sinks/basic_file_sink.h>
    #include <spdlog/spdlog.h>
#endif
#if defined(NX_BENCHMARK_HAS_LOG4CPLUS)
    #include <log4cplus/asyncappender.h>
    #include <log4cplus/fileappender.h>
    #include <log4cplus/initializer.h>
    #include <log4cplus/layout.h>
    #include <log4cplus/loggingmacros.h>
#endif

namespace
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

const std::array<Sample, sampleCount>& Samples()
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

const Sample& SampleAt(std::size_t index) { return Samples()[index % sampleCount]; }

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

std::size_t CountLines(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}

// The loggers. Each takes records from any thread; Finish() returns when every line is with the system.

// Finished lines straight into a descriptor.
class DescriptorDevice final : public nxLogDevice, private nxLogLineSink
{
public:
    explicit DescriptorDevice(const std::string& path)
        : nxLogDevice(static_cast<nxLogLineSink*>(this)), _descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC))
    {
    }
    ~DescriptorDevice() override { close(_descriptor); }
    void Write(const nxLog& record) override
    {
        std::string line;
        nxLogLine::Append(line, record, GetLineStyle());
        WriteAll(line.data(), line.size());
    }
    void Flush() override {}
    void Destroy() override {}

private:
    nxLogLineStyle GetLineStyle() const override { return {nxLogLineStyle::Full, true}; }
    void WriteLines(const nxLogLineBatch& batch) override { WriteAll(batch.text, batch.size); }
    void WriteAll(const char* text, std::size_t size) const
    {
        while (size != 0)
        {
            const ssize_t written = write(_descriptor, text, size);
            if (written <= 0)
                std::abort();
            text += written;
            size -= static_cast<std::size_t>(written);
        }
    }

    int _descriptor;
};

class Ours
{
public:
    explicit Ours(const Target& target) : _before(nxLogManager::GetInstance().GetStatistics())
    {
        if (target.GetDestination() == Destination::File)
        {
            nxCmdLineArgs::GetInstance().SetEnvValue(QRX_LOG_DIRECTORY, target.GetFolder());
            nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>());
            _path = nxFileLogDevice::GetInstance().GetFileName();
            return;
        }
        _device = std::make_unique<DescriptorDevice>(target.GetPath());
        nxLogManager::GetInstance().RegisterLogDevice(_device.get());
    }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;
    ~Ours()
    {
        if (_device != nullptr)
            nxLogManager::GetInstance().UnregisterLogDevice(_device.get());
        else
            nxFileLogDevice::GetInstance().Destroy();
    }

    static void Log(const Sample& sample)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "filled " << sample.quantity << sample.price << sample.symbol;
    }
    void Finish() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(100.0)); }
    const std::string& GetPath() const { return _path; }
    double GetDropped() const
    {
        return static_cast<double>(nxLogManager::GetInstance().GetStatistics().dropped - _before.dropped);
    }
    double GetWaits() const
    {
        return static_cast<double>(nxLogManager::GetInstance().GetStatistics().waits - _before.waits);
    }

private:
    nxLogStatistics _before;
    std::unique_ptr<DescriptorDevice> _device;
    std::string _path;
};

// A record with three fields, as text and as JSON, in the file.
template <nxLogFormSettings::Form form>
class OursWithFields : public Ours
{
public:
    explicit OursWithFields(const Target& target) : Ours(target)
    {
        nxLogFormSettings settings;
        settings.file = form;
        nxLogManager::GetInstance().Apply(settings);
    }
    ~OursWithFields() { nxLogManager::GetInstance().Apply(nxLogFormSettings()); }

    static void Log(const Sample& sample)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "filled" << nxField("quantity", sample.quantity) << nxField("price", sample.price)
                                  << nxField("symbol", sample.symbol);
    }
};

// A peer waits, as ours does, when its queue is full.
struct Peer
{
    explicit Peer(const Target& target) : path(target.GetPath()) {}
    const std::string& GetPath() const { return path; }
    static double GetDropped() { return 0; }
    static double GetWaits() { return 0; }

    std::string path;
};

#if defined(NX_BENCHMARK_HAS_SPDLOG)
class Spdlog : public Peer
{
public:
    explicit Spdlog(const Target& target)
        : Peer(target),
          _pool(std::make_shared<spdlog::details::thread_pool>(8192, 1)),
          _logger(std::make_shared<spdlog::async_logger>("benchmark",
                                                         std::make_shared<spdlog::sinks::basic_file_sink_mt>(path),
                                                         _pool, spdlog::async_overflow_policy::block))
    {
        _logger->set_pattern("[%L][%d%b%y %T.%f][%t] %v [%s:%#]");
    }
    void Log(const Sample& sample)
    {
        SPDLOG_LOGGER_INFO(_logger, "filled {}{:.2f}{}", sample.quantity, sample.priceAsDouble, sample.symbol);
    }
    void Finish()
    {
        // The pool ends when its queue is empty, the file is flushed with the sink's end.
        _pool.reset();
        _logger.reset();
    }

protected:
    const std::shared_ptr<spdlog::async_logger>& GetLogger() const { return _logger; }

private:
    std::shared_ptr<spdlog::details::thread_pool> _pool;
    std::shared_ptr<spdlog::async_logger> _logger;
};
#endif

#if defined(NX_BENCHMARK_HAS_SPDLOG)
// The same record; a pattern escapes nothing.
class SpdlogWithFields : public Spdlog
{
public:
    using Spdlog::Spdlog;
    void Log(const Sample& sample)
    {
        SPDLOG_LOGGER_INFO(GetLogger(), "filled quantity={} price={:.2f} symbol={}", sample.quantity,
                           sample.priceAsDouble, sample.symbol);
    }
};
class SpdlogJson : public Spdlog
{
public:
    explicit SpdlogJson(const Target& target) : Spdlog(target)
    {
        GetLogger()->set_pattern(
            R"({"time":"%Y-%m-%dT%T.%f%z","level":"%l","thread":%t,"source":"%s:%#","message":"filled",%v})");
    }
    void Log(const Sample& sample)
    {
        SPDLOG_LOGGER_INFO(GetLogger(), R"("quantity":{},"price":{:.2f},"symbol":"{}")", sample.quantity,
                           sample.priceAsDouble, sample.symbol);
    }
};
#endif

#if defined(NX_BENCHMARK_HAS_LOG4CPLUS)
class Log4cplus : public Peer
{
public:
    explicit Log4cplus(const Target& target) : Peer(target)
    {
        // Once for the process: it does not start a second time.
        static const log4cplus::Initializer initializer;
        _logger = log4cplus::Logger::getInstance("benchmark");
        using namespace log4cplus;
        SharedAppenderPtr file(new FileAppender(path, std::ios_base::app, false));
        file->setLayout(std::make_unique<PatternLayout>("[%p][%D{%d%b%y %H:%M:%S.%q}][%t] %m [%b:%L]%n"));
        _appender = SharedAppenderPtr(new AsyncAppender(file, 8192));
        _logger.setAdditivity(false);
        _logger.addAppender(_appender);
    }
    ~Log4cplus() { Finish(); }
    void Log(const Sample& sample)
    {
        LOG4CPLUS_INFO_FMT(_logger, "filled %d%.2f%s", sample.quantity, sample.priceAsDouble, sample.symbol.c_str());
    }
    void Finish()
    {
        _logger.removeAllAppenders();
        if (_appender)
            _appender->close();
        _appender = log4cplus::SharedAppenderPtr();
    }

private:
    log4cplus::Logger _logger;
    log4cplus::SharedAppenderPtr _appender;
};
#endif

// The limits.

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

const char* RecordBytes(std::size_t index)
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

private:
    void Read()
    {
        while (!_stop)
        {
            for (const auto& ring : _rings)
                benchmark::DoNotOptimize(ring->Take());
            std::this_thread::sleep_for(std::chrono::microseconds(1500));
        }
    }

    std::vector<std::unique_ptr<Ring>> _rings = []
    {
        std::vector<std::unique_ptr<Ring>> rings(16);
        for (auto& ring : rings)
            ring = std::make_unique<Ring>(std::size_t{256} << 10);
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

// What a record costs its caller.

constexpr std::size_t batchSize = 20;
constexpr benchmark::IterationCount batchCount = 2000;
constexpr auto batchPause = std::chrono::microseconds(100);

double NanosecondsPerTick()
{
    static const double value = []
    {
        const auto begin = Clock::now();
        const std::uint64_t ticks = nxClock::Ticks();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return std::chrono::duration<double, std::nano>(Clock::now() - begin).count() /
               static_cast<double>(nxClock::Ticks() - ticks);
    }();
    return value;
}

void Pause(bool isAlone)
{
    if (!isAlone)
    {
        std::this_thread::sleep_for(batchPause);
        return;
    }
    for (const auto end = Clock::now() + batchPause; Clock::now() < end;)
    {
    }
}

template <class Logger>
struct Stage
{
    explicit Stage(Destination destination) : target(destination), logger(target) {}
    Target target;
    Logger logger;
    static inline std::unique_ptr<Stage> current;
};

template <class Logger, Destination destination>
void SetUp(const benchmark::State&)
{
    NanosecondsPerTick();
    Stage<Logger>::current = std::make_unique<Stage<Logger>>(destination);
}

template <class Logger>
void TearDown(const benchmark::State&)
{
    Stage<Logger>::current->logger.Finish();
    Stage<Logger>::current.reset();
}

void CountPercentiles(benchmark::State& state, std::vector<double>& times)
{
    std::sort(times.begin(), times.end());
    const auto at = [&](double part)
    { return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))]; };
    const auto flags = benchmark::Counter::kAvgThreads;
    state.counters["p50"] = benchmark::Counter(at(0.5), flags);
    state.counters["p99"] = benchmark::Counter(at(0.99), flags);
    state.counters["p999"] = benchmark::Counter(at(0.999), flags);
}

template <class Logger>
void Call(benchmark::State& state)
{
    Logger& logger = Stage<Logger>::current->logger;
    Caller<Logger> caller(logger);
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(batchCount));
    std::size_t index = static_cast<std::size_t>(state.thread_index()) * 100;
    for (auto _ : state)
    {
        const std::uint64_t begin = nxClock::Ticks();
        for (std::size_t i = 0; i < batchSize; ++i)
            caller.Log(index++);
        const std::uint64_t end = nxClock::Ticks();
        times.push_back(static_cast<double>(end - begin) * NanosecondsPerTick() / batchSize);
        Pause(state.threads() == 1);
    }
    CountPercentiles(state, times);
    if (state.thread_index() == 0)
    {
        state.counters["dropped"] = logger.GetDropped();
        state.counters["waits"] = logger.GetWaits();
    }
}

// How many records a second reach the system, from the first call until every line is there.

constexpr std::size_t ratedRecords = 200'000;

template <class Logger>
void RunCallers(Logger& logger, std::size_t threads, Clock::time_point& begin)
{
    std::atomic<std::size_t> ready{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> callers;
    for (std::size_t thread = 0; thread < threads; ++thread)
        callers.emplace_back(
            [&, thread]
            {
                Caller<Logger> caller(logger);
                ++ready;
                while (!go)
                    std::this_thread::yield();
                for (std::size_t i = 0; i < ratedRecords / threads; ++i)
                    caller.Log(thread * 100 + i);
            });
    while (ready != threads)
        std::this_thread::yield();
    begin = Clock::now();
    go = true;
    for (std::thread& caller : callers)
        caller.join();
}

template <class Logger, Destination destination>
void Rate(benchmark::State& state, std::size_t threads)
{
    for (auto _ : state)
    {
        const Target target(destination);
        Logger logger(target);
        Clock::time_point begin;
        RunCallers(logger, threads, begin);
        logger.Finish();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
        if (logger.GetDropped() != 0 ||
            (destination == Destination::File && CountLines(logger.GetPath()) < ratedRecords / threads * threads))
        {
            state.SkipWithError("lines are missing");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(ratedRecords / threads * threads));
}

template <class Logger>
void RegisterCall(const char* column, const std::vector<int>& threadCounts)
{
    auto* const call = benchmark::RegisterBenchmark((std::string("log_caller/") + column).c_str(), Call<Logger>)
                           ->Iterations(batchCount)
                           ->Setup(SetUp<Logger, Destination::Null>)
                           ->Teardown(TearDown<Logger>)
                           ->UseRealTime();
    for (const int count : threadCounts)
        call->Threads(count);
}

template <class Logger>
void RegisterCallOnSlowDisk(const char* column)
{
    benchmark::RegisterBenchmark((std::string("log_caller_slow_disk/") + column).c_str(), Call<Logger>)
        ->Iterations(batchCount)
        ->Setup(SetUp<Logger, Destination::SlowPipe>)
        ->Teardown(TearDown<Logger>)
        ->UseRealTime();
}

template <class Logger, Destination destination>
void RegisterRate(const char* row, const char* column, const std::vector<std::size_t>& threadCounts = {1, 2, 4, 8})
{
    for (const std::size_t threads : threadCounts)
        benchmark::RegisterBenchmark((std::string(row) + '_' + std::to_string(threads) + '/' + column).c_str(),
                                     Rate<Logger, destination>, threads)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime();
}

template <class Logger>
void RegisterRates(const char* column)
{
    RegisterRate<Logger, Destination::Null>("log_rate_dev_null", column);
    RegisterRate<Logger, Destination::File>("log_rate_file", column);
}

template <class Logger>
void RegisterAll(const char* column)
{
    RegisterCall<Logger>(column, {1, 2, 4});
    RegisterCallOnSlowDisk<Logger>(column);
    RegisterRates<Logger>(column);
}

[[maybe_unused]] const bool registered = []
{
    RegisterAll<Ours>("ours");
    RegisterCall<HotRing>("limit_counter_and_copy", {1});
    RegisterCall<RingToReader>("limit_ring_to_reader", {1, 2, 4});
    RegisterRates<FinishedLines>("limit_finished_lines");
    using Form = nxLogFormSettings::Form;
    RegisterRate<OursWithFields<Form::Text>, Destination::File>("log_rate_fields", "ours", {1});
    RegisterRate<OursWithFields<Form::Json>, Destination::File>("log_rate_json", "ours", {1});
    RegisterRate<OursWithFields<Form::Text>, Destination::File>("log_rate_json", "limit_text", {1});
#if defined(NX_BENCHMARK_HAS_SPDLOG)
    RegisterAll<Spdlog>("peer_spdlog_async");
    RegisterRate<SpdlogWithFields, Destination::File>("log_rate_fields", "peer_spdlog_async", {1});
    RegisterRate<SpdlogJson, Destination::File>("log_rate_json", "peer_spdlog_async", {1});
#endif
#if defined(NX_BENCHMARK_HAS_LOG4CPLUS)
    RegisterAll<Log4cplus>("peer_log4cplus_async");
#endif
    return true;
}();
}  // namespace
