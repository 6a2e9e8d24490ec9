// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXCONSOLELOGDEVICE_H
#define CORE_LOG_NXCONSOLELOGDEVICE_H

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/nxExport.h"
#include "core/thread/nxMutex.h"

/// Writes the log to the process's standard output.
///
/// Each record is one line ending in LF: "[INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]" when the
/// device is verbose, as it is at first; otherwise "[INF] text", or with the other short form
/// "[05Mar24 09:07:03.123.456] text". nxLogFormSettings has other forms. Lines go to the operating system at once, past the buffer of the C library.
///
/// - Invariant: a line of which standard output took the beginning is completed before another line is written.
/// - Errors: nothing fails. Lines that standard output does not take are lost and counted; the process goes on. It does
///   not take them when it is closed or a pipe without a reader, when it has taken nothing for 100 ms (a stopped terminal,
///   a pipe that is not read), or not all of a mebibyte in half a second; the device does not wait for it again while this
///   lasts. It is not written to either when the program has closed it and uses its number for a file or a connection.
/// - Threads: every operation may be called at any time from any thread.
/// - Ownership: as of every device. GetInstance() serves programs that need just one.
/// @code
/// nxConsoleLogDevice& console = nxConsoleLogDevice::GetInstance();
/// console.SetVerboseOutput(false);
/// nxLogManager::GetInstance().RegisterLogDevice(&console);
/// @endcode
class NX_CORE_API nxConsoleLogDevice : public nxLogDevice, private nxLogLineSink
{
public:
    /// What precedes the text when the device is not verbose.
    enum class ShortForm
    {
        Level,  ///< "[INF] text"
        Time    ///< "[05Mar24 09:07:03.123.456] text"
    };

    nxConsoleLogDevice();
    ~nxConsoleLogDevice() override;

    /// A device of the process, made on first use and never destroyed. It is not registered.
    static nxConsoleLogDevice& GetInstance();

    /// May be changed at any time; at first ShortForm::Level.
    void SetShortForm(ShortForm form) { _shortForm.store(form, std::memory_order_relaxed); }

    void Write(const nxLog& record) override;  ///< Writes a line.
    void Flush() override;                     ///< Does nothing: no line waits.
    /// Waits until the log has written out what is queued, and takes the device from it.
    void Destroy() override;

    /// Lines that standard output did not take.
    std::uint64_t GetLostLines() const { return _lostLines.load(std::memory_order_relaxed); }

private:
    nxLogLineStyle GetLineStyle() const override;
    void WriteLines(const nxLogLineBatch& batch) override;
    void BeforeFork() override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() override NX_NO_THREAD_SAFETY_ANALYSIS;

    void _Write(std::string_view lines);

    nxMutex _mutex;                           // held during a write, so that lines do not mix
    std::string _rest NX_GUARDED_BY(_mutex);  // of a line of which standard output took the beginning
    // Relaxed: a setting, which orders no other memory.
    std::atomic<ShortForm> _shortForm{ShortForm::Level};
    bool _isLockedForFork = false;  // by the thread that forks
    // Relaxed: a figure, which orders no other memory.
    std::atomic<std::uint64_t> _lostLines{0};
};

#endif
