#include "Text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

namespace nxtick
{
namespace
{
constexpr std::size_t longestQuoted = 40;
constexpr std::size_t mostSuggestions = 3;

// How many single-character changes turn one text into the other, the case of letters aside.
std::size_t EditDistance(const std::string& a, const std::string& b)
{
    const auto lower = [](char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const std::size_t replaced = diagonal + (lower(a[i - 1]) == lower(b[j - 1]) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

// Where the decimals begin: the point itself, or the end of a text without one.
std::size_t PointOf(const std::string& text) { return std::min(text.find('.'), text.size()); }

struct Width
{
    std::size_t before = 0;  // the point
    std::size_t after = 0;
};

std::string Padded(const std::string& cell, Width width, bool onPoint, bool rightAligned)
{
    const std::size_t before = onPoint ? PointOf(cell) : rightAligned ? cell.size() : 0;
    const std::size_t total = width.before + width.after;
    std::string text(onPoint || rightAligned ? width.before - before : 0, ' ');
    text += cell;
    text.resize(std::max(total, text.size()), ' ');
    return text;
}
}  // namespace

std::string DecimalText(const nxDecimal& value)
{
    nxOStream<nxSimpleAsciiStringWriter> stream;
    value.Write(stream, '.');
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
    constexpr char digits[] = "0123456789ABCDEF";
    std::string quoted = "'";
    for (const char c : text.substr(0, longestQuoted))
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F)
            quoted.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
        else
            quoted += c;
    }
    return quoted += text.size() > longestQuoted ? "...'" : "'";
}

std::string Suggestion(const std::string& wrong, const std::set<std::string>& candidates)
{
    // A third of the text may differ, two characters in a short one, but never all of it.
    const std::size_t bound =
        std::min(std::max<std::size_t>(2, wrong.size() / 3), std::max<std::size_t>(1, wrong.size()) - 1);
    std::vector<std::pair<std::size_t, std::string>> near;
    if (wrong.size() <= longestQuoted)
        for (const std::string& candidate : candidates)
            if (const std::size_t distance = EditDistance(wrong, candidate); distance <= bound)
                near.emplace_back(distance, candidate);
    if (near.empty())
        return {};
    std::sort(near.begin(), near.end());

    // Those as near as the best, and a little beyond: a far third only distracts.
    const std::size_t farthest = near.front().first + 1;
    std::size_t count = 0;
    while (count < near.size() && count < mostSuggestions && near[count].first <= farthest)
        ++count;
    std::string text = "; did you mean ";
    for (std::size_t i = 0; i < count; ++i)
        text.append(i == 0 ? "" : i + 1 == count ? " or " : ", ").append(near[i].second);
    return text += "?";
}

std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::set<std::size_t>& rightAligned,
                    const std::set<std::size_t>& onPoint)
{
    std::vector<Width> widths;
    for (const std::vector<std::string>& row : rows)
    {
        const bool isHeading = &row == &rows.front();
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            const std::size_t before = onPoint.count(i) != 0 && !isHeading ? PointOf(row[i]) : row[i].size();
            widths[i].before = std::max(widths[i].before, before);
            if (onPoint.count(i) != 0 && !isHeading)
                widths[i].after = std::max(widths[i].after, row[i].size() - before);
        }
    }
    std::string text;
    for (const std::vector<std::string>& row : rows)
    {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            const bool isHeading = &row == &rows.front();
            line += Padded(row[i], widths[i], onPoint.count(i) != 0 && !isHeading,
                           rightAligned.count(i) != 0 || (onPoint.count(i) != 0 && isHeading));
            line += "  ";
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}
}  // namespace nxtick
