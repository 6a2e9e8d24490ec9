#ifndef CORE_LOG_INTERNAL_NXLOGTIMETEXT_H
#define CORE_LOG_INTERNAL_NXLOGTIMETEXT_H

#include <cstddef>
#include <cstring>

#include "core/platform/inline/nxClock.h"
#include "core/time/internal/nxFractionText.h"
#include "core/time/nxTimeStamp.h"

/// The times of records as lines show them, one after the other. While the second stays the same, only its fraction is
/// renewed.
///
/// Errors: no text for a moment that nxTimeStamp has none for. Threads: none.
class nxLogTimeText
{
public:
    static constexpr std::size_t Size = nxTimeStamp::TextSize - 1;  ///< Of every text that is not empty.

    /// Shows @p time. @return whether more than the fraction of the second may have changed.
    bool Set(const nxClockTime& time) noexcept
    {
        if (time.seconds != _second || !_isText || time.nanoseconds >= 1'000'000'000) [[unlikely]]
        {
            _SetAnew(time);
            return true;
        }
        nxFractionText::Write(_text + Size - nxFractionText::Size, time.nanoseconds);
        return false;
    }

    /// The zone of the process may have changed: asks for it again.
    void Forget() noexcept { _isText = false; }

    /// Size bytes, be they a text or not.
    const char* GetBytes() const { return _text; }
    bool IsEmpty() const { return !_isText; }

private:
    void _SetAnew(const nxClockTime& time) noexcept
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
