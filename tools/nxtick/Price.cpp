// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "Failure.h"
#include "GridChoice.h"
#include "OutputFile.h"
#include "PriceGrid.h"
#include "Records.h"
#include "Terminal.h"
#include "Text.h"

namespace nxtick
{
namespace
{
using Rows = std::vector<std::vector<std::string>>;

nxDecimal ReadPrice(const PriceGrid& grid, const Request& request)
{
    nxDecimal price;
    if (const char* const reason = request.notation.Read(grid, request.price, price); reason != nullptr)
        throw Failure("-price " + Quoted(request.price) + " " + reason);
    return price;
}

nxDecimal Rounded(PriceGrid& grid, nxEnumValue method, nxDecimal price)
{
    grid.Round(nxRoundingMethodEnum(method), price);
    return price;
}

nxDecimal Moved(PriceGrid& grid, int ticks, nxDecimal price)
{
    grid.CheckReach(price, ticks);
    grid.Step(price, ticks);
    return price;
}

std::string TicksText(int ticks)
{
    const int count = ticks < 0 ? -ticks : ticks;
    return std::to_string(count) + (count == 1 ? " tick " : " ticks ") + (ticks < 0 ? "down" : "up");
}

// A step of a ladder: a price, its tick, and what there is to say about it.
struct Rung
{
    nxDecimal price;
    nxDecimal tick;
    bool isMiddle = false;
    bool isOnGrid = true;
};

std::vector<Rung> MakeLadder(PriceGrid& grid, const nxDecimal& middle, int ticks)
{
    std::vector<Rung> rungs;
    nxDecimal price = middle;
    for (int i = 0; i < ticks; ++i)
    {
        grid.CheckReach(price, ticks - i + 1);
        price = grid.GetAbove(price);
        rungs.push_back({price, grid.GetTick(price)});
    }
    std::reverse(rungs.begin(), rungs.end());
    rungs.push_back({middle, grid.GetTick(middle), true, grid.IsOnGrid(middle)});
    price = middle;
    for (int i = 0; i < ticks; ++i)
    {
        grid.CheckReach(price, ticks - i + 1);
        price = grid.GetBelow(price);
        rungs.push_back({price, grid.GetTick(price)});
    }
    return rungs;
}

std::string ChangeText(const nxDecimal& above, const nxDecimal& below)
{
    return "--- ticks of " + DecimalText(above) + " above, " + DecimalText(below) + " below ---";
}

std::string LadderText(const GridChoice& choice, const PriceNotation& notation, const nxDecimal& middle,
                       const std::vector<Rung>& rungs)
{
    Rows rows = {{"", "price", "tick"}};
    for (const Rung& rung : rungs)
        rows.push_back({rung.isMiddle ? ">" : "", notation.GetText(rung.price), DecimalText(rung.tick),
                        rung.isOnGrid ? "" : "off the grid"});
    const std::vector<std::string> lines = ColumnLines(rows, {}, {1, 2});

    const Terminal terminal;
    std::string text =
        terminal.Styled(Terminal::Style::Bold, choice.GetName() + " around " + notation.GetText(middle)) + "\n\n" +
        terminal.Styled(Terminal::Style::Faint, lines.front()) + "\n";
    for (std::size_t i = 0; i < rungs.size(); ++i)
    {
        if (i > 0 && rungs[i].tick != rungs[i - 1].tick)
            text += terminal.Styled(Terminal::Style::Marked, ChangeText(rungs[i - 1].tick, rungs[i].tick)) + "\n";
        text += (rungs[i].isMiddle ? terminal.Styled(Terminal::Style::Bold, lines[i + 1]) : lines[i + 1]) + "\n";
    }
    return text;
}

// A number for programs is one in plain decimals.
Records::Kind GetKind(const PriceNotation& notation)
{
    return notation.IsPlain() ? Records::Kind::Number : Records::Kind::Text;
}

Records LadderRecords(const std::string& table, const PriceNotation& notation, const std::vector<Rung>& rungs)
{
    using Kind = Records::Kind;
    Records records({{"table"},
                     {"price", GetKind(notation)},
                     {"tick", Kind::Number},
                     {"given", Kind::Truth},
                     {"on_grid", Kind::Truth}});
    for (const Rung& rung : rungs)
        records.Add({table, notation.GetText(rung.price), DecimalText(rung.tick), TruthText(rung.isMiddle),
                     TruthText(rung.isOnGrid)});
    return records;
}

// The names of an answer, for people and for programs.
struct Answer
{
    const char* title;
    std::string_view name;
    std::string text;
};

// The tick, which is no price, and the prices that follow from the price.
std::vector<Answer> Answers(PriceGrid& grid, const PriceNotation& notation, const nxDecimal& price)
{
    const auto rounded = [&](nxEnumValue method) { return notation.GetText(Rounded(grid, method, price)); };
    return {
        {"tick", "tick", DecimalText(grid.GetTick(price))},
        {"next below", "below", notation.GetText(grid.GetBelow(price))},
        {"next above", "above", notation.GetText(grid.GetAbove(price))},
        {"nearest", "nearest", rounded(NX_ROUNDING_METHOD_NEAREST)},
        {"modified nearest", "modified_nearest", rounded(NX_ROUNDING_METHOD_MODIFIED_NEAREST)},
        {"rounded up", "rounded_up", rounded(NX_ROUNDING_METHOD_UP)},
        {"rounded down", "rounded_down", rounded(NX_ROUNDING_METHOD_DOWN)},
    };
}

Records PriceRecords(const std::string& table, bool isOnGrid, const std::string& price,
                     const std::vector<Answer>& answers, const Request& request, const std::string& stepped)
{
    constexpr auto number = Records::Kind::Number;
    const Records::Kind priceKind = GetKind(request.notation);
    std::vector<Records::Column> columns = {{"table"}, {"price", priceKind}, {"on_grid", Records::Kind::Truth}};
    std::vector<std::string> cells = {table, price, TruthText(isOnGrid)};
    for (const Answer& answer : answers)
    {
        columns.push_back({answer.name, answer.name == "tick" ? number : priceKind});
        cells.push_back(answer.text);
    }
    columns.push_back({"step", number});
    columns.push_back({"stepped", priceKind});
    cells.push_back(request.step ? std::to_string(*request.step) : "");
    cells.push_back(stepped);
    Records records(std::move(columns));
    records.Add(std::move(cells));
    return records;
}
}  // namespace

int Price(const Request& request)
{
    const GridChoice choice(request);
    PriceGrid& grid = choice.GetGrid();
    const nxDecimal price = ReadPrice(grid, request);
    const bool isOnGrid = grid.IsOnGrid(price);
    const std::string text = request.notation.GetText(price);
    const std::vector<Answer> answers = Answers(grid, request.notation, price);
    const std::string stepped = request.step ? request.notation.GetText(Moved(grid, *request.step, price)) : "";
    if (request.format != Request::Format::Text)
    {
        const std::string table = request.table.empty() ? "" : choice.GetName();
        OutputFile::Print(PriceRecords(table, isOnGrid, text, answers, request, stepped).GetText(request.format));
        return 0;
    }
    Rows rows;
    for (const Answer& answer : answers)
        rows.push_back({answer.title, answer.text});
    if (request.step)
        rows.push_back({TicksText(*request.step), stepped});
    OutputFile::Print(Terminal().Styled(Terminal::Style::Bold, choice.GetName() + " at " + text) +
                      (isOnGrid ? ", on the grid\n\n" : ", off the grid\n\n") + Columns(rows, {}, {1}));
    return 0;
}

int Ladder(const Request& request)
{
    const GridChoice choice(request);
    PriceGrid& grid = choice.GetGrid();
    const nxDecimal middle = ReadPrice(grid, request);
    const std::vector<Rung> rungs = MakeLadder(grid, middle, request.ladder);
    const std::string table = request.table.empty() ? "" : choice.GetName();
    OutputFile::Print(request.format == Request::Format::Text
                          ? LadderText(choice, request.notation, middle, rungs)
                          : LadderRecords(table, request.notation, rungs).GetText(request.format));
    return 0;
}
}  // namespace nxtick
