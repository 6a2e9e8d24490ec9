// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxAlgorithm.h"

#include "core/nxCore.h"
#include "tests/support/nxTest.h"

namespace
{
const nxCaseSensitivityEnum caseSensitive(CASE_SENSITIVE);
const nxCaseSensitivityEnum caseInsensitive(CASE_INSENSITIVE);

// The textbook recursion over all prefixes, without any bound.
unsigned long long PlainDistance(const std::string& a, const std::string& b)
{
    std::vector<std::vector<unsigned long long>> table(a.size() + 1, std::vector<unsigned long long>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t j = 0; j <= b.size(); ++j)
            if (i == 0 || j == 0)
                table[i][j] = i + j;
            else
                table[i][j] = std::min(
                    {table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
    return table[a.size()][b.size()];
}
}  // namespace

TEST(nxAlgorithm, ReadsOneByteOfHexInFourForms)
{
    const std::pair<std::string, int> rows[] = {{"7", 7}, {"f", 15}, {"Ff", 255}, {"0xA", 10}, {"0x0A", 10}, {"00", 0}};
    unsigned char value = 42;
    for (const auto& [text, expected] : rows)
    {
        EXPECT_TRUE(nxAlgorithm::SetFromHex(text, value).IsOK()) << text;
        EXPECT_EQ(value, expected) << text;
    }
    value = 42;
    for (const std::string_view text : {"0X0A", "", "0x", "x", "1FF", "G1", "1G", "0x0x", "0x123", "-1", " 1", "xx12",
                                        "00x1", "\xFF", "@", "`", "0x1G"})
    {
        EXPECT_EQ(nxAlgorithm::SetFromHex(text, value), nxErrorEnum(NX_ERR_INVALID_PARAMETER)) << text;
        EXPECT_EQ(value, 42) << text;
    }
    EXPECT_FALSE(nxAlgorithm::SetFromHex(std::string_view("1\0", 2), value).IsOK());
}

TEST(nxAlgorithm, WritesHexInUpperCase)
{
    std::string text = ">";
    nxAlgorithm::AppendAsHex(static_cast<unsigned char>(0x0A), text);
    nxAlgorithm::AppendAsHex(std::vector<unsigned char>{0xBE, 0x00, 0xFF}, text);
    nxAlgorithm::AppendAsHex(std::vector<unsigned char>(), text);
    nxByteArray bytes;
    bytes.Append(0x1C);
    const unsigned char more[] = {0x2D, 0x3E};
    bytes.Append(more, sizeof more);
    nxAlgorithm::AppendAsHex(bytes, text);
    EXPECT_EQ(text, ">0ABE00FF1C2D3E");
    nxAlgorithm::GetAsHex(bytes, text);
    EXPECT_EQ(text, "1C2D3E");
    nxAlgorithm::GetAsHex(std::vector<unsigned char>{0x01}, text);
    EXPECT_EQ(text, "01");
    EXPECT_EQ(nxAlgorithm::GetAsHex(static_cast<unsigned short>(0xBEEF)), "BEEF");
    EXPECT_EQ(nxAlgorithm::GetAsHex(static_cast<unsigned short>(255)), "00FF");
    EXPECT_EQ(nxByteArray(more, sizeof more), nxByteArray(std::vector<unsigned char>{0x2D, 0x3E}));
}

TEST(nxAlgorithm, FindsTheOneCandidateThatWasMeant)
{
    const std::set<std::string> tables = {"VTT_CME", "VTT_CME_ES", "VTT_EUREX", "VTT_LIFFE",
                                          "vtt_cme", "Lse",        "LSE2",      "lsE2"};
    // No match is "".
    const std::tuple<const char*, nxCaseSensitivityEnum, unsigned, const char*> rows[] = {
        {"VTT_CME", caseInsensitive, 3, "VTT_CME"},  // exact wins over what differs in case and what is longer
        {"Vtt_Cme", caseInsensitive, 3, ""},         // two differ in case alone
        {"vtt_eurex", caseInsensitive, 0, "VTT_EUREX"},
        {"vtt_eurex", caseSensitive, 0, ""},
        {"VTT_E", caseSensitive, 0, "VTT_EUREX"},  // unique prefix
        {"vtt_l", caseInsensitive, 0, "VTT_LIFFE"},
        {"VTT_", caseSensitive, 9, ""},               // prefix of several, and that decides
        {"LSE", caseInsensitive, 0, "Lse"},           // equal but for case wins over prefixes
        {"VTT_LIFE", caseSensitive, 1, "VTT_LIFFE"},  // one letter short
        {"VTT_LIFE", caseSensitive, 0, ""},           // beyond the bound
        {"VVT_UREX", caseSensitive, 2, "VTT_EUREX"},
        {"VVT_UREX", caseSensitive, 1, ""},
        {"LSE3", caseInsensitive, 1, ""},        // three at the same distance
        {"", caseInsensitive, UINT_MAX, "Lse"},  // the shortest is nearest
        {"", caseInsensitive, 2, ""},
    };
    for (const auto& [text, sensitivity, distance, expected] : rows)
    {
        std::string match;
        EXPECT_EQ(nxAlgorithm::GetBestMatch(tables, text, sensitivity, distance, match), *expected != '\0') << text;
        EXPECT_EQ(match, expected) << text;
    }
    std::string match = "kept";
    EXPECT_FALSE(nxAlgorithm::GetBestMatch({}, "x", caseInsensitive, 9, match));
    EXPECT_EQ(match, "kept");
}

TEST(nxAlgorithm, BoundedDistanceAgreesWithTheUnboundedOne)
{
    std::mt19937 random(4);
    const auto text = [&random]
    {
        std::string s(random() % 9, 'a');
        for (char& c : s)
            c = static_cast<char>('a' + random() % 3);
        return s;
    };
    for (int i = 0; i < 20'000; ++i)
    {
        const std::string a = text();
        const std::string b = text();
        const unsigned long long distance = PlainDistance(a, b);
        for (const unsigned maximum : {0U, 1U, 2U, 4U, 20U, UINT_MAX})
            ASSERT_EQ(nxAlgorithm::GetEditDistance(a, b, maximum, caseSensitive), std::min(distance, 1ULL + maximum))
                << a << " and " << b << " up to " << maximum;
    }
    EXPECT_EQ(nxAlgorithm::GetEditDistance("ABC", "abd", 3, caseInsensitive), 1U);
}

TEST(nxVersionNumber, IsCompatibleWithinMajorAndMinor)
{
    const nxVersionNumber& version = nxVersionNumber::GetInstance();
    EXPECT_EQ(version.GetVersionNumber(), NX_CORE_VERSION);
    unsigned major = 0, minor = 0, sub = 0;
    version.GetMajorMinorSubVersionParts(version.GetVersionNumber(), major, minor, sub);
    const auto isCompatible = [&](unsigned a, unsigned b, const char* rest)
    { return version.IsCompatibleVersionNumber(std::to_string(a) + "." + std::to_string(b) + rest); };
    EXPECT_TRUE(isCompatible(major, minor, "") && isCompatible(major, minor, ".99"));
    EXPECT_FALSE(isCompatible(major, minor + 1, ".0") || isCompatible(major + 1, minor, ".0"));
    EXPECT_FALSE(version.IsCompatibleVersionNumber(""));
}

TEST(nxVersionNumber, ReadsPartsByTheRuleForLeadingDigits)
{
    const std::pair<const char*, std::array<unsigned, 3>> rows[] = {
        {"2.5.1", {2, 5, 1}},
        {"2.5", {2, 5, 0}},
        {"", {0, 0, 0}},
        {"..3", {0, 0, 3}},
        {"2.5.1.9", {2, 5, 1}},
        {"v2.5rc1.x", {0, 5, 0}},
        {" 2.\t+5.-1", {2, 5, UINT_MAX}},
        {"2147483647.2147483648.99999999999999999999999", {INT_MAX, INT_MAX, INT_MAX}},
        {"-2147483648.-99999999999.- 1", {1U + INT_MAX, 1U + INT_MAX, 0}},
    };
    for (const auto& [text, expected] : rows)
    {
        std::array<unsigned, 3> parts{7, 7, 7};
        nxVersionNumber::GetInstance().GetMajorMinorSubVersionParts(text, parts[0], parts[1], parts[2]);
        EXPECT_EQ(parts, expected) << text;
    }
}
