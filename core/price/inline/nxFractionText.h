// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PRICE_INLINE_NXFRACTIONTEXT_H
#define CORE_PRICE_INLINE_NXFRACTIONTEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/numeric/nxDecimal.h"
#include "core/price/inline/nxReciprocal.h"

/// How prices with a fraction are read and written: a whole number, a mark, a numerator of full width and, where the fraction
/// is divided again, the digits of its part. The converters of fractions are made of one.
///
/// Three words: the fraction is 1 / denominator, a part is 1 / parts of a fraction, and a step is one part as a share of a
/// whole, 1 / (denominator * parts). Without a division there is one part, and it has no digits.
/// - Range: denominators and numbers of parts are products of twos and fives, so that every step is a finite decimal, and
///   their product is MaxSteps at most.
/// - Threads and ownership: immutable; owns its texts.
class nxFractionText
{
public:
    static constexpr unsigned MaxSteps = 1024;    ///< The largest number of steps of a whole.
    static constexpr unsigned MaxPartDigits = 2;  ///< The largest number of digits of a part.

    /// How the part is written.
    enum class Digits : unsigned char
    {
        None,     ///< there is one part
        Cut,      ///< as a decimal fraction, cut to the number of digits: 0 2 5 7 for quarters
        Numerals  ///< as the number of parts, half of them as '+'
    };

    /// @param partDigits 0 for Digits::None.
    nxFractionText(unsigned denominator, unsigned parts, unsigned char partDigits, Digits digits, char mark);

    /// @return whether each step has a text of its own.
    bool IsValid() const { return _unit != 0; }
    /// @return one step; a null decimal unless valid.
    nxDecimal GetStep() const;

    /// Reads with the errors of nxPriceConverter::SetFromStringView(). Its body is in internal/nxFractionTextQuick.h.
    [[nodiscard]] nxErrorEnum Read(std::string_view text, nxDecimal& price, char separator) const;
    /// Writes a price, as nxPriceConverter::GetAsString() does.
    std::size_t Write(char* buffer, const nxDecimal& price, char separator) const;

private:
    // The pieces of a text, whose form is right.
    struct _Pieces
    {
        std::string_view whole;
        std::string_view numerator;
        std::string_view part;      // empty, digits or '+'
        std::string_view decimals;  // of the numerator
    };

    // Texts of up to eight characters with one number of digits after the mark, as digit words.
    struct _Form
    {
        std::uint64_t markMask = 0;    // of the mark's byte
        std::uint64_t mark = 1;        // in that byte; 1 is never there
        std::uint64_t beforeMark = 0;  // of the bytes before it
        std::uint64_t tens = 1;        // the power of the number of digits
        nxReciprocal byTens;
        std::uint64_t missingTens = 1;  // the power of the number of digits that are left out
        std::size_t count = 0;          // of the digits
    };

    static constexpr unsigned _mostPartTexts = 100;
    static constexpr unsigned char _noPart = UINT8_MAX;
    static constexpr std::uint16_t _noStep = UINT16_MAX;
    static constexpr std::size_t _mostQuickDigits = 4;  // after the mark
    static constexpr std::size_t _stepTextSize = 8;

    bool _MakeUnit();
    bool _MakeParts();
    _Form _MakeForm(std::size_t count) const;
    void _MakeQuickForms();
    void _MakeStepTexts();
    std::uint32_t _GetPartDigits(std::uint32_t part) const;
    bool _Split(std::string_view text, char separator, _Pieces& pieces) const;
    bool _IsPart(std::string_view text) const;
    bool _FindPart(std::string_view text, std::uint32_t& part) const;
    nxErrorEnum _ReadSlowly(std::string_view text, nxDecimal& price, char separator) const;
    bool _GetFraction(const _Pieces& pieces, std::uint64_t& fraction, unsigned char& places) const;
    bool _ReadQuickly(std::string_view text, nxDecimal& price) const;
    bool _SplitQuickly(const nxDecimal& price, std::uint64_t& whole, std::uint64_t& steps) const;
    std::size_t _WriteSlowly(char* buffer, const nxDecimal& price, char separator) const;
    char* _WriteSteps(char* out, std::uint64_t steps) const;
    char* _WriteDecimals(char* out, std::uint64_t fraction, unsigned char places, char separator) const;

    std::uint32_t _denominator;
    std::uint32_t _parts;
    std::uint32_t _unit = 0;       // one step in units of 10^-_places; 0 unless valid
    std::uint32_t _partPower = 1;  // 10^_partDigits
    std::uint64_t _power = 1;      // 10^_places
    nxReciprocal _byUnit;
    nxReciprocal _bySteps;  // of a whole
    _Form _full;
    _Form _short;                     // without the digits of the part
    std::uint64_t _half = '+' ^ '0';  // what a '+' at the end stands for: a digit, or itself
    unsigned char _places = 0;        // that a step needs
    unsigned char _width = 0;         // of the numerator
    unsigned char _partDigits;
    Digits _digits;
    char _mark;
    unsigned char _partOf[_mostPartTexts] = {};  // by the number that its digits spell; _noPart where there is none
    std::vector<std::uint16_t> _stepOf;          // by the number that the digits after the mark spell
    std::string _stepTexts;                      // of each step: mark, digits, zeros, and in the last byte the length
};

#endif
