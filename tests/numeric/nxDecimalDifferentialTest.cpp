#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tests/numeric/nxDecimalProgram.h"

namespace
{
std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise)
{
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

std::uint64_t NextRandom(std::uint64_t& state)
{
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
    return z ^ (z >> 31);
}
}  // namespace

// Random programs, every result compared with the oracle. NX_DECIMAL_OPERATIONS sets how many operations are run (two
// million unless set), NX_DECIMAL_SEED which.
TEST(nxDecimal, AgreesWithTheOracleOnRandomPrograms)
{
    const std::uint64_t wanted = FromEnvironment("NX_DECIMAL_OPERATIONS", 2'000'000);
    const std::uint64_t firstSeed = FromEnvironment("NX_DECIMAL_SEED", 20260101);
    std::vector<std::uint8_t> bytes(4096);
    std::uint64_t done = 0;
    for (std::uint64_t seed = firstSeed; done < wanted; ++seed)
    {
        std::uint64_t state = seed * 0x2545F4914F6CDD1D;
        for (std::size_t at = 0; at < bytes.size(); at += sizeof state)
        {
            const std::uint64_t random = NextRandom(state);
            std::memcpy(bytes.data() + at, &random, sizeof random);
        }
        nxDecimalProgram program(bytes.data(), bytes.size());
        ASSERT_TRUE(program.Run()) << "NX_DECIMAL_SEED=" << seed << ": " << program.GetFailure();
        done += program.GetOperations();
    }
    RecordProperty("operations", std::to_string(done));
}
