// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXLISTEDTEXTS_H
#define CORE_ENUM_INTERNAL_NXLISTEDTEXTS_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/nxExport.h"

/// The library's own values of enumerations, ascending, with their texts.
///
/// The values are constants. The texts are strings, because the interface returns references to strings. All of them are
/// made while the library is loaded, when a lack of memory can still be seen, and no look-up here needs memory.
///
/// Threads: any, at any time.
class nxListedTexts
{
public:
    nxListedTexts() = delete;

    using Texts = std::pair<std::string, std::string>;  ///< Short description, long description.

    /// How many values there are.
    static const std::size_t Count;

    /// The values.
    static std::span<const unsigned> GetValues();
    /// Their texts, in the same order. The first call makes them. @throws std::bad_alloc only then
    static std::span<const Texts> GetTexts();

    /// @return the texts of @p value, or null.
    static const Texts* Find(unsigned value);
    /// @return the value whose short description is @p text, or null. It reads all of them: for a process that has no memory
    ///         for a table of names.
    static const unsigned* Find(std::string_view text);
    /// @return the smallest value that is not below @p from, or null.
    static const unsigned* FindFrom(unsigned from);

private:
    // Debuggers read the texts and call nothing. Exported, because a stripped library names nothing else. The texts are
    // zero bytes before they are made.
    struct ForDebuggers
    {
        const unsigned* values;
        std::size_t count;
        const void* texts;
        std::size_t sizeOfTexts;
    };
    NX_CORE_API static const ForDebuggers _forDebuggers;
};

#endif
