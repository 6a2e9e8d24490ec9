#ifndef CORE_TEXT_NXSTRINGPARSER_H
#define CORE_TEXT_NXSTRINGPARSER_H

#include <cstddef>
#include <deque>
#include <string>

#include "core/nxExport.h"

/// Walks a text field by field, splitting it at a separator character.
///
/// - The parser refers to the text and owns nothing: the text must outlive it, so none can be made from a temporary.
///   Should the text become shorter meanwhile, what has gone is not missed: the parser is then finished.
/// - Errors: none. There is always a next field; once the text is used up, it is empty.
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
    explicit nxStringParser(const std::string&&) = delete;  ///< Temporaries are gone too soon.
    nxStringParser(const nxStringParser&) = default;        ///< A second parser of the same text, at the same place.

    /// @return what stands before the next @p separator, which is skipped; the rest of the text when there is none. So
    ///         "a," has two fields, "a" and "".
    std::string GetSubString(char separator);
    /// The same for a field that ends at the first of two characters.
    std::string GetSubString(char separator, char other);

    /// @return whether the last field has been taken. An empty text still has one field, which is empty.
    bool IsFullyParsed() const { return _position > _text.size(); }

    /// Adds the fields of @p text to a queue. Unlike GetSubString(), this gives no empty field behind a separator at
    /// the very end, and no field at all for an empty text: "a," has one field.
    /// @param text what is split.
    /// @param fields receives the fields; what it holds already stays.
    /// @param separator what stands between fields.
    /// @param flag true adds each field at the back, so that they stand in reading order; false adds each at the front.
    static void ExtractAllSubstrings(const std::string& text, std::deque<std::string>& fields, bool flag,
                                     char separator);

private:
    nxStringParser& operator=(const nxStringParser&) = delete;
    bool operator==(const nxStringParser&) const = delete;

    std::string _TakeUntil(std::size_t separator);

    static constexpr std::size_t _end = static_cast<std::size_t>(-1);  // the position once the text is used up

    const std::string& _text;
    std::size_t _position = 0;
};

#endif
