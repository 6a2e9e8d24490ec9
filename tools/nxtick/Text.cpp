// SPDX-License-Identifier: Apache-2.0
#include "Text.h"

#include <algorithm>

#include "core/text/nxAlgorithm.h"
#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

namespace nxtick
{
namespace
{
constexpr std::size_t lineWidth = 78;

// Characters that look like a blank or like nothing: no-break spaces, the soft hyphen, zero width spaces and joiners.
constexpr std::string_view invisibles[] = {"\u00A0", "\u00AD", "\u2007", "\u200B", "\u200C",
                                           "\u200D", "\u202F", "\u2060", "\uFEFF"};

std::string Hex(std::string_view bytes)
{
    std::string text;
    for (const char c : bytes)
        nxAlgorithm::AppendAsHex(static_cast<unsigned char>(c), text += "\\x");
    return text;
}

// Where the decimals begin: the point itself, or the end of a text without one.
std::size_t PointOf(const std::string& text) { return std::min(text.find('.'), text.size()); }

struct Width
{
    std::size_t before = 0;  // the point
    std::size_t after = 0;
    std::size_t total = 0;
};

std::string Padded(const std::string& cell, const Width& width, bool onPoint, bool rightAligned)
{
    const std::size_t total = std::max(width.total, width.before + width.after);
    const std::size_t behind = onPoint ? width.after - (cell.size() - PointOf(cell)) : 0;
    std::string text(onPoint || rightAligned ? total - cell.size() - behind : 0, ' ');
    text += cell;
    text.resize(total, ' ');
    return text;
}
}  // namespace

std::string DecimalText(const nxDecimal& value, char point)
{
    nxOStream<nxSimpleAsciiStringWriter> stream;
    value.Write(stream, point);
    return stream.GetWriter().GetText();
}

std::string CountText(std::uint64_t count)
{
    std::string text = std::to_string(count);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

std::string Quoted(std::string_view text)
{
    std::string quoted = nxPrintableText::GetQuoted(text);
    for (const std::string_view invisible : invisibles)
        for (std::size_t at = 0; (at = quoted.find(invisible, at)) != std::string::npos;)
            quoted.replace(at, invisible.size(), Hex(invisible));
    return quoted;
}

std::string Suggestion(const std::string& wrong, const std::set<std::string>& candidates)
{
    const std::vector<std::string> near = nxAlgorithm::GetNearMatches(candidates, wrong);
    if (near.empty())
        return {};
    std::string text = "; did you mean ";
    for (std::size_t i = 0; i < near.size(); ++i)
        text.append(i == 0 ? "" : i + 1 == near.size() ? " or " : ", ").append(Quoted(near[i]));
    return text += "?";
}

std::vector<std::string> ColumnLines(const std::vector<std::vector<std::string>>& rows,
                                     const std::set<std::size_t>& rightAligned, const std::set<std::size_t>& onPoint)
{
    // A heading is aligned on the right above numbers, and on the left above texts.
    const auto isOnPoint = [&](const auto& row, std::size_t i)
    { return &row != &rows.front() && onPoint.count(i) != 0; };
    std::vector<Width> widths;
    for (const std::vector<std::string>& row : rows)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            const std::size_t before = isOnPoint(row, i) ? PointOf(row[i]) : 0;
            widths[i].before = std::max(widths[i].before, before);
            widths[i].after = std::max(widths[i].after, isOnPoint(row, i) ? row[i].size() - before : 0);
            widths[i].total = std::max(widths[i].total, row[i].size());
        }
    }
    std::vector<std::string> lines;
    for (const std::vector<std::string>& row : rows)
    {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += (i == 0 ? "" : "  ") +
                    Padded(row[i], widths[i], isOnPoint(row, i), rightAligned.count(i) + onPoint.count(i) != 0);
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::set<std::size_t>& rightAligned,
                    const std::set<std::size_t>& onPoint)
{
    std::string text;
    for (const std::string& line : ColumnLines(rows, rightAligned, onPoint))
        text += line + "\n";
    return text;
}

std::string Wrapped(const std::string& text)
{
    std::string lines;
    std::string_view rest = text;
    while (!rest.empty())
    {
        std::size_t size = rest.size();
        if (size > lineWidth)
        {
            const std::size_t blank = rest.rfind(' ', lineWidth);
            size = blank == std::string_view::npos ? lineWidth : blank;
        }
        lines.append(rest.substr(0, size)) += "\n";
        rest.remove_prefix(std::min(rest.size(), rest.find_first_not_of(' ', size)));
    }
    return lines;
}
}  // namespace nxtick
