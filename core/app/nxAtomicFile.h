// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXATOMICFILE_H
#define CORE_APP_NXATOMICFILE_H

#include <memory>
#include <string>
#include <string_view>

#include "core/app/nxFileHelper.h"
#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// A file that gets its new content piece by piece and shows it in one step. Until Commit() succeeds, and when the object is
/// destroyed or the process ends before that, the file is as it was, or is not there.
/// @code
/// nxAtomicFile file;
/// nxErrorEnum error = file.Open("products.cache");
/// for (const std::string& line : lines)
///     if (error.IsOK())
///         error = file.Append(line);
/// if (error.IsOK())
///     error = file.Commit(nxFileHelper::Durability::Atomic);
/// @endcode
/// - Rights: a replaced file keeps its permissions, group and access list, or Open() fails; it keeps its owner where the
///   process may give files away, and else belongs to the user of the process. The set-user-ID and set-group-ID bits are
///   taken away. A new file may be read and written by the owner and read by the group, as far as the process's mask allows.
/// - Links: one link at the path is followed when the file is opened, and stays; a link to a link is refused. In a directory
///   where everybody may make links, only those of the user and of the directory's owner are followed. A second hard link
///   keeps the old content.
/// - What is left: the new file is in the same directory and has no name before Commit(). A process that is killed between
///   the two calls of Commit() that give it the name leaves a whole file of the name ".nxcore-" and 16 digits. Where the
///   file system has no files without a name, or /proc is missing, the new file has such a name from the beginning, and
///   kill -9 leaves it.
/// - Errors: those of nxFileHelper, also NX_ERR_FILE_WRITE_ERR, and NX_ERR_NOT_INITIALISED when no file is open. After an
///   error of Append() or Commit() the new content is given up and no file is open. That holds for a failed fsync too:
///   a second one might report a success that is none. Only when the last step of Commit(Durable) fails, which tells the
///   directory's change to the disk, the new content is in place already but may not survive a failure of the machine.
/// - Ownership: an object owns its file; it can be moved. Two descriptors are open from Open() to Commit(). A forked child
///   must not use the object of its parent except to destroy it, which does no harm.
/// - Threads: like an int. Different objects, in any processes, may write the same file; the last Commit() decides.
class NX_CORE_API nxAtomicFile
{
public:
    nxAtomicFile() noexcept;                                 ///< Without a file.
    nxAtomicFile(nxAtomicFile&& other) noexcept;             ///< Takes the file of @p other, which then has none.
    nxAtomicFile& operator=(nxAtomicFile&& other) noexcept;  ///< The same; gives up what this object had open.
    /// Gives up what was not committed.
    ~nxAtomicFile();

    /// Begins a new content, empty at first. What was open before is given up when this succeeds.
    /// @param path of the file, which need not be there; its directory must be.
    /// @param systemError where given, receives the system's error number, 0 after success; so do the other operations.
    [[nodiscard]] nxErrorEnum Open(const std::string& path, int* systemError = nullptr);

    /// @return whether Append() and Commit() have a file to work on.
    bool IsOpen() const { return _replacement != nullptr; }

    /// Adds bytes. Small pieces are gathered, so that an error may be reported by a later call.
    [[nodiscard]] nxErrorEnum Append(std::string_view content, int* systemError = nullptr);

    /// Gives the file its new content and closes it.
    [[nodiscard]] nxErrorEnum Commit(nxFileHelper::Durability durability, int* systemError = nullptr);

private:
    std::unique_ptr<class nxFileReplacement> _replacement;
};

#endif
