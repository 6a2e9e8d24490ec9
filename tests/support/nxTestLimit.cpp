// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

// No test runs without an end, however it is started: the system ends a program whose test takes longer than NX_TEST_SECONDS,
// two minutes without that setting; 0 is no limit.

namespace
{
class Limit : public testing::EmptyTestEventListener
{
public:
    explicit Limit(unsigned seconds) : _seconds(seconds) {}

    void OnTestStart(const testing::TestInfo&) override { alarm(_seconds); }
    void OnTestEnd(const testing::TestInfo&) override { alarm(0); }

private:
    unsigned _seconds;
};

const bool isLimited = []
{
    const char* const setting = std::getenv("NX_TEST_SECONDS");
    const unsigned seconds = setting == nullptr ? 120 : static_cast<unsigned>(std::atoi(setting));
    testing::UnitTest::GetInstance()->listeners().Append(new Limit(seconds));  // which owns it
    return true;
}();
}  // namespace
