// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_INTERNAL_NXTIMETEXT_H
#define CORE_TIME_INTERNAL_NXTIMETEXT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/text/inline/nxDigits.h"

/// The parts that the texts of days, times of day, date-times and spans have in common. Threads: no state.
class nxTimeText
{
public:
    nxTimeText() = delete;

    static constexpr std::size_t DateSize = 10;     ///< Characters of a day, "2024-03-05".
    static constexpr std::size_t MaxTimeSize = 18;  ///< Characters of a time of day with nine decimals.

    /// The fields of a time of day.
    struct Time
    {
        unsigned hours = 0;
        unsigned minutes = 0;
        unsigned seconds = 0;
        unsigned nanoseconds = 0;
    };
    static constexpr Time NoTime{24, 0, 0, 0};  ///< Fields of which no nxTime can be made.

    /// Reads a text that must consist of digits, 1 to 9 of them.
    static bool ReadDigits(std::string_view digits, unsigned& value)
    {
        std::uint64_t number = 0;
        if (!nxDigits::Parse(digits.data(), digits.data() + digits.size(), number))
            return false;
        value = static_cast<unsigned>(number);
        return true;
    }

    /// Reads ".5" as 500,000,000 nanoseconds and an empty text as 0. There are at most nine digits.
    static bool ReadFraction(std::string_view text, unsigned& nanoseconds)
    {
        nanoseconds = 0;
        if (text.empty())
            return true;
        if (text.front() != '.' || text.size() > 10 || !ReadDigits(text.substr(1), nanoseconds))
            return false;
        for (std::size_t digits = text.size() - 1; digits < 9; ++digits)
            nanoseconds *= 10;
        return true;
    }

    /// Reads two digits each of hours, minutes and seconds, and possibly a fraction.
    /// @param text at least 2 * @p step + 2 characters. @param step from the begin of one field to the next.
    /// @return NoTime for another form. The fields need not be a time.
    static Time ReadFields(std::string_view text, std::size_t step)
    {
        Time time;
        const bool isRead = ReadDigits(text.substr(0, 2), time.hours) &&
                            ReadDigits(text.substr(step, 2), time.minutes) &&
                            ReadDigits(text.substr(2 * step, 2), time.seconds) &&
                            ReadFraction(text.substr(2 * step + 2), time.nanoseconds);
        return isRead ? time : NoTime;
    }
    /// Reads "09:07:03" with up to nine decimals. @return NoTime for another form. The fields need not be a time.
    static Time ReadTime(std::string_view text)
    {
        return text.size() >= 8 && text[2] == ':' && text[5] == ':' ? ReadFields(text, 3) : NoTime;
    }
    /// Reads "2024-03-05". @return the number 20240305, which need not be a day, or 0 for another form.
    static unsigned ReadDate(std::string_view text)
    {
        unsigned year = 0;
        unsigned month = 0;
        unsigned day = 0;
        const bool isRead = text.size() == DateSize && text[4] == '-' && text[7] == '-' &&
                            ReadDigits(text.substr(0, 4), year) && ReadDigits(text.substr(5, 2), month) &&
                            ReadDigits(text.substr(8, 2), day);
        return isRead ? year * 10000 + month * 100 + day : 0;
    }

    /// Writes "09:07:03" with as many groups of three decimals as are exact, MaxTimeSize characters at most.
    /// @return the end of the text.
    static char* WriteTime(char* out, const Time& time)
    {
        out = nxDigits::WriteFixed<2>(out, time.hours);
        *out++ = ':';
        out = nxDigits::WriteFixed<2>(out, time.minutes);
        *out++ = ':';
        out = nxDigits::WriteFixed<2>(out, time.seconds);
        return _WriteFraction(out, time.nanoseconds);
    }
    /// Writes "2024-03-05", DateSize characters. @param isoDate 20240305. @return the end of the text.
    static char* WriteDate(char* out, unsigned isoDate)
    {
        char digits[8];
        nxDigits::WriteFixed<8>(digits, isoDate);
        std::memcpy(out, digits, 4);
        out[4] = '-';
        std::memcpy(out + 5, digits + 4, 2);
        out[7] = '-';
        std::memcpy(out + 8, digits + 6, 2);
        return out + DateSize;
    }

private:
    // Writes the fraction as milliseconds, microseconds or nanoseconds: the shortest that is exact.
    static char* _WriteFraction(char* out, unsigned nanoseconds)
    {
        if (nanoseconds == 0)
            return out;
        *out++ = '.';
        out = nxDigits::WriteFixed<3>(out, nanoseconds / 1'000'000);
        if (nanoseconds % 1'000'000 != 0)
            out = nxDigits::WriteFixed<3>(out, nanoseconds / 1'000 % 1'000);
        if (nanoseconds % 1'000 != 0)
            out = nxDigits::WriteFixed<3>(out, nanoseconds % 1'000);
        return out;
    }
};

#endif
