// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxCustomVariableTickTable.h"

#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "core/price/nxVariableTickTableContainer.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxTest.h"

namespace
{
using Custom = nxCustomVariableTickTable;

nxDecimal D(const char* text) { return nxDecimal(text, '.'); }

std::string BandText(const nxVariableTickTable& table)
{
    std::string text;
    for (const auto& [bound, increment] : table.GetRangeData())
        text += (bound == nxDecimal::GetMaximumDecimal() ? "" : bound.GetAsString('.') + " ") +
                increment.GetAsString('.') + "; ";
    return text;
}

std::string Describe(const Custom::Tables& tables)
{
    std::string text;
    for (const auto& table : tables)
        text += table->GetName() + ": " + BandText(*table);
    return text;
}

const std::string header = "name,band,upper_bound,increment\n", lowerHeader = "name,band,lower_bound,increment\n";

}  // namespace

TEST(nxCustomVariableTickTable, ReadsTablesWithTheirDecimalPlaces)
{
    const char* const rows[][2] = {
        {"A,1,,0.010", "A: 0.010; "},
        {"A,1,4.990,0.010\r\nA,2,,5\r\n", "A: 4.990 0.010; 5; "},
        {"\nA,1,4.990,0.010\n\n\nA,2,,5\n\n", "A: 4.990 0.010; 5; "},
        {"# A, as printed\n\"A\",\"1\",\"4.990\",\"0.010\"\n#\nA,2,\"\",5", "A: 4.990 0.010; 5; "},
        {"A,1,10,1\nA,2,,5\nb.C-2_x,1,,.5\n", "A: 10 1; 5; b.C-2_x: 0.5; "},
        {"A,1,92233,0.00000000000001\nA,2,,1\n", "A: 92233 0.000000000000; 1; "},
        {"A,1,0.000000000000001,0.000000000000001\nA,2,999999999999999999,1\nA,3,,999999999999999999\n",
         "A: 0.000000000000 0.000000000000; 999999999999999999 1; 999999999999999999; "},
    };
    for (const auto& [text, described] : rows)
        for (const char* mark : {"", "\xEF\xBB\xBF"})
        {
            Custom::Tables tables;
            std::string reason = "none";
            EXPECT_TRUE(Custom::ReadText(mark + header + text, tables, reason).IsOK()) << text;
            EXPECT_EQ(Describe(tables), described);
            EXPECT_EQ(reason, "none");
        }
}

// A band ends one tick below the next one.
TEST(nxCustomVariableTickTable, LowerBoundsGiveTheSameTableAsUpperBounds)
{
    const char* const rows[][2] = {
        {"A,1,0,0.01\n", "A: 0.01; "},
        {"A,1,,1\nA,2,3000,5\nA,3,5000,10\nB,1,0.0010,0.001\nB,2,1,0.05\n",
         "A: 2999 1; 4995 5; 10; B: 0.999 0.001; 0.05; "},
    };
    for (const auto& [text, described] : rows)
    {
        Custom::Tables tables;
        std::string reason = "none";
        EXPECT_TRUE(Custom::ReadText("#\n" + lowerHeader + text, tables, reason).IsOK()) << reason;
        EXPECT_EQ(Describe(tables), described);
    }
}

TEST(nxCustomVariableTickTable, ABadTextIsRefusedWholeWithLineAndReason)
{
    const std::string good = header + "A,1,4.990,0.010\nA,2,9.950,0.050\n";
    const std::pair<std::string, const char*> rows[] = {
        {"", "line 1: expected the header 'name,band,upper_bound,increment', found ''"},
        {"name;band\n", "line 1: expected the header 'name,band,upper_bound,increment', found 'name;band'"},
        {header, "line 1: no table"},
        {good + "A,3,\n", "line 4: expected 4 fields, found 3"},
        {good + "A,3,,1,\n", "line 4: expected 4 fields, found 5"},
        {good + "\n\nA\n", "line 6: expected 4 fields, found 1"},
        {good + "A,4,,1\n", "line 4: expected band 3 of A, found '4'"},
        {good + "A,03,,1\n", "line 4: expected band 3 of A, found '03'"},
        {good + "A,3,9.950,1\n", "line 4: upper bound 9.950 is not above 9.950"},
        {good + "A,3,9.9500,1\n", "line 4: upper bound 9.9500 is not above 9.950"},
        {good + "A,3, 10,1\n", "line 4: ' 10' is not a number"},
        {good + "A,3,,\n", "line 4: '' is not a number"},
        {good + "A,3,,0.00\n", "line 4: increment 0.00 is not positive"},
        {good + "A,3,,-1\n", "line 4: increment -1 is not positive"},
        {good + "A,3,-20,1\n", "line 4: upper bound -20 is not positive"},
        {good + "A,3,1000000000000000000,1\n", "line 4: '1000000000000000000' has more than 18 digits"},
        {good + "A,3,,0.0000000000000001\n",
         "line 4: increment 0.0000000000000001 has more than 18 digits or 15 decimals"},
        {header + "A,1,92234,0.00000000000001\nA,2,,0.01\n",
         "line 2: 92234 plus increment 0.00000000000001 has more digits than a price can hold"},
        {header + "A,1,500000000000,1\nA,2,,0.00000001\n",
         "line 3: 500000000000 plus increment 0.00000001 has more digits than a price can hold"},
        {good, "line 3: table A ends without a band that has no upper bound"},
        {good + "\n\nB,1,,1\n", "line 3: table A ends without a band that has no upper bound"},
        {good + "A,3,,1\nA,4,,1\n", "line 5: a band follows the one without an upper bound"},
        {good + "A,3,,1\nB,1,,1\nA,1,,1\n", "line 6: table A stands twice, or its bands do not stand together"},
        {good + "A,3,,1\n,1,,1\n", "line 5: '' is not a name: 1 to 64 letters, digits, '_', '-' or '.'"},
        {good + "A,3,,1\nB\",1,,1\n", "line 5: 'B\"' is not a name: 1 to 64 letters, digits, '_', '-' or '.'"},
        {good + "A,3,,\"1\n", "line 4: a quote is not closed, or text follows it"},
        {good + "A,3,\"\"\"\",1\n", "line 4: a quote is not closed, or text follows it"},
        {good + "#\n\"A\",3,\"9,95\",1\n", "line 5: '9,95' is not a number"},
        {lowerHeader + "A,1,2,1\n", "line 2: the first lower bound 2 is neither 0 nor one increment"},
        {lowerHeader + "A,1,0,1\nA,2,,5\n", "line 3: '' is not a number"},
        {lowerHeader + "A,1,0,0.2\nA,2,0.5,1\n",
         "line 3: lower bound 0.5 is no multiple of the increment 0.2 below it"},
        {lowerHeader + "A,1,0,1\nA,2,1,5\n", "line 3: the band below 1 has no price"},
        {lowerHeader + "A,1,0,1\nA,2,10,5\nA,3,10,10\n", "line 4: the band below 10 has no price"},
        {lowerHeader + "A,1,,0.0000000000000001\n",
         "line 2: increment 0.0000000000000001 has more than 18 digits or 15 decimals"},
        {lowerHeader + "A,1,,0.00000000000001\nA,2,99999999,1\n",
         "line 3: 99999999 minus increment 0.00000000000001 has more digits than a price can hold"},
        {good + "A,3,,1\n" + std::string("\x1B[2J\0\xFF", 6) + ",1,,1\n",
         "line 5: '\\x1B[2J\\x00\\xFF' is not a name: 1 to 64 letters, digits, '_', '-' or '.'"},
        {good + "A,3,," + std::string(100, 'x') + "\n",
         "line 4: 'xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...' is not a number"},
    };
    for (const auto& [text, expected] : rows)
    {
        SCOPED_TRACE(text);
        Custom::Tables tables;
        std::string reason;
        ASSERT_TRUE(Custom::ReadText(header + "OLD,1,,1\n", tables, reason).IsOK());
        EXPECT_TRUE(Custom::ReadText(text, tables, reason) == NX_ERR_CSV_FILE_READ_ERROR);
        EXPECT_EQ(reason, expected);
        EXPECT_EQ(Describe(tables), "OLD: 1; ");
    }
    const std::string longest(64, 'N');
    Custom::Tables tables;
    std::string reason;
    EXPECT_TRUE(Custom::ReadText(header + longest + ",1,,1\n", tables, reason).IsOK());
    EXPECT_FALSE(Custom::ReadText(header + longest + "N,1,,1\n", tables, reason).IsOK());
}

TEST(nxCustomVariableTickTable, ABoundOffTheNextGridIsAcceptedAndToldOnce)
{
    const std::string offGrid = "table A: band 1: upper bound ";
    const std::pair<const char*, std::string> rows[] = {
        {"A,1,,0.03\n", ""},
        {"A,1,9.99,0.01\nA,2,,0.05\n", ""},
        {"A,1,9.97,0.03\nA,2,10.5,0.50\nA,3,,1\n", ""},
        {"A,1,99999999999999999.9,0.1\nA,2,,1000000000000000\n", ""},
        {"A,1,10.00,0.01\nA,2,,0.05\n",
         offGrid + "10.00 plus increment 0.01 is no multiple of the next increment 0.05, so prices near it are rounded "
                   "off the grid; where the exchange says \"up to and including 10.00\", the bound is 9.99"},
        {"A,1,9.98,0.01\nA,2,20,0.05\nA,3,,3\n",
         offGrid + "9.98 plus increment 0.01 is no multiple of the next increment 0.05, so prices near it are rounded "
                   "off the grid"},
    };
    for (const auto& [text, warning] : rows)
    {
        SCOPED_TRACE(text);
        nxCapturingLogDevice log;
        Custom::Tables tables;
        std::string reason;
        ASSERT_TRUE(Custom::ReadText(header + text, tables, reason).IsOK()) << reason;
        std::unique_ptr<Custom> listed;
        ASSERT_TRUE(Custom::Create("A", tables[0]->GetRangeData(), listed, reason).IsOK()) << reason;
        EXPECT_EQ(tables[0]->GetGridWarning(), warning);
        nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
        const auto isWarning = [&](const nxCapturedRecord& record)
        { return record.level == NX_LOG_LEVEL_WARNING && record.text.starts_with("table "); };
        EXPECT_EQ(log.Count(isWarning), warning.empty() ? 0U : 2U) << log;
    }
}

TEST(nxCustomVariableTickTable, FilesNameThemselvesInTheReason)
{
    Custom::Tables tables;
    std::string reason;
    const nxScratchDirectory scratch;
    const std::string folder = scratch.GetPath().string(), file = folder + "/tables.csv", torn = folder + "/torn.csv",
                      large = folder + "/large.csv", none = folder + "/none.csv";
    nxWriteFile(file, header + "A,1,10,0.01\nA,2,,0.05\n");
    nxWriteFile(torn, header + "A,1,10,0.01\n");
    nxWriteFile(large, std::string((4 << 20) + 1, '\n'));
    ASSERT_TRUE(Custom::ReadFile(file, tables, reason).IsOK()) << reason;
    nxDecimal price = D("10.00");
    tables[0]->Increment(price, 2);
    EXPECT_EQ(price.GetAsString('.'), "10.06");

    const std::tuple<std::string, nxEnumValue, std::string> rows[] = {
        {torn, NX_ERR_CSV_FILE_READ_ERROR, torn + ": line 2: table A ends without a band that has no upper bound"},
        {none, NX_ERR_FAILED_TO_OPEN_FILE, none + ": cannot be opened"},
        {file + '\0' + "x", NX_ERR_FAILED_TO_OPEN_FILE, file + "\\x00x: cannot be opened"},
        {large, NX_ERR_FILE_READ_ERR, large + ": larger than 4 MiB"},
        {folder, NX_ERR_FILE_READ_ERR, folder + ": cannot be read"},
        {"no\x1B]0;x\x07", NX_ERR_FAILED_TO_OPEN_FILE, "no\\x1B]0;x\\x07: cannot be opened"},
    };
    for (const auto& [name, error, expected] : rows)
    {
        EXPECT_EQ(Custom::ReadFile(name, tables, reason), error) << expected;
        EXPECT_EQ(reason, expected);
    }
    EXPECT_EQ(Describe(tables), "A: 10 0.01; 0.05; ");
}

// A shell passes pipes as <(...) and /dev/stdin. A pipe without a writer is refused at once.
TEST(nxCustomVariableTickTable, PipesAreReadToTheirEnd)
{
    Custom::Tables tables;
    std::string reason;
    const nxScratchDirectory scratch;
    const std::string fifo = (scratch.GetPath() / "fifo").string();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_TRUE(Custom::ReadFile(fifo, tables, reason) == NX_ERR_FILE_READ_ERR);
    EXPECT_EQ(reason, fifo + ": a pipe to which nobody writes");

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::thread writer(
        [&]
        {
            const std::string text = header + "A,1,,0.01\n" + std::string(100'000, '\n');  // more than a pipe holds
            EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
            close(ends[1]);
        });
    EXPECT_TRUE(Custom::ReadFile("/dev/fd/" + std::to_string(ends[0]), tables, reason).IsOK()) << reason;
    close(ends[0]);  // also ends the writer when nothing was read
    writer.join();
    EXPECT_EQ(Describe(tables), "A: 0.01; ");
}

TEST(nxCustomVariableTickTable, MadeFromAListOfBands)
{
    const nxDecimal none = nxDecimal::GetNullDecimal();
    const nxDecimal max = nxDecimal::GetMaximumDecimal();
    // A reason that is empty means that the bands are a table.
    const std::tuple<const char*, Custom::Bands, const char*> rows[] = {
        {"A", {{D("10"), D("0.01")}, {max, D("0.05")}}, ""},
        {"A", {{D("10"), D("0.01")}, {none, D("0.05")}}, ""},
        {"A b", {{max, D("1")}}, "'A b' is not a name: 1 to 64 letters, digits, '_', '-' or '.'"},
        {"A", {}, "there is no band without an upper bound"},
        {"A", {{D("10"), D("0.01")}}, "there is no band without an upper bound"},
        {"A", {{none, D("1")}, {none, D("1")}}, "band 2: a band follows the one without an upper bound"},
        {"A", {{nxDecimal::GetNoChangeDecimal(), D("1")}}, "band 1: upper bound NO_CHANGE is not positive"},
        {"A", {{D("10"), none}, {none, D("1")}}, "band 1: increment NULL is not positive"},
        {"A", {{D("10"), D("1")}, {D("10"), D("1")}, {none, D("1")}}, "band 2: upper bound 10 is not above 10"},
    };
    std::string reason;
    for (const auto& [name, bands, expected] : rows)
    {
        std::unique_ptr<Custom> table;
        const bool isTable = *expected == '\0';
        reason.clear();
        EXPECT_EQ(Custom::Create(name, bands, table, reason).IsOK(), isTable) << expected;
        EXPECT_EQ(reason, expected);
        EXPECT_EQ(table != nullptr ? table->GetID() + ' ' + BandText(*table) : "",
                  isTable ? "VTT_A 10 0.01; 0.05; " : "");
    }
    // A table of the catalogue with one band changed.
    Custom::Bands bands = nxVariableTickTableContainer::GetVariableTickTable("VTT_EURONEXT_07")->GetRangeData();
    bands.back().second = D("0.02");
    std::unique_ptr<Custom> table;
    ASSERT_TRUE(Custom::Create("MINE", bands, table, reason).IsOK()) << reason;
    EXPECT_EQ(BandText(*table), "9.999 0.001; 49.995 0.005; 99.99 0.01; 0.02; ");
}
