// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogStatement.h"

#include <cstring>

void nxLogStatement::AppendValuesOf(const nxLog& record) noexcept
{
    const char* const values = record._message.GetValues();
    const auto size = static_cast<std::size_t>(record._message.GetEnd() - values);
    if (char* const at = size == 0 ? nullptr : _Take(size))
        std::memcpy(at, values, size);
}

void nxLogStatement::_PutGroupOf(const nxLog& record) noexcept
{
    if (char* const at = _Take(record._GetGroupSize()))
        record._WriteGroup(at);
}
