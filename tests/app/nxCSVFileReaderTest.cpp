// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxCSVFileReader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>

#include "core/enum/nxRoundingMethodEnum.h"
#include "core/numeric/nxMoney.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxStringValue.h"
#include "core/text/nxValueWrapper.h"
#include "core/time/nxDate.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxDateTimeSpan.h"
#include "core/time/nxTime.h"

namespace
{
const nxErrorEnum ok, malformed(NX_ERR_INVALID_PARAMETER), tooLarge(NX_ERR_VALUE_OUT_OF_RANGE);

// Reads a text as the only field of a row, with ',' as decimal separator.
template <class Value>
nxErrorEnum ReadField(const std::string& text, Value& value)
{
    nxCSVDialect dialect;
    dialect.separator = ';';
    dialect.decimalSeparator = ',';
    dialect.hasHeader = false;
    const std::string row = text + ";\n";
    nxCSVFileReader reader;
    bool hasRow = false;
    EXPECT_TRUE(reader.SetFromText(row, dialect).IsOK() && reader.Next(hasRow).IsOK() && hasRow);
    return reader.GetField(0, value);
}

template <class Value>
void ExpectField(const std::string& text, const nxErrorEnum& error, const Value& expected, Value value = Value())
{
    EXPECT_EQ(ReadField(text, value), error) << text;
    EXPECT_EQ(value, expected) << text;
}
}  // namespace

TEST(nxCSVFileReader, ReadsValuesExactlyOrNotAtAll)
{
    ExpectField<std::string>("a b", ok, "a b");
    ExpectField<std::string>("", ok, "", "before");
    ExpectField<long long>("-9223372036854775808", ok, INT64_MIN);
    ExpectField<unsigned short>("65536", tooLarge, 7, 7);
    ExpectField<unsigned>("-1", malformed, 7, 7);
    ExpectField<int>("", malformed, 7, 7);
    ExpectField<int>(" 1", malformed, 7, 7);
    ExpectField<bool>("TRUE", ok, true);
    ExpectField<bool>("yes", malformed, true, true);
    ExpectField<double>("-1,5", ok, -1.5);
    ExpectField<double>("1.5", malformed, 7, 7);
    ExpectField<double>("", malformed, 7, 7);
    ExpectField("12,50", ok, nxDecimal("12.50", '.'));
    ExpectField("99999999999999999999", tooLarge, nxDecimal("7", '.'), nxDecimal("7", '.'));
    ExpectField("12,50 EUR", ok, nxMoney(nxDecimal("12.50", '.'), "EUR"));
    ExpectField("20240229", ok, nxDate(2024, 2, 29));
    ExpectField("20230229", malformed, nxDate(2024, 2, 29), nxDate(2024, 2, 29));
    ExpectField("2024-02-29", ok, nxDate(2024, 2, 29));
    ExpectField("2024-02-29T09:07:03", ok, nxDateTime(nxDate(2024, 2, 29), nxTime(9, 7, 3)));
    ExpectField("PT36H", ok, nxDateTimeSpan(1, 12 * 3'600'000'000'000));
    ExpectField("09:07:03", ok, nxTime(9, 7, 3));
    ExpectField("300", ok, nxValueWrapper<int>(300));
    ExpectField("2147483647", tooLarge, nxValueWrapper<int>(7), nxValueWrapper<int>(7));
    ExpectField("1,5", ok, nxDoubleValueWrapper(1.5));
    ExpectField("1.5", malformed, nxDoubleValueWrapper(7.0), nxDoubleValueWrapper(7.0));
    ExpectField("NX_ROUNDING_METHOD_UP", ok, nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP));
    ExpectField("a", ok, nxStringValue("a"));
}

TEST(nxCSVFileReader, EmptyFieldIsNullWhereNullExists)
{
    ExpectField("", ok, nxDecimal::GetNullDecimal(), nxDecimal("7", '.'));
    ExpectField("", ok, nxMoney(), nxMoney(nxDecimal("7", '.'), "EUR"));
    ExpectField("", ok, nxDate(), nxDate(2024, 2, 29));
    ExpectField("", ok, nxTime(), nxTime(9, 7, 3));
    ExpectField("", ok, nxDateTime(), nxDateTime(nxDate(2024, 2, 29), nxTime(9, 7, 3)));
    ExpectField("", ok, nxValueWrapper<int>(), nxValueWrapper<int>(7));
    ExpectField("", ok, nxDoubleValueWrapper::GetNullInstance(), nxDoubleValueWrapper(7.0));
    ExpectField("", ok, nxStringValue::GetNullInstance(), nxStringValue("a"));
    ExpectField("", ok, nxRoundingMethodEnum(), nxRoundingMethodEnum(NX_ROUNDING_METHOD_UP));
}

TEST(nxCSVFileReader, FindsColumnsAndTellsFieldsThatAreMissing)
{
    nxCSVFileReader reader;
    ASSERT_TRUE(reader.SetFromText("\n\"a,b\",c,c\n\n1,2,3,4\n\"x\"\"\",\"y\"\n").IsOK());
    std::size_t column = 7;
    EXPECT_EQ(reader.GetColumn("c", column), nxErrorEnum(NX_ERR_DUPLICATE_MATCH));
    EXPECT_EQ(reader.GetErrorText(), "there are several columns 'c'");
    EXPECT_EQ(reader.GetColumn("b", column), nxErrorEnum(NX_ERR_NOT_FOUND));
    EXPECT_EQ(column, 7U);
    ASSERT_TRUE(reader.GetColumn("a,b", column).IsOK());
    EXPECT_EQ(column, 0U);

    bool hasRow = false;
    ASSERT_TRUE(reader.Next(hasRow).IsOK() && hasRow);
    EXPECT_EQ(reader.GetLine(), 4U);
    EXPECT_EQ(reader.GetFieldCount(), 4U);
    ASSERT_TRUE(reader.Next(hasRow).IsOK() && hasRow);
    std::string_view first, second;
    ASSERT_TRUE(reader.GetField(0, first).IsOK() && reader.GetField(1, second).IsOK());
    EXPECT_EQ(first, "x\"");
    EXPECT_EQ(second, "y");
    int number = 7;
    EXPECT_EQ(reader.GetField(0, number), malformed);
    EXPECT_EQ(reader.GetErrorText(), "line 5: column 'a,b': 'x\"' is no such value");
    EXPECT_EQ(reader.GetField(2, number), nxErrorEnum(NX_ERR_INSUFFICIENT_DATA));
    EXPECT_EQ(reader.GetErrorText(), "line 5: column 'c': the row has 2 fields");
    EXPECT_EQ(number, 7);
    ASSERT_TRUE(reader.Next(hasRow).IsOK());
    EXPECT_FALSE(hasRow);
    EXPECT_EQ(reader.GetFieldCount(), 0U);
}

TEST(nxCSVFileReader, TellsWhatIsWrongWithAFile)
{
    const std::string path = ::testing::TempDir() + "nxCSVFileReaderTest.csv";
    nxCSVFileReader reader;
    bool hasRow = false;
    EXPECT_EQ(reader.Next(hasRow), nxErrorEnum(NX_ERR_NOT_INITIALISED));
    std::remove(path.c_str());
    EXPECT_EQ(reader.Open(path), nxErrorEnum(NX_ERR_FAILED_TO_OPEN_FILE));
    EXPECT_TRUE(reader.GetErrorText().ends_with("csv' cannot be opened: No such file or directory"));
    EXPECT_EQ(reader.Open(::testing::TempDir()), nxErrorEnum(NX_ERR_FILE_READ_ERR));
    EXPECT_EQ(reader.GetErrorText(), "line 1: the text cannot be read: Is a directory");

    std::ofstream(path) << "a\n" << std::string((1 << 20) - 1, 'b') << '\n' << std::string(1 << 20, 'c') << '\n';
    ASSERT_TRUE(reader.Open(path).IsOK());
    ASSERT_TRUE(reader.Next(hasRow).IsOK() && hasRow);
    EXPECT_EQ(reader.GetRow().content.size(), (1U << 20) - 1);
    EXPECT_EQ(reader.Next(hasRow), nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR));
    EXPECT_FALSE(hasRow);
    EXPECT_EQ(reader.GetErrorText(),
              "line 3: the row that begins here is longer than 1048576 bytes, the most that is read");
    std::remove(path.c_str());

    nxCSVDialect dialect;
    dialect.decimalSeparator = ',';
    const nxErrorEnum badCSV(NX_ERR_CSV_FILE_READ_ERROR);
    EXPECT_EQ(reader.SetFromText("a\n", dialect), badCSV);
    EXPECT_EQ(reader.SetFromText("\n\n"), badCSV);
    EXPECT_EQ(reader.GetErrorText(), "line 1: there is no header line");
    EXPECT_EQ(reader.Next(hasRow), nxErrorEnum(NX_ERR_NOT_INITIALISED));
}
