// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxOptions.h"

#include "core/enum/nxLogLevelEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/time/nxDate.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestArguments.h"

namespace
{
using Words = std::vector<std::string>;

// A program with an option of every kind.
struct Program
{
    bool quiet = false;
    bool isStrict = true;
    std::string symbol;
    short small = 5;
    unsigned lots = 1;
    unsigned long long total = 0;
    double ratio = 0.5;
    nxDecimal price;
    nxValueWrapper<unsigned> volume;
    nxDoubleValueWrapper volatility;
    nxLogLevelEnum level{NX_LOG_LEVEL_INFO};
    nxRoundingMethodEnum method;
    std::chrono::milliseconds wait{1500};
    std::chrono::duration<unsigned char, std::ratio<60>> minutes{2};
    nxDate expiry;
    Words files;
    nxOptions options{
        "Quotes one symbol at a price and keeps quoting it until a signal tells it to stop, whatever happens."};

    explicit Program(bool hasFiles = true)
    {
        options.Add("quiet", quiet, "says nothing");
        options.Add("strict", isStrict, "refuses odd prices").FromEnvironment("NX_TEST_STRICT");
        options.Add("symbol", symbol, "NAME", "symbol to quote");
        options.Add("small", small, "N", "small number");
        options.Add("lots", lots, "N", "size of each quote").Between(1, 1000).FromEnvironment("NX_TEST_LOTS");
        options.Add("total", total, "N", "size of all quotes");
        options.Add("ratio", ratio, "R", "part that is shown");
        options.Add("price", price, "P", "price of the quote")
            .Where([](const nxDecimal& value) { return value.IsPositive() || value.IsZero(); }, "a price of 0 or more");
        options.Add("volume", volume, "N", "largest volume");
        options.Add("volatility", volatility, "V", "");
        options.Add("level", level, "LEVEL", "records from this level on are written");
        options.Add("method", method, "METHOD", "how prices are rounded");
        options.Add("wait", wait, "TIME", "pause between two quotes")
            .Between(std::chrono::milliseconds(0), std::chrono::hours(24));
        options.Add("minutes", minutes, "TIME", "time of a session");
        options.Add("expiry", expiry, "YYYYMMDD", "last day on which the order is valid");
        if (hasFiles)
            options.AddWords(files, "FILE...", "files with prices");
    }

    // The values in one text.
    std::string GetValues() const
    {
        std::string text = symbol + (quiet ? " quiet" : "") + (isStrict ? " strict" : "");
        for (const std::string& value :
             {std::to_string(small), std::to_string(lots), std::to_string(total), nxStringHelper::GetAsString(ratio),
              price.GetAsLogString('.'), volume.GetAsLogString(), volatility.GetAsString(), level.GetAsString(),
              std::to_string(wait.count()), std::to_string(minutes.count()), expiry.GetAsLogString()})
            text.append(" ").append(value);
        for (const std::string& file : files)
            text.append(" [").append(file).append("]");
        return text;
    }
};

const char unchanged[] = " strict 5 1 0 0.5 0 NULL  INF 1500 2 NULL";

TEST(nxOptions, ReadsEveryTypeExactly)
{
    const std::pair<Words, std::string> rows[] = {
        {{}, unchanged},
        {{"-symbol", "WTI", "-lots", "1000", "-small", "-32768", "-total", "18446744073709551615", "-price", "36.980"},
         "WTI strict -32768 1000 18446744073709551615 0.5 36.980 NULL  INF 1500 2 NULL"},
        {{"-ratio", "-1.5", "-volume", "4294967293", "-volatility", "0.25", "-level", "PB1", "-wait", "2s", "-minutes",
          "120000ms", "-expiry", "20240229"},
         " strict 5 1 0 -1.5 0 4294967293 0.25 PB1 2000 2 20240229"},
        {{"-wait", "1h", "-minutes", "4h"}, " strict 5 1 0 0.5 0 NULL  INF 3600000 240 NULL"},
        {{"-quiet", "a", "-strict", "no", "b", "-symbol", ""}, " quiet 5 1 0 0.5 0 NULL  INF 1500 2 NULL [a] [b]"},
        {{"-lots", "0", "-lots", "7"}, " strict 5 7 0 0.5 0 NULL  INF 1500 2 NULL"},
    };
    for (const auto& [words, values] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        Words argv = {"bin/quoter"};
        argv.insert(argv.end(), words.begin(), words.end());
        Program program;
        EXPECT_TRUE(program.options.Read(nxTestArguments(argv, {})).IsOK()) << program.options.GetErrorText();
        EXPECT_EQ(program.GetValues(), values);
    }
}

TEST(nxOptions, TellsEveryErrorAndChangesNothing)
{
    const nxErrorEnum invalid(NX_ERR_INVALID_PARAMETER), range(NX_ERR_VALUE_OUT_OF_RANGE);
    const std::tuple<Words, Words, nxErrorEnum, Words> rows[] = {
        {{"-priec", "5", "-h", "--lots=3", "-"},
         {},
         invalid,
         {"unknown option '-priec'; did you mean -price?", "unknown option '-h'",
          "unknown option '--lots=3'; did you mean -lots?", "unknown option '-'"}},
        {{"-symbol", "WTI", "-lots", "0", "-small", "32768", "-total", "18446744073709551616", "-volume", "4294967294",
          "-price", "1234567890123456789.0", "-ratio", "9007199254740993", "-wait", "25h"},
         {},
         range,
         {"-lots '0' is not from 1 to 1000", "-price '1234567890123456789.0' is not a number of at most 18 digits",
          "-ratio '9007199254740993' is not a number of at most 15 digits",
          "-small '32768' is not a whole number from -32768 to 32767",
          "-total '18446744073709551616' is not a whole number from 0 to 18446744073709551615",
          "-volume '4294967294' is not a whole number from 0 to 4294967293", "-wait '25h' is not from 0s to 24h"}},
        {{"-lots", "ten", "-small", "", "-total", "-1", "-ratio", "1e5", "-price", "-0.01", "-volatility", "x\ny"},
         {},
         invalid,
         {"-lots 'ten' is not a whole number from 1 to 1000", "-price '-0.01' is not a price of 0 or more",
          "-ratio '1e5' is not a number of at most 15 digits", "-small '' is not a whole number from -32768 to 32767",
          "-total '-1' is not a whole number from 0 to 18446744073709551615",
          R"(-volatility 'x\x0Ay' is not a number of at most 15 digits)"}},
        {{"-level", "INFO", "-wait", "1500us", "-minutes", "256min", "-expiry", "2024-02-29", "-symbol"},
         {},
         invalid,
         {"-expiry '2024-02-29' is not YYYYMMDD",
          "-level 'INFO' is not one of DBG, INF, PB1, PB2, PB3, WRN, ERR or FTL; did you mean INF?",
          "-minutes '256min' is not a duration such as 5s in multiples of 1min", "-symbol needs a value, NAME",
          "-wait '1500us' is not a duration such as 5s in multiples of 1ms from 0s to 24h"}},
        {{"-level", "CASE_SENSITIVE", "-wait", "9999999h", "-minutes", "5", "-method", "nearest"},
         {},
         invalid,
         {"-level 'CASE_SENSITIVE' is not one of DBG, INF, PB1, PB2, PB3, WRN, ERR or FTL",
          "-method 'nearest' is not one of NX_ROUNDING_METHOD_DOWN, NX_ROUNDING_METHOD_UP, NX_ROUNDING_METHOD_NEAREST "
          "or "
          "NX_ROUNDING_METHOD_MODIFIED_NEAREST; did you mean NX_ROUNDING_METHOD_NEAREST?",
          "-minutes '5' is not a duration such as 5s in multiples of 1min",
          "-wait '9999999h' is not a duration such as 5s in multiples of 1ms from 0s to 24h"}},
        {{"-quiet"},
         {"NX_TEST_LOTS=1001", "NX_TEST_STRICT=maybe"},
         range,
         {"NX_TEST_LOTS '1001' is not from 1 to 1000", "NX_TEST_STRICT 'maybe' is not TRUE, YES, FALSE or NO"}},
    };
    for (const auto& [words, variables, error, messages] : rows)
    {
        SCOPED_TRACE(testing::PrintToString(words));
        Words argv = {"quoter"};
        argv.insert(argv.end(), words.begin(), words.end());
        Program program;
        EXPECT_EQ(program.options.Read(nxTestArguments(argv, variables)), error);
        EXPECT_EQ(program.options.GetMessages(), messages);
        EXPECT_EQ(program.GetValues(), unchanged);
    }

    Program program(false);
    EXPECT_FALSE(program.options.Read(nxTestArguments({"/bin/quoter", "-quiet", "a.csv"}, {})).IsOK());
    EXPECT_EQ(program.options.GetErrorText(),
              "quoter: 'a.csv' belongs to no option\nquoter: -help shows all options\n");
    EXPECT_EQ(program.options.Read(nxTestArguments()), NX_ERR_NOT_INITIALISED);
    // A later command line begins from the start.
    EXPECT_TRUE(program.options.Read(nxTestArguments({"quoter", "-lots", "2"}, {"NX_TEST_LOTS=3"})).IsOK());
    EXPECT_TRUE(program.lots == 2 && !program.quiet && program.options.GetErrorText().empty());
    EXPECT_TRUE(program.options.Read(nxTestArguments({"quoter"}, {"NX_TEST_LOTS=3"})).IsOK());
    EXPECT_EQ(program.lots, 3U);
}

TEST(nxOptions, HelpIsMadeOfTheDeclarations)
{
    Program program;
    std::string password;
    program.options.Add("a-name-of-many-characters", password, "TEXT", "something").Required();
    for (const char* const word : {"-help", "--help"})
    {
        EXPECT_TRUE(program.options.Read(nxTestArguments({"quoter", "-lots", "x", word}, {})).IsOK());
        EXPECT_TRUE(program.options.IsHelpWanted() && program.lots == 1);
    }
    EXPECT_EQ(program.options.GetHelp(),
              R"(usage: quoter -a-name-of-many-characters TEXT [-expiry YYYYMMDD] [-level LEVEL]
       [-lots N] [-method METHOD] [-minutes TIME] [-price P] [-quiet] [-ratio R]
       [-small N] [-strict] [-symbol NAME] [-total N] [-volatility V]
       [-volume N] [-wait TIME] [FILE...]

Quotes one symbol at a price and keeps quoting it until a signal tells it to
stop, whatever happens.

  FILE...           files with prices
  -a-name-of-many-characters TEXT
                    something (required)
  -expiry YYYYMMDD  last day on which the order is valid
  -help             shows this text
  -level LEVEL      records from this level on are written (one of DBG, INF,
                    PB1, PB2, PB3, WRN, ERR or FTL; default INF)
  -lots N           size of each quote (from 1 to 1000; default 1; or by
                    NX_TEST_LOTS in the environment)
  -method METHOD    how prices are rounded (one of NX_ROUNDING_METHOD_DOWN,
                    NX_ROUNDING_METHOD_UP, NX_ROUNDING_METHOD_NEAREST or
                    NX_ROUNDING_METHOD_MODIFIED_NEAREST)
  -minutes TIME     time of a session (default 2min)
  -price P          price of the quote (a price of 0 or more; default 0)
  -quiet            says nothing
  -ratio R          part that is shown (default 0.5)
  -small N          small number (default 5)
  -strict           refuses odd prices (default YES; or by NX_TEST_STRICT in the
                    environment)
  -symbol NAME      symbol to quote
  -total N          size of all quotes (default 0)
  -volatility V
  -volume N         largest volume
  -wait TIME        pause between two quotes (from 0s to 24h; default 1500ms)
)");
}

TEST(nxOptions, ADeclarationThatCannotWorkFailsAtOnce)
{
    bool isOn = false;
    unsigned number = 0;
    nxOptions options("Does nothing.");
    options.Add("lots", number, "N", "");
    options.Add("lots", isOn, "").Required();
    for (const char* const name : {"", "5", "help", "-help"})
        options.Add(name, number, "N", "").Between(1, 2);
    EXPECT_EQ(options.Read(nxTestArguments({"prog", "-help"}, {})), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(options.GetMessages(), (Words{"option '-lots' is declared twice", "option '-' cannot have this name",
                                            "option '-5' cannot have this name", "option '-help' cannot have this name",
                                            "option '--help' cannot have this name"}));
}
}  // namespace

TEST(nxOptions, AVectorReceivesEveryValue)
{
    const struct
    {
        Words words;
        std::string error;
        Words symbols;
        std::vector<int> lots;
    } rows[] = {
        {{}, "", {"none"}, {7}},
        {{"-symbol", "A", "-lots", "2", "-symbol", "B", "-lots", "1", "-symbol", "A"}, "", {"A", "B", "A"}, {2, 1}},
        {{"-lots", "1", "-lots", "0", "-lots", "x"},
         "-lots '0' is not from 1 to 5;-lots 'x' is not a whole number from 1 to 5;",
         {"none"},
         {7}},
        {{"-symbol", "-symbol", "A"}, "-symbol needs a value, NAME;", {"none"}, {7}},
        {{"-symbol", "A", "B"}, "'B' belongs to no option;", {"none"}, {7}},
    };
    for (const auto& row : rows)
    {
        Words symbols{"none"};
        std::vector<int> lots{7};
        nxOptions options("Quotes.");
        options.Add("symbol", symbols, "NAME", "what is quoted");
        options.Add("lots", lots, "N", "sizes").Between(1, 5);
        Words argv{"prog"};
        argv.insert(argv.end(), row.words.begin(), row.words.end());
        std::string error;
        EXPECT_EQ(options.Read(nxTestArguments(argv, {})).IsOK(), row.error.empty());
        for (const std::string& message : options.GetMessages())
            error.append(message).append(";");
        EXPECT_EQ(error, row.error);
        EXPECT_EQ(symbols, row.symbols);
        EXPECT_EQ(lots, row.lots);
    }
}
