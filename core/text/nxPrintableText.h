// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXPRINTABLETEXT_H
#define CORE_TEXT_NXPRINTABLETEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "core/nxExport.h"

/// Makes text of unknown origin safe to show: a file name, a word of a command line, a field of a user's file.
///
/// Such text can end a line early, control a terminal or change the order in which a reader sees the characters. Bytes
/// that do so are shown as `\xNN`, two hexadecimal digits a byte; all others stay as they are.
///
/// - Hidden are the control characters of ASCII and ISO 6429 (C0, DEL and C1), the line and paragraph separators U+2028
///   and U+2029, and the bidirectional controls U+202A to U+202E and U+2066 to U+2069.
/// - A backslash is not escaped: the result is for people and cannot always be reversed.
/// - Errors: none. Any bytes of any length are accepted, in linear time.
/// - Threads: any thread; there is no state.
/// @code
/// error = "cannot read " + nxPrintableText::GetQuoted(fileName, 200);  // cannot read 'no\x1B[2J.csv'
/// @endcode
class NX_CORE_API nxPrintableText
{
public:
    nxPrintableText() = delete;

    /// @return the number of bytes of the UTF-8 character at the start of @p text, which is not empty; 0 if there is
    ///         none.
    static std::size_t GetCharacterSize(std::string_view text);

    /// @return the number of bytes at the start of @p text, which is not empty, that must not be shown; 0 if the text
    ///         begins with something harmless. A tab counts as a control character, and so does a byte from 0x80 to 0x9F
    ///         outside a UTF-8 character; other bytes that are not UTF-8 do not.
    static std::size_t GetHiddenSize(std::string_view text);

    /// @return the start of @p text: at most @p limit bytes, without splitting a UTF-8 character.
    static std::string_view Cut(std::string_view text, std::size_t limit);

    /// Appends @p text with hidden characters, and bytes that are not UTF-8, as `\xNN`. @p text must not be a part of
    /// @p out.
    static void AppendEscaped(std::string_view text, std::string& out);
    /// The same as a new string.
    static std::string GetEscaped(std::string_view text);
    /// The same in quotes. A text with more than @p maximum bytes is cut, with "..." before the closing quote.
    static std::string GetQuoted(std::string_view text, std::size_t maximum = 40);
};

#endif
