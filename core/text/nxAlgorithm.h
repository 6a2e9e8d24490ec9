// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_NXALGORITHM_H
#define CORE_TEXT_NXALGORITHM_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

class nxByteArray;
class nxCaseSensitivityEnum;

/// Bytes as hexadecimal text and back, and the search for the intended word of a mistyped one.
///
/// - Static operations only; no state. Digits are written in upper case, the high half of a byte first, without
///   separators.
/// - Errors: only SetFromHex() fails, with NX_ERR_INVALID_PARAMETER.
/// - Threads: any thread, on objects of its own.
/// @code
/// std::string text;
/// nxAlgorithm::GetAsHex(std::vector<unsigned char>{0xBE, 0x0F}, text);  // "BE0F"
/// unsigned char byte = 0;
/// if (nxAlgorithm::SetFromHex("0x7F", byte).IsOK())                     // 127
///     bytes.push_back(byte);
/// @endcode
class NX_CORE_API nxAlgorithm
{
public:
    nxAlgorithm() = delete;

    /// Reads one byte: one or two hexadecimal digits of either case, alone or after "0x". "0X" is no prefix.
    /// @return NX_ERR_INVALID_PARAMETER for any other text; @p value is then untouched.
    [[nodiscard]] static nxErrorEnum SetFromHex(const std::string_view& text, unsigned char& value);
    /// The same; a null pointer is an empty text.
    [[nodiscard]] static nxErrorEnum SetFromHex(const char* text, unsigned char& value)
    {
        return SetFromHex(text != nullptr ? std::string_view(text) : std::string_view(), value);
    }

    /// Appends two digits.
    static void AppendAsHex(const unsigned char& byte, std::string& out);
    /// Appends two digits for each byte.
    static void AppendAsHex(const std::vector<unsigned char>& bytes, std::string& out);
    /// @copydoc AppendAsHex(const std::vector<unsigned char>&, std::string&)
    static void AppendAsHex(const nxByteArray& bytes, std::string& out);
    /// Replaces @p out by two digits for each byte.
    static void GetAsHex(const std::vector<unsigned char>& bytes, std::string& out);
    /// @copydoc GetAsHex(const std::vector<unsigned char>&, std::string&)
    static void GetAsHex(const nxByteArray& bytes, std::string& out);
    /// @return exactly four digits: 255 is "00FF".
    static std::string GetAsHex(const unsigned short& value);

    /// Finds the one candidate that @p text means. The first rule that any candidate satisfies decides:
    /// -# it equals the text, byte by byte;
    /// -# it equals the text without regard to case, when @p sensitivity is CASE_INSENSITIVE;
    /// -# it begins with the text, which is not empty;
    /// -# it has the smallest edit distance from the text (see GetEditDistance()), which is @p maximumDistance at most;
    ///    0 turns this rule off.
    ///
    /// Case counts in the last two rules only when @p sensitivity is CASE_SENSITIVE.
    /// @param candidates the possible words.
    /// @param text the typed text; any length, any bytes.
    /// @param sensitivity whether case counts; undefined is as CASE_INSENSITIVE.
    /// @param maximumDistance insertions, deletions and replacements that the last rule forgives.
    /// @param[out] match the candidate found; untouched when there is none.
    /// @return false when no rule finds a candidate, or when the rule that decides finds more than one.
    static bool GetBestMatch(const std::set<std::string>& candidates, const std::string& text,
                             const nxCaseSensitivityEnum& sensitivity, unsigned int maximumDistance,
                             std::string& match);

    /// @return the number of single characters that must be inserted, removed or replaced to turn one text into the other,
    ///         or @p maximum + 1 when there are more than @p maximum. Takes time in proportion to the shorter text times the
    ///         smaller of @p maximum and the longer text.
    static unsigned long long GetEditDistance(std::string_view a, std::string_view b, unsigned int maximum,
                                              const nxCaseSensitivityEnum& sensitivity);

    /// Finds the candidates that a mistyped text may mean, for a "did you mean" in a message. Case does not count.
    /// @return at most three, the nearest by edit distance first and equally near ones in their order; none that is more than
    ///         one character further away than the first. A candidate is near when a third of the text differs at most, or
    ///         two characters of a short text, but never all of it. Nothing is near a text of more than 100 bytes.
    static std::vector<std::string> GetNearMatches(const std::set<std::string>& candidates, const std::string& text);
};

#endif
