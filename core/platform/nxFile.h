#ifndef CORE_PLATFORM_NXFILE_H
#define CORE_PLATFORM_NXFILE_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "core/nxExport.h"

/// A file of the operating system, opened for writing or not at all, without buffering.
///
/// - Errors: operations return the system's error number, 0 when they succeed.
/// - Signals: a write beyond the size limit of the process, or into a closed pipe, is an error like any other; the
///   signal that the system raises for it does not reach the process.
/// - Ownership: an object owns its descriptor, which is never one of the three standard ones and is not inherited by
///   programs that the process starts.
/// - Threads: like an int.
class NX_CORE_API nxFile
{
public:
    nxFile() = default;
    nxFile(const nxFile&) = delete;
    nxFile& operator=(const nxFile&) = delete;
    ~nxFile();

    /// Creates a file that only the owner may write and only the group may read besides, and opens it; in secure
    /// execution (see nxEnvironment) not even the group. Never opens what is there already, be it a file, a symbolic
    /// link or a device: that is EEXIST.
    [[nodiscard]] int CreateNew(const std::string& path);

    bool IsOpen() const { return _descriptor >= 0; }

    /// Writes as much as the system takes. @return 0 when that is everything.
    /// @param written the number of bytes that were taken, also when the rest failed.
    [[nodiscard]] int Write(const char* data, std::size_t size, std::size_t& written);

    /// Cuts the file to @p size bytes; the next write goes there.
    int Truncate(std::uint64_t size);

    void Close();

    /// Whether the open file has no name any more: somebody removed it, and what is written to it will be lost.
    bool IsUnlinked() const;

    /// Writes to a descriptor that belongs to somebody else, as Write() does.
    static int WriteTo(int descriptor, const char* data, std::size_t size, std::size_t& written);

    /// Reads a whole regular file into memory of the caller, without allocating any.
    /// @return 0 with the file's size; EFBIG when it does not fit.
    [[nodiscard]] static int ReadAll(const char* path, std::span<char> content, std::size_t& size);

    /// Creates the directory and those above it that do not exist, for the owner and for reading by the group
    /// (as a new file).
    /// @return 0 also when it exists already.
    static int CreateDirectories(const std::string& path);

private:
    int _descriptor = -1;
};

#endif
