#ifndef CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H
#define CORE_TEXT_NXSIMPLEASCIISTRINGWRITER_H

#include <cstddef>
#include <string>

/// The writer of an nxOStream that collects the text in a string of its own. Bytes are kept as they come.
class nxSimpleAsciiStringWriter
{
public:
    void Write(const char* bytes, std::size_t count) { _text.append(bytes, count); }

    const std::string& GetText() const { return _text; }
    void Clear() { _text.clear(); }  ///< Keeps the memory for the next text.

private:
    std::string _text;
};

#endif
