#include "tests/numeric/nxDecimalProgram.h"
#include "tests/support/nxRandomTest.h"
#include "tests/support/nxTest.h"

namespace
{
std::uint64_t NextRandom(std::uint64_t& state)
{
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
}
}  // namespace

TEST(nxDecimal, AgreesWithTheOracleOnRandomPrograms)
{
    const std::uint64_t wanted = nxRandomTest::GetOperations(2'000'000);
    std::vector<std::uint8_t> bytes(4096);
    std::uint64_t done = 0;
    for (std::uint64_t seed = nxRandomTest::GetSeed(20260101); done < wanted; ++seed)
    {
        std::uint64_t state = seed * 0x2545F4914F6CDD1D;
        for (std::size_t at = 0; at < bytes.size(); at += sizeof state)
        {
            const std::uint64_t random = NextRandom(state);
            std::memcpy(bytes.data() + at, &random, sizeof random);
        }
        nxDecimalProgram program(bytes.data(), bytes.size());
        ASSERT_TRUE(program.Run()) << "NX_TEST_SEED=" << seed << ": " << program.GetFailure();
        done += program.GetOperations();
    }
    RecordProperty("operations", std::to_string(done));
}
