// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_NXCURRENCY_H
#define CORE_NUMERIC_NXCURRENCY_H

#include <array>
#include <bit>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/text/nxInitalizers.h"

/// A nullable currency: three capital letters as in "USD".
///
/// - Value: any three capital letters. IsKnown() tells whether the list in force has them, and the list gives number, name
///   and minor units; see nxCurrencyList, which also tells how to replace it.
/// - Null: a default-constructed currency is null and comes before all others.
/// - Errors: an impossible currency is never held. The constructors make null of it; SetFromString() returns its error and
///   leaves the currency as it was.
/// - Threads: like an int. The list may be replaced meanwhile.
/// - Ownership: a value of 4 bytes that owns nothing; pass it by value.
/// @code
/// constexpr nxCurrency yen("JPY");
/// unsigned char places = 2;
/// if (yen.GetMinorUnits(places).IsOK())
///     std::cout << yen.GetName() << " has " << int{places} << " decimals";  // Yen has 0 decimals
/// @endcode
class NX_CORE_API nxCurrency
{
public:
    static constexpr std::size_t Size = 3;  ///< The letters of a currency.

    constexpr nxCurrency() = default;                   ///< Null.
    constexpr explicit nxCurrency(nxNullInitalizer) {}  ///< Null.
    /// Null when @p letters is not three capital letters.
    constexpr explicit nxCurrency(std::string_view letters)
    {
        if (letters.size() == Size && _IsLetter(letters[0]) && _IsLetter(letters[1]) && _IsLetter(letters[2]))
            _letters = {letters[0], letters[1], letters[2], '\0'};
    }
    /// The same; a null pointer is an empty text.
    constexpr explicit nxCurrency(const char* letters)
        : nxCurrency(letters != nullptr ? std::string_view(letters) : std::string_view())
    {
    }

    constexpr bool IsNull() const { return _letters[0] == '\0'; }  ///< There is no currency.
    constexpr bool IsValid() const { return !IsNull(); }           ///< There is a currency.
    constexpr void SetNull() { *this = nxCurrency(); }             ///< Becomes null.
    /// @return the three letters, or an empty text for null. Refers into this object.
    constexpr std::string_view GetLetters() const { return std::string_view(_letters.data(), IsNull() ? 0 : Size); }

    /// @return a number of its own for each currency, in the order of the currencies; 0 for null.
    constexpr std::uint32_t GetKey() const
    {
        const auto word = std::bit_cast<std::uint32_t>(_letters);
        return std::endian::native == std::endian::little ? __builtin_bswap32(word) : word;
    }

    /// @name What the list in force says
    /// @{
    bool IsKnown() const;  ///< The list has this currency.
    /// @return the number, such as 840 for "USD", 1 to 999; 0 when the currency is unknown or null.
    unsigned GetNumericCode() const;
    /// @return the English name in UTF-8; an empty text when the currency is unknown or null. The text lives as long as the
    ///         process, even when the list is replaced.
    std::string_view GetName() const;
    /// Gives the decimals of the smallest amount that exists: 0 for "JPY", 2 for "USD", 3 for "BHD".
    /// @return NX_ERR_NOT_FOUND when the currency is unknown or has no smallest amount, such as gold; NX_ERR_OBJECT_IS_NULL
    ///         for null. @p places is then unchanged.
    [[nodiscard]] nxErrorEnum GetMinorUnits(unsigned char& places) const;
    /// @}

    /// Reads three capital letters.
    /// @return NX_ERR_INVALID_PARAMETER for any other text; the currency is then unchanged.
    [[nodiscard]] nxErrorEnum SetFromString(const std::string& text);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] nxErrorEnum SetFromString(const char* text);

    /// @return the three letters, or an empty text for null.
    std::string GetAsString() const { return std::string(GetLetters()); }
    /// Appends what GetAsString() returns.
    void AppendAsString(std::string& out) const { out.append(GetLetters()); }
    /// @return the three letters, or "NULL".
    std::string GetAsLogString() const;
    /// Appends what GetAsLogString() returns.
    void AppendAsLogString(std::string& out) const;

    /// The same letters; null equals null.
    friend constexpr bool operator==(nxCurrency left, nxCurrency right) { return left.GetKey() == right.GetKey(); }
    /// In the order of the alphabet; null comes first.
    friend constexpr std::strong_ordering operator<=>(nxCurrency left, nxCurrency right)
    {
        return left.GetKey() <=> right.GetKey();
    }

private:
    static constexpr bool _IsLetter(char character) { return character >= 'A' && character <= 'Z'; }

    std::array<char, Size + 1> _letters = {};
};

static_assert(sizeof(nxCurrency) == 4);

/// Writes the log form.
NX_CORE_API std::ostream& operator<<(std::ostream& stream, nxCurrency currency);

/// Currencies can be keys of unordered containers.
template <>
struct std::hash<nxCurrency>
{
    /// Agrees with `==`.
    std::size_t operator()(nxCurrency currency) const noexcept
    {
        // An odd factor spreads the letters over all bits and keeps different currencies different.
        return static_cast<std::size_t>(currency.GetKey()) * 0x9E3779B97F4A7C15u;
    }
};

#endif
