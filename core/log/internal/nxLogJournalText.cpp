// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogJournalText.h"

#include <cstddef>
#include <cstdint>

#include "core/log/internal/nxLogIdentity.h"
#include "core/time/nxCalendar.h"

namespace
{
constexpr long long secondsOfDay = 86'400;

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
}  // namespace

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
        AppendField(text, "NX_LOST", std::to_string(losses->records));
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
