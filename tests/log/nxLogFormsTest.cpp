// SPDX-License-Identifier: Apache-2.0
#include <limits>

#include "core/log/nxConsoleLogDevice.h"
#include "core/log/nxField.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogFormSettings.h"
#include "core/log/nxLogLine.h"
#include "core/numeric/nxDecimal.h"
#include "tests/support/nxFunctionLogDevice.h"
#include "tests/support/nxSystemTest.h"

namespace
{
struct Leg
{
    int ratio;
};
nxLog& operator<<(nxLog& record, const Leg& leg) { return record << "x " << nxField("ratio", leg.ratio); }

nxLog Record(nxEnumValue level = NX_LOG_LEVEL_INFO, long long second = 1'709'629'623)
{
    return nxLog(level, "x\"\n.cpp", 12, nxTimeStamp(second, 123'456'789));
}

std::string LineOf(const nxLog& record, const nxLogLineStyle& style)
{
    std::string line;
    nxLogLine::Append(line, record, style);
    return line;
}

using Style = nxLogLineStyle;
using Settings = nxLogFormSettings;
constexpr Style shortStyle{Style::LevelAndText, false};

/// Every value of a field, and how a line shows it.
struct FieldRow
{
    std::string shown;
    void (*add)(nxLog& record);
};
const FieldRow fieldRows[] = {
    {" n=-7", [](nxLog& record) { record << nxField("n", short{-7}); }},
    {" on=TRUE", [](nxLog& record) { record << nxField("on", true); }},
    {" price=101.250", [](nxLog& record) { record << nxField("price", nxDecimal("101.250", '.')); }},
    {" price=NULL", [](nxLog& record) { record << nxField("price", nxDecimal::GetNullDecimal()); }},
    {" count=NULL", [](nxLog& record) { record << nxField("count", nxDoubleValueWrapper()); }},
    {" text=NULL", [](nxLog& record) { record << nxField("text", static_cast<const char*>(nullptr)); }},
    {" error=NX_ERR_NOT_FOUND", [](nxLog& record) { record << nxField("error", NX_ERR_NOT_FOUND); }},
    {" text=CLZ5", [](nxLog& record) { record << nxField("text", "CLZ5"); }},
    {" text=\"\"", [](nxLog& record) { record << nxField("text", std::string()); }},
    {" text=\"a b\"", [](nxLog& record) { record << nxField("text", "a b"); }},
    {" text=\"a=\\\"\\\\\\x0A\"", [](nxLog& record) { record << nxField("text", "a=\"\\\n"); }},
    {" text=\"\xC3\xA9\"", [](nxLog& record) { record << nxField("text", "\xC3\xA9"); }},
    {" own=\"x  ratio=2\"", [](nxLog& record) { record << nxField("own", Leg{2}); }},
    {"", [](nxLog& record) { record << nxField("quiet", 5, nxFieldLines::Json); }},
    {"more", [](nxLog& record) { record << "more"; }},
};
}  // namespace

TEST(nxField, LinesOfTextShowNameAndValue)
{
    nxLog all = Record();
    std::string shown;
    for (const FieldRow& row : fieldRows)
    {
        nxLog record = Record();
        row.add(record);
        EXPECT_EQ(LineOf(record, shortStyle), "[INF] " + row.shown + "\n");
        EXPECT_EQ(record.GetText(), row.shown);
        row.add(all);
        shown += row.shown;
    }
    // With a value that is written with more care, and a text that ends the message.
    all << 0.5 << nxField("long", std::string(3u << 19, 'x')) << "lost";
    shown += "0.5 long=";
    const std::size_t kept = (std::size_t{1} << 20) - shown.size();
    const std::string text = all.GetText();
    EXPECT_TRUE(text.starts_with(shown + "xx"));
    EXPECT_TRUE(text.ends_with("xx... [cut]"));
    EXPECT_NEAR(static_cast<double>(text.size()), static_cast<double>(shown.size() + kept), 64);
    const std::string line = LineOf(all, {Style::Json, false});
    EXPECT_NE(line.find("\"message\":\"more0.5lost\""), std::string::npos);
    EXPECT_NE(line.find("\"price#2\":null"), std::string::npos);
    EXPECT_TRUE(line.ends_with("xx... [cut]\",\"cut\":true}\n"));
}

TEST(nxField, DevicesVisitFieldsOfStatementsToo)
{
    std::vector<nxLog> records;
    const nxFunctionLogDevice device([&](const nxLog& record) { records.push_back(record); });
    const std::string large(100'000, 'x');
    NX_LOG(NX_LOG_LEVEL_ERROR) << "before" << nxField("price", nxDecimal("1.5", '.')) << nxField("own", Leg{3})
                               << nxField("large", large) << nxField("none", nxValueWrapper<int>())
                               << nxField("count", 7U) << " after";
    WaitUntilWritten();
    std::vector<std::pair<std::string, nxLogFieldView::Value>> fields;
    ASSERT_EQ(records.size(), 1U);
    const std::size_t textKind = nxLogFieldView::Value(std::string_view()).index();
    records[0].VisitFields(
        [&](const nxLogFieldView& field)
        {
            const bool isText = field.value.index() == textKind;
            fields.emplace_back(field.name, isText ? std::get<std::string_view>(field.value).size() : field.value);
        });
    const decltype(fields) expected = {{"price", nxDecimal("1.5", '.')},
                                       {"own", std::string_view("x  ratio=3").size()},
                                       {"large", large.size()},
                                       {"none", std::monostate()},
                                       {"count", 7ULL}};
    EXPECT_TRUE(fields == expected);
    EXPECT_EQ(records[0].GetText(), "before price=1.5 own=\"x  ratio=3\" large=" + large + " none=NULL count=7 after");
}

TEST(nxLogLineStyle, LinesHaveEveryFormAndTime)
{
    using Time = Style::Time;
    const bool before = nxLogManager::GetInstance().GetLogThreadIndex();
    nxLogManager::GetInstance().SetLogThreadIndex(false);
    struct Row
    {
        const char* zone;
        Style style;
        nxEnumValue level;
        long long second;
        std::string line;
    };
    constexpr long long moment = 1'709'629'623, newYear = 1'704'067'199;  // the last second of 2023, UTC
    const std::string json = R"(","level":"INF","source":"x\"\n.cpp:12","message":"text"})";
    const std::string place = " text [x\"\\x0A.cpp:12]";
    const Row rows[] = {
        {"UTC0", {Style::Full, true}, NX_LOG_LEVEL_INFO, moment, "[INF][05Mar24 09:07:03.123.456]" + place + "\r\n"},
        {"EST5", Style{Style::Full, true}.With(Time::UTC), NX_LOG_LEVEL_INFO, moment,
         "[INF][05Mar24 09:07:03.123.456]" + place + "\r\n"},
        {"EST5", Style{Style::Full, false}.With(Time::ISO), NX_LOG_LEVEL_INFO, moment,
         "[INF][2024-03-05T04:07:03.123456-05:00]" + place + "\n"},
        {"NPT-5:45", Style{Style::TimeAndText, false}.With(Time::ISO), NX_LOG_LEVEL_INFO, newYear,
         "[2024-01-01T05:44:59.123456+05:45] text\n"},
        {"EST5", Style{Style::TimeAndText, false}.With(Time::ISO), NX_LOG_LEVEL_INFO, newYear + 1,
         "[2023-12-31T19:00:00.123456-05:00] text\n"},
        {"EST5", Style{Style::TimeAndText, false}.With(Time::ISOInUTC), NX_LOG_LEVEL_INFO, -1,
         "[1969-12-31T23:59:59.123456Z] text\n"},
        {"UTC0", Style{Style::LevelAndText, false}.WithColour(true), NX_LOG_LEVEL_INFO, moment, "[INF] text\n"},
        {"UTC0", Style{Style::LevelAndText, false}.WithColour(true), NX_LOG_LEVEL_WARNING, moment,
         "\x1B[33m[WRN]\x1B[0m text\n"},
        {"UTC0", Style{Style::Full, false}.WithColour(true), NX_LOG_LEVEL_FATAL, moment,
         "\x1B[1;37;41m[FTL]\x1B[0m[05Mar24 09:07:03.123.456]" + place + "\n"},
        {"EST5",
         {Style::Json, false},
         NX_LOG_LEVEL_INFO,
         moment,
         R"({"time":"2024-03-05T09:07:03.123456Z)" + json + "\n"},
        {"EST5", Style{Style::Json, true}.With(Time::ISO), NX_LOG_LEVEL_INFO, moment,
         R"({"time":"2024-03-05T04:07:03.123456-05:00)" + json + "\r\n"},
    };
    for (const Row& row : rows)
    {
        const nxZoneOfProcess zone(row.zone);
        nxLog record = Record(row.level, row.second);
        record << "text";
        EXPECT_EQ(LineOf(record, row.style), row.line);
    }
    nxLogManager::GetInstance().SetLogThreadIndex(before);
}

TEST(nxLogFormSettings, TakeTheWordsTheyKnow)
{
    using Time = Style::Time;
    using Form = Settings::Form;
    using Colour = Settings::Colour;
    const std::tuple<const char*, const char*, Settings> rows[] = {
        {"NX_LOG_FORM", "json", {.file = Form::Json}},
        {"NX_LOG_CONSOLE_FORM", "JSON", {.console = Form::Json}},
        {"NX_LOG_TIME", "UTC", {.time = Time::UTC}},
        {"NX_LOG_TIME", "Iso", {.time = Time::ISO}},
        {"NX_LOG_TIME", "ISO_UTC", {.time = Time::ISOInUTC}},
        {"NX_LOG_TIME", "ISO-UTC", {}},
        {"NX_LOG_LINE_END", "LF", {.carriageReturn = false}},
        {"NX_LOG_COLOUR", "auto", {.colour = Colour::Auto}},
        {"NX_LOG_COLOUR", "ALWAYS", {.colour = Colour::Always}},
        {"NX_LOG_FORM", "", {}},
    };
    const Settings other{Form::Json, Form::Json, Time::ISO, false, Colour::Always};
    for (const auto& [key, value, settings] : rows)
    {
        setenv(key, value, 1);
        EXPECT_EQ(Settings::Read(), settings) << key << "=" << value;
        unsetenv(key);
    }
    EXPECT_EQ(Settings::Read(other), other);
    nxLogManager& manager = nxLogManager::GetInstance();
    setenv("NO_COLOR", "1", 1);
    manager.Apply({.colour = Colour::Auto});
    EXPECT_EQ(manager.GetFormSettings(), Settings());
    unsetenv("NO_COLOR");
    manager.Apply(other);
    EXPECT_EQ(manager.GetFormSettings(), other);
    manager.Apply(Settings());
}

TEST(nxLogFormSettings, FileAndConsoleFollowThem)
{
    const nxScratchDirectory directory;
    nxLogManager& manager = nxLogManager::GetInstance();
    nxFileLogDevice& file = nxFileLogDevice::GetInstance();
    nxConsoleLogDevice console;
    setenv("QRX_LOG_DIRECTORY", directory.GetPath().c_str(), 1);
    setenv("NX_LOG_LINE_END", "LF", 1);
    ASSERT_TRUE(file.Create(nxValueWrapper<unsigned long long>()));
    const std::string first = file.GetFileName();
    NX_LOG(NX_LOG_LEVEL_INFO) << "text";
    WaitUntilWritten();
    Settings settings = manager.GetFormSettings();
    settings.file = Settings::Form::Json;
    settings.colour = Settings::Colour::Always;
    manager.Apply(settings);
    EXPECT_EQ(console.GetLineSink()->GetLineStyle(), (Style{Style::Full, false}.WithColour(true)));
    NX_LOG(NX_LOG_LEVEL_INFO) << "object" << nxField("n", 1);
    WaitUntilWritten();
    file.CloseAndReopenLogFile();
    const std::string second = file.GetFileName();
    settings.console = Settings::Form::Json;
    manager.Apply(settings);
    EXPECT_EQ(console.GetLineSink()->GetLineStyle(), (Style{Style::Json, false}));
    file.Destroy();
    for (const char* const key : {"QRX_LOG_DIRECTORY", "NX_LOG_LINE_END"})
        unsetenv(key);
    manager.Apply(Settings());
    EXPECT_EQ(console.GetLineSink()->GetLineStyle(), (Style{Style::Full, false}));

    const std::string text = nxReadFile(first);
    EXPECT_EQ(text.find('\r'), std::string::npos);
    EXPECT_NE(text.find("] text [nxLogFormsTest.cpp:"), std::string::npos);
    EXPECT_NE(text.find(R"("message":"object","n":1})"), std::string::npos);
    EXPECT_NE(text.find(R"(Closing log file: )" + first + R"(","file":")" + first + "\"}\n"), std::string::npos);
    EXPECT_NE(nxReadFile(second).find(R"(,"file":")" + second + R"(","previous":")" + first + "\"}\n"),
              std::string::npos);
}
