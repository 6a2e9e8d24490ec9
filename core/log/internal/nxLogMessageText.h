// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGMESSAGETEXT_H
#define CORE_LOG_INTERNAL_NXLOGMESSAGETEXT_H

#include <cstddef>
#include <string_view>

#include "core/log/internal/nxLogTextBytes.h"
#include "core/log/internal/nxLogValueReader.h"

/// The text of the values of a record, with all care: the texts one after the other, fields as lines of text show them.
///
/// Invariant: a text of more than nxLogLimits::LongestMessage is cut between two characters and says so.
///
/// Errors: false without memory, with a part of the text written. Threads: none.
class nxLogMessageText
{
public:
    /// What is written.
    struct Wish
    {
        bool escape;  ///< Whether as nxLogEscape says.
        bool fields;  ///< Whether with the fields.
    };

    /// Writes at the end of @p out.
    nxLogMessageText(nxLogTextBytes& out, Wish wish) : _out(out), _wish(wish) {}

    /// Writes the values from @p values to @p end.
    bool Append(const char* values, const char* end) noexcept;
    /// Whether the text ends early.
    bool IsCut() const { return _isCut; }

    /// The room after the cursor that Append() leaves. Any value that is not itself a text fits into it.
    static constexpr std::size_t LongestValue = 256;
    /// Follows a text that was cut.
    static constexpr std::string_view CutMark = "... [cut]";

    /// @return the start of @p text, @p limit bytes at most, that splits no UTF-8 character.
    static std::string_view CutTo(std::string_view text, std::size_t limit) noexcept;

private:
    bool _AppendText(std::string_view text) noexcept;
    bool _AppendLimited(std::string_view text) noexcept;
    bool _AppendEscaped(std::string_view text) noexcept;
    bool _AppendDouble(double value) noexcept;
    bool _AppendOne(const nxLogValueReader& value) noexcept;
    bool _AppendField(nxLogValueReader& value) noexcept;
    bool _AppendFieldsText(const nxLogValueReader& value) noexcept;
    void _PutCutMark();

    nxLogTextBytes& _out;
    Wish _wish;
    bool _isCut = false;
    std::size_t _written = 0;  // of the message, an escaped byte counted once
};

#endif
