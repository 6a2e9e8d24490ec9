#ifndef TESTS_SUPPORT_NXSTREAMED_H
#define TESTS_SUPPORT_NXSTREAMED_H

#include <sstream>
#include <string>

/// What a standard stream prints of @p value.
template <class Value>
std::string Streamed(const Value& value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

#endif
