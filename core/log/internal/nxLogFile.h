// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILE_H
#define CORE_LOG_INTERNAL_NXLOGFILE_H

#include <cstdint>
#include <string>
#include <string_view>

#include "core/log/internal/nxLogFileKeeper.h"
#include "core/log/internal/nxLogFileNames.h"
#include "core/log/nxLogLineSink.h"
#include "core/log/nxLogRetention.h"
#include "core/log/nxLogSettings.h"
#include "core/platform/nxLineFile.h"

class nxDirectory;
class nxLog;
class nxLogLevelEnum;

/// The file of the log: when a new one is begun, and what is told of its troubles.
///
/// Invariant: a line is in a file completely or not at all, and a file is in the directory of the date on which it was
/// opened.
///
/// Threads: none, nxFileLogDevice has the lock. Errors: told on the error stream; std::bad_alloc is thrown.
class nxLogFile
{
public:
    /// What one Create() decides for all files until Destroy().
    struct Plan
    {
        nxLogSettings settings;
        std::string application;
        const char* defaultDirectory = nullptr;  ///< Where files go when the settings name no directory.
        std::uint64_t limit = 0;                 ///< The size of a file in bytes; 0 for none.
        nxLogRetention retention;

        /// What the environment and nxApplicationData say, both of which have locks.
        /// @param retention counts where the environment says nothing.
        static Plan Read(const char* defaultDirectory, std::uint64_t limit = 0, const nxLogRetention& retention = {});
    };

    bool IsOpen() const { return _file.IsOpen(); }
    /// Called while no file is open. @return whether one is open now.
    bool Create(const Plan& plan);
    /// In a child of a process that had a file: the first record opens the child's own.
    void CreateInChild(const Plan& plan);
    /// Reads what names are made of; the plan counts before Create() only.
    void RefreshNameParts(const Plan& plan);
    /// @param atOnce whether the lines must not wait in the buffer. @param second the time of the first line.
    void Write(std::string_view lines, bool atOnce, long long second);
    void WriteRecord(const nxLog& record);
    void Flush();
    void Maintain(std::int64_t now);
    void Reopen();
    /// Takes effect from now on, until the next Create().
    void SetRetention(const nxLogRetention& retention);
    /// Attempts once more to write what waits, and tells what stays unwritten.
    void End();
    /// Closes the file. Nothing is written before the next Create().
    void Destroy() noexcept;
    void ForgetInChild();

    std::string GetPrefix() const { return _names.GetPrefix(nxLogFileNames::GetToday()); }
    std::string GetNextFileName() const { return _names.GetNext(nxLogFileNames::GetToday()); }
    std::string GetFileName() const { return _file.IsOpen() ? _fileName : std::string(); }
    std::uint64_t GetLostLines() const { return _file.GetLostLines(); }

private:
    void _SetPlan(const Plan& plan);
    bool _StartNextFile();
    int _OpenDirectory(nxDirectory& directory, const std::string& date) const;
    int _TryNextNames(const nxDirectory& directory, const std::string& date, nxFile& file, std::string& name);
    void _BeginFile(nxFile&& file, const std::string& name, const std::string& date);
    void _Look();
    void _TellFate(nxFile::Fate fate);
    void _AppendAndTell(std::string_view lines, bool atOnce);
    void _MendIfClosed();
    template <class... Fields>
    void _Report(const nxLogLevelEnum& level, unsigned line, const std::string& text, const Fields&... fields);
    void _TellFailures();
    std::size_t _SizeUpToLimit(std::string_view lines) const;
    bool _IsBeyondLimit() const;
    bool _MustHandOver(bool atOnce, std::int64_t now);

    nxLineFile _file;
    bool _isCreated = false;
    nxLogSettings _settings;
    nxLogFileNames _names;
    std::uint64_t _limit = 0;     // bytes; 0 for none
    std::uint64_t _ownBytes = 0;  // of the device's own records in the file, which do not count for the limit
    std::string _fileName;        // the last that was open
    std::string _date;            // on which it was opened, "05Mar2024"
    std::int64_t _nextCheck = 0;  // of the file's fate, on the monotonic clock
    std::int64_t _nextHandOver = 0;
    bool _mayOpen = true;  // false from a failure to open a file until the next check
    bool _openingFailureIsTold = false;
    bool _writingFailureIsTold = false;
    bool _fateIsTold = false;
    bool _closingIsUntold = false;  // in the log: the last file was closed by other code
    bool _openDirectoryIsTold = false;
    std::uint64_t _toldLostLines = 0;
    nxLogFileKeeper _keeper;
    std::string _line;
};

#endif
