// SPDX-License-Identifier: Apache-2.0
// A server that runs day and night: threads that take work, a log that operators set by the environment, and an orderly
// end.
//
//     QRX_LOG_DIRECTORY=/var/log/orders example_server -workers 4
//     kill -TERM PID     handles what has come, writes the log, ends with status 0; SIGINT does the same
//     kill -HUP PID      begins a new log file
//     kill -USR1 PID     changes settings of the log: see Control.h
//
// The second SIGTERM or SIGINT ends it at once.

#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <string>

#include "Control.h"
#include "Server.h"

namespace
{
struct Settings
{
    unsigned feeds = 2;
    unsigned workers = 4;
    unsigned rate = 1000;
    unsigned long long fileBytes = 0;
    std::string controlFile = "control";
};

void Declare(nxOptions& options, Settings& settings)
{
    options.Add("feeds", settings.feeds, "N", "sources of orders").Between(1, 64);
    options.Add("workers", settings.workers, "N", "threads that handle orders").Between(1, 64);
    options.Add("rate", settings.rate, "N", "orders of each source in a second").Between(1, 1'000'000);
    options.Add("filesize", settings.fileBytes, "BYTES", "size at which a new log file is begun; 0 for no limit");
    options.Add("control", settings.controlFile, "FILE", "lines to carry out at SIGUSR1");
}

// An exception that nothing catches ends the process by abort(). The record is in the file by then: a fatal record waits.
[[noreturn]] void OnTerminate()
{
    try
    {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
        NX_LOG(NX_LOG_LEVEL_FATAL) << "std::terminate was called";
    }
    catch (const std::exception& exception)
    {
        NX_LOG(NX_LOG_LEVEL_FATAL) << "an exception was not caught: " << exception.what();
    }
    catch (...)
    {
        NX_LOG(NX_LOG_LEVEL_FATAL) << "an exception of unknown type was not caught";
    }
    std::abort();
}

// Returns when a signal has told the server to end, and the log is written.
nxErrorEnum Run(const nxBlockedSignals& blocked, const Settings& settings)
{
    Server server(settings.feeds, settings.workers, settings.rate);
    const Control control(settings.controlFile);

    nxSignalThread signals(blocked);  // after what its functions use
    for (const int signal : {SIGTERM, SIGINT})
        signals.SetHandler(signal,
                           [&server, signal]
                           {
                               NX_LOG(NX_LOG_LEVEL_INFO) << "told to end by signal " << signal;
                               server.Stop();
                           });
    signals.SetHandler(SIGHUP, [] { nxFileLogDevice::GetInstance().CloseAndReopenLogFile(); });
    signals.SetHandler(SIGUSR1, [&control] { control.CarryOut(); });
    signals.EndAtSecondSignal();
    if (const nxErrorEnum error = signals.Start(); !error.IsOK())
        return error;

    const nxErrorEnum error = server.Run();
    if (error.IsOK())
        NX_LOG(NX_LOG_LEVEL_INFO) << "ended";
    else
        NX_LOG(NX_LOG_LEVEL_ERROR) << "ended with an error: " << error;
    nxFileLogDevice::GetInstance().Destroy();  // writes what waits, while the signals are still held back
    return error;
}
}  // namespace

int main(int, char** argv)
{
    const nxBlockedSignals blocked({SIGTERM, SIGINT, SIGHUP, SIGUSR1});  // first: threads inherit it
    std::set_terminate(OnTerminate);
    nxCmdLineArgs::GetInstance().Initialise(argv, environ);

    Settings settings;
    nxOptions options("Handles orders until a signal ends it.");
    Declare(options, settings);
    if (!options.Read().IsOK())
    {
        std::cerr << options.GetErrorText();
        return 2;
    }
    if (options.IsHelpWanted())
    {
        std::cout << options.GetHelp();
        return 0;
    }

    nxApplicationData::SetApplicationName("server");
    if (!nxLogSetUp(settings.fileBytes))
        std::cerr << "no log file yet; the log goes on trying\n";
    return Run(blocked, settings).IsOK() ? 0 : 1;
}
