// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILE_H
#define CORE_PLATFORM_NXFILE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"
#include "core/platform/nxDirectory.h"

/// A file of the operating system, opened for writing or not at all, without buffering.
///
/// - Errors: operations return the system's error number, 0 when they succeed. EBADF means that other code of the process
///   has closed the file; the caller then calls Forget().
/// - Signals: a write beyond the size limit of the process, or into a closed pipe, is an error like any other. The signal
///   that the system raises for it does not reach the process.
/// - Ownership: an object owns its descriptor, which is never one of the three standard ones and is not inherited by
///   programs that the process starts.
/// - Threads: like an int.
class NX_CORE_API nxFile
{
public:
    /// The state of an open file, which other programs may change.
    enum class Fate
    {
        Sound,
        Renamed,  ///< Its name refers to another file or to none, but it has a name somewhere.
        Removed,  ///< It has no name any more: everything written to it will be lost.
        Closed    ///< By other code of the process; the number may refer to another file now.
    };

    /// Creates a file that the owner may write and the group may read, and opens it; in secure execution (see
    /// nxEnvironment) the group may not read it either. An existing file, symbolic link or device is never opened: that is
    /// EEXIST. On success the file that was open before is closed; on failure it stays open. As long as the file is open,
    /// nobody can claim it (see nxFileClaim).
    /// @param directory where the last part of @p path is created: the directory that the rest of @p path names.
    [[nodiscard]] int CreateNew(const nxDirectory& directory, const std::string& path);

    bool IsOpen() const { return _descriptor.IsOpen(); }

    /// Writes as much as the system takes. @return 0 when that is all of it.
    /// @param written the number of bytes that the system took, also when the rest failed.
    [[nodiscard]] int Write(const char* data, std::size_t size, std::size_t& written);

    /// Cuts off the last @p bytes, or all of a smaller file. The next write continues there.
    int CutBack(std::uint64_t bytes);

    void Close() { _descriptor.Close(); }
    /// Forgets the descriptor without closing it, because other code has closed or inherited it.
    void Forget() { _descriptor.Forget(); }

    /// Asks for the state and the size of the file, which is open. In doubt it is sound.
    Fate Look(std::uint64_t& size) const;

    /// Writes to a descriptor that other code owns, as Write() does. EAGAIN when it does not block and has no room.
    static int WriteTo(int descriptor, const char* data, std::size_t size, std::size_t& written);

    /// Reads a whole regular file into memory of the caller, without allocating any.
    /// @return 0 with the file's size; EFBIG when it does not fit.
    [[nodiscard]] static int ReadAll(const char* path, std::span<char> content, std::size_t& size);

private:
    bool _HasItsName() const;

    nxDescriptor _descriptor;
    std::string _path;     // absolute; empty when the file cannot be told by it
    nxFileIdentity _root;  // of the root directory when the path was valid
};

#endif
