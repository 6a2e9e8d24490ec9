// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TEXT_NXDOUBLETEXTORACLE_H
#define TESTS_TEXT_NXDOUBLETEXTORACLE_H

#include <algorithm>
#include <cerrno>
#include <cfenv>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

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

    /// The nearest double, if it keeps the digits: printed by the C library with as many, or in the shortest form, it has
    /// the same ones. Needs a thread that rounds to the nearest.
    static std::errc ReadExact(std::string text, char separator, double& value)
    {
        double unused = 0;
        if (separator == '-' || (separator >= '0' && separator <= '9') || !Read(text, separator, unused))
            return std::errc::invalid_argument;
        std::replace(text.begin(), text.end(), separator, '.');
        double nearest = 0;
        const std::errc error = _ReadNearest(text, nearest);
        const auto significant = [](std::string number)
        {
            number.erase(std::min(number.find('e'), number.size()));
            std::erase_if(number, [](char c) { return c == '-' || c == '.'; });
            number.erase(0, number.find_first_not_of('0'));
            return number.erase(number.find_last_not_of('0') + 1);
        };
        const std::string digits = significant(text);
        if (error != std::errc() || digits.size() > 800)
            return std::errc::result_out_of_range;
        char asMany[820], shortest[32];
        std::snprintf(asMany, sizeof asMany, "%.*e", static_cast<int>(std::max<std::size_t>(digits.size(), 1)) - 1,
                      nearest);
        *std::to_chars(shortest, shortest + 31, nearest, std::chars_format::scientific).ptr = '\0';
        if (significant(asMany) != digits && significant(shortest) != digits)
            return std::errc::result_out_of_range;
        value = nearest;
        return {};
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

private:
    // The nearest double to an ordinary decimal; an error beyond the largest and below the smallest.
    static std::errc _ReadNearest(const std::string& text, double& nearest)
    {
#ifdef __cpp_lib_to_chars
        return std::from_chars(text.data(), text.data() + text.size(), nearest, std::chars_format::fixed).ec;
#else  // libc++ 14 reads no doubles
        errno = 0;
        nearest = std::strtod(text.c_str(), nullptr);
        return errno == ERANGE && (nearest == 0 || std::isinf(nearest)) ? std::errc::result_out_of_range : std::errc();
#endif
    }
};

#endif
