#include "core/platform/nxForkHandlers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <new>
#include <vector>

namespace
{
using Rank = nxForkHandlers::Rank;

// The calls of one side of a fork, in memory that parent and child share.
struct Calls
{
    void Add(Rank rank) { ranks[count++] = rank; }
    std::vector<Rank> Get() const { return {ranks, ranks + count}; }

    std::size_t count;
    Rank ranks[2 * nxForkHandlers::RankCount];
};

struct Record
{
    Calls before;
    Calls inParent;
    Calls inChild;
};

Record& TheRecord()
{
    static Record& record =
        *::new (mmap(nullptr, sizeof(Record), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) Record{};
    return record;
}

template <Rank rank>
constexpr nxForkHandlers::Functions Recording{[] { TheRecord().before.Add(rank); },
                                              [] { TheRecord().inParent.Add(rank); },
                                              [] { TheRecord().inChild.Add(rank); }};

const nxForkHandlers::Table* tableOfTest = nullptr;
unsigned ranksOfFork = 0;

// Forks once with the functions of the table.
void ForkWith(const nxForkHandlers::Table& table)
{
    [[maybe_unused]] static const int registered =
        pthread_atfork([] { ranksOfFork = tableOfTest != nullptr ? tableOfTest->RunBefore() : 0; },
                       []
                       {
                           if (tableOfTest != nullptr)
                               tableOfTest->RunInParent(ranksOfFork);
                       },
                       []
                       {
                           if (tableOfTest != nullptr)
                               tableOfTest->RunInChild(ranksOfFork);
                       });
    ASSERT_EQ(registered, 0);
    TheRecord() = Record{};
    tableOfTest = &table;
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    tableOfTest = nullptr;
    ASSERT_GT(child, 0);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
}

TEST(nxForkHandlersTest, AForkTakesTheRanksInOrderAndGivesThemBackInReverse)
{
    static nxForkHandlers::Table table;
    table.Set(Rank::Clock, Recording<Rank::Clock>);
    table.Set(Rank::CommandLine, Recording<Rank::CommandLine>);
    table.Set(Rank::NamedObjects, Recording<Rank::NamedObjects>);
    table.Set(Rank::Log, Recording<Rank::Log>);
    static constexpr nxForkHandlers::Functions childAlone{nullptr, nullptr, Recording<Rank::LocalZone>.afterInChild};
    table.Set(Rank::LocalZone, childAlone);

    ForkWith(table);
    EXPECT_THAT(TheRecord().before.Get(),
                testing::ElementsAre(Rank::NamedObjects, Rank::Log, Rank::CommandLine, Rank::Clock));
    EXPECT_THAT(TheRecord().inParent.Get(),
                testing::ElementsAre(Rank::Clock, Rank::CommandLine, Rank::Log, Rank::NamedObjects));
    EXPECT_THAT(TheRecord().inChild.Get(),
                testing::ElementsAre(Rank::Clock, Rank::LocalZone, Rank::CommandLine, Rank::Log, Rank::NamedObjects));
}

// Another thread may register at that moment. A lock that was not taken must not be given back.
TEST(nxForkHandlersTest, WhatIsRegisteredDuringAForkIsCalledFromTheNextOneOn)
{
    static nxForkHandlers::Table table;
    static constexpr nxForkHandlers::Functions registering{
        [] { table.Set(Rank::NamedObjects, Recording<Rank::NamedObjects>); }, nullptr, nullptr};
    table.Set(Rank::Log, registering);

    ForkWith(table);
    EXPECT_THAT(TheRecord().inParent.Get(), testing::IsEmpty());
    EXPECT_THAT(TheRecord().inChild.Get(), testing::IsEmpty());
    ForkWith(table);
    EXPECT_THAT(TheRecord().before.Get(), testing::ElementsAre(Rank::NamedObjects));
    EXPECT_THAT(TheRecord().inParent.Get(), testing::ElementsAre(Rank::NamedObjects));
    EXPECT_THAT(TheRecord().inChild.Get(), testing::ElementsAre(Rank::NamedObjects));
}
}  // namespace
