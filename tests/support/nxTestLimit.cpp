// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/nxTestThreads.h"

// No test runs without an end, however it is started: the system ends a program whose test takes longer than nxTestSeconds.

namespace
{
class Limit : public testing::EmptyTestEventListener
{
public:
    void OnTestStart(const testing::TestInfo&) override { alarm(nxTestSeconds); }
    void OnTestEnd(const testing::TestInfo&) override { alarm(0); }
};

const bool isLimited = []
{
    testing::UnitTest::GetInstance()->listeners().Append(new Limit);  // which owns it
    return true;
}();
}  // namespace
