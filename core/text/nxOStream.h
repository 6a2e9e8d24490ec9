// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXOSTREAM_H
#define CORE_TEXT_NXOSTREAM_H

#include <concepts>
#include <cstddef>
#include <string_view>

#include "core/text/inline/nxDigits.h"
#include "core/text/inline/nxTextTraits.h"

/// A text stream without locale, formatting flags or virtual calls: it hands the bytes of each piece to its writer.
///
/// - @p Writer is a type with `void Write(const char* bytes, std::size_t count)`, for example
///   nxSimpleAsciiStringWriter. The stream owns one.
/// - Numbers are written in decimal, without grouping or padding. A null `const char*` writes nothing.
/// - Errors: none of its own; exceptions of the writer (memory exhausted) pass through.
/// - Threads: like a string.
/// @code
/// nxOStream<nxSimpleAsciiStringWriter> stream;
/// stream << "bid " << 12 << ' ';
/// price.Write(stream, '.');
/// const std::string& text = stream.GetWriter().GetText();
/// @endcode
template <class Writer>
class nxOStream
{
public:
    nxOStream() = default;                                         ///< With a default-constructed writer.
    explicit nxOStream(const Writer& writer) : _writer(writer) {}  ///< With a copy of @p writer.

    Writer& GetWriter() { return _writer; }  ///< The stream's own writer; the reference is into this object.
    const Writer& GetWriter() const { return _writer; }  ///< The stream's own writer.

    /// Hands @p count bytes to the writer as they are, NULs included.
    nxOStream& Write(const char* bytes, std::size_t count)
    {
        _writer.Write(bytes, count);
        return *this;
    }

    /// Writes the character itself. A template, so that nothing is converted to a character: a type without an operator
    /// here (a bool, a double, a wrapper, a constant) does not compile.
    template <std::same_as<char> Character>
    nxOStream& operator<<(Character character)
    {
        return Write(&character, 1);
    }
    /// Writes the text as it is, NULs included.
    nxOStream& operator<<(std::string_view text) { return Write(text.data(), text.size()); }
    /// Writes the text up to its NUL; null writes nothing.
    nxOStream& operator<<(const char* text) { return text == nullptr ? *this : *this << std::string_view(text); }

    /// Writes a number in decimal, with a '-' in front when it is negative. There is no operator for bool and the wide
    /// characters, because it is unclear whether a number or a text is meant.
    template <std::integral Integer>
    requires(!nxWideCharacter<Integer> && !std::same_as<Integer, char> && !std::same_as<Integer, bool> &&
             sizeof(Integer) <= sizeof(std::uint64_t)) nxOStream&
    operator<<(Integer number)
    {
        char digits[nxDigits::MaxDigits];
        char* end;
        if constexpr (std::signed_integral<Integer>)
            end = nxDigits::WriteSigned(digits, number);
        else
            end = nxDigits::Write(digits, number);
        return Write(digits, static_cast<std::size_t>(end - digits));
    }

private:
    Writer _writer;
};

#endif
