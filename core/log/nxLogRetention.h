// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGRETENTION_H
#define CORE_LOG_NXLOGRETENTION_H

#include <cstdint>
#include <string>

#include "core/nxExport.h"

/// How many log files are kept, and whether they are compressed. See nxFileLogDevice::SetRetention().
///
/// - Files of all processes of the same application in the same directory count together: open, closed and compressed
///   ones. Files that have another form of name or belong to another user, and links, neither count nor are touched.
/// - A file is removed as soon as one of the limits asks for it, the one that was written the longest time ago first. A
///   file that any process writes to is never removed, whatever the limits.
/// - Errors: none. A value that cannot be understood leaves the default; a number that is too large is taken as the largest
///   that is accepted. A program that has more rights than the user who started it (set-user-ID, set-group-ID, file
///   capabilities) ignores the environment and does not compress.
/// - Threads: Read() may be called at any time; the values are like any struct.
/// @code
/// nxLogRetention retention;
/// retention.files = 20;
/// retention.megabytes = 2'000;
/// retention.compressor = "gzip";
/// nxFileLogDevice::GetInstance().SetRetention(retention);
/// @endcode
struct NX_CORE_API nxLogRetention
{
    static constexpr std::uint64_t LargestFiles = 1'000'000'000;      ///< Files.
    static constexpr std::uint64_t LargestMegabytes = 1'000'000'000;  ///< Mebibytes.
    static constexpr std::uint64_t LargestDays = 36'500;              ///< Days.

    /// NX_LOG_KEEP_FILES: the number of files, 0 to LargestFiles. 0, the default, means no limit.
    std::uint64_t files = 0;

    /// NX_LOG_KEEP_MEGABYTES: the size of all files together in mebibytes, 0 to LargestMegabytes. 0, the default, means no
    /// limit. An open file counts with the size that it has at the time of the check.
    std::uint64_t megabytes = 0;

    /// NX_LOG_KEEP_DAYS: how many times 24 hours a file is kept after the last write, 0 to LargestDays. 0, the default,
    /// means no limit.
    std::uint64_t days = 0;

    /// NX_LOG_COMPRESS: the program that compresses closed files: gzip, pigz, zstd or xz, either by this name, which is
    /// looked up in /usr/bin and /bin, or by an absolute path that ends in it. Empty, the default, compresses nothing.
    std::string compressor;

    /// Whether anything is asked for.
    bool IsSet() const { return files != 0 || megabytes != 0 || days != 0 || !compressor.empty(); }

    /// Reads the four keys through nxCmdLineArgs. @param otherwise counts for keys that are not set.
    static nxLogRetention Read(const nxLogRetention& otherwise);
    /// Reads the four keys through nxCmdLineArgs.
    static nxLogRetention Read();
};

#endif
