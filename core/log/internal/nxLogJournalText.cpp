// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogJournalText.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <variant>

#include "core/log/internal/nxLogIdentity.h"
#include "core/time/nxCalendar.h"

namespace
{
constexpr long long secondsOfDay = 86'400;
constexpr std::size_t longestName = 64;  // what a journal takes

void AppendDigits(std::string& text, unsigned number, std::size_t digits)
{
    const std::string plain = std::to_string(number);
    text.append(digits - plain.size(), '0').append(plain);
}

// "2024-03-05T09:07:03.123456Z"; empty for a moment in no year from 1 to 9999.
std::string TimeInUTC(const nxTimeStamp& time)
{
    const long long rest = time.GetSeconds() % secondsOfDay;
    const auto second = static_cast<unsigned>(rest < 0 ? rest + secondsOfDay : rest);
    unsigned year = 0, month = 0, day = 0;
    std::string text;
    if (!nxCalendar::GetDateOfDay(time.GetSeconds() / secondsOfDay - (rest < 0), year, month, day))
        return text;
    const auto append = [&text](unsigned number, std::size_t digits, char end)
    {
        AppendDigits(text, number, digits);
        text += end;
    };
    append(year, 4, '-');
    append(month, 2, '-');
    append(day, 2, 'T');
    append(second / 3600, 2, ':');
    append(second / 60 % 60, 2, ':');
    append(second % 60, 2, '.');
    append(time.GetMicroseconds() % 1'000'000, 6, 'Z');
    return text;
}

std::string GetValueText(const nxLogFieldView::Value& value)
{
    struct Texts
    {
        std::string operator()(std::monostate) const { return "null"; }
        std::string operator()(bool truth) const { return truth ? "true" : "false"; }
        std::string operator()(long long number) const { return std::to_string(number); }
        std::string operator()(unsigned long long number) const { return std::to_string(number); }
        std::string operator()(const nxDecimal& number) const { return number.GetAsLogString('.'); }
        std::string operator()(std::string_view text) const { return std::string(text); }
        std::string operator()(double number) const
        {
            char text[64];
            return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
        }
    };
    return std::visit(Texts(), value);
}
}  // namespace

std::string nxLogJournalText::GetFieldName(std::string_view name)
{
    constexpr std::string_view ours[] = {"MESSAGE", "PRIORITY", "SYSLOG_", "CODE_", "NX_", "OBJECT_"};
    std::string result;
    for (const char c : name)
        result += 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c == '-' || c == '.' ? '_' : c;
    const bool beginsWithLetter = !result.empty() && 'A' <= result[0] && result[0] <= 'Z';
    const auto isBegin = [&result](std::string_view begin) { return result.starts_with(begin); };
    if (!beginsWithLetter || std::any_of(std::begin(ours), std::end(ours), isBegin))
        result.insert(0, "F_");
    result.resize(std::min(result.size(), longestName));
    return result;
}

void nxLogJournalText::AppendRecord(std::string& text, const nxLog& record, const std::string& identifier,
                                    const nxLogLosses* losses)
{
    const nxLogLevelEnum& level = record.GetLogLevel();
    AppendField(text, "MESSAGE", record.GetText());
    AppendField(text, "PRIORITY", std::to_string(nxLogIdentity::GetSeverity(level.GetEnumValue())));
    AppendField(text, "SYSLOG_IDENTIFIER", identifier);
    AppendField(text, "CODE_FILE", record.GetSourceFile());
    AppendField(text, "CODE_LINE", std::to_string(record.GetLineNumber()));
    AppendField(text, "NX_LEVEL", level.GetShortDescription());
    AppendField(text, "NX_THREAD", std::to_string(record.GetThreadIndex()));
    AppendField(text, "NX_TIME", TimeInUTC(record.GetTimeStamp()));
    if (const nxValueWrapper<unsigned> user = record.GetDestinationUserID(); user.IsValid())
        AppendField(text, "NX_USER", std::to_string(static_cast<unsigned>(user)));
    if (const std::string application = record.GetSourceApplication(); !application.empty())
        AppendField(text, "NX_APPLICATION", application);
    if (losses != nullptr)
        return AppendField(text, "NX_LOST", std::to_string(losses->records));
    record.VisitFields([&text](const nxLogFieldView& field)
                       { AppendField(text, GetFieldName(field.name), GetValueText(field.value)); });
}

void nxLogJournalText::AppendField(std::string& text, std::string_view name, std::string_view value)
{
    text.append(name);
    if (value.find('\n') == std::string_view::npos)
        text += '=';
    else
    {
        text += '\n';
        for (std::uint64_t size = value.size(), digit = 0; digit < sizeof size; ++digit, size >>= 8)
            text += static_cast<char>(size & 0xFF);
    }
    text.append(value) += '\n';
}
