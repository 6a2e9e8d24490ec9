// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_NXFILEHELPER_H
#define CORE_APP_NXFILEHELPER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// Small files, read and written whole: sequence numbers, caches, settings. A file that is replaced has its old or its new
/// content at every moment, for every reader, and no mixture.
/// @code
/// const std::string path = "orders.sequence";
/// if (nxFileHelper::ReplaceFile(path, "4711\n", nxFileHelper::Durability::Durable).IsOK())
/// {
///     std::string text;
///     const nxErrorEnum error = nxFileHelper::ReadFile(path, 100, text);  // "4711\n", also after a power failure
/// }
/// @endcode
/// - Paths: any bytes but NUL; relative ones begin at the working directory. An empty path, and one with a NUL, is
///   NX_ERR_INVALID_PARAMETER.
/// - Errors: NX_ERR_NOT_FOUND: the file, or a directory of its path, is not there. NX_ERR_DUPLICATE_MATCH: something has the
///   name already. NX_ERR_INVALID_PARAMETER: what is there is of another kind, such as a directory, a pipe, a device or a
///   link to a link. NX_ERR_FAILED_TO_OPEN_FILE: the file cannot be opened or made for another reason, such as missing
///   rights. Further codes are named at the operations. A failed operation leaves files and results as they were.
///   std::bad_alloc is thrown when memory runs out.
/// - `systemError`: where given, receives the system's error number (errno), 0 after success.
/// - Signals: a write beyond the size limit of the process is an error (NX_ERR_FILE_WRITE_ERR). SIGXFSZ does not reach the
///   process. A call that a signal interrupts goes on.
/// - Ownership: static operations only; no file stays open.
/// - Threads and processes: any number may use the same file at once. The last one that replaces it decides.
class NX_CORE_API nxFileHelper
{
public:
    nxFileHelper() = delete;

    /// What a new content survives.
    enum class Durability : unsigned char
    {
        /// The end of the process, by kill -9 too. After a failure of the machine the file may have the old content, or on
        /// some file systems none. Takes some tens of microseconds.
        Atomic,
        /// A failure of the machine too: content and name are on the disk when the operation returns. Takes as long as the
        /// disk needs twice, often some milliseconds.
        Durable
    };

    /// Reads a whole regular file; links are followed. A file that grows meanwhile is read to its new end.
    /// @param limit the most bytes that are taken; a larger file is NX_ERR_VALUE_OUT_OF_RANGE, of which nothing is kept.
    /// @return also NX_ERR_FILE_READ_ERR.
    [[nodiscard]] static nxErrorEnum ReadFile(const std::string& path, std::size_t limit, std::string& content,
                                              int* systemError = nullptr);

    /// Gives a file this content in one step, or makes it. See nxAtomicFile for the rules.
    /// @return also NX_ERR_FILE_WRITE_ERR.
    [[nodiscard]] static nxErrorEnum ReplaceFile(const std::string& path, std::string_view content,
                                                 Durability durability, int* systemError = nullptr);

    /// Makes a file with this content, which appears in one step. It is as durable as with Durability::Atomic. The owner may
    /// read and write it, the group may read it, as far as the process's mask allows.
    /// @return NX_ERR_DUPLICATE_MATCH when something has the name, also a link that leads nowhere; of several processes one
    ///         succeeds. Also NX_ERR_FILE_WRITE_ERR.
    [[nodiscard]] static nxErrorEnum CreateFile(const std::string& path, std::string_view content,
                                                int* systemError = nullptr);

    /// Makes an empty file with a name that nobody can guess, which the user alone may read and write. The caller removes it.
    /// @param directory is there already.
    /// @param path its name, with that of the directory.
    [[nodiscard]] static nxErrorEnum CreateTemporaryFile(const std::string& directory, std::string& path,
                                                         int* systemError = nullptr);

    /// Whether something, of any kind, is there. Links are followed. What cannot be told counts as not there.
    [[nodiscard]] static bool Exists(const std::string& path);

    /// The size of a regular file in bytes; links are followed. @return also NX_ERR_FILE_READ_ERR.
    [[nodiscard]] static nxErrorEnum GetSize(const std::string& path, unsigned long long& size,
                                             int* systemError = nullptr);

    /// Removes a file, or a link and not its target. A directory is NX_ERR_INVALID_PARAMETER.
    /// @return also NX_ERR_FILE_WRITE_ERR.
    [[nodiscard]] static nxErrorEnum Remove(const std::string& path, int* systemError = nullptr);

    /// Gives a file or a directory another name on the same file system, in one step. A file that has the name is replaced;
    /// a directory that is not empty is NX_ERR_DUPLICATE_MATCH. @return also NX_ERR_FILE_WRITE_ERR.
    [[nodiscard]] static nxErrorEnum Rename(const std::string& from, const std::string& to, int* systemError = nullptr);

    /// Makes a directory and the missing ones above it, for the owner, and for the group to read. A directory that is there
    /// already is a success. @return also NX_ERR_FILE_WRITE_ERR.
    [[nodiscard]] static nxErrorEnum CreateDirectories(const std::string& path, int* systemError = nullptr);

    /// Reads the names in a directory, without "." and "..", and sorts them by their bytes.
    /// @return also NX_ERR_FILE_READ_ERR.
    [[nodiscard]] static nxErrorEnum ListDirectory(const std::string& path, std::vector<std::string>& names,
                                                   int* systemError = nullptr);
};

#endif
