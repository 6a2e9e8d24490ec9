// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogTextBytes.h"

#include <algorithm>
#include <cstdlib>

namespace
{
constexpr std::size_t firstTextCapacity = 1024;
}  // namespace

nxLogTextBytes::~nxLogTextBytes() { std::free(_begin); }

bool nxLogTextBytes::_Grow(std::size_t bytes) noexcept
{
    const std::size_t size = GetSize();
    const std::size_t capacity =
        std::max({firstTextCapacity, 2 * static_cast<std::size_t>(_end - _begin), size + bytes});
    char* const grown = static_cast<char*>(std::realloc(_begin, capacity));
    if (grown == nullptr)
        return false;
    _begin = grown;
    _cursor = grown + size;
    _end = grown + capacity;
    return true;
}

void nxLogTextBytes::ShrinkTo(std::size_t bytes) noexcept
{
    if (GetSize() != 0 || static_cast<std::size_t>(_end - _begin) <= bytes)
        return;
    std::free(_begin);
    _begin = _cursor = _end = nullptr;
    _Grow(bytes);
}
