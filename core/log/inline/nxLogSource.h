// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGSOURCE_H
#define CORE_LOG_INLINE_NXLOGSOURCE_H

#include <atomic>
#include <cstddef>

#include "core/nxExport.h"

/// The place of a reporting statement as the log keeps it.
///
/// Invariant: there is one object for each file and line, and it is never freed or changed. So a queued record can
/// point to it even when the plug-in that reported has been unloaded.
struct nxLogSource
{
    const char* file;        ///< The library's own copy, terminated.
    unsigned line;           ///< The line in the file.
    const char* suffix;      ///< How full lines end: " [core/trunk/nxMutex:107]", escaped as in a message.
    std::size_t suffixSize;  ///< Bytes of the suffix. At least SuffixRoom bytes may be read.

    static constexpr std::size_t SuffixRoom = 64;  ///< Copying this many costs less than the right number.
};

/// The static part of one reporting statement. Use the macros of nxLogMacros.h.
class NX_CORE_API nxLogSite
{
public:
    /// @param file a literal. @param line its line.
    constexpr nxLogSite(const char* file, unsigned line) noexcept : nxLogSite(file, line, 0) {}
    /// @param path a literal, of which lines show what follows its first @p folders bytes. @param line its line.
    constexpr nxLogSite(const char* path, unsigned line, unsigned long folders) noexcept
        : _file(path + folders), _line(line), _folders(static_cast<unsigned>(folders) + 1)
    {
    }

    /// @return the kept place; the first statement that runs here has it made.
    const nxLogSource* GetSource() noexcept
    {
        const nxLogSource* const source = _source.load(std::memory_order_acquire);
        return source != nullptr ? source : _Keep();
    }

private:
    const nxLogSource* _Keep() noexcept;

    // _Keep() publishes the kept place (release), GetSource() of any thread reads it (acquire).
    std::atomic<const nxLogSource*> _source{nullptr};
    const char* _file;
    unsigned _line;
    // 1 and the bytes of the path that are in front of the file. It was padding in version 1.0, where it is 0.
    unsigned _folders;
};

#endif
