#include "core/log/nxLogLine.h"

#include <string_view>

#include "core/log/nxLog.h"
#include "core/log/nxLogManager.h"

namespace
{
constexpr std::size_t maximumMessage = std::size_t{1} << 20;

void AppendEscaped(std::string& line, std::string_view text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    for (const char character : text)
    {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte >= 0x20 && byte != 0x7F) || byte == '\t')
            line.push_back(character);
        else
            line.append({'\\', 'x', digits[byte >> 4], digits[byte & 15]});
    }
}

void AppendTime(std::string& line, const nxTimeStamp& time)
{
    char text[nxTimeStamp::TextSize];
    if (time.GetAsStringFast(text, sizeof text) != 0)
        line.append(text);
}
}  // namespace

void nxLogLine::Append(std::string& lines, const nxLog& record, const nxLogLineStyle& style)
{
    lines += '[';
    if (style.form == nxLogLineStyle::TimeAndText)
        AppendTime(lines, record.GetTimeStamp());
    else
        lines += record.GetLogLevel().GetShortDescription();
    if (style.form == nxLogLineStyle::Full)
    {
        lines += "][";
        AppendTime(lines, record.GetTimeStamp());
        if (nxLogManager::GetInstance().GetLogThreadIndex())
            lines.append("][").append(std::to_string(record.GetThreadIndex()));
    }
    lines += "] ";
    const std::string text = record.GetText();
    AppendEscaped(lines, std::string_view(text).substr(0, maximumMessage));
    if (text.size() > maximumMessage)
        lines += " [cut]";
    if (style.form == nxLogLineStyle::Full)
    {
        lines += " [";
        AppendEscaped(lines, record.GetSourceFile());
        lines.append(":").append(std::to_string(record.GetLineNumber())).append("]");
    }
    lines += style.carriageReturn ? "\r\n" : "\n";
}
