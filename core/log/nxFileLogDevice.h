// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXFILELOGDEVICE_H
#define CORE_LOG_NXFILELOGDEVICE_H

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogLineSink.h"
#include "core/nxExport.h"
#include "core/text/nxValueWrapper.h"
#include "core/thread/nxMutex.h"

template <class Object>
class nxOneInstance;

struct nxLogRetention;

/// The log file of the process.
///
/// Each record is one line, "[INF][05Mar24 09:07:03.123.456][7] text [core/trunk/nxMutex:107]" and CR LF; the thread's
/// index in the third brackets only while nxLogManager::GetLogThreadIndex(). nxLogFormSettings has other forms. Files are named
/// `directory/05Mar2024/application_090703_4711_1.log`: the local date on which the file was opened, the application's
/// name, the time at which the process was started, its number, and a sequence number. A file is always a new one; one
/// that exists is never opened. The file is for its owner to write and for the group to read.
///
/// - A new file is begun when one has grown beyond the maximum size, by CloseAndReopenLogFile(), and if
///   QRX_LOG_RECREATE_ON_CHANGE_OF_DATE asks for it with the first record of a new local day. Also, within a second, when
///   the file was removed, renamed or exchanged, so that it may be rotated from outside; and when other code of the process
///   has closed it. If its descriptor belongs to another file by then, that file is left alone. The old file is closed when
///   the new one is open, and stays in use if none can be opened.
/// - The configured directory may be a link. The directories below it, and all of the default directory, must not be
///   links, must belong to this user or to root, and must not be writable for everyone without the sticky bit; otherwise
///   they are refused like a directory that cannot be created. If the group or the owner of the configured directory may
///   exchange files nevertheless, a warning in the log says so.
/// - In a program with more rights than the user who started it, files and directories are for the owner alone.
/// - Lines wait in a buffer (QRX_LOG_FILE_BUFF_SIZE_MB) until it is full or Flush() is called; warnings and worse, and
///   records that are written immediately, do not wait.
/// - Invariant: a line is in a file completely or not at all, and a file is in the directory of the date on which it was
///   opened.
/// - Errors: nothing fails for threads that log. A failure is told on the error stream, once until it has ended: a
///   directory or file that cannot be created, a file that cannot be written (a full disk), was removed, renamed or closed.
///   Meanwhile lines wait in the buffer; those that find no room are lost and counted, and the log tells their number
///   afterwards. Every second the device tries again, whether records come or not. What is lost at the end of the device or
///   of the process is told on the error stream.
/// - Threads: every operation may be called at any time from any thread.
/// - Ownership: one object per process, never destroyed.
/// @code
/// nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>(100'000'000));  // bytes
/// NX_LOG(NX_LOG_LEVEL_INFO) << "started";
/// nxFileLogDevice::GetInstance().Destroy();
/// @endcode
class NX_CORE_API nxFileLogDevice final : public nxLogDevice, private nxLogLineSink
{
public:
    /// The directory for log files when QRX_LOG_DIRECTORY is not set. It is the same text on every platform; on a platform
    /// without drives it names a directory in the current one.
    static constexpr const char* DefaultDirectory = "c:\\corvane\\log";

    /// The process's one file device, made on first use.
    static nxFileLogDevice& GetInstance();

    /// Reads the settings, opens a log file and registers the device with the log manager.
    /// @param maximumFileSize bytes beyond which a new file is begun; null, no change and 0 mean no limit.
    /// @return false when a log file is open already, then nothing else changes; and when none could be opened, then the
    ///         device works nevertheless and goes on trying.
    bool Create(const nxValueWrapper<unsigned long long>& maximumFileSize);

    /// The same, and registers @p other in the same step, so that what was reported before reaches both; null for none.
    bool Create(const nxValueWrapper<unsigned long long>& maximumFileSize, nxLogDevice* other);
    /// The same for several others; null ones are left out.
    bool Create(const nxValueWrapper<unsigned long long>& maximumFileSize, std::span<nxLogDevice* const> others);

    /// Writes a record, and hands it to the operating system with all before it.
    void Write(const nxLog& record) override;

    /// Hands all lines to the operating system.
    void Flush() override;

    /// Waits until the log has written out what is queued (with the limits of nxLogManager for the end of the process),
    /// takes the device from it and closes the file. Create() may be called again.
    void Destroy() override;

    /// Closes the file and opens the next one. At the info level, the last line of the old file names it and the first
    /// line of the new file names both; these two do not count for the size of a file. Does nothing before Create().
    void CloseAndReopenLogFile();

    /// Limits the number, the size and the age of the log files, and has closed files compressed.
    ///
    /// Set before Create(), they count for the keys that the environment does not set: see nxLogRetention::Read(). After it
    /// they take effect within a second, whatever the environment says, until Destroy().
    ///
    /// - The device checks the limits when it opens a file, and once a minute. The thread that writes the file does it. It
    ///   spends 10 milliseconds a second on it, and a millisecond at a rotation, plus the time of one removal at most. In a
    ///   directory of many thousand files, the limits hold some time later. A process that ends sooner leaves the rest to
    ///   the next.
    /// - A directory of a date that is empty is removed, but not that of today or yesterday.
    /// - A compressor runs beside the process at the lowest priority, one at a time, and is no child of it. When it ends,
    ///   `application_090703_4711_1.log.gz` (or .zst, .xz) has taken the place of the file. If it fails, the file stays, the
    ///   error stream tells of it once, and the next attempt comes a minute later. The same holds if it is killed.
    /// - A lock of the system, which a process holds on its open file, distinguishes it from the file of a killed process.
    ///   Versions of the library before 1.1 do not hold it. Set no limits for a directory in which such a process writes
    ///   under the same application's name.
    void SetRetention(const nxLogRetention& retention);

    /// The beginning of a file name: directory, local date and the application's name (that of the program when
    /// nxApplicationData has none), e.g. "/var/log/05Mar2024/application".
    std::string GenerateLogDirectoryFilenamePrefix() const;

    /// The name of the next file, if no such file exists: the prefix, start time, process number and sequence number, e.g.
    /// "/var/log/05Mar2024/application_090703_4711_1.log".
    std::string GenerateFileName() const;

    /// The name of the open file; empty when there is none.
    std::string GetFileName() const;

    /// Lines that could not be written since the process was started.
    std::uint64_t GetLostLines() const;

private:
    friend class nxOneInstance<nxFileLogDevice>;
    struct Parts;

    nxFileLogDevice();
    ~nxFileLogDevice() override;

    static void _EndProcess() NX_NO_THREAD_SAFETY_ANALYSIS;

    nxLogLineStyle GetLineStyle() const override;
    void WriteLines(const nxLogLineBatch& batch) override;
    void Maintain() override;
    void BeforeFork() override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInParent() override NX_NO_THREAD_SAFETY_ANALYSIS;
    void AfterForkInChild() override;

    mutable nxMutex _mutex;  // guards the file among the parts: see Parts::GetFile()
    std::unique_ptr<Parts> _parts;
};

#endif
