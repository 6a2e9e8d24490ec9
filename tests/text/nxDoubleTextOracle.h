#ifndef TESTS_TEXT_NXDOUBLETEXTORACLE_H
#define TESTS_TEXT_NXDOUBLETEXTORACLE_H

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdio>
#include <string>

/// The rules for the texts of doubles, written again one step at a time. nxStringHelper is compared with them.
struct nxDoubleTextOracle
{
    /// False, with nothing stored, when @p text is no number.
    static bool Read(const std::string& text, char separator, double& value)
    {
        const bool negative = !text.empty() && text[0] == '-';
        double mantissa = 0;
        double divisor = 1;
        bool inFraction = false;
        bool anyDigit = false;
        for (std::size_t i = negative ? 1 : 0; i < text.size(); ++i)
        {
            if (text[i] == separator && !inFraction)
                inFraction = true;
            else if (text[i] == separator || text[i] < '0' || text[i] > '9')
                return false;
            else
            {
                anyDigit = true;
                mantissa = mantissa * 10 + (text[i] - '0');
                divisor = inFraction ? divisor * 10 : divisor;
            }
        }
        if (anyDigit)
            value = negative ? -(mantissa / divisor) : mantissa / divisor;
        return anyDigit;
    }

    /// With the digits made by the C library.
    static std::string Print(double value, unsigned decimals)
    {
        char buffer[64];
        const double magnitude = std::fabs(value);
        if (!(magnitude <= 2147483647.0))
        {
            // Always to the nearest. The C library rounds in the direction of the thread.
            const int direction = std::fegetround();
            std::fesetround(FE_TONEAREST);
            std::snprintf(buffer, sizeof buffer, "%e", value);
            std::fesetround(direction);
            return buffer;
        }
        decimals = std::min(decimals, 9U);
        const std::string sign = value < 0 ? "-" : "";
        long long whole = static_cast<long long>(magnitude);
        const double fraction = magnitude - static_cast<double>(whole);
        if (decimals == 0)
        {
            if (fraction > 0.5 || (fraction == 0.5 && whole % 2 != 0))
                ++whole;
            return sign + std::to_string(whole);
        }
        double power = 1;
        for (unsigned place = 0; place < decimals; ++place)
            power *= 10;
        const double scaled = fraction * power;
        long long digits = static_cast<long long>(scaled);
        const double rest = scaled - static_cast<double>(digits);
        if (rest > 0.5 || (rest == 0.5 && (digits == 0 || digits % 2 != 0)))
            ++digits;
        if (static_cast<double>(digits) >= power)
        {
            ++whole;
            digits = 0;
        }
        std::snprintf(buffer, sizeof buffer, ".%0*lld", static_cast<int>(decimals), digits);
        std::string text = buffer;
        text.erase(text.find_last_not_of('0') + 1);
        return sign + std::to_string(whole) + (text == "." ? "" : text);
    }
};

#endif
