// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXVOLUMECONVERTER_H
#define CORE_PRICE_NXVOLUMECONVERTER_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"
#include "core/text/nxValueWrapper.h"

struct nxVolumeNumber;

/// Turns the units of a volume, which an exchange sends, into the quantity that books hold and people read, and back.
///
/// Exchanges send lots, contracts or 10^-n coins as whole numbers. Books hold shares, megawatt hours or coins. This class is
/// for instruments whose units are the quantity; a derived class says otherwise:
/// - nxLotVolumeConverter: a unit is a lot, of 100 shares perhaps.
/// - nxScaledVolumeConverter: a unit is 10^-n of the quantity.
/// - nxAbbreviatedVolumeConverter: texts for screens, "1.5M", in front of one of the others.
/// @code
/// const nxLotVolumeConverter lots(100);              // 100 shares a lot
/// nxVolumeConverter::Units units;                    // null
/// nxErrorEnum error = lots.GetAsUnits(nxDecimal(300, 0), units);   // 3
/// error = lots.GetAsUnits(nxDecimal(250, 0), units);               // NX_ERR_NO_MATCH; still 3
/// std::string text = lots.GetAsString(units, '.');                 // "300"
/// @endcode
///
/// - Exact or refused: nothing is rounded, and no remainder is dropped. A text is the quantity, with the places of one unit;
///   it reads back as the same units, if these are within the limits of order entry.
/// - Null and no change pass through and succeed. Their text is empty, their log form "NULL" or "NO_CHANGE".
/// - Zero is always allowed, because the rest of an order that has been filled is zero. Other quantities that become units
///   are within the limits of the converter; units that arrive are converted whatever the limits.
/// - Errors: NX_ERR_INVALID_PARAMETER for a text of another form; NX_ERR_NO_MATCH for a quantity that is no whole number of
///   units; NX_ERR_VALUE_OUT_OF_RANGE for one that is negative, outside the limits or does not fit; NX_ERR_NOT_INITIALISED by
///   a converter that is not valid. A quantity that is negative, or whose digits need more than 128 bits, is out of range
///   whether it is a multiple or not. The target keeps its value on failure.
/// - Threads: immutable, so any number of threads may share one.
/// - Ownership: owns nothing, and no operation allocates memory but for the string that it returns or appends to.
class NX_CORE_API nxVolumeConverter
{
public:
    typedef nxValueWrapper<unsigned long long> Units;  ///< What the wire carries; null, no change.
    typedef nxValueWrapper<unsigned int> Volume;       ///< The same in 32 bits, as options of the command line have it.

    /// Bytes that the longest text needs, terminator included.
    static constexpr std::size_t MaxTextSize = 64;

    nxVolumeConverter() = default;  ///< Units and quantity are the same number.
    nxVolumeConverter(const nxVolumeConverter&) = delete;
    nxVolumeConverter& operator=(const nxVolumeConverter&) = delete;

    /// @return NX_ERR_VALUE_OUT_OF_RANGE when no nxDecimal holds the quantity.
    [[nodiscard]] virtual nxErrorEnum GetAsQuantity(const Units& units, nxDecimal& quantity) const;
    /// The same for a volume of 32 bits. The texts below take `Units(volume)`, which keeps null and no change.
    template <std::same_as<unsigned int> Number>
    [[nodiscard]] nxErrorEnum GetAsQuantity(const nxValueWrapper<Number>& volume, nxDecimal& quantity) const
    {
        return GetAsQuantity(Units(volume), quantity);
    }

    /// @return NX_ERR_NO_MATCH or NX_ERR_VALUE_OUT_OF_RANGE, see the class.
    [[nodiscard]] virtual nxErrorEnum GetAsUnits(const nxDecimal& quantity, Units& units) const;
    /// The same for a volume of 32 bits; a number that is one of its two marks is out of range.
    [[nodiscard]] nxErrorEnum GetAsUnits(const nxDecimal& quantity, Volume& volume) const
    {
        Units units;
        const nxErrorEnum error = GetAsUnits(quantity, units);
        return error.IsOK() ? _Narrow(units, volume) : error;
    }

    /// Reads a quantity; all of @p text has to belong to it. Digits are read as by nxDecimal::SetFromString(), a sign, ".5"
    /// and "5." included.
    /// @param separator between the digits of decimals.
    [[nodiscard]] virtual nxErrorEnum SetFromStringView(std::string_view text, Units& units, char separator) const;
    /// The same.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, Units& units, char separator) const
    {
        return SetFromStringView(text, units, separator);
    }
    /// The same for a volume of 32 bits; a number that is one of its two marks is out of range.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, Volume& volume, char separator) const
    {
        Units units;
        const nxErrorEnum error = SetFromStringView(text, units, separator);
        return error.IsOK() ? _Narrow(units, volume) : error;
    }

    /// Fills @p buffer, MaxTextSize bytes, with the text of the quantity and a terminator. Of a converter that is not valid
    /// it is the number of units. @return the length of the text.
    virtual std::size_t GetAsString(char* buffer, const Units& units, char separator) const;
    std::string GetAsString(const Units& units, char separator) const;  ///< @return the text of the quantity.
    /// Appends the text of the quantity.
    void AppendAsString(std::string& text, const Units& units, char separator) const;
    std::string GetAsLogString(const Units& units, char separator) const;  ///< @return the log form.
    /// Appends the log form.
    void AppendAsLogString(std::string& text, const Units& units, char separator) const;

    /// @return false when the constructor was given values that are not possible.
    bool IsValid() const { return _isValid; }

    virtual ~nxVolumeConverter();

protected:
    /// @param isValid whether the arguments of the derived class are possible.
    explicit nxVolumeConverter(bool isValid) : _isValid(isValid) {}

private:
    friend class nxLotVolumeConverter;
    friend class nxScaledVolumeConverter;

    static nxErrorEnum _Narrow(const Units& units, Volume& volume)
    {
        if (units.IsValid() && units > Volume::NoChangeValue - 1)
            return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
        volume = Volume(units);
        return nxErrorEnum();
    }
    [[gnu::visibility("hidden")]] bool _CountUsual(std::uint64_t digits, std::size_t places, Units& units) const;
    [[gnu::visibility("hidden")]] nxErrorEnum _Count(const nxVolumeNumber& quantity, Units& units) const;
    [[gnu::visibility("hidden")]] nxVolumeNumber _GetQuantity(const Units& units) const;

    // A unit is _lotSize * 10^-_places. Only one of the two differs from 1, so that numbers fit 128 bits.
    unsigned long long _lotSize = 1;
    unsigned long long _minimum = 0;
    unsigned long long _maximum = Units::NoChangeValue - 1;
    unsigned char _places = 0;
    bool _isValid = true;
};

#endif
