// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILECALLS_H
#define CORE_PLATFORM_NXFILECALLS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Operations on files by name. They return the system's error number, 0 when they succeed; a name that is empty or holds a
/// NUL is EINVAL. What a failed operation was to set is as it was. Threads: any.
class nxFileCalls
{
public:
    nxFileCalls() = delete;

    /// Reads a whole regular file. EINVAL for anything else, EFBIG when it has more than @p limit bytes.
    /// @param hasOpened whether the file could be opened, also when reading it failed.
    [[nodiscard]] static int ReadAll(const std::string& path, std::size_t limit, std::string& content, bool& hasOpened);

    /// Links are followed. EINVAL for what is no regular file.
    [[nodiscard]] static int GetSize(const std::string& path, std::uint64_t& size);
    /// Whether something is there. Links are followed; what cannot be told is not there.
    [[nodiscard]] static bool Exists(const std::string& path);

    /// Removes a file or a link, no directory.
    [[nodiscard]] static int Remove(const std::string& path);
    /// Replaces a file that has the name @p to.
    [[nodiscard]] static int Rename(const std::string& from, const std::string& to);
    /// Makes an empty file with a name of its own, for the user alone. @param path its name, with the directory's.
    [[nodiscard]] static int CreateTemporary(const std::string& directory, std::string& path);

    /// Makes a directory and the missing ones above it. See nxDirectory for their rights.
    [[nodiscard]] static int CreateDirectories(const std::string& path);
    /// Reads the names in a directory, in any order, without "." and "..".
    [[nodiscard]] static int ListDirectory(const std::string& path, std::vector<std::string>& names);
};

#endif
