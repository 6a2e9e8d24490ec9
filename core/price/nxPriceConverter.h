// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_NXPRICECONVERTER_H
#define CORE_PRICE_NXPRICECONVERTER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/nxExport.h"

/// How the prices of one instrument are written for people: decimals, 32nds, or 32nds that are divided again.
///
/// Books and wires hold 110.515625; a trader of bonds sees and types 110'165. The digits alone do not tell the price: they
/// mean 16.5 32nds in one notation and 16 5/8 32nds in another. A converter reads and writes one notation. Take it from
/// nxPriceConverterHelper by the notation's text, or make one of the derived classes.
/// @code
/// const nxPriceConverter* quarters = nxPriceConverterHelper::Get("MODIFIED:32/4");   // quarters of 32nds
/// nxDecimal price;
/// if (quarters->SetFromString("110'165", price, '.').IsOK())             // 110.5156250, as nxDecimal
///     price += quarters->GetTickIncrement();                             // one quarter of a 32nd more
/// std::string text = quarters->GetAsString(price, '.');                  // "110'167"
/// @endcode
///
/// - Grid: the multiples of GetTickIncrement(). A price on the grid has one canonical text, and different prices have
///   different texts; a notation in which two would be equal is not valid.
/// - Off the grid, as averages are, a price is still written exactly: see the derived classes. Nothing is ever rounded.
///   What is written reads back as the same number, if 64 bits hold it at the notation's places.
/// - Places: a price that is read has the places that the grid needs, 5 for 32nds and 7 for quarters of them, and more only
///   when its text is off the grid. Comparisons of such prices are exact integer operations.
/// - Signs: a '-' in front negates the whole number, its fraction included. A '+' in front is read and never written.
/// - Null: a price without a value is written as an empty text, and in log forms as "NULL" or "NO_CHANGE".
/// - More than 18 decimal places, after zeros at the end are dropped, are not converted: such a price is written as nxDecimal
///   writes it. So is every price by a converter that is not valid.
/// - Errors: returned, never thrown; a price keeps its value on failure.
/// - Threads: immutable, so any number of threads may share one.
/// - Ownership: owns its notation and small tables. No operation allocates memory but for the string that it returns or appends
///   to.
class NX_CORE_API nxPriceConverter
{
public:
    /// Bytes that the longest text needs, terminator included.
    static constexpr std::size_t MaxTextSize = 64;

    nxPriceConverter(const nxPriceConverter&) = delete;
    nxPriceConverter& operator=(const nxPriceConverter&) = delete;

    /// Reads a price; all of @p text has to belong to it.
    /// @param separator between the digits of decimals.
    /// @return NX_ERR_INVALID_PARAMETER for a text of another form or with a digit too many or too few,
    ///         NX_ERR_VALUE_OUT_OF_RANGE when the form is right, but the fraction does not exist or 64 bits do not hold the
    ///         price, NX_ERR_NOT_INITIALISED when the converter is not valid.
    [[nodiscard]] virtual nxErrorEnum SetFromStringView(std::string_view text, nxDecimal& price,
                                                        char separator) const = 0;
    /// The same.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text, nxDecimal& price, char separator) const
    {
        return SetFromStringView(text, price, separator);
    }

    /// Fills @p buffer, MaxTextSize bytes, with the text of the price and a terminator; @return the length of the text.
    virtual std::size_t GetAsString(char* buffer, const nxDecimal& price, char separator) const = 0;
    std::string GetAsString(const nxDecimal& price, char separator) const;  ///< @return the text of the price.
    /// Appends the text of the price.
    void AppendAsString(std::string& text, const nxDecimal& price, char separator) const;
    std::string GetAsLogString(const nxDecimal& price, char separator) const;  ///< @return the log form.
    /// Appends the log form.
    void AppendAsLogString(std::string& text, const nxDecimal& price, char separator) const;

    /// @return the smallest step that the canonical texts tell apart, 0.0078125 for quarters of 32nds; a null decimal when
    ///         the converter is not valid. An nxPriceManipulator takes it as its fixed tick.
    virtual nxDecimal GetTickIncrement() const = 0;
    /// @return whether the price is a multiple of GetTickIncrement(); false for one without a value.
    bool IsOnGrid(const nxDecimal& price) const;
    /// @return false when the constructor was given a notation that does not exist.
    bool IsValid() const { return !_notation.empty(); }
    /// @return the name of the notation, "MODIFIED:32/4", from which nxPriceConverterHelper makes an equal converter; empty
    ///         when the converter is not valid.
    const std::string& GetNotation() const { return _notation; }

    virtual ~nxPriceConverter();

protected:
    /// @param notation empty makes a converter that is not valid.
    explicit nxPriceConverter(std::string notation) : _notation(std::move(notation)) {}

private:
    std::string _notation;
};

#endif
