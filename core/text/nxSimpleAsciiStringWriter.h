#ifndef CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H
#define CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H

#include <cstddef>
#include <string>

/// The writer of an nxOStream that collects the text in a string of its own. Bytes are kept as they come.
class nxSimpleAsciiStringWriter
{
public:
    /// Appends @p count bytes; only memory may run out (std::bad_alloc).
    void Write(const char* bytes, std::size_t count) { _text.append(bytes, count); }

    const std::string& GetText() const { return _text; }  ///< All that was written; the reference is into this object.
    void Clear() { _text.clear(); }                       ///< Keeps the memory for the next text.

private:
    std::string _text;
};

#endif
