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
///   has closed the file: the object is then to be made to forget it.
/// - Signals: a write beyond the size limit of the process, or into a closed pipe, is an error like any other; the
///   signal that the system raises for it does not reach the process.
/// - Ownership: an object owns its descriptor, which is never one of the three standard ones and is not inherited by
///   programs that the process starts.
/// - Threads: like an int.
class NX_CORE_API nxFile
{
public:
    /// What has become of an open file.
    enum class Fate
    {
        Sound,
        Renamed,  ///< Its name stands for another file or for none, though it has one somewhere.
        Removed,  ///< It has no name any more: what is written to it will be lost.
        Closed    ///< By other code of the process; the number may stand for another file now.
    };

    /// Creates a file that only the owner may write and only the group may read besides, and opens it; in secure
    /// execution (see nxEnvironment) not even the group. Never opens what is there already, be it a file, a symbolic
    /// link or a device: that is EEXIST. The file that was open is closed when this succeeds, and else stays.
    /// @param directory where the last part of @p path is created; it is what the rest of @p path stands for.
    [[nodiscard]] int CreateNew(const nxDirectory& directory, const std::string& path);

    bool IsOpen() const { return _descriptor.IsOpen(); }

    /// Writes as much as the system takes. @return 0 when that is everything.
    /// @param written the number of bytes that were taken, also when the rest failed.
    [[nodiscard]] int Write(const char* data, std::size_t size, std::size_t& written);

    /// Cuts the last @p bytes off, or all there is if that is less; the next write goes there.
    int CutBack(std::uint64_t bytes);

    void Close() { _descriptor.Close(); }
    /// Leaves the descriptor alone, which somebody else has closed or inherited.
    void Forget() { _descriptor.Forget(); }

    /// Looks what has become of the file, which is open, and how large it is now. In doubt it is sound.
    Fate Look(std::uint64_t& size) const;

    /// Writes to a descriptor that belongs to somebody else, as Write() does: EAGAIN where it does not block and has no
    /// room.
    static int WriteTo(int descriptor, const char* data, std::size_t size, std::size_t& written);

    /// Reads a whole regular file into memory of the caller, without allocating any.
    /// @return 0 with the file's size; EFBIG when it does not fit.
    [[nodiscard]] static int ReadAll(const char* path, std::span<char> content, std::size_t& size);

private:
    bool _HasItsName() const;

    nxDescriptor _descriptor;
    std::string _path;     // absolute; empty where it says nothing
    nxFileIdentity _root;  // of the tree of files in which the path was valid
};

#endif
