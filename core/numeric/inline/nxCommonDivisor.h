// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXCOMMONDIVISOR_H
#define CORE_NUMERIC_INLINE_NXCOMMONDIVISOR_H

#include <algorithm>
#include <bit>
#include <cstdint>

/// The greatest common divisor of two numbers, step by step, so that two can be calculated side by side: each step waits for
/// the one before it, and a processor has room for another calculation meanwhile.
///
/// Threads and ownership: functions of their arguments.
class nxCommonDivisor
{
public:
    /// @return the greatest common divisor; the other number when one is 0.
    static constexpr std::uint64_t Get(std::uint64_t a, std::uint64_t b)
    {
        if (a == 0 || b == 0)
            return a | b;
        nxCommonDivisor divisor(a, b);
        while (!divisor._IsFound())
            divisor._Step();
        return divisor._GetFound();
    }
    /// Calculates those of two pairs. @pre No number is 0.
    static constexpr void GetTwo(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d,
                                 std::uint64_t& ofAB, std::uint64_t& ofCD)
    {
        nxCommonDivisor first(a, b), second(c, d);
        while (!first._IsFound() && !second._IsFound())
        {
            first._Step();
            second._Step();
        }
        while (!first._IsFound())
            first._Step();
        while (!second._IsFound())
            second._Step();
        ofAB = first._GetFound();
        ofCD = second._GetFound();
    }

private:
    constexpr nxCommonDivisor(std::uint64_t a, std::uint64_t b)
        : _twos(std::countr_zero(a | b)), _a(a >> std::countr_zero(a)), _b(b >> std::countr_zero(b))
    {
    }
    constexpr bool _IsFound() const { return _a == _b; }
    constexpr std::uint64_t _GetFound() const { return _a << _twos; }
    // Both are odd. Their difference is even and has the same divisors; what it has of twos is none of the divisor's. Without
    // branches on which of the two is larger, because that is unpredictable.
    constexpr void _Step()
    {
        const std::uint64_t difference = _a - _b;
        const std::uint64_t isLess = 0 - std::uint64_t{_a < _b};
        _b += difference & isLess;  // the smaller one
        _a = ((difference ^ isLess) - isLess) >> std::countr_zero(difference);
    }

    int _twos;
    std::uint64_t _a, _b;
};

#endif
