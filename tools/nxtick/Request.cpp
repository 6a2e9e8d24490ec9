// SPDX-License-Identifier: Apache-2.0
#include "Request.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <thread>

#include "CommandLine.h"
#include "CsvOptions.h"
#include "Day.h"
#include "Failure.h"
#include "PriceGrid.h"
#include "Text.h"
#include "Words.h"
#include "core/nxVersion.h"

namespace nxtick
{
namespace
{
using Action = Request::Action;

constexpr int mostWorkers = 8;
constexpr unsigned usualWorkers = 2;  // more of them wait for the reading and the writing

// A set of actions, one bit each.
using Actions = unsigned;

constexpr Actions operator|(Action left, Action right)
{
    return 1U << static_cast<unsigned>(left) | 1U << static_cast<unsigned>(right);
}
constexpr Actions operator|(Actions set, Action action) { return set | 1U << static_cast<unsigned>(action); }

constexpr Actions never = 0;
constexpr Actions list = never | Action::List;
constexpr Actions onGrid = Action::Price | Action::Ladder | Action::Snap;
constexpr Actions onTable = onGrid | Action::Bands | Action::Chart;
constexpr Actions shown = list | Action::Bands | Action::Price | Action::Ladder | Action::Snap;

struct OptionRule
{
    std::string_view name;
    bool hasValue;
    Actions actions;             // that it goes with
    Actions requiredBy = never;  // with which it must be given
    const char* purpose = "";    // of a required option
    bool isRepeatable = false;
    std::string_view onlyValue = {};  // that an option without a value may have after "="
};

constexpr OptionRule rules[] = {
    {"help", false, onTable | list},
    {"h", false, onTable | list},
    {"version", false, onTable | list},
    {"list", false, list},
    {"filter", true, list},
    {"status", true, list},
    {"venue", true, list},
    {"format", true, shown},
    {"tables", true, onTable | list},
    {"tables-today", true, onTable | list},
    {"today", true, onTable | list},
    {"quiet", false, onTable},
    {"table", true, onTable},
    {"increment", true, onGrid},
    {"price", true, Action::Price | Action::Ladder, never | Action::Ladder, "the middle of the ladder"},
    {"notation", true, onGrid},
    {"step", true, never | Action::Price},
    {"ladder", true, never | Action::Ladder},
    {"chart", true, never | Action::Chart},
    {"csv", true, never | Action::Snap, never, "", true},
    {"column", true, never | Action::Snap, never | Action::Snap, "the column that holds the prices", true},
    {"out", true, never | Action::Snap},
    {"in-place", false, never | Action::Snap},
    {"check", false, never | Action::Snap, never, "", false, "count"},
    {"separator", true, never | Action::Snap},
    {"quote", true, never | Action::Snap},
    {"decimal-comma", false, never | Action::Snap},
    {"exponents", false, never | Action::Snap},
    {"no-header", false, never | Action::Snap},
    {"add", true, never | Action::Snap, never, "", true},
    {"names", true, never | Action::Snap, never, "", true},
    {"prefix", true, never | Action::Snap},
    {"table-column", true, never | Action::Snap},
    {"mapping", true, never | Action::Snap},
    {"symbol-column", true, never | Action::Snap},
    {"date-column", true, never | Action::Snap},
    {"method", true, never | Action::Snap},
    {"workers", true, never | Action::Snap},
};

constexpr Word<nxEnumValue> methods[] = {
    {"nearest", NX_ROUNDING_METHOD_NEAREST},
    {"modified-nearest", NX_ROUNDING_METHOD_MODIFIED_NEAREST},
    {"up", NX_ROUNDING_METHOD_UP},
    {"down", NX_ROUNDING_METHOD_DOWN},
};

constexpr Word<Request::Format> formats[] = {
    {"text", Request::Format::Text},
    {"csv", Request::Format::Csv},
    {"json", Request::Format::Json},
};

// The words are the values.
constexpr Word<std::string_view> statuses[] = {
    {"given", "given"},     {"published", "published"}, {"derived", "derived"}, {"secondary", "secondary"},
    {"assumed", "assumed"}, {"custom", "custom"},       {"expired", "expired"},
};

const OptionRule* FindRule(const std::string& name)
{
    const auto* const found =
        std::find_if(std::begin(rules), std::end(rules), [&name](const OptionRule& rule) { return rule.name == name; });
    return found == std::end(rules) ? nullptr : found;
}

bool TakesValue(const std::string& name)
{
    const OptionRule* const rule = FindRule(name);
    return rule != nullptr && rule->hasValue;
}

void CheckOption(const std::string& name, const std::vector<std::string>& values)
{
    const OptionRule* const rule = FindRule(name);
    if (rule == nullptr)
    {
        std::set<std::string> known;
        for (const OptionRule& each : rules)
            known.insert(Dashed(each.name));
        throw Failure("unknown option " + Quoted(Dashed(name)) + Suggestion(Dashed(name), known));
    }
    const std::string& value = values.front();
    if (rule->hasValue && std::find(values.begin(), values.end(), "") != values.end())
        throw Failure("option " + Dashed(name) + " needs a value");
    if (!rule->hasValue && !value.empty() && value != rule->onlyValue)
        throw Failure("option " + Dashed(name) + " takes no value " + Quoted(value));
    if (values.size() > 1 && !rule->isRepeatable)
        throw Failure("option " + Dashed(name) + " is given twice");
}

// The action of the run, and the option that chose it.
struct Choice
{
    Action action;
    const char* option;
};

std::optional<Choice> FindChoice(const Options& options)
{
    constexpr Choice choices[] = {
        {Action::List, "list"},     {Action::Chart, "chart"},    {Action::Ladder, "ladder"},
        {Action::Price, "price"},   {Action::Snap, "csv"},       {Action::Snap, "column"},
        {Action::Snap, "out"},      {Action::Snap, "method"},    {Action::Snap, "check"},
        {Action::Snap, "in-place"}, {Action::Snap, "increment"}, {Action::Snap, "table-column"},
        {Action::Snap, "mapping"},  {Action::Bands, "table"},
    };
    for (const Choice& choice : choices)
        if (Has(options, choice.option))
            return choice;
    return std::nullopt;
}

nxDecimal ReadIncrement(const std::string& text)
{
    nxDecimal increment;
    if (const char* const reason = ReadNumber(text, increment); reason != nullptr)
        throw Failure("-increment " + Quoted(text) + " " + reason);
    if (!increment.IsPositive())
        throw Failure("-increment " + Quoted(text) + " is not positive");
    return increment;
}

PriceNotation ReadNotation(const Options& options)
{
    if (Has(options, "exponents"))
        throw Failure("option -exponents does not go with -notation");
    return PriceNotation(Value(options, "notation"));
}

int ReadCount(const Options& options, const char* name, int least, int most)
{
    const std::string text = Value(options, name);
    nxDecimal number;
    if (text.size() <= 9 && number.SetFromString(text, '.').IsOK() && number.GetDecimalPlaces() == 0 &&
        least <= number.GetValue() && number.GetValue() <= most)
        return static_cast<int>(number.GetValue());
    throw Failure(Dashed(name) + " " + Quoted(text) + " is not a whole number from " + std::to_string(least) + " to " +
                  std::to_string(most));
}

unsigned ReadWorkers(const Options& options)
{
    if (Has(options, "workers"))
        return static_cast<unsigned>(ReadCount(options, "workers", 1, mostWorkers));
    return std::clamp(std::thread::hardware_concurrency(), 1U, usualWorkers);
}

std::string ReadToday(const std::string& text)
{
    if (!IsDay(text))
        throw Failure("-today " + Quoted(text) + " is not a day, such as 2026-11-22");
    return text;
}

bool Contains(Actions set, Action action) { return (set | action) == set; }

void CheckGrid(const Options& options, const Choice& choice)
{
    constexpr const char* grids[] = {"table", "increment", "table-column", "mapping"};
    const char* chosen = nullptr;
    for (const char* const grid : grids)
    {
        if (chosen != nullptr && Has(options, grid))
            throw Failure(Dashed(chosen) + " and " + Dashed(grid) + " exclude each other");
        if (Has(options, grid))
            chosen = grid;
    }
    for (const char* const ofTables : {"tables", "tables-today"})
        if (Has(options, ofTables) && Has(options, "increment"))
            throw Failure("option " + Dashed(ofTables) + " does not go with -increment");
    if (chosen == nullptr)
        throw Failure(Dashed(choice.option) + " needs -table ID" +
                      (choice.action == Action::Chart  ? ""
                       : choice.action == Action::Snap ? ", -increment I, -table-column NAME or -mapping FILE"
                                                       : " or -increment I"));
}

void CheckTogether(const Options& options, const Choice& choice)
{
    const bool isGridAlone = choice.action == Action::Bands || std::string_view(choice.option) == "increment";
    if (isGridAlone && Has(options, "step"))
        throw Failure("option -price is missing: where to step from");
    for (const auto& [name, values] : options)
        if (!Contains(FindRule(name)->actions, choice.action))
            throw Failure("option " + Dashed(name) + " does not go with " + Dashed(choice.option));
    if (choice.action != Action::List)
        CheckGrid(options, choice);
    for (const OptionRule& rule : rules)
        if (Contains(rule.requiredBy, choice.action) && !Has(options, rule.name.data()))
            throw Failure("option " + Dashed(rule.name) + " is missing: " + rule.purpose);
}

// What the options say about lists and tables.
void ReadTableOptions(const Options& options, Request& request)
{
    request.todayFile = Value(options, "tables-today");
    request.today = Has(options, "today") ? ReadToday(Value(options, "today")) : Today();
    request.isQuiet = Has(options, "quiet");
    request.venue = Value(options, "venue");
    if (Has(options, "status"))
        request.status = ReadWord(statuses, "status", Value(options, "status"));
    if (Has(options, "format"))
        request.format = ReadWord(formats, "format", Value(options, "format"));
}

void CheckOperands(const CommandLine& line, Action action)
{
    if (line.operands.empty() || action == Action::Snap)
        return;
    const std::string operand = Quoted(line.operands.front());
    if (line.optionBeforeOperand.empty())
        throw Failure(operand + " belongs to no option; try nxtick -help");
    throw Failure("option " + Dashed(line.optionBeforeOperand) + " takes no value, yet " + operand + " follows it");
}
}  // namespace

Request ReadRequest(const char* const* argv)
{
    const CommandLine line = ReadCommandLine(argv, &TakesValue);
    const Options& options = line.options;
    Request request;
    for (const auto& [name, values] : options)
        CheckOption(name, values);
    if (Has(options, "help") || Has(options, "h"))
        return request;
    if (Has(options, "version"))
    {
        request.action = Action::Version;
        return request;
    }
    const std::optional<Choice> choice = FindChoice(options);
    CheckOperands(line, choice ? choice->action : Action::Help);
    if (!choice)
        throw Failure(options.empty() ? "nothing to do; try nxtick -help"
                                      : Dashed(options.begin()->first) + " does nothing by itself; try nxtick -help");
    CheckTogether(options, *choice);

    request.action = choice->action;
    request.table = Value(options, "table");
    request.tablesFile = Value(options, "tables");
    request.filter = Value(options, "filter");
    request.chartFile = Value(options, "chart");
    request.price = Value(options, "price");
    if (Has(options, "increment"))
        request.increment = ReadIncrement(Value(options, "increment"));
    if (Has(options, "notation"))
        request.notation = ReadNotation(options);
    if (Has(options, "step"))
        request.step = ReadCount(options, "step", -1000000, 1000000);
    if (Has(options, "ladder"))
        request.ladder = ReadCount(options, "ladder", 1, 1000);
    if (request.action == Action::Snap)
        request.csv = ReadCsvRequest(line);
    if (request.action == Action::Snap)
        request.csv.workers = ReadWorkers(options);
    if (Has(options, "method"))
        request.csv.method = nxRoundingMethodEnum(ReadWord(methods, "method", Value(options, "method")));
    ReadTableOptions(options, request);
    if (Has(options, "format") && request.csv.check == CsvRequest::Check::None && request.action == Action::Snap)
        throw Failure("option -format needs -check");
    return request;
}

std::string GetHelp()
{
    return "nxtick " NX_CORE_VERSION
           ": prices on an exchange's tick grid\n"
           "\n"
           "  nxtick -list [-filter TEXT] [-status WORD] [-venue TEXT]   the tick tables\n"
           "  nxtick -table ID                         the bands of one\n"
           "  nxtick -table ID -price P [-step N]      tick, neighbours, roundings there\n"
           "  nxtick -table ID -price P -ladder N      N ticks up and down from a price\n"
           "  nxtick -table ID -chart FILE.svg         tick size over price, as a picture\n"
           "  nxtick -table ID -column NAME [FILE...]  snaps columns of prices in CSV files\n"
           "  nxtick -table ID -column NAME -check [FILE...]   lists those off the grid\n"
           "\n"
           "  -increment I   one fixed tick, in place of -table ID; or for each row its own:\n"
           "                 -table-column NAME, or -mapping FILE -symbol-column NAME\n"
           "  -tables FILE   tables of your own, lines of name,band,upper_bound,increment\n"
           "  -notation N    prices as FRACTION:32, MODIFIED:32/4 or DECIMAL:2 write them\n"
           "  -out FILE      or -in-place; else, and without FILE, the standard streams\n"
           "  -method        nearest (the default), modified-nearest, up or down\n"
           "  -separator, -quote, -decimal-comma, -exponents, -no-header: forms of a file\n"
           "\n"
           "  nxtick -increment 0.05 -column Price -csv wti-daily.csv -out snapped.csv\n"
           "  nxtick -table VTT_EURONEXT_07 -price 9.999 -step 2\n"
           "\n"
           "Exit status  0 done, 1 rows were rejected or are off the grid, 2 failed\n"
           "All options: man nxtick\n";
}
}  // namespace nxtick
