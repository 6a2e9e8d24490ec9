// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxCSVParser.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace
{
nxErrorEnum ReadText(void* context, char* buffer, std::size_t size, std::size_t& read)
{
    auto& text = *static_cast<std::string_view*>(context);
    read = text.copy(buffer, size);
    text.remove_prefix(read);
    return nxErrorEnum();
}

// "LINE[field|field]" for each row, then what is wrong.
std::string Read(std::string_view text, const nxCSVDialect& dialect, std::size_t maximumRowSize, std::size_t blockSize)
{
    nxCSVParser parser(&ReadText, &text, dialect, maximumRowSize, blockSize);
    std::string rows;
    nxCSVRow row;
    bool hasRow = false;
    while (parser.Next(row, hasRow).IsOK() && hasRow)
    {
        rows += std::to_string(row.line) + (row.HasFields() ? "[" : "-[");
        for (const std::string& field : row.GetFields())
            rows += (rows.back() == '[' ? "" : "|") + field;
        rows += "]";
    }
    if (!parser.GetErrorText().empty())
        rows += std::to_string(parser.GetErrorLine()) + ": " + parser.GetErrorText();
    EXPECT_EQ(parser.Next(row, hasRow).IsOK(), parser.GetErrorText().empty());
    EXPECT_FALSE(hasRow);
    return rows;
}

struct Row
{
    std::string_view text;
    std::string_view rows;
};

using namespace std::string_view_literals;

void ExpectRows(const Row& row, const nxCSVDialect& dialect, std::size_t maximumRowSize = 1000)
{
    SCOPED_TRACE(row.text);
    for (const std::size_t blockSize : {1UL, 2UL, 3UL, 7UL, 64UL, 1UL << 18})
        EXPECT_EQ(Read(row.text, dialect, maximumRowSize, blockSize), row.rows) << blockSize;
}
}  // namespace

TEST(nxCSVParser, ReadsRowsAndTellsTheirLines)
{
    const Row rows[] = {
        {"", ""},
        {"a,b", "1[a|b]"},
        {"a\rb,c\r\n", "1[a\rb|c]"},
        {"\na\r\n\r\nb\n", "1-[]2[a]3-[]4[b]"},
        {"\"a\"\"b\",\"c\"d,e\"f\n", "1[a\"b|cd|e\"f]"},
        {"\"a\nb\r\n\",c\nd\n", "1[a\nb\r\n|c]4[d]"},
        {" \"a\nb\", c\n", "1[ \"a]2[b\"| c]"},
        {"\xEF\xBB\xBF\"a,b\",c\n", "1[a,b|c]"},
        {"\xEF\xBB", "1[\xEF\xBB]"},
        {"\xFF\xFE"
         "a\0"sv,
         "1: this is UTF-16; convert it to UTF-8 first"},
        {"\xFE\xFF", "1: this is UTF-16; convert it to UTF-8 first"},
        {"a\n\nb,\"c\nd\n", "1[a]2-[]3: a quote is opened in this row and never closed"},
    };
    for (const Row& row : rows)
        ExpectRows(row, {});
}

TEST(nxCSVParser, DialectTrimsBlanksAndLeavesCommentsAlone)
{
    const Row rows[] = {
        {"# it's \"one\n a ;\t\"b ;c\" ;\" d\"\"\"\n \t\n", "1-[# it's \"one]2[a|b ;c| d\"]3-[]"},
        {"a\n#;\"", "1[a]2-[#|\"]"},
        {"1,5;\"2,5\"", "1[1,5|2,5]"},
    };
    nxCSVDialect dialect;
    dialect.separator = ';';
    dialect.comment = '#';
    dialect.trimBlanks = true;
    for (const Row& row : rows)
        ExpectRows(row, dialect);
    dialect = nxCSVDialect();
    dialect.quote = '\0';
    ExpectRows({"\"a\n\0,b"sv, "1[\"a]2[\0|b]"sv}, dialect);
}

TEST(nxCSVParser, RowIsAsLongAsAllowedAndNoLonger)
{
    const Row rows[] = {
        {"a\n234\n", "1[a]2[234]"},
        {"a\n2345\n", "1[a]2: the row that begins here is longer than 4 bytes, the most that is read"},
        {"a\n\"45\n",
         "1[a]2: the row that begins here is longer than 4 bytes, the most that is read; is a quote never "
         "closed?"},
    };
    for (const Row& row : rows)
        ExpectRows(row, {}, 4);
}

TEST(nxCSVParser, RefusesADialectThatCannotDivide)
{
    const struct
    {
        char separator, quote, comment;
        bool trimBlanks, canDivide;
    } rows[] = {{',', ',', '\0', false, false},  {',', '"', ',', false, false},   {',', '#', '#', false, false},
                {'\n', '"', '\0', false, false}, {',', '\r', '\0', false, false}, {',', ' ', '\0', true, false},
                {',', ' ', '\0', false, true},   {' ', '"', '\0', true, true},    {'\0', '\0', '\0', false, true}};
    for (const auto& row : rows)
    {
        nxCSVDialect dialect;
        dialect.separator = row.separator;
        dialect.quote = row.quote;
        dialect.comment = row.comment;
        dialect.trimBlanks = row.trimBlanks;
        EXPECT_EQ(dialect.CanDivide(), row.canDivide) << &row - rows;
        EXPECT_EQ(Read("a", dialect, 10, 10) == "1[a]", row.canDivide) << &row - rows;
    }
}

// Rows and fields are found alike in the first 64 bytes of a row and after them, wherever its bytes lie.
TEST(nxCSVParser, FindsEachFieldOfLongRows)
{
    for (std::size_t width = 1; width < 200; width += 3)
    {
        std::string text;
        for (std::size_t line = 0; line < 70; ++line)
            text += std::string(line, 'x') + "," + std::string(width, ',') + std::string(width, 'y') + ",z\r\n";
        std::string_view rest = text;
        nxCSVParser parser(&ReadText, &rest);
        nxCSVRow row;
        std::string scratch;
        std::string_view field;
        std::size_t line = 0;
        for (bool hasRow = true; parser.Next(row, hasRow).IsOK() && hasRow; ++line)
        {
            ASSERT_EQ(row.GetFieldCount(), width + 3);
            ASSERT_TRUE(row.GetField(0, scratch, field).IsOK() && field == std::string(line, 'x'));
            ASSERT_TRUE(row.GetField(width, scratch, field).IsOK() && field.empty());
            ASSERT_TRUE(row.GetField(width + 1, scratch, field).IsOK() && field == std::string(width, 'y'));
            ASSERT_TRUE(row.GetRawField(width + 2, field).IsOK() && field == "z");
            ASSERT_EQ(row.GetField(width + 3, scratch, field), nxErrorEnum(NX_ERR_INSUFFICIENT_DATA));
        }
        EXPECT_EQ(line, 70U);
    }
}

TEST(nxCSVParser, ErrorOfTheSourceEndsReading)
{
    const auto fail = [](void*, char*, std::size_t, std::size_t&) { return nxErrorEnum(NX_ERR_FILE_READ_ERR); };
    nxCSVParser parser(fail, nullptr);
    nxCSVRow row;
    bool hasRow = true;
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(parser.Next(row, hasRow), nxErrorEnum(NX_ERR_FILE_READ_ERR));
    EXPECT_FALSE(hasRow);
    EXPECT_EQ(row.GetFieldCount(), 0U);
}
