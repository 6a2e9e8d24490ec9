// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxPrintableText.h"

#include "tests/support/nxTest.h"

TEST(nxPrintableText, HidesWhatEndsALineOrSteersATerminalAndNothingElse)
{
    // text, how it is escaped, and the size of what is hidden at its start
    const std::tuple<const char*, const char*, std::size_t> rows[] = {
        {"plain", "plain", 0},
        {"\x1B[2J", "\\x1B[2J", 1},
        {"\ttab", "\\x09tab", 1},
        {"\x7F", "\\x7F", 1},
        {"\xC2\x85next", "\\xC2\\x85next", 2},  // a line end of ISO 6429
        {"\xC2\xA0", "\xC2\xA0", 0},            // just above its controls
        {"\x9B[m", "\\x9B[m", 1},               // a control that is no UTF-8
        {"\xE9t\xE9", "\\xE9t\\xE9", 0},        // Latin-1: no UTF-8, harmless in a line
        {"f\xC3\xBCr \xE6\x97\xA5 \xF0\x9F\x98\x80", "f\xC3\xBCr \xE6\x97\xA5 \xF0\x9F\x98\x80", 0},
        {"\xE2\x80\xA7\xE2\x80\xA8", "\xE2\x80\xA7\\xE2\\x80\\xA8", 0},
        {"\xE2\x80\xAE", "\\xE2\\x80\\xAE", 3},
        {"\xE2\x80\xAF\xE2\x81\xA5", "\xE2\x80\xAF\xE2\x81\xA5", 0},
        {"\xE2\x81\xA6\xE2\x81\xA9\xE2\x81\xAA", "\\xE2\\x81\\xA6\\xE2\\x81\\xA9\xE2\x81\xAA", 3},
        {"\xE2\x80", "\\xE2\\x80", 0},           // torn
        {"\xED\xA0\x80", "\\xED\\xA0\\x80", 0},  // a surrogate
        {"\xC0\x8A", "\\xC0\\x8A", 0},           // an overlong line feed
    };
    for (const auto& [text, escaped, hidden] : rows)
    {
        EXPECT_EQ(nxPrintableText::GetEscaped(text), escaped);
        EXPECT_EQ(nxPrintableText::GetHiddenSize(text), hidden) << escaped;
    }
    EXPECT_EQ(nxPrintableText::GetEscaped(std::string_view("\0", 1)), "\\x00");
}

TEST(nxPrintableText, QuotesAndCutsBetweenCharacters)
{
    EXPECT_EQ(nxPrintableText::GetQuoted(""), "''");
    EXPECT_EQ(nxPrintableText::GetQuoted("abc", 3), "'abc'");
    EXPECT_EQ(nxPrintableText::GetQuoted("ab\xC3\xBC", 3), "'ab...'");
    EXPECT_EQ(nxPrintableText::GetQuoted("\x1B\x1B", 1), "'\\x1B...'");
}
