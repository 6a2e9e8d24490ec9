// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILEVERSION_H
#define CORE_PLATFORM_NXFILEVERSION_H

#include <cstdint>

/// What the system knows of a file without reading it. Two reads of one name that give equal versions have most likely seen
/// the same content.
struct nxFileVersion
{
    std::uint64_t device = 0;
    std::uint64_t number = 0;      ///< Of the inode.
    std::int64_t size = 0;         ///< Bytes.
    std::int64_t seconds = 0;      ///< Of the last change of the content.
    std::int64_t nanoseconds = 0;  ///< @copydoc seconds

    /// Asks for the version of the file that @p path names; links are followed.
    /// @return the system's error number; 0 when it succeeds.
    [[nodiscard]] static int Read(const char* path, nxFileVersion& version) noexcept;

    friend bool operator==(const nxFileVersion&, const nxFileVersion&) = default;
};

#endif
