// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXSTRINGPARSER_H
#define CORE_TEXT_NXSTRINGPARSER_H

#include <cstddef>
#include <deque>
#include <string>

#include "core/nxExport.h"

/// Reads a text field by field, splitting it at a separator character.
///
/// - The parser refers to the text and owns nothing. The text must outlive it, so a parser cannot be made from a
///   temporary. If the text becomes shorter than the part already read, the parser is finished.
/// - Errors: none. There is always a next field; after the end of the text it is empty.
/// - Threads: one at a time, like any object that is written to.
/// @code
/// const std::string line = "ES,,4501.25";
/// nxStringParser parser(line);
/// while (!parser.IsFullyParsed())
///     std::cout << parser.GetSubString(',') << '\n';  // "ES", "", "4501.25"
/// @endcode
class NX_CORE_API nxStringParser
{
public:
    /// Starts at the front of @p text, which it keeps referring to.
    explicit nxStringParser(const std::string& text) : _text(text) {}
    explicit nxStringParser(const std::string&&) = delete;  ///< Deleted, because the text must outlive the parser.
    nxStringParser(const nxStringParser&) = default;        ///< A second parser of the same text, at the same place.

    /// @return the text before the next @p separator, which is skipped; the rest of the text when there is none. So
    ///         "a," has two fields, "a" and "".
    std::string GetSubString(char separator);
    /// The same for a field that ends at the first of two characters.
    std::string GetSubString(char separator, char other);

    /// @return whether the last field has been taken. An empty text still has one field, which is empty.
    bool IsFullyParsed() const { return _position > _text.size(); }

    /// Adds the fields of @p text to a queue. Unlike GetSubString(), this gives no empty field after a separator at
    /// the very end, and no field at all for an empty text: "a," has one field.
    /// @param text the text to split.
    /// @param fields receives the fields; those that it holds already stay.
    /// @param separator the character between fields.
    /// @param flag true adds each field at the back, so the fields are in reading order; false adds each at the front.
    static void ExtractAllSubstrings(const std::string& text, std::deque<std::string>& fields, bool flag,
                                     char separator);

private:
    nxStringParser& operator=(const nxStringParser&) = delete;
    bool operator==(const nxStringParser&) const = delete;

    std::string _TakeUntil(std::size_t separator);

    static constexpr std::size_t _end = static_cast<std::size_t>(-1);  // the position after the last field

    const std::string& _text;
    std::size_t _position = 0;
};

#endif
