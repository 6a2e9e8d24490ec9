// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILESURVEY_H
#define CORE_LOG_INTERNAL_NXLOGFILESURVEY_H

#include <cstdint>
#include <string>

#include "core/log/internal/nxLogKeptFile.h"
#include "core/platform/nxDirectory.h"
#include "core/platform/nxDirectoryReader.h"

/// One walk through the log directory that finds the files of this application, in small steps.
///
/// Only directories of dates are entered, under the rules of nxDirectory::Enter(), and only regular files of this user with
/// an exact name are found. A compressed file whose plain one still exists is being made, or was not finished, and is not
/// found.
///
/// Threads: none. Errors: what cannot be read is not found; std::bad_alloc is thrown.
class nxLogFileSurvey
{
public:
    /// Where the files of an application are.
    struct Place
    {
        std::string root;    ///< The configured directory.
        std::string folder;  ///< The directory between it and those of the dates; empty for none.
        std::string application;

        /// Opens the directory that has those of the dates, if it exists. @return 0 or the system's error number.
        int Open(nxDirectory& directory) const;
    };

    /// What a step has met.
    enum class Met
    {
        Nothing,
        File,         ///< See GetFile(), in GetFolder().
        EmptyFolder,  ///< GetFile() has its date alone.
        End
    };

    /// Begins with the first directory. @return whether there is one.
    bool Begin(const Place& place);
    Met Step(const Place& place);
    void End();

    /// Whether no other code of the process has closed a directory meanwhile.
    bool IsSound() const { return _root.IsSound() && (!_isInFolder || _folder.IsSound()); }

    const nxLogKeptFile& GetFile() const { return _file; }
    const nxDirectory& GetRoot() const { return _root; }
    /// The directory that was entered last.
    const nxDirectory& GetFolder() const { return _folder; }
    /// Makes the directory of a file that was found before the one of GetFolder(). @return 0 or the system's error number.
    int EnterFolderOf(const nxLogKeptFile& file);

private:
    bool _EnterNextFolder();
    bool _ReadFile(const std::string& application);

    nxDirectory _root;
    nxDirectoryReader _folders;
    nxDirectory _folder;
    nxDirectoryReader _files;
    bool _isInFolder = false;
    std::int32_t _enteredDay = INT32_MIN;  // that of _folder
    nxLogKeptFile _file;
    std::string _name;
};

#endif
