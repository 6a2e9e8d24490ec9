// SPDX-License-Identifier: Apache-2.0
#include "tests/numeric/nxDecimalProgram.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxTest.h"

TEST(nxDecimal, AgreesWithTheOracleOnRandomPrograms)
{
    const std::uint64_t wanted = nxRandomTest::GetOperations(2'000'000);
    std::vector<std::uint8_t> bytes(4096);
    std::uint64_t done = 0;
    for (std::uint64_t seed = nxRandomTest::GetSeed(20260101); done < wanted; ++seed)
    {
        std::mt19937_64 random(seed);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        nxDecimalProgram program(bytes.data(), bytes.size());
        ASSERT_TRUE(program.Run()) << "NX_TEST_SEED=" << seed << ": " << program.GetFailure();
        done += program.GetOperations();
    }
    RecordProperty("operations", std::to_string(done));
}
