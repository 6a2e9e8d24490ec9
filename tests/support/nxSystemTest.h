// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXSYSTEMTEST_H
#define TESTS_SUPPORT_NXSYSTEMTEST_H

/// @file
/// What the tests of threads, processes and the log include.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxFunctionLogDevice.h"
#include "tests/support/nxSanitizer.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTestThreads.h"
#include "tests/support/nxZoneOfProcess.h"

inline nxLogManager& Manager() { return nxLogManager::GetInstance(); }

/// Waits for the log's thread, a minute at most, which it needs only when it hangs.
inline void WaitUntilWritten() { Manager().WaitForWriteThreadToWriteQueueToDisk(60.0); }

/// Takes what a source file has reported from a device, each record as "WRN 12 text", or "WRN text" without its line.
inline std::vector<std::string> TakeReports(nxCapturingLogDevice& log, const std::string& source, bool withLines = true)
{
    WaitUntilWritten();
    std::vector<std::string> reports;
    for (const nxCapturedRecord& record : log.GetRecords())
        if (record.sourceFile == source)
            reports.push_back(record.level.GetShortDescription() +
                              (withLines ? ' ' + std::to_string(record.line) + ' ' : " ") + record.text);
    log.Clear();
    return reports;
}

/// Keeps a thread inside a device until it is opened, no longer than nxEventually() waits.
class nxGate
{
public:
    void Pass()
    {
        _waiting = true;
        EXPECT_TRUE(nxEventually([this] { return _open.load(); }));
    }
    void WaitForAThread() const
    {
        EXPECT_TRUE(nxEventually([this] { return _waiting.load(); }));
    }
    void Open() { _open = true; }

private:
    std::atomic<bool> _waiting{false};
    std::atomic<bool> _open{false};
};

/// Another descriptor in the place of a standard stream's, for as long as the object lives. It takes the other one over.
class nxRedirected
{
public:
    nxRedirected(int stream, int other) : _stream(stream), _before(dup(stream))
    {
        std::fflush(nullptr);
        dup2(other, stream);
        close(other);
    }
    ~nxRedirected()
    {
        dup2(_before, _stream);
        close(_before);
    }
    nxRedirected(const nxRedirected&) = delete;
    nxRedirected& operator=(const nxRedirected&) = delete;

private:
    int _stream;
    int _before;
};

#endif
