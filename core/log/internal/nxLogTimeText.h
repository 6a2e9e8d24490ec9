// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGTIMETEXT_H
#define CORE_LOG_INTERNAL_NXLOGTIMETEXT_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxNanoseconds.h"
#include "core/time/internal/nxFractionText.h"
#include "core/time/nxTimeStamp.h"

/// The times of records as lines show them, one after the other. While the second stays the same, only its fraction is
/// written.
///
/// Invariant: the text is that of the time that was set last, or empty.
///
/// Errors: the text is empty where nxTimeStamp has none. Threads: none.
class nxLogTimeText
{
public:
    static constexpr std::size_t Size = nxTimeStamp::TextSize - 1;  ///< Of every text that is not empty.

    /// Shows @p time. @return whether more than the fraction of the second may have changed.
    bool Set(const nxClockTime& time) noexcept
    {
        if (time.seconds != _second || !_isText || time.nanoseconds >= nxNanoseconds::PerSecond) [[unlikely]]
        {
            _SetWhole(time);
            return true;
        }
        nxFractionText::Write(_text + Size - nxFractionText::Size, time.nanoseconds);
        return false;
    }

    /// The local zone may have changed: the next Set() asks for it.
    void Forget() noexcept { _isText = false; }

    /// Size bytes: the text, or zeros where it is empty.
    const char* GetBytes() const { return _text; }
    bool IsEmpty() const { return !_isText; }
    std::string_view Get() const { return {_text, _isText ? Size : 0}; }

private:
    void _SetWhole(const nxClockTime& time) noexcept
    {
        const unsigned written = nxTimeStamp(time.seconds, time.nanoseconds).GetAsStringFast(_text, sizeof _text);
        _isText = written != 0;
        if (!_isText)
            std::memset(_text, 0, sizeof _text);
        _second = time.seconds;
    }

    long long _second = 0;
    bool _isText = false;
    char _text[nxTimeStamp::TextSize] = {};
};

#endif
