#include "core/price/nxVariableTickTableContainer.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "core/price/nxCatalogueTickTables.h"
#include "core/price/nxTickTableSource.h"
#include "core/testing/nxCapturingLogDevice.h"
#include "tests/support/nxTestThreads.h"

/// Reaches a container of its own.
struct nxVariableTickTableContainerTest : testing::Test
{
    void Register(const std::string& name, const std::string& id, nxVariableTickTable* table)
    {
        container._Register(name, id, table);
    }
    std::size_t CountNames() const { return container._names.size(); }
    std::size_t CountTables() const { return container._tables.size(); }
    const nxVariableTickTable* Find(const std::string& id) const
    {
        const auto found = container._tables.find(id);
        return found == container._tables.end() ? nullptr : found->second;
    }
    void LogRegisteredEntries() { container._LogRegisteredEntries(); }

    int deleted = 0;
    nxVariableTickTableContainer container;
};

namespace
{
// Says when it is deleted.
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
    EXPECT_EQ(Container::GetVariableTickTable("VTT_CHIX_CPH1"), table);
    EXPECT_EQ(Container::GetVariableTickTableID("CHIX_CPH1"), "VTT_CHIX_CPH1");
    for (const char* id : {"CHIX_CPH1", "VTT_CHIX_cph1", "VTT_CHIX_LSE1", "VTT_", "", "VTT_VTT_CHIX_CPH1"})
        EXPECT_EQ(Container::GetVariableTickTable(id), nullptr) << id;
    for (const char* name : {"VTT_CHIX_CPH1", "chix_cph1", ""})
        EXPECT_EQ(Container::GetVariableTickTableID(name), "") << name;
    EXPECT_NE(Container::GetVariableTickTable("VTT_CHIX_lse1"), nullptr);
    EXPECT_NE(Container::GetVariableTickTable("VTT_CXE_tck_10000"), nullptr);
}

TEST_F(nxVariableTickTableContainerTest, TheCatalogueIsWhole)
{
    const auto sources = nxTickTableSource::GetAll();
    const auto ids = nxVariableTickTableContainer::GetVariableTickTableIDs();
    ASSERT_EQ(sources.size(), 150U);
    ASSERT_EQ(ids.size(), 150U);
    EXPECT_EQ(ids.front(), "VTT_CHIX_CPH1");
    EXPECT_EQ(ids[42], "VTT_CHIX_xswx2");
    EXPECT_EQ(ids.back(), "VTT_EUREX_165");
    const std::set<std::string_view> statuses = {"given", "published", "derived", "assumed"};
    for (std::size_t i = 0; i < ids.size(); ++i)
    {
        SCOPED_TRACE(ids[i]);
        EXPECT_EQ(ids[i], sources[i].GetID());
        EXPECT_TRUE(statuses.contains(sources[i].GetStatus()));
        EXPECT_FALSE(sources[i].GetSource().empty());
        EXPECT_EQ(nxTickTableSource::Find(ids[i]), &sources[i]);
        EXPECT_EQ(nxTickTableSource::Find(sources[i].GetName()), &sources[i]);
    }
    EXPECT_EQ(nxTickTableSource::Find("VTT_"), nullptr);
    EXPECT_EQ(nxTickTableSource::Find("CHIX"), nullptr);
}

// Bounds and increments with the decimal places that the exchanges write.
TEST_F(nxVariableTickTableContainerTest, BandsOfTellingTables)
{
    const char* const rows[][2] = {
        {"CHIX_LON1", "9.990 0.010; 199.900 0.100; 499.750 0.250; 999.500 0.500; "},
        {"CHIX_LON3", "0.0999 0.0001; 4.9975 0.0025; 9.9950 0.0050; "},
        {"CHIX_FESE1",
         "0.9999 0.0001; 4.9995 0.0005; 9.999 0.001; 49.995 0.005; 99.99 0.01; 499.95 0.05; 999.90 0.10; "
         "4999.50 0.50; 9999 1; "},
        {"CHIX_CPH1", "4.990 0.010; 9.950 0.050; 49.900 0.100; 249.750 0.250; 499.500 0.500; 4999.000 1.000; "},
        {"EURONEXT_07", "9.999 0.001; 49.995 0.005; 99.99 0.01; "},
        {"TAIFEX_TAIEX", "9.9 0.1; 49.5 0.5; 499 1; 995 5; "},
        {"CXE_mifid_1",
         "0.0995 0.0005; 0.199 0.001; 0.498 0.002; 0.995 0.005; 1.99 0.01; 4.98 0.02; 9.95 0.05; 19.9 0.1; 49.8 0.2; "
         "99.5 0.5; 199 1; 498 2; 995 5; 1990 10; 4980 20; 9950 50; "},
        {"CME_02_0_01", "0.045 0.005; "},
        {"NFX_1", "0.009 0.001; "},
        {"XDP_100_5_50", "0.49 0.01; "},
        {"MX_03", "0.09 0.01; "},
    };
    for (const auto& [name, bands] : rows)
    {
        const auto* table = nxVariableTickTableContainer::GetVariableTickTable(std::string("VTT_") + name);
        ASSERT_NE(table, nullptr) << name;
        EXPECT_EQ(BandText(*table).substr(0, std::string_view(bands).size()), bands) << name;
    }
    EXPECT_EQ(BandText(nxVariableTickTableCHIX_CPH1()),
              BandText(*nxVariableTickTableContainer::GetVariableTickTable("VTT_CHIX_CPH1")));
    static_assert(sizeof(nxVariableTickTableCHIX_CPH1) == sizeof(nxVariableTickTable));
}

TEST_F(nxVariableTickTableContainerTest, ATableThatIsRefusedIsDeletedAndStopsNothing)
{
    const std::tuple<const char*, const char*, const char*, bool> rows[] = {
        {"A", "VTT_A", "0", false},           {"A", "VTT_A", "2 0.1; 1 0.2; 1", false},
        {"A", "VTT_A", "1 0.1; 0.2", true},   {"A", "VTT_A2", "1 0.1; 0.2", false},  // the name is taken
        {"A3", "VTT_A", "1 0.1; 0.2", false},                                        // the identifier is taken
        {"B", "VTT_B", "0.2", true},
    };
    ASSERT_EQ(CountTables(), 150U);
    std::size_t taken = 150;
    int refused = 0;
    for (const auto& [name, id, bands, isTaken] : rows)
    {
        SCOPED_TRACE(std::string(id) + " " + bands);
        Register(name, id, new TestTable(bands, deleted));
        taken += isTaken ? 1 : 0;
        refused += isTaken ? 0 : 1;
        EXPECT_EQ(deleted, refused);
        EXPECT_EQ(CountTables(), taken);
        EXPECT_EQ(CountNames(), taken);
    }
    Register("C", "VTT_C", nullptr);
    EXPECT_EQ(Find("VTT_C"), nullptr);
    EXPECT_EQ(BandText(*Find("VTT_A")).substr(0, 7), "1 0.1; ");
}

TEST_F(nxVariableTickTableContainerTest, TheCatalogueIsLoggedBandByBandAtTheDebugLevel)
{
    const nxLogLevelEnum before = nxLogManager::GetLogLevel();
    std::size_t expected = CountTables() + 3;
    for (const nxTickTableSource& source : nxTickTableSource::GetAll())
        expected += Find(source.GetID())->GetRangeData().size();
    Register("AAA", "VTT_AAA", new TestTable("4.990 0.010; 0.050", deleted));

    nxCapturingLogDevice log;
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
    for (const nxVariableTickTable* table : found)
        EXPECT_EQ(table, nxVariableTickTableContainer::GetVariableTickTable("VTT_EUREX_165"));
    EXPECT_NE(found[0], nullptr);
}
