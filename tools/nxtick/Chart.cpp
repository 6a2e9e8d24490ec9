// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Commands.h"
#include "OutputFile.h"
#include "Text.h"
#include "TickTables.h"

namespace nxtick
{
namespace
{
constexpr double width = 960;
constexpr double height = 540;
constexpr double left = 96;
constexpr double right = 912;
constexpr double top = 100;
constexpr double bottom = 476;

// Plain colours first, because not every viewer knows variables or the reader's choice of a dark page.
constexpr char style[] =
    "<style>text{font-family:'DejaVu Sans',Verdana,Helvetica,sans-serif;font-size:13px;fill:#57606a}"
    ".page{fill:#ffffff}.title{font-size:20px;font-weight:bold;fill:#1f2328}.tick{font-size:12px;fill:#0b57d0}.doubt{"
    "fill:#b42318;font-weight:bold}"
    ".grid{stroke:#d0d7de;stroke-width:1}.fine{stroke:#eef1f4;stroke-width:1}"
    ".line{stroke:#0b57d0;stroke-width:3;stroke-linecap:round}"
    ".rise{stroke:#0b57d0;stroke-width:1;stroke-dasharray:3 4}.bound{fill:#0b57d0}\n"
    "@media (prefers-color-scheme:dark){text{fill:#98a3af}.page{fill:#0f141a}.title{fill:#dde3ea}.grid{stroke:#313a45}"
    ".fine{stroke:#1d242c}.line,.rise{stroke:#7db4ff}.tick,.bound{fill:#7db4ff}.doubt{fill:#ff8a7a}}</style>\n";

// A character as XML allows it; empty for bytes that are not a character.
std::string_view Escaped(std::string_view character)
{
    if (character == "&")
        return "&amp;";
    if (character == "<")
        return "&lt;";
    if (character == ">")
        return "&gt;";
    const bool isNone = character.empty() || character == "\xEF\xBF\xBE" || character == "\xEF\xBF\xBF";
    return isNone ? "\xEF\xBF\xBD" : static_cast<unsigned char>(character.front()) < 0x20 ? " " : character;
}

std::string EscapedText(std::string_view text)
{
    std::string escaped;
    while (!text.empty())
    {
        const std::size_t size = nxPrintableText::GetCharacterSize(text);
        escaped += Escaped(text.substr(0, size));
        text.remove_prefix(std::max<std::size_t>(1, size));
    }
    return escaped;
}

// A coordinate, to a tenth of a pixel.
std::string Pixels(double value) { return DecimalText(nxDecimal(value, 1)); }

// One logarithmic axis.
struct Axis
{
    double low;  // values
    double high;
    double start;  // pixels
    double end;

    double At(double value) const
    {
        const double share = std::log10(value / low) / std::log10(high / low);
        return start + (end - start) * std::clamp(share, 0.0, 1.0);
    }
};

// A line across an axis: 2 * 10^-3 for example.
struct Mark
{
    int digit;
    int exponent;
    double value;
    bool hasLabel;
};

// 0.002 or 2,000.
std::string NumberText(const Mark& mark)
{
    if (mark.exponent < 0)
        return DecimalText(
            nxDecimal::ConstructFromValueAndDecimalPlaces(mark.digit, static_cast<unsigned char>(-mark.exponent)));
    std::string text = std::to_string(mark.digit) + std::string(static_cast<std::size_t>(mark.exponent), '0');
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

// All one-digit numbers on the axis. The powers of ten have labels, on a very long axis not all of them, and on a short
// one the twos and fives too.
std::vector<Mark> Marks(const Axis& axis)
{
    const bool isShort = axis.high / axis.low < 2000;
    const auto first = static_cast<int>(std::floor(std::log10(axis.low)));
    const auto last = static_cast<int>(std::ceil(std::log10(axis.high)));
    const int labelEvery = 1 + (last - first) / 12;
    std::vector<Mark> marks;
    for (int exponent = first; exponent <= last; ++exponent)
        for (int digit = 1; digit <= 9; ++digit)
            if (const double value = digit * std::pow(10.0, exponent);
                axis.low * 0.999 <= value && value <= axis.high * 1.001)
                marks.push_back(
                    {digit, exponent, value,
                     (digit == 1 && exponent % labelEvery == 0) || (isShort && (digit == 2 || digit == 5))});
    return marks;
}

struct Band
{
    double lower;  // of the axis for the first band
    double upper;
    nxDecimal tick;
    bool isTop;
};

double PowerBelow(double value) { return std::pow(10.0, std::floor(std::log10(value) + 1e-9)); }
double PowerAbove(double value) { return std::pow(10.0, std::ceil(std::log10(value) - 1e-9)); }

// Whole powers of ten around the bounds, with room for the open bands at both ends.
Axis PriceAxis(const nxVariableTickTable& table)
{
    const auto& ranges = table.GetRangeData();
    if (ranges.size() == 1)
    {
        const double low = PowerBelow(ranges.front().second.GetAsDouble());
        return {low, low * 10000, left, right};
    }
    return {PowerBelow(ranges.front().first.GetAsDouble() / 2),
            PowerAbove(ranges[ranges.size() - 2].first.GetAsDouble() * 2), left, right};
}

Axis TickAxis(const nxVariableTickTable& table)
{
    double smallest = table.GetRangeData().front().second.GetAsDouble();
    double largest = smallest;
    for (const auto& [bound, increment] : table.GetRangeData())
    {
        smallest = std::min(smallest, increment.GetAsDouble());
        largest = std::max(largest, increment.GetAsDouble());
    }
    // A little space below the lowest step and above the highest one, which has its label there.
    return {smallest / 2, largest * 2.5, bottom, top};
}

std::vector<Band> MakeBands(const nxVariableTickTable& table, const Axis& prices)
{
    std::vector<Band> bands;
    double lower = prices.low;
    for (const auto& [bound, increment] : table.GetRangeData())
    {
        const bool isTop = bands.size() + 1 == table.GetRangeData().size();
        const double upper = isTop ? prices.high : bound.GetAsDouble();
        bands.push_back({lower, upper, increment, isTop});
        lower = upper;
    }
    return bands;
}

std::string Line(const char* kind, double x1, double y1, double x2, double y2)
{
    return std::string("<line class='") + kind + "' x1='" + Pixels(x1) + "' y1='" + Pixels(y1) + "' x2='" + Pixels(x2) +
           "' y2='" + Pixels(y2) + "'/>\n";
}

std::string Label(const char* kind, double x, double y, const char* anchor, const std::string& text)
{
    return std::string("<text class='") + kind + "' x='" + Pixels(x) + "' y='" + Pixels(y) + "' text-anchor='" +
           anchor + "'>" + EscapedText(text) + "</text>\n";
}

std::string PriceGridLines(const Axis& axis)
{
    std::string svg;
    for (const Mark& mark : Marks(axis))
    {
        const double x = axis.At(mark.value);
        svg += Line(mark.digit == 1 ? "grid" : "fine", x, top, x, bottom);
        if (mark.hasLabel)
            svg += Label("axis", x, bottom + 20, "middle", NumberText(mark));
    }
    return svg;
}

std::string TickGridLines(const Axis& axis)
{
    std::string svg;
    for (const Mark& mark : Marks(axis))
    {
        const double y = axis.At(mark.value);
        svg += Line(mark.digit == 1 ? "grid" : "fine", left, y, right, y);
        if (mark.hasLabel)
            svg += Label("axis", left - 10, y + 4, "end", NumberText(mark));
    }
    return svg;
}

// As the axis writes it, without the zeros that only say how prices are shown.
std::string TickText(nxDecimal tick)
{
    tick.Normalise(0);
    return DecimalText(tick);
}

// The steps: a dot where a band ends says that its bound belongs to it.
std::string Steps(const std::vector<Band>& bands, const Axis& prices, const Axis& ticks)
{
    std::string svg;
    double labelsEnd = 0;
    for (std::size_t i = 0; i < bands.size(); ++i)
    {
        const double x1 = prices.At(bands[i].lower);
        const double x2 = prices.At(bands[i].upper);
        const double y = ticks.At(bands[i].tick.GetAsDouble());
        if (i > 0)
            svg += Line("rise", x1, ticks.At(bands[i - 1].tick.GetAsDouble()), x1, y);
        svg += Line("line", x1, y, x2, y);
        if (!bands[i].isTop)
            svg += "<circle class='bound' cx='" + Pixels(x2) + "' cy='" + Pixels(y) + "' r='4'/>\n";
        const std::string text = TickText(bands[i].tick);
        const double half = static_cast<double>(text.size()) * 3.9;
        const double middle = (x1 + x2) / 2;
        if (middle - half > labelsEnd || (i > 0 && bands[i - 1].tick != bands[i].tick && x2 - x1 > half))
        {
            svg += Label("tick", middle, y - 9, "middle", text);
            labelsEnd = middle + half + 6;
        }
    }
    return svg;
}

std::string Subtitle(const TableEntry& entry)
{
    const std::size_t count = entry.table->GetRangeData().size();
    const std::string_view source = nxPrintableText::Cut(entry.facts.source, 80);
    return "Tick size over price, " + std::to_string(count) + (count == 1 ? " band; " : " bands; ") +
           entry.facts.status + ": " + std::string(source) + (source.size() < entry.facts.source.size() ? "..." : "");
}

// Until when the table counts, and what is doubtful about it.
std::string Validity(const TableFacts& facts)
{
    if (const std::string doubt = GetDoubt(facts); !doubt.empty())
        return Label("doubt", left, 79, "start", "This table: " + doubt);
    return facts.expires.empty()
               ? ""
               : Label("axis", left, 79, "start", "Looked up on " + facts.lookedUp + ", expires on " + facts.expires);
}

std::string Picture(const TableEntry& entry)
{
    const Axis prices = PriceAxis(*entry.table);
    const Axis ticks = TickAxis(*entry.table);
    const std::string size = Pixels(width) + " " + Pixels(height);
    return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 " + size + "' width='960' height='540'>\n" + style +
           "<rect class='page' width='100%' height='100%'/>\n" + Label("title", left, 36, "start", entry.id) +
           Label("axis", left, 60, "start", Subtitle(entry)) + Validity(entry.facts) + PriceGridLines(prices) +
           TickGridLines(ticks) + Steps(MakeBands(*entry.table, prices), prices, ticks) +
           Label("axis", (left + right) / 2, bottom + 46, "middle", "price") +
           // A logarithmic axis has no place for 0, where the lowest band begins.
           Label("axis", left, bottom + 38, "middle", "down to 0") + Label("axis", left - 10, top - 6, "end", "tick") +
           "</svg>\n";
}
}  // namespace

int Chart(const Request& request)
{
    const TickTables tables(request);
    const TableEntry& entry = tables.Find(request.table);
    tables.Warn(entry);
    OutputFile output(request.chartFile);
    output.Append(Picture(entry));
    output.Complete();
    return 0;
}
}  // namespace nxtick
