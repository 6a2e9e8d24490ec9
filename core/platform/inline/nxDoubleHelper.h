// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_INLINE_NXDOUBLEHELPER_H
#define CORE_PLATFORM_INLINE_NXDOUBLEHELPER_H

#include <bit>
#include <cstdint>
#include <type_traits>

/// Arithmetic with doubles that gives the same results on every processor and with every switch of the compiler.
///
/// Inline functions are compiled with the switches of the including program: -Ofast lets a compiler regroup sums, multiply
/// by reciprocals and ignore NaN and the infinities, and a processor may fuse a product with a sum. Two things depend on
/// neither: one operation between two calls of Rounded(), and the bits of a number.
class nxDoubleHelper
{
public:
    /// @return @p value, rounded to a double. The compiler cannot see where it came from or where it goes.
    static constexpr double Rounded(double value)
    {
        if (std::is_constant_evaluated())
            return value;
            // Volatile, because otherwise the compiler could move it out of a loop and turn a division by a constant of the
            // loop into a multiplication.
#if defined(__GNUC__) && defined(__x86_64__)
        asm volatile("" : "+x"(value));
#elif defined(__GNUC__) && defined(__aarch64__)
        asm volatile("" : "+w"(value));
#elif defined(__GNUC__)
        asm volatile("" : "+m"(value));
#endif
        return value;
    }

    /// The result of ToInteger() for a number that no 64-bit integer can hold.
    static constexpr long long TooLarge = -9223372036854775807LL - 1;

    /// The library's only conversion of a double to an integer. The language leaves the conversion of a number that does
    /// not fit undefined, and compilers give different results at run time and when they fold constants.
    /// @return @p value without its fraction (truncated toward zero), or TooLarge: for NaN, the infinities, and everything
    ///         from 2^63 up and below -2^63.
    static constexpr long long ToInteger(double value)
    {
#if defined(__GNUC__) && defined(__x86_64__)
        if (!std::is_constant_evaluated())
        {
            long long integer;
            asm("cvttsd2si %1, %0" : "=r"(integer) : "x"(value));
            return integer;
        }
#endif
        constexpr std::uint64_t below63Bits = std::uint64_t{1023 + 63} << 53;
        return _Magnitude(value) < below63Bits ? static_cast<long long>(value) : TooLarge;
    }
    /// @return whether @p value is a number, neither NaN nor an infinity.
    static constexpr bool IsFinite(double value) { return _Magnitude(value) < std::uint64_t{0x7FF} << 53; }

    /// @return whether operations of this thread round to the nearest number, which is the default; fesetround() changes
    ///         it.
    static bool RoundsToNearest()
    {
#if defined(__GNUC__) && defined(__x86_64__)
        // Rounded to 1 and to 0; every other mode rounds both in the same direction.
        int three, one;
        asm volatile("cvtsd2si %1, %0" : "=r"(three) : "m"(_threeQuarters));
        asm volatile("cvtsd2si %1, %0" : "=r"(one) : "m"(_oneQuarter));
        return three != one;
#else
        // From 2^52 on all doubles are integers. Adding three quarters and then one quarter adds 1 in total, and another
        // sum when both are rounded up or both down.
        const double more = Rounded(Rounded(4503599627370496.0) + _threeQuarters);
        return std::bit_cast<std::uint64_t>(Rounded(more + _oneQuarter)) == 0x4330000000000001;
#endif
    }

private:
    // Hidden, so that code of shared libraries addresses them directly.
    [[gnu::visibility("hidden")]] static constexpr double _threeQuarters = 0.75;
    [[gnu::visibility("hidden")]] static constexpr double _oneQuarter = 0.25;

    // The bits without the sign: larger for larger numbers, and largest for NaN.
    static constexpr std::uint64_t _Magnitude(double value) { return std::bit_cast<std::uint64_t>(value) << 1; }
};

#endif
