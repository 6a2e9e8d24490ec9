#ifndef CORE_TEXT_NXOSTREAM_H
#define CORE_TEXT_NXOSTREAM_H

#include <concepts>
#include <cstddef>
#include <string_view>

#include "core/text/nxDigits.h"

/// A text stream without locale, formatting flags or virtual calls: it hands the bytes of each piece to its writer.
///
/// - @p Writer is a type with `void Write(const char* bytes, std::size_t count)`, for example
/// nxSimpleAsciiStringWriter.
///   The stream owns one.
/// - Numbers are written in decimal, without grouping or padding. A null `const char*` writes nothing.
/// - Errors: none of its own; what the writer throws (memory exhausted) passes through.
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
    nxOStream() = default;
    explicit nxOStream(const Writer& writer) : _writer(writer) {}

    Writer& GetWriter() { return _writer; }
    const Writer& GetWriter() const { return _writer; }

    nxOStream& Write(const char* bytes, std::size_t count)
    {
        _writer.Write(bytes, count);
        return *this;
    }

    nxOStream& operator<<(char character) { return Write(&character, 1); }
    nxOStream& operator<<(std::string_view text) { return Write(text.data(), text.size()); }
    nxOStream& operator<<(const char* text) { return text == nullptr ? *this : *this << std::string_view(text); }

    template <std::integral Integer>
    requires(!std::same_as<Integer, bool>) nxOStream& operator<<(Integer number)
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
