// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILENAMES_H
#define CORE_LOG_INTERNAL_NXLOGFILENAMES_H

#include <string>

/// What log files are called: `directory/05Mar2024/application_090703_4711_1.log`.
///
/// Invariant: start time and process number belong to one process, which is this one after ReadProcess().
///
/// Threads: none.
class nxLogFileNames
{
public:
    /// @param directory that of the settings; empty for @p defaultDirectory.
    void Set(const std::string& directory, const char* defaultDirectory, const std::string& application);

    /// Reads when the process was started and its number; again in a forked child, whose files are counted from 1 on.
    void ReadProcess();

    /// The configured directory, as it was written.
    const std::string& GetRoot() const { return _root; }
    /// The directory between it and those of the dates; empty for none.
    const std::string& GetFolder() const { return _folder; }
    const std::string& GetApplication() const { return _application; }
    /// Root and folder.
    std::string GetDirectory() const;

    std::string GetDirectory(const std::string& date) const { return GetDirectory() + '/' + date; }
    std::string GetPrefix(const std::string& date) const { return GetDirectory(date) + '/' + _application; }
    /// The name of the next file.
    std::string GetNext(const std::string& date) const;
    /// Moves on to the next sequence number.
    void GoOn() { ++_sequence; }

    /// "05Mar2024", the local date of a moment; empty where nxTimeStamp has none.
    static std::string GetDate(long long second);
    static std::string GetToday();

    /// The application's name, or that of its program, as a file name can have it.
    static std::string ReadApplication();

private:
    std::string _root;
    std::string _folder;
    std::string _application;
    unsigned _process = 0;   // the one that the next two belong to
    std::string _startTime;  // "090703"
    unsigned _sequence = 1;  // of the next file
};

#endif
