// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxForkHandlers.h"

#include <gmock/gmock.h>

#include "tests/support/nxTest.h"

namespace
{
using Rank = nxForkHandlers::Rank;

// The calls around one fork.
struct Record
{
    std::vector<Rank> before, inParent, inChild;
} record;

template <Rank rank>
constexpr nxForkHandlers::Functions Recording{[] { record.before.push_back(rank); },
                                              [] { record.inParent.push_back(rank); },
                                              [] { record.inChild.push_back(rank); }};

// Calls what a fork calls, of the parent and of the child.
void ForkWith(const nxForkHandlers::Table& table)
{
    record = {};
    const unsigned ranks = table.RunBefore();
    table.RunInParent(ranks);
    table.RunInChild(ranks);
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
    EXPECT_THAT(record.before, testing::ElementsAre(Rank::NamedObjects, Rank::Log, Rank::CommandLine, Rank::Clock));
    EXPECT_THAT(record.inParent, testing::ElementsAre(Rank::Clock, Rank::CommandLine, Rank::Log, Rank::NamedObjects));
    EXPECT_THAT(record.inChild,
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
    EXPECT_THAT(record.inParent, testing::IsEmpty());
    EXPECT_THAT(record.inChild, testing::IsEmpty());
    ForkWith(table);
    EXPECT_THAT(record.before, testing::ElementsAre(Rank::NamedObjects));
    EXPECT_THAT(record.inParent, testing::ElementsAre(Rank::NamedObjects));
    EXPECT_THAT(record.inChild, testing::ElementsAre(Rank::NamedObjects));
}
}  // namespace
