// SPDX-License-Identifier: Apache-2.0
#include "Passage.h"

#include "CsvHeader.h"
#include "Failure.h"

namespace nxtick
{
void Passage::HandOver()
{
    _output.Append(_text.GetText());
    _text.Clear();
}

std::size_t Passage::_Read(char* buffer, std::size_t size)
{
    if (_input.WouldWait())
    {
        HandOver();
        _output.Flush();
        _report.Flush();
    }
    if (_counts != nullptr)
        _report.Progress(*_counts, _input.GetShareRead());
    const std::size_t count = _input.Read(buffer, size);
    if (_isAtStart)
        if (const std::string conversion = GetConversion({buffer, count}); !conversion.empty())
            throw FileFailure("1: " + conversion);
    _isAtStart = false;
    return count;
}
}  // namespace nxtick
