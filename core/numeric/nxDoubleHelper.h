#ifndef CORE_NUMERIC_NXDOUBLEHELPER_H
#define CORE_NUMERIC_NXDOUBLEHELPER_H

#include <bit>
#include <cstdint>
#include <type_traits>

/// Arithmetic with doubles that comes out the same in every program, whatever switches it is compiled with.
///
/// The header's functions are inline, so that they are compiled with the switches of whoever includes it: -Ofast lets a
/// compiler regroup sums, multiply by reciprocals and forget NaN and the infinities, and a processor may fuse a product
/// with a sum. What depends on neither: one operation between two calls of Rounded(), and the bits of a number.
class nxDoubleHelper
{
public:
    /// @return @p value, as the double that it has been rounded to. No compiler sees where it came from or where it goes.
    static constexpr double Rounded(double value)
    {
        if (std::is_constant_evaluated())
            return value;
            // Volatile: what is not may be moved out of a loop, and a division by what does not change in the loop becomes
            // a multiplication.
#if defined(__GNUC__) && defined(__x86_64__)
        asm volatile("" : "+x"(value));
#elif defined(__GNUC__) && defined(__aarch64__)
        asm volatile("" : "+w"(value));
#elif defined(__GNUC__)
        asm volatile("" : "+m"(value));
#endif
        return value;
    }

    /// What ToInteger() makes of a number that no 64-bit integer can hold.
    static constexpr long long TooLarge = -9223372036854775807LL - 1;

    /// The one way from a double to an integer. The language leaves the conversion of a number that does not fit
    /// undefined, and compilers make different things of it at run time and when they fold constants.
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

    /// @return whether the operations of this thread are rounded to the nearest number, as they are unless it called
    ///         fesetround().
    static bool RoundsToNearest()
    {
#if defined(__GNUC__) && defined(__x86_64__)
        // To 1 and to 0; both go the same way in every other direction.
        int three, one;
        asm volatile("cvtsd2si %1, %0" : "=r"(three) : "m"(_threeQuarters));
        asm volatile("cvtsd2si %1, %0" : "=r"(one) : "m"(_oneQuarter));
        return three != one;
#else
        // Beyond 2^52 all doubles are integers. Three quarters and one quarter more are 1 more, unless each of them is
        // rounded up, or down.
        const double more = Rounded(Rounded(4503599627370496.0) + _threeQuarters);
        return std::bit_cast<std::uint64_t>(Rounded(more + _oneQuarter)) == 0x4330000000000001;
#endif
    }

private:
    // Hidden, so that code of shared libraries reaches them at once.
    [[gnu::visibility("hidden")]] static constexpr double _threeQuarters = 0.75;
    [[gnu::visibility("hidden")]] static constexpr double _oneQuarter = 0.25;

    // Without the sign: larger for larger numbers, and largest for what is none.
    static constexpr std::uint64_t _Magnitude(double value) { return std::bit_cast<std::uint64_t>(value) << 1; }
};

#endif
