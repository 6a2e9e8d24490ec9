// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLog.h"

#include <cstring>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxGenericBitMask.h"
#include "core/enum/nxGenericBitMask64.h"
#include "core/enum/nxProductStateBitMask.h"
#include "core/log/nxLogLine.h"
#include "core/numeric/nxDecimal.h"
#include "core/numeric/nxExchangeRate.h"
#include "core/numeric/nxMoney.h"
#include "core/text/nxStringValue.h"
#include "core/thread/nxThreadIndex.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxDateTimeSpan.h"
#include "tests/support/nxSystemTest.h"

namespace
{
nxLog MakeRecord() { return nxLog(NX_LOG_LEVEL_INFO, "core/trunk/nxLogTest", 7, nxTimeStamp(10, 500)); }

template <class Value>
std::string TextOf(const Value& value)
{
    nxLog record = MakeRecord();
    record << value;
    return record.GetText();
}

/// A type of an application, with the one operator that the guide asks for.
struct Order
{
    int id;
    double price;
};

nxLog& operator<<(nxLog& record, const Order& order) { return record << '#' << order.id << "@" << order.price; }
}  // namespace

TEST(nxLog, NumbersOfEveryLengthAreAsElsewhere)
{
    for (long long bound = 1; bound <= 1'000'000'000'000; bound *= 10)
        for (const long long number : {bound - 1, bound, bound + 1, -bound, 1 - bound})
        {
            EXPECT_EQ(TextOf(number), std::to_string(number));
            EXPECT_EQ(TextOf(static_cast<int>(number)), std::to_string(static_cast<int>(number)));
            EXPECT_EQ(TextOf(static_cast<unsigned>(number)), std::to_string(static_cast<unsigned>(number)));
            for (unsigned char places = 0; places < 20; ++places)
            {
                const auto decimal = nxDecimal::ConstructFromValueAndDecimalPlaces(number, places);
                EXPECT_EQ(TextOf(decimal), decimal.GetAsLogString('.'));
            }
        }
}

TEST(nxLog, TextsOfEveryLengthAreKept)
{
    const std::string letters = "abcdefghijklmnopqrstuvwxyz";
    for (std::size_t first = 0; first < letters.size(); ++first)
        for (std::size_t second = 0; second < letters.size(); ++second)
        {
            nxLog record(NX_LOG_LEVEL_INFO, nullptr, 0, nxTimeStamp(0, 0));
            record << letters.substr(0, first) << letters.substr(0, second);
            EXPECT_EQ(record.GetText(), letters.substr(0, first) + letters.substr(0, second));
        }
}

TEST(nxLog, EveryValueBecomesItsText)
{
    nxProductStateBitMask mask;
    mask.SetBits(nxProductStateBitMask::CLOSED | nxProductStateBitMask::EXPIRING);
    using Unsigned = nxValueWrapper<unsigned>;
    const nxDateTime moment(nxDate(2024, 3, 5), nxTime(9, 7, 3));
    const nxTimeStamp stamp(1709629623, 123456789);
    char stampText[nxTimeStamp::TextSize];
    ASSERT_NE(stamp.GetAsStringFast(stampText, sizeof stampText), 0u);
    const std::pair<std::string, std::string> rows[] = {
        {TextOf(true) + TextOf(false), "TRUEFALSE"},
        {TextOf('a'), "97"},
        {TextOf(static_cast<signed char>(-1)), "-1"},
        {TextOf(static_cast<unsigned char>(255)), "255"},
        {TextOf(std::numeric_limits<short>::min()), "-32768"},
        {TextOf(std::numeric_limits<unsigned short>::max()), "65535"},
        {TextOf(std::numeric_limits<int>::min()), "-2147483648"},
        {TextOf(std::numeric_limits<unsigned>::max()), "4294967295"},
        {TextOf(std::numeric_limits<long>::min()), "-9223372036854775808"},
        {TextOf(std::numeric_limits<unsigned long>::max()), "18446744073709551615"},
        {TextOf(std::numeric_limits<long long>::max()), "9223372036854775807"},
        {TextOf(std::numeric_limits<unsigned long long>::max()), "18446744073709551615"},
        {TextOf(2.5), "2.5"},
        {TextOf("literal"), "literal"},
        {TextOf(static_cast<const char*>(nullptr)), ""},
        {TextOf(std::string("str\0ing", 7)), std::string("str\0ing", 7)},
        {TextOf(std::string_view("view!", 4)), "view"},
        {TextOf(nxLogCharLenPair("pair!", 4)), "pair"},
        {TextOf(nxLogCharLenPair(nullptr, 4)), ""},
        {TextOf(reinterpret_cast<const void*>(std::uintptr_t{0xAB0})), "0xab0"},
        {TextOf(static_cast<const void*>(nullptr)), "0x0"},
        {TextOf(nxDecimal::ConstructFromValueAndDecimalPlaces(-5, 2)), "-0.05"},
        {TextOf(nxDecimal::GetNullDecimal()), "NULL"},
        {TextOf(nxDecimal::GetNoChangeDecimal()), "NO_CHANGE"},
        {TextOf(Unsigned(7u)), "7"},
        {TextOf(Unsigned(4294967295u)), "NULL"},
        {TextOf(Unsigned(4294967294u)), "NO_CHANGE"},
        {TextOf(nxDoubleValueWrapper(0.25)), "0.25"},
        {TextOf(nxDoubleValueWrapper::GetNoChangeInstance()), "NO_CHANGE"},
        {TextOf(nxDoubleValueWrapper::GetNullInstance()), "4.503600e+15"},
        {TextOf(nxErrorEnum(NX_ERR_NOT_FOUND)), "NX_ERR_NOT_FOUND"},
        {TextOf(nxErrorEnum(NX_ERR_BACK_TESTING_PRICE_PLAYBACK_PRODUCT_ALREADY_IN_USE)),
         "NX_ERR_BACK_TESTING_PRICE_PLAYBACK_PRODUCT_ALREADY_IN_USE"},
        {TextOf(NX_ERR_NOT_FOUND) + TextOf(NX_LOG_LEVEL_INFO), "NX_ERR_NOT_FOUNDINF"},
        {TextOf(static_cast<nxEnumValue>(999998)), "NOT_REGISTERED"},
        {TextOf(std::vector<bool>{true}[0]), "TRUE"},
        {TextOf(mask), "CLOSED EXPIRING"},
        {TextOf(nxGenericBitMask64()), "No Description Available"},
        {TextOf(nxDate(2024, 3, 5)), nxDate(2024, 3, 5).GetAsLogString()},
        {TextOf(nxTime(9, 7, 3)), nxTime(9, 7, 3).GetAsLogString()},
        {TextOf(nxDateTimeSpan(1, 0)) + TextOf(nxDateTimeSpan()), "P1DNULL"},
        {TextOf(moment), moment.GetAsLogString()},
        {TextOf(nxMoney()), nxMoney().GetAsLogString('.')},
        {TextOf(nxCurrency("USD")) + TextOf(nxRatio(2, -4)) + TextOf(nxExchangeRate()), "USD-1/2NULL"},
        {TextOf(stamp), stampText},
        {TextOf(nxStringValue("account")) + TextOf(nxStringValue::GetNullInstance()) + TextOf(nxDate()),
         "accountNULLNULL"},
        {TextOf(Order{12, 1.5}),
         "35"
         "12"
         "@1.5"},
    };
    for (const auto& [actual, expected] : rows)
        EXPECT_EQ(actual, expected);
}

TEST(nxLog, CarriesWhatItWasMadeWith)
{
    nxLog record(NX_LOG_LEVEL_WARNING, "core/trunk/nxMutex", 107, nxTimeStamp(1709629623, 123456789));
    EXPECT_EQ(record.GetLogLevel(), NX_LOG_LEVEL_WARNING);
    EXPECT_STREQ(record.GetSourceFile(), "core/trunk/nxMutex");
    EXPECT_EQ(record.GetLineNumber(), 107u);
    EXPECT_EQ(record.GetTimeStamp(), nxTimeStamp(1709629623, 123456789));
    EXPECT_EQ(record.GetThreadIndex(), nxThreadIndex::GetIndexOfCurrentThread());
    EXPECT_EQ(record.GetText(), "");
    EXPECT_TRUE(record.GetDestinationUserID().IsNull());
    EXPECT_EQ(record.GetSourceApplication(), "");
    EXPECT_STREQ(nxLog(NX_LOG_LEVEL_INFO, nullptr, 1, nxTimeStamp()).GetSourceFile(), "");

    record << "to " << nxLog::nxLogDestinationUserID(7u) << "one";
    EXPECT_EQ(record.GetDestinationUserID(), 7u);
    record << nxLog::nxLogSourceApplicationDestUserID("router", 8u);
    EXPECT_EQ(record.GetDestinationUserID(), 8u);
    EXPECT_EQ(record.GetSourceApplication(), "router");
    EXPECT_EQ(nxLog::nxLogSourceApplicationDestUserID(nullptr, 8u).sourceApplication, "");
    EXPECT_EQ(record.GetText(), "to one");
    record << nxLog::nxLogTerminator() << " and nothing more";
    EXPECT_EQ(record.GetText(), "to one");

    const std::unique_ptr<nxLog> first(record.CreateCopyWithOwnershipTransfer());
    const std::unique_ptr<nxLog> second(record.CreateCopyWithOwnershipTransfer());
    EXPECT_EQ(first->GetText(), "to one");
    EXPECT_EQ(second->GetText(), "") << "the message is given away once";
    for (const nxLog* each : {&std::as_const(record), &std::as_const(*first), &std::as_const(*second)})
    {
        EXPECT_EQ(each->GetDestinationUserID(), 8u);
        EXPECT_EQ(each->GetSourceApplication(), "router");
    }
    EXPECT_STREQ(second->GetSourceFile(), "core/trunk/nxMutex");
    nxLog given = MakeRecord() << "once";
    delete given.CreateCopyWithOwnershipTransfer();
    given << "again";
    EXPECT_EQ(given.GetText(), "again");
}

TEST(nxLog, OwnsItsTextsWhateverTheirLength)
{
    // Around the sizes at which the bytes move: into a block of their own, and to a larger one.
    for (const std::size_t fileSize : {0u, 1u, 100u, 237u, 238u, 239u, 240u, 5000u})
        for (const std::size_t textSize : {0u, 1u, 200u, 5000u, 300000u})
        {
            std::string file(fileSize, 'f');
            std::string text(textSize, 't');
            nxLog record(NX_LOG_LEVEL_INFO, file.c_str(), 1, nxTimeStamp(0, 0));
            record << 1 << text;
            const nxLog copy = record;
            nxLog assigned = MakeRecord();
            assigned << "something else";
            assigned = copy;
            std::fill(file.begin(), file.end(), 'x');
            std::fill(text.begin(), text.end(), 'x');
            const std::string expected = std::string(1, '1').append(textSize, 't');
            for (const nxLog* each : {&std::as_const(record), &copy, &std::as_const(assigned)})
            {
                EXPECT_EQ(each->GetSourceFile(), std::string(fileSize, 'f'));
                EXPECT_EQ(each->GetText(), expected);
            }
        }
}

TEST(nxLog, CutsAMessageAfterAMebibyteAndSaysSo)
{
    constexpr std::size_t most = std::size_t{1} << 20;
    const std::string mark = "... [cut]";
    const auto text = [](std::initializer_list<std::string> pieces)
    {
        nxLog record = MakeRecord();
        for (const std::string& piece : pieces)
            record << piece;
        return record.GetText();
    };
    const std::string full(most, 'a');
    EXPECT_EQ(text({full}), full);
    EXPECT_EQ(text({full + 'b'}), full + mark);
    EXPECT_EQ(text({full, "b"}), full + mark);
    EXPECT_EQ(text({std::string(3 * most, 'a')}), full + mark);
    EXPECT_EQ(text({full.substr(1), "bc", "d"}), full.substr(1) + "b" + mark);
    // A character of several bytes stays whole or goes whole.
    EXPECT_EQ(text({full.substr(1), "\xC3\xA9"}), full.substr(1) + mark);
    EXPECT_EQ(text({full.substr(2), "\xC3\xA9"}), full.substr(2) + "\xC3\xA9");
    // A number that comes last stays whole, and what is no text leaves nothing out.
    nxLog number = MakeRecord();
    number << full.substr(1) << 12345 << "" << nxLog::nxLogDestinationUserID(nxValueWrapper<unsigned int>(7));
    EXPECT_EQ(number.GetText(), full.substr(1) + "12345");

    // Values that fill their block to the last byte, and a block that grew as large as one may.
    nxLog long2 = MakeRecord();
    long2 << std::string(700'000, 'a') << std::string(700'000, 'a') << std::string(700'000, 'a') << full << "b";
    EXPECT_EQ(nxLog(long2).GetText(), full + mark);
    // The name of a file takes nothing from the message.
    nxLog named(NX_LOG_LEVEL_INFO, std::string(3 * most, 'f').c_str(), 1, nxTimeStamp(0, 0));
    named << full << "b";
    EXPECT_EQ(named.GetText(), full + mark);
    EXPECT_LT(std::strlen(named.GetSourceFile()), most);
}

TEST(nxLogLine, EscapesWhatMustNotBeShownInTextsOfEveryLength)
{
    // U+0085, U+009B, U+2028, U+202E, U+2066; then an umlaut in two encodings, and characters with bytes that alone are
    // controls.
    std::vector<std::string> pieces{"\xC2\x85", "\xC2\x9B", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE2\x81\xA6"};
    const std::size_t hiddenCharacters = pieces.size();
    pieces.insert(pieces.end(), {"\xC3\xBC", "\xFC", "\xE6\x97\xA5", "\xF0\x9F\x98\x80"});
    const std::size_t characters = pieces.size();
    for (unsigned byte = 0; byte < 256; ++byte)
        pieces.push_back(std::string(1, static_cast<char>(byte)));
    // At every place of texts that are looked at eight bytes at a time.
    for (std::size_t size = 0; size <= 17; ++size)
        for (std::size_t place = 0; place <= size; ++place)
            for (std::size_t i = 0; i < pieces.size(); ++i)
            {
                const std::size_t byte = i - characters;
                const bool isHidden =
                    i < hiddenCharacters ||
                    (i >= characters && ((byte < 0x20 && byte != '\t') || (byte >= 0x7F && byte <= 0x9F)));
                std::string shown;
                for (const char c : pieces[i])
                {
                    char escaped[5];
                    std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned char>(c));
                    shown += isHidden ? std::string(escaped) : std::string(1, c);
                }
                std::string text(size, 'a'), expected = "[INF] " + text + "\n", line;
                text.insert(place, pieces[i]);
                expected.insert(6 + place, shown);
                nxLogLine::Append(line, MakeRecord() << text, {nxLogLineStyle::LevelAndText, false});
                ASSERT_EQ(line, expected);
            }
}

TEST(nxLogStatement, CarriesThePlaceAndAllKindsOfValues)
{
    nxCapturingLogDevice device;
    const nxTimeStamp before = nxTimeStamp::Now();
    NX_LOG_AT(NX_LOG_LEVEL_WARNING, "core/trunk/nxSomewhere", 42)
        << "all " << true << " " << std::string("of it ") << nxDecimal::ConstructFromValueAndDecimalPlaces(1250, 2)
        << " " << nxErrorEnum(NX_ERR_NOT_FOUND) << " " << Order{3, 0.5} << " " << nxValueWrapper<unsigned>() << " "
        << nxProductStateBitMask() << static_cast<const void*>(nullptr);
    const nxLogLevelEnum level(NX_LOG_LEVEL_ERROR);
    NX_LOG(level) << "second";
    ASSERT_TRUE(device.WaitFor(nxCapturingLogDevice::Contains("second")));
    const std::vector<nxCapturedRecord> records = device.GetRecords();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].text, "all TRUE of it 12.50 NX_ERR_NOT_FOUND 353@0.5 NULL 0x0");
    EXPECT_EQ(records[0].sourceFile, "core/trunk/nxSomewhere");
    EXPECT_EQ(records[0].line, 42u);
    EXPECT_EQ(records[0].threadIndex, nxThreadIndex::GetIndexOfCurrentThread());
    EXPECT_LT(std::abs(records[0].timeStamp.GetTotalSecondsAsDouble() - before.GetTotalSecondsAsDouble()), 60);
    EXPECT_EQ(records[1].level, NX_LOG_LEVEL_ERROR);
    EXPECT_NE(records[1].sourceFile.find("nxLogTest.cpp"), std::string::npos);
}

TEST(nxLogStatement, EvaluatesNothingBelowTheThreshold)
{
    nxCapturingLogDevice device;
    int evaluated = 0;
    // One expression: an else that follows belongs to the if before.
    if (evaluated == 0)
        NX_LOG(NX_LOG_LEVEL_DEBUG) << "never seen" << ++evaluated;
    else
        ++evaluated;
    EXPECT_EQ(evaluated, 0);
    for (const nxEnumValue none : {NX_ERR_NOT_FOUND, NX_ENUM_UNDEFINED})
        NX_LOG(none) << "never" << ++evaluated;
    EXPECT_EQ(evaluated, 0);
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_DEBUG);
    NX_LOG(NX_LOG_LEVEL_DEBUG) << "seen" << ++evaluated;
    nxLogManager::SetLogLevel(nxLogLevelEnum());  // none, and so no change
    EXPECT_EQ(nxLogManager::GetLogLevel(), NX_LOG_LEVEL_DEBUG);
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_INFO);
    EXPECT_TRUE(device.WaitFor(nxCapturingLogDevice::Contains("seen1")));
    EXPECT_EQ(device.Count(nxCapturingLogDevice::Contains("never")), 0u);
}

TEST(nxLogStatement, MayLogInItsArguments)
{
    nxCapturingLogDevice device;
    const auto inner = [](int depth, const auto& self) -> int
    {
        if (depth > 0)
            NX_LOG(NX_LOG_LEVEL_INFO) << "nested " << depth << " got " << self(depth - 1, self);
        nxLog record = MakeRecord();
        record << "object in " << depth;
        Manager().Write(record);
        return depth;
    };
    for (int round = 0; round < 3; ++round)
        NX_LOG(NX_LOG_LEVEL_INFO) << "outer " << inner(4, inner)
                                  << std::string(static_cast<std::size_t>(round) * 200, 'x') << inner(1, inner);
    NX_LOG(NX_LOG_LEVEL_WARNING) << "end";
    ASSERT_TRUE(device.WaitFor(nxCapturingLogDevice::Contains("end")));
    EXPECT_EQ(device.Count(nxCapturingLogDevice::Contains("outer 4")), 3u);
    EXPECT_EQ(device.Count(nxCapturingLogDevice::Contains("nested")), 15u);
    EXPECT_EQ(device.Count(nxCapturingLogDevice::Contains("object in")), 21u);
    EXPECT_EQ(device.Count(nxCapturingLogDevice::Contains("outer 4" + std::string(400, 'x') + "1")), 1u);
}

TEST(nxLogStatement, IsWrittenAsFarAsItCameWhenAnArgumentThrows)
{
    nxCapturingLogDevice device;
    const auto fail = []() -> int { throw std::runtime_error("no value"); };
    EXPECT_THROW(NX_LOG(NX_LOG_LEVEL_INFO) << "value: " << fail(), std::runtime_error);
    NX_LOG(NX_LOG_LEVEL_WARNING) << "end";
    ASSERT_TRUE(device.WaitFor(nxCapturingLogDevice::Contains("end")));
    ASSERT_EQ(device.GetRecords().size(), 2u);
    EXPECT_EQ(device.GetRecords()[0].text, "value: ");
}

TEST(nxLogHexDump, LooksAsPeopleExpectIsBoundedAndRefusesNonsense)
{
    nxCapturingLogDevice device;
    const auto dumped = [&device]
    {
        NX_LOG(NX_LOG_LEVEL_WARNING) << "end of dump";
        EXPECT_TRUE(device.WaitFor(nxCapturingLogDevice::Contains("end of dump")));
        std::vector<std::string> lines;
        for (const nxCapturedRecord& record : device.GetRecords())
            lines.push_back(record.text);
        lines.pop_back();
        device.Clear();
        return lines;
    };
    const char bytes[] = "Hello world\n\x00\x7F\xFFtail";
    EXPECT_TRUE(nxLog::LogBufferAsHex(bytes, 19, 16).IsOK());
    EXPECT_TRUE(nxLog::LogBufferAsHex(bytes, 5, 4, NX_LOG_LEVEL_INFO, "here", 5, '?', false).IsOK());
    EXPECT_TRUE(nxLog::LogBufferAsHex(bytes, 0, 16).IsOK());
    const std::vector<std::string> expected = {
        "Dumping memory as hex and ascii. At most 19 bytes of data will be dumped",
        "00000000  48 65 6C 6C 6F 20 77 6F  72 6C 64 0A 00 7F FF 74  |Hello world....t|",
        "00000010  61 69 6C                                          |ail|",
        "Dumping memory as hex and ascii. At most 5 bytes of data will be dumped",
        "48 65 6C 6C  |Hell|",
        "6F           |o|",
        "Dumping memory as hex and ascii. At most 0 bytes of data will be dumped",
    };
    EXPECT_EQ(dumped(), expected);

    const std::string large(nxLog::MaximumDump + 1, 'z');
    const unsigned tooMany = nxLog::MaximumBytesPerLine + 1;
    EXPECT_EQ(nxLog::LogBufferAsHex(nullptr, 10, 16), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxLog::LogBufferAsHex("x", 1, 0), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxLog::LogBufferAsHex("x", 1, tooMany), NX_ERR_INVALID_PARAMETER);
    EXPECT_TRUE(nxLog::LogBufferAsHex("x", 1, 16, NX_LOG_LEVEL_DEBUG).IsOK());
    EXPECT_TRUE(nxLog::LogBufferAsHex(large.data(), static_cast<unsigned>(large.size()), tooMany - 1).IsOK());
    const std::vector<std::string> lines = dumped();
    ASSERT_EQ(lines.size(), 4 + nxLog::MaximumDump / nxLog::MaximumBytesPerLine);
    EXPECT_EQ(lines[0], "Unable to dump memory as hex and ascii. A null buffer was passed in");
    EXPECT_EQ(lines[1], "Unable to dump memory as hex and ascii. Bytes per line value is not valid");
    EXPECT_EQ(lines[2], lines[1]);
    EXPECT_EQ(lines[3], "Dumping memory as hex and ascii. At most 65536 bytes of data will be dumped");
}
