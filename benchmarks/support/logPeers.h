// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_LOGPEERS_H
#define BENCHMARKS_SUPPORT_LOGPEERS_H

#include <memory>
#include <string>

#include "benchmarks/support/logTarget.h"

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

// Other logs as the benchmarks call them.
namespace LogBenchmark
{
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
}  // namespace LogBenchmark

#endif
