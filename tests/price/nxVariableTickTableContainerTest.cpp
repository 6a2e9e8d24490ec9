// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVariableTickTableContainer.h"

#include "core/price/nxCatalogueTickTables.h"
#include "core/price/nxCustomVariableTickTable.h"
#include "core/price/nxPriceManipulator.h"
#include "core/price/nxTickTableSource.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxTest.h"
#include "tests/support/nxTestThreads.h"

/// Has access to the private parts of a container.
struct nxVariableTickTableContainerTest : testing::Test
{
    void Register(const std::string& name, const std::string& id, nxVariableTickTable* table)
    {
        container._Register(name, id, table);
    }
    void LogRegisteredEntries() { container._LogRegisteredEntries(); }

    int deleted = 0;
    nxVariableTickTableContainer container;
    const decltype(container._names)& names = container._names;
    const decltype(container._tables)& tables = container._tables;
};

namespace
{
// Counts its deletion.
class TestTable : public nxVariableTickTable
{
public:
    TestTable(std::string_view bands, int& deleted) : _deleted(deleted) { _AddRanges(bands); }
    ~TestTable() override { ++_deleted; }

private:
    int& _deleted;
};

std::string BandText(const nxVariableTickTable& table)
{
    std::string text;
    for (const auto& [bound, increment] : table.GetRangeData())
        text += bound.GetAsString('.') + " " + increment.GetAsString('.') + "; ";
    return text;
}
}  // namespace

TEST_F(nxVariableTickTableContainerTest, TablesAreFoundByIdentifierAndIdentifiersByName)
{
    using Container = nxVariableTickTableContainer;
    const nxVariableTickTable* table = Container::GetVariableTickTable("VTT_CHIX_CPH1");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(BandText(nxVariableTickTableCHIX_CPH1()), BandText(*table));
    static_assert(sizeof(nxVariableTickTableCHIX_CPH1) == sizeof(nxVariableTickTable));
    EXPECT_EQ(Container::GetVariableTickTable("VTT_CHIX_CPH1"), table);
    EXPECT_EQ(Container::GetVariableTickTableID("CHIX_CPH1"), "VTT_CHIX_CPH1");
    for (const char* id : {"CHIX_CPH1", "VTT_CHIX_cph1", "VTT_", "", "VTT_VTT_CHIX_CPH1"})
        EXPECT_EQ(Container::GetVariableTickTable(id), nullptr) << id;
    for (const char* name : {"VTT_CHIX_CPH1", "chix_cph1", ""})
        EXPECT_EQ(Container::GetVariableTickTableID(name), "") << name;
}

// Its contents are compared with docs/tick-tables.md.
TEST_F(nxVariableTickTableContainerTest, TheCatalogueAndItsSourcesHaveTheSameOrder)
{
    const auto sources = nxTickTableSource::GetAll();
    const auto ids = nxVariableTickTableContainer::GetVariableTickTableIDs();
    ASSERT_EQ(ids.size(), sources.size());
    for (std::size_t i = 0; i < ids.size(); ++i)
    {
        EXPECT_EQ(ids[i], sources[i].GetID());
        EXPECT_EQ(nxTickTableSource::Find(ids[i]), &sources[i]);
        EXPECT_EQ(nxTickTableSource::Find(sources[i].GetName()), &sources[i]);
    }
    EXPECT_EQ(nxTickTableSource::Find("VTT_"), nullptr);
    EXPECT_EQ(nxTickTableSource::Find("CHIX"), nullptr);
}

TEST(nxVariableTickTableContainer, AnIdentifierWithoutATableIsAnErrorThatNamesTheOneMeant)
{
    const std::pair<const char*, const char*> rows[] = {
        {"VTT_CHIX_CPH1", ""},
        {"CHIX_CPH1", "there is no tick table 'CHIX_CPH1'; did you mean 'VTT_CHIX_CPH1'?"},
        {"VTT_euronext_77", "there is no tick table 'VTT_euronext_77'; did you mean 'VTT_EURONEXT_07'?"},
        {"gold\n", "there is no tick table 'gold\\x0A'"},
        {"", "there is no tick table ''"},
    };
    for (const auto& [id, expected] : rows)
    {
        const nxVariableTickTable* table = nullptr;
        std::string reason;
        const nxErrorEnum error = nxVariableTickTableContainer::FindVariableTickTable(id, table, reason);
        EXPECT_EQ(error, nxErrorEnum(*expected == '\0' ? NX_ENUM_UNDEFINED : NX_ERR_NOT_FOUND)) << id;
        EXPECT_EQ(table, nxVariableTickTableContainer::GetVariableTickTable(id)) << id;
        EXPECT_EQ(reason, expected);
    }
}

TEST(nxVariableTickTableContainer, TablesOfTheProgramsOwnAreFoundBesideTheCatalogues)
{
    if (!nxInNewProcess())
        return;
    using Container = nxVariableTickTableContainer;
    int deleted = 0;
    const std::tuple<const char*, const char*, nxErrorEnum> rows[] = {
        {"MINE", "1 0.1; 0.2", nxErrorEnum()},
        {"MINE", "0.1", NX_ERR_DUPLICATE_MATCH},
        {"CHIX_CPH1", "0.1", NX_ERR_DUPLICATE_MATCH},
        {"", "0.1", NX_ERR_INVALID_PARAMETER},
        {"BAD", "2 0.1; 1 0.2; 1", NX_ERR_INVALID_PARAMETER},
    };
    for (const auto& [name, bands, expected] : rows)
    {
        std::unique_ptr<nxVariableTickTable> table = std::make_unique<TestTable>(bands, deleted);
        const nxVariableTickTable* const address = table.get();
        EXPECT_EQ(Container::RegisterVariableTickTable(name, table), expected) << name;
        EXPECT_EQ(table == nullptr, expected.IsOK()) << name;
        EXPECT_EQ(Container::GetVariableTickTable("VTT_MINE") == address, expected.IsOK()) << name;
    }
    EXPECT_EQ(deleted, 4) << "those that the test kept";
    nxCustomVariableTickTable::Tables tables(1);
    std::string reason;
    EXPECT_TRUE(Container::RegisterVariableTickTable(tables.front()) == NX_ERR_OBJECT_IS_NULL);
    const char* const text = "name,band,upper_bound,increment\nALSO,1,,0.5\n";
    ASSERT_TRUE(nxCustomVariableTickTable::ReadText(text, tables, reason).IsOK());
    EXPECT_TRUE(Container::RegisterVariableTickTable(tables.front()).IsOK());
    const auto ids = Container::GetVariableTickTableIDs();
    EXPECT_EQ(std::vector(ids.end() - 2, ids.end()), (std::vector<std::string>{"VTT_ALSO", "VTT_MINE"}));
    EXPECT_TRUE(nxPriceManipulator().SetVariableTickTable("VTT_ALSO").IsOK());
}

TEST_F(nxVariableTickTableContainerTest, ATableThatIsRefusedIsDeletedAndStopsNothing)
{
    const std::tuple<const char*, const char*, const char*, bool> rows[] = {
        {"A", "VTT_A", "0", false},           {"A", "VTT_A", "2 0.1; 1 0.2; 1", false},
        {"A", "VTT_A", "1 0.1; 0.2", true},   {"A", "VTT_A2", "1 0.1; 0.2", false},  // the name is taken
        {"A3", "VTT_A", "1 0.1; 0.2", false},                                        // the identifier is taken
        {"B", "VTT_B", "0.2", true},
    };
    std::size_t taken = tables.size(), refused = 0;
    for (const auto& [name, id, bands, isTaken] : rows)
    {
        Register(name, id, new TestTable(bands, deleted));
        ++(isTaken ? taken : refused);
        EXPECT_EQ(deleted, static_cast<int>(refused)) << id << ' ' << bands;
        EXPECT_EQ(tables.size(), taken) << id << ' ' << bands;
        EXPECT_EQ(names.size(), taken) << id << ' ' << bands;
    }
    Register("C", "VTT_C", nullptr);
    EXPECT_EQ(tables.count("VTT_C"), 0U);
    EXPECT_EQ(BandText(*tables.at("VTT_A")).substr(0, 7), "1 0.1; ");
}

TEST_F(nxVariableTickTableContainerTest, TheCatalogueIsLoggedBandByBandAtTheDebugLevel)
{
    std::size_t expected = tables.size() + 3;
    for (const auto& [id, table] : tables)
        expected += table->GetRangeData().size();
    Register("AAA", "VTT_AAA", new TestTable("4.990 0.010; 0.050", deleted));

    nxCapturingLogDevice log;
    const nxLogLevelEnum before = nxLogManager::GetLogLevel();
    LogRegisteredEntries();  // nothing at the standard level
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_DEBUG);
    LogRegisteredEntries();
    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
    nxLogManager::SetLogLevel(before);

    const std::vector<nxCapturedRecord> records = log.GetRecords();
    ASSERT_EQ(records.size(), expected);
    EXPECT_EQ(records[0].text, "Registered Variable tick table. Name: AAA");
    EXPECT_EQ(records[1].text, "Entry #1. Upper bound: 4.990, Delta: 0.010");
    EXPECT_EQ(records[2].text, "Entry #2. Upper bound: NONE, Delta: 0.050");
    EXPECT_EQ(log.Count(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_DEBUG) &&
                        nxCapturingLogDevice::From("core/trunk/nxVariableTickTable")),
              expected);
}

TEST_F(nxVariableTickTableContainerTest, ThreadsThatRaceToTheFirstCallGetTheSameTables)
{
    std::vector<const nxVariableTickTable*> found(4);
    nxInThreads(4,
                [&](int thread)
                {
                    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
                        found[static_cast<std::size_t>(thread)] =
                            nxVariableTickTableContainer::GetVariableTickTable(source.GetID());
                });
    ASSERT_NE(found[0], nullptr);
    EXPECT_EQ(found, std::vector<const nxVariableTickTable*>(4, found[0]));
}
