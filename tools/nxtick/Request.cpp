#include "Request.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>

#include "Failure.h"
#include "PriceGrid.h"
#include "Text.h"
#include "core/nxVersion.h"

namespace nxtick
{
namespace
{
using Action = Request::Action;
using Options = std::map<std::string, std::string>;

struct OptionRule
{
    std::string_view name;
    bool hasValue;
    std::string_view actions;  // the letters of the actions that it goes with, as in LetterOf
};

// One letter for each action: List, Bands, Price, laDder, Chart, Snap.
constexpr OptionRule rules[] = {
    {"help", false, "LBPDCS"},
    {"-help", false, "LBPDCS"},
    {"h", false, "LBPDCS"},
    {"version", false, "LBPDCS"},
    {"-version", false, "LBPDCS"},
    {"list", false, "L"},
    {"filter", true, "L"},
    {"tables", true, "LBPDCS"},
    {"table", true, "BPDCS"},
    {"increment", true, "PDS"},
    {"price", true, "PD"},
    {"step", true, "P"},
    {"ladder", true, "D"},
    {"chart", true, "C"},
    {"csv", true, "S"},
    {"column", true, "S"},
    {"out", true, "S"},
    {"method", true, "S"},
};

struct Method
{
    std::string_view name;
    nxEnumValue value;
};

constexpr Method methods[] = {
    {"nearest", NX_ROUNDING_METHOD_NEAREST},
    {"modified-nearest", NX_ROUNDING_METHOD_MODIFIED_NEAREST},
    {"up", NX_ROUNDING_METHOD_UP},
    {"down", NX_ROUNDING_METHOD_DOWN},
};

// An option as the user writes it.
std::string Dashed(std::string_view name)
{
    std::string text = "-";
    return text += name;
}

bool Has(const Options& options, const char* name) { return options.count(name) != 0; }

std::string Value(const Options& options, const char* name)
{
    const auto found = options.find(name);
    return found == options.end() ? std::string() : found->second;
}

const OptionRule* FindRule(const std::string& name)
{
    const auto* const found =
        std::find_if(std::begin(rules), std::end(rules), [&name](const OptionRule& rule) { return rule.name == name; });
    return found == std::end(rules) ? nullptr : found;
}

void CheckOption(const std::string& name, const std::string& value)
{
    const OptionRule* const rule = FindRule(name);
    if (name.empty())
        throw Failure("'-' is no file name here; without -csv and -out, standard input and output are used");
    if (rule == nullptr)
    {
        std::set<std::string> known;
        for (const OptionRule& each : rules)
            if (each.name.front() != '-')
                known.insert(Dashed(each.name));
        throw Failure("unknown option " + Quoted(Dashed(name)) + Suggestion(Dashed(name), known));
    }
    if (rule->hasValue && value.empty())
        throw Failure("option " + Dashed(name) + " needs a value");
    if (!rule->hasValue && !value.empty())
        throw Failure("option " + Dashed(name) + " takes no value, yet " + Quoted(value) + " follows it");
}

// A value that begins with a dash is a number and so the name of no option.
void CheckOnce(const char* const* argv)
{
    std::set<std::string> seen;
    for (; *argv != nullptr; ++argv)
        if (const std::string word = *argv;
            word[0] == '-' && FindRule(word.substr(1)) != nullptr && !seen.insert(word).second)
            throw Failure("option " + word + " stands there twice");
}

char LetterOf(Action action)
{
    switch (action)
    {
        case Action::List:
            return 'L';
        case Action::Bands:
            return 'B';
        case Action::Price:
            return 'P';
        case Action::Ladder:
            return 'D';
        case Action::Chart:
            return 'C';
        case Action::Snap:
            return 'S';
        case Action::Help:
        case Action::Version:
            break;
    }
    return ' ';
}

// What the run does, by the option that asks for it most clearly.
struct Choice
{
    Action action;
    const char* option;
};

std::optional<Choice> FindChoice(const Options& options)
{
    constexpr Choice choices[] = {
        {Action::List, "list"},      {Action::Chart, "chart"}, {Action::Ladder, "ladder"}, {Action::Price, "price"},
        {Action::Snap, "csv"},       {Action::Snap, "column"}, {Action::Snap, "out"},      {Action::Snap, "method"},
        {Action::Snap, "increment"}, {Action::Bands, "table"},
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

nxRoundingMethodEnum ReadMethod(const std::string& text)
{
    std::set<std::string> known;
    for (const Method& method : methods)
    {
        if (method.name == text)
            return nxRoundingMethodEnum(method.value);
        known.insert(std::string(method.name));
    }
    const std::string suggestion = Suggestion(text, known);
    throw Failure("unknown method " + Quoted(text) +
                  (suggestion.empty() ? "; there are nearest, modified-nearest, up and down" : suggestion));
}

void CheckTogether(const Options& options, const Choice& choice)
{
    const bool isGridAlone = choice.action == Action::Bands || std::string_view(choice.option) == "increment";
    if (isGridAlone && Has(options, "step"))
        throw Failure("option -price is missing: where to step from");
    const char letter = LetterOf(choice.action);
    for (const auto& [name, value] : options)
        if (FindRule(name)->actions.find(letter) == std::string_view::npos)
            throw Failure("option " + Dashed(name) + " does not go with " + Dashed(choice.option));
    if (choice.action == Action::List)
        return;
    if (Has(options, "table") && Has(options, "increment"))
        throw Failure("-table and -increment exclude each other");
    if (Has(options, "tables") && Has(options, "increment"))
        throw Failure("option -tables does not go with -increment");
    if (!Has(options, "table") && !Has(options, "increment"))
        throw Failure(Dashed(choice.option) + " needs -table ID" +
                      (choice.action == Action::Chart ? "" : " or -increment I"));
    if (choice.action == Action::Ladder && !Has(options, "price"))
        throw Failure("option -price is missing: the middle of the ladder");
    if (choice.action == Action::Snap && !Has(options, "column"))
        throw Failure("option -column is missing: the column that holds the prices");
}
}  // namespace

Request ReadRequest(const Options& options, const std::vector<std::string>& words, const char* const* argv)
{
    Request request;
    for (const auto& [name, value] : options)
        CheckOption(name, value);
    if (!words.empty())
        throw Failure(Quoted(words.front()) + " belongs to no option; try nxtick -help");
    if (Has(options, "help") || Has(options, "-help") || Has(options, "h"))
        return request;
    if (Has(options, "version") || Has(options, "-version"))
    {
        request.action = Action::Version;
        return request;
    }
    CheckOnce(argv);
    const std::optional<Choice> choice = FindChoice(options);
    if (!choice)
        throw Failure(options.empty() ? "nothing to do; try nxtick -help"
                                      : Dashed(options.begin()->first) + " alone is nothing to do; try nxtick -help");
    CheckTogether(options, *choice);

    request.action = choice->action;
    request.table = Value(options, "table");
    request.tablesFile = Value(options, "tables");
    request.filter = Value(options, "filter");
    request.chartFile = Value(options, "chart");
    request.csvFile = Value(options, "csv");
    request.column = Value(options, "column");
    request.outFile = Value(options, "out");
    request.price = Value(options, "price");
    if (Has(options, "increment"))
        request.increment = ReadIncrement(Value(options, "increment"));
    if (Has(options, "step"))
        request.step = ReadCount(options, "step", -1000000, 1000000);
    if (Has(options, "ladder"))
        request.ladder = ReadCount(options, "ladder", 1, 1000);
    if (Has(options, "method"))
        request.method = ReadMethod(Value(options, "method"));
    return request;
}

std::string GetHelp()
{
    return "nxtick " NX_CORE_VERSION
           ": prices on an exchange's tick grid\n"
           "\n"
           "  nxtick -list [-filter TEXT]              the tick tables that it knows\n"
           "  nxtick -table ID                         the bands of one\n"
           "  nxtick -table ID -price P [-step N]      tick, neighbours, roundings there\n"
           "  nxtick -table ID -price P -ladder N      N ticks up and down from a price\n"
           "  nxtick -table ID -chart FILE.svg         tick size over price, as a picture\n"
           "  nxtick -table ID -column NAME [-csv FILE] [-out FILE] [-method METHOD]\n"
           "                                           snap a column of prices to the grid\n"
           "\n"
           "  -increment I   one fixed tick, in place of -table ID\n"
           "  -tables FILE   tables of your own, lines of name,band,upper_bound,increment\n"
           "  -method        nearest (the default), modified-nearest, up or down\n"
           "  -csv, -out     by default standard input and standard output\n"
           "\n"
           "Examples\n"
           "  nxtick -increment 0.05 -csv wti-daily.csv -column Price -out snapped.csv\n"
           "  nxtick -table VTT_EURONEXT_07 -price 9.999 -step 2\n"
           "  nxtick -list -filter CME\n"
           "\n"
           "Exit status  0 done, 1 some rows were rejected, 2 failed: no file was made,\n"
           "             but rows may have gone to standard output before\n";
}
}  // namespace nxtick
