// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringParser.h"

#include <deque>

#include "core/text/nxStringValue.h"
#include "tests/support/nxTest.h"

static_assert(!std::is_constructible_v<nxStringParser, std::string>);  // it would dangle
static_assert(!std::is_copy_assignable_v<nxStringParser>);

namespace
{
using Fields = std::vector<std::string>;

template <class... Separators>
Fields AllFields(const std::string& text, Separators... separators)
{
    Fields fields;
    nxStringParser parser(text);
    while (!parser.IsFullyParsed())
        fields.push_back(parser.GetSubString(separators...));
    EXPECT_EQ(parser.GetSubString(separators...), "");
    EXPECT_TRUE(parser.IsFullyParsed());
    return fields;
}

Fields Extracted(const std::string& text, bool flag)
{
    std::deque<std::string> fields = {"kept"};
    nxStringParser::ExtractAllSubstrings(text, fields, flag, ',');
    return Fields(fields.begin(), fields.end());
}
}  // namespace

TEST(nxStringParser, EverySeparatorIsFollowedByAField)
{
    EXPECT_EQ(AllFields("a,,b", ','), Fields({"a", "", "b"}));
    EXPECT_EQ(AllFields("a,", ','), Fields({"a", ""}));
    EXPECT_EQ(AllFields(",", ','), Fields({"", ""}));
    EXPECT_EQ(AllFields("", ','), Fields({""}));
    EXPECT_EQ(AllFields("a;b", ','), Fields({"a;b"}));
    EXPECT_EQ(AllFields(std::string("a\0b", 3), '\0'), Fields({"a", "b"}));
    EXPECT_EQ(AllFields("a;b,c", ',', ';'), Fields({"a", "b", "c"}));
    EXPECT_EQ(AllFields("a,;", ',', ';'), Fields({"a", "", ""}));
}

TEST(nxStringParser, TakesDifferentSeparatorsInTurn)
{
    const std::string text = "QRX_A=1=2";
    nxStringParser parser(text);
    EXPECT_EQ(parser.GetSubString('='), "QRX_A");
    EXPECT_EQ(parser.GetSubString('\n'), "1=2");
    EXPECT_TRUE(parser.IsFullyParsed());
}

TEST(nxStringParser, IsFinishedWhenTheTextHasShrunk)
{
    std::string text = "first,second";
    nxStringParser parser(text);
    EXPECT_EQ(parser.GetSubString(','), "first");
    text = "x";
    EXPECT_TRUE(parser.IsFullyParsed());
    EXPECT_EQ(parser.GetSubString(','), "");
    EXPECT_EQ(parser.GetSubString(',', ';'), "");
}

TEST(nxStringParser, ExtractsToEitherEndAndSkipsAnEmptyLastField)
{
    EXPECT_EQ(Extracted("a,b", true), Fields({"kept", "a", "b"}));
    EXPECT_EQ(Extracted("a,b", false), Fields({"b", "a", "kept"}));
    EXPECT_EQ(Extracted("a,b,", true), Fields({"kept", "a", "b"}));
    EXPECT_EQ(Extracted(",a", true), Fields({"kept", "", "a"}));
    EXPECT_EQ(Extracted("a,,", true), Fields({"kept", "a", ""}));
    EXPECT_EQ(Extracted("", true), Fields({"kept"}));
}

TEST(nxStringValue, HasThreeStates)
{
    const std::tuple<nxStringValue, nxEnumValue, std::string, std::string> rows[] = {
        {nxStringValue(), NX_VALUE_STATUS_NULL, "", "NULL"},
        {nxStringValue(nxNullInitalizer{}), NX_VALUE_STATUS_NULL, "", "NULL"},
        {nxStringValue::GetNullInstance(), NX_VALUE_STATUS_NULL, "", "NULL"},
        {nxStringValue(nxNoChangeInitalizer{}), NX_VALUE_STATUS_NO_CHANGE, "", "NO_CHANGE"},
        {nxStringValue::GetNoChangeInstance(), NX_VALUE_STATUS_NO_CHANGE, "", "NO_CHANGE"},
        {nxStringValue(""), NX_VALUE_STATUS_VALID, "", ""},
        {nxStringValue(static_cast<const char*>(nullptr)), NX_VALUE_STATUS_VALID, "", ""},
        {nxStringValue("NULL"), NX_VALUE_STATUS_VALID, "NULL", "NULL"},
        {nxStringValue(std::string("a\0b", 3)), NX_VALUE_STATUS_VALID, std::string("a\0b", 3), std::string("a\0b", 3)},
    };
    for (const auto& [value, status, text, logText] : rows)
    {
        SCOPED_TRACE(logText);
        EXPECT_EQ(value.IsNull(), status == NX_VALUE_STATUS_NULL);
        EXPECT_EQ(value.IsNoChange(), status == NX_VALUE_STATUS_NO_CHANGE);
        EXPECT_EQ(value.IsValid(), status == NX_VALUE_STATUS_VALID);
        EXPECT_EQ(value.GetAsString() + value.GetAsLogString() + Streamed(value), text + logText + logText);
        std::string appended = ">";
        value.AppendAsString(appended);
        value.AppendAsLogString(appended);
        EXPECT_EQ(appended, ">" + text + logText);
        value.GetAsString(appended);
        EXPECT_EQ(appended, text);
        value.GetAsLogString(appended);
        EXPECT_EQ(appended, logText);
    }
}

TEST(nxStringValue, ForgetsItsTextWithItsValue)
{
    nxStringValue value("old");
    value.SetNull();
    EXPECT_EQ(value, nxStringValue::GetNullInstance());
    EXPECT_NE(value, nxStringValue(""));
    value.SetNoChange();
    EXPECT_EQ(value, nxStringValue::GetNoChangeInstance());
    EXPECT_TRUE(value.SetFromString("new").IsOK());
    EXPECT_EQ(value, nxStringValue("new"));
    EXPECT_EQ(std::unordered_set<nxStringValue>({value, nxStringValue("new"), nxStringValue()}).size(), 2U);
}
