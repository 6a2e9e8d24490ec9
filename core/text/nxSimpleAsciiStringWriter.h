// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H
#define CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H

#include <cstddef>
#include <string>

/// The writer of an nxOStream that collects the text in its own string. Bytes are kept unchanged.
class nxSimpleAsciiStringWriter
{
public:
    /// Appends @p count bytes. @throws std::bad_alloc
    void Write(const char* bytes, std::size_t count) { _text.append(bytes, count); }

    const std::string& GetText() const { return _text; }  ///< The text so far; the reference is into this object.
    void Clear() { _text.clear(); }                       ///< Keeps the memory for the next text.

private:
    std::string _text;
};

#endif
