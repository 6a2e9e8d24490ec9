// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogRecordTimes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

// Times of records are those of the scale, whatever comes after what: within a second, at its end, and before it.
TEST(nxLogRecordTimes, AreThoseOfTheScale)
{
    std::mt19937_64 random(1);
    for (const std::uint64_t rate :
         {std::uint64_t{1} << 28, std::uint64_t{1'431'655'765}, std::uint64_t{1} << 32, (std::uint64_t{1} << 34) + 1})
    {
        const std::uint64_t second = (std::uint64_t{1'000'000'000} << 32) / rate;
        for (const std::int64_t nanoseconds : {1'709'629'623'999'999'000, 0L, -1'500'000'000L})
        {
            const nxClockScale scale(random(), nanoseconds, rate);
            nxLogRecordTimes times(scale);
            std::uint64_t ticks = scale.GetTicks() - second;
            for (int i = 0; i < 20'000; ++i)
            {
                const nxClockTime expected = scale.ToTime(ticks), found = times.Get(ticks);
                ASSERT_EQ(found.seconds, expected.seconds) << rate << ' ' << ticks - scale.GetTicks();
                ASSERT_EQ(found.nanoseconds, expected.nanoseconds) << rate << ' ' << ticks - scale.GetTicks();
                ticks += i % 100 == 0 ? random() % second - second / 2 : random() % (second / 1'000 + 1);
            }
        }
    }
}
