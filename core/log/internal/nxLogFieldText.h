// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFIELDTEXT_H
#define CORE_LOG_INTERNAL_NXLOGFIELDTEXT_H

#include <cstddef>
#include <string_view>

/// How lines of text show a field: ` name=value`, the value in quotes where it could not be told from what follows it.
///
/// Invariant: a value without quotes holds none of blank, '=', '"', '\' and hidden characters; in quotes '"' and '\' follow a
/// backslash.
///
/// Errors: none. Threads: no state.
class nxLogFieldText
{
public:
    nxLogFieldText() = delete;

    /// Whether a value needs no quotes.
    static bool IsPlain(std::string_view text) noexcept;
    /// The room that a value of @p size characters takes at most.
    static constexpr std::size_t GetRoom(std::size_t size) { return 4 * size + 2; }
    /// Writes a value. @return the end of what was written.
    static char* PutValue(char* out, std::string_view text) noexcept;
};

#endif
