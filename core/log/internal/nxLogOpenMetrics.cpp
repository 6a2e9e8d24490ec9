// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogOpenMetrics.h"

#include <utility>

#include "core/platform/nxNanoseconds.h"
#include "core/text/nxPrintableText.h"

namespace
{
// What cannot be shown or is no UTF-8 becomes \xNN first, so that lines stay lines.
void AppendLabelValue(std::string& text, std::string_view value)
{
    for (const char c : nxPrintableText::GetEscaped(value))
    {
        if (c == '"' || c == '\\')
            text += '\\';
        text += c;
    }
}

std::string GetSeconds(std::uint64_t nanoseconds)
{
    constexpr auto perSecond = static_cast<std::uint64_t>(nxNanoseconds::PerSecond);
    const std::string fraction = std::to_string(perSecond + nanoseconds % perSecond);
    return std::to_string(nanoseconds / perSecond).append(".").append(fraction, 1);
}
}  // namespace

void nxLogOpenMetrics::Begin(const Family& family)
{
    _family = family;
    _PutLine("TYPE", family.kind == Family::Kind::Counter ? "counter" : "gauge");
    if (*family.unit != '\0')
        _PutLine("UNIT", family.unit);
    _PutLine("HELP", family.help);
}

void nxLogOpenMetrics::_PutLine(const char* what, const char* text)
{
    _text.append("# ").append(what).append(" ").append(_family.name).append(" ").append(text).append("\n");
}

void nxLogOpenMetrics::Add(std::string_view label, std::string_view labelValue, std::uint64_t value)
{
    _text.append(_family.name);
    if (_family.kind == Family::Kind::Counter)
        _text.append("_total");
    if (!label.empty())
    {
        _text.append("{").append(label).append("=\"");
        AppendLabelValue(_text, labelValue);
        _text.append("\"}");
    }
    _text.append(" ")
        .append(_family.kind == Family::Kind::Nanoseconds ? GetSeconds(value) : std::to_string(value))
        .append("\n");
}

std::string nxLogOpenMetrics::End()
{
    _text.append("# EOF\n");
    return std::exchange(_text, std::string());
}
