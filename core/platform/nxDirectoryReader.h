// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXDIRECTORYREADER_H
#define CORE_PLATFORM_NXDIRECTORYREADER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "core/platform/nxDescriptor.h"
#include "core/platform/nxDirectory.h"

/// Reads the names in a directory, some at a time, with memory that does not depend on their number.
///
/// - Errors: a directory that cannot be read further counts as read to its end, and GetError() tells the difference. So does
///   one that other code of the process has closed. std::bad_alloc is thrown.
/// - Threads: like an int.
class nxDirectoryReader
{
public:
    /// Begins with the first name. @return 0 or the system's error number.
    [[nodiscard]] int Open(const nxDirectory& directory);
    /// @return whether there was another name, which @p name is now; "." and ".." are left out.
    bool ReadNext(std::string& name);
    /// Whether ReadNext() has returned no name since Open().
    bool IsEmpty() const { return _isEmpty; }
    /// Why reading has ended before the last name; 0 when it has not.
    int GetError() const { return _error; }
    void Close();

private:
    bool _Fill();

    static constexpr std::size_t _capacity = std::size_t{32} << 10;

    nxDescriptor _descriptor;
    std::unique_ptr<char[]> _buffer;
    std::size_t _used = 0;
    std::size_t _at = 0;
    bool _isEmpty = true;
    int _error = 0;
};

/// What is in a directory, by name. Links are never followed. Errors are the system's numbers, 0 for success.
class nxDirectoryEntry
{
public:
    nxDirectoryEntry() = delete;

    struct Facts
    {
        bool isOwnFile = false;     ///< A regular file of this user.
        std::uint64_t size = 0;     ///< Bytes.
        std::int64_t modified = 0;  ///< Nanoseconds since 1970, UTC, limited to what fits.
    };

    static int Look(const nxDirectory& directory, const std::string& name, Facts& facts);
    static bool Exists(const nxDirectory& directory, const std::string& name);
    static int RemoveFile(const nxDirectory& directory, const std::string& name);
    /// Removes a subdirectory that is empty and belongs to this user.
    static int RemoveDirectory(const nxDirectory& directory, const std::string& name);
};

#endif
