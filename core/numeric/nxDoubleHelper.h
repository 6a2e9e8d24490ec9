#ifndef CORE_NUMERIC_NXDOUBLEHELPER_H
#define CORE_NUMERIC_NXDOUBLEHELPER_H

/// The one way from a double to an integer.
///
/// The language leaves the conversion of a number that does not fit undefined, and compilers make different things of
/// it at run time and when they fold constants; everything in the library goes through here instead.
class nxDoubleHelper
{
public:
    /// @return @p value without its fraction (truncated toward zero), or the most negative integer when no 64-bit
    ///         integer can hold it: NaN, the infinities, and everything from 2^63 up and below -2^63.
    static constexpr long long ToInteger(double value)
    {
        // NaN fails the comparisons; -2^63 itself converts to what the failure gives.
        if (value > -9223372036854775808.0 && value < 9223372036854775808.0) [[likely]]
            return static_cast<long long>(value);
        return -9223372036854775807LL - 1;
    }
};

#endif
