// SPDX-License-Identifier: Apache-2.0
#include "core/testing/nxCapturingLogDevice.h"

#include "core/log/nxLogMacros.h"
#include "tests/support/nxTest.h"

TEST(nxCapturingLogDevice, KeepsRecordsFromItsConstructionToItsDestruction)
{
    NX_LOG(NX_LOG_LEVEL_INFO) << "before";
    {
        nxCapturingLogDevice log;
        const int line = __LINE__ + 1;
        NX_LOG(NX_LOG_LEVEL_WARNING) << "price " << 7;
        NX_LOG(NX_LOG_LEVEL_DEBUG) << "below the threshold";
        ASSERT_TRUE(log.WaitFor(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_WARNING) &&
                                nxCapturingLogDevice::Contains("price 7")))
            << log;
        const auto records = log.GetRecords();
        EXPECT_EQ(records.back().line, static_cast<unsigned>(line));
        EXPECT_EQ(log.Count(nxCapturingLogDevice::AtLeast(NX_LOG_LEVEL_ERROR)), 0u);
        EXPECT_FALSE(log.WaitFor(nxCapturingLogDevice::Contains("below"), std::chrono::milliseconds(5)));
        log.Clear();
        EXPECT_TRUE(log.GetRecords().empty());
    }
    NX_LOG(NX_LOG_LEVEL_INFO) << "after";  // must not reach the destroyed device
}

TEST(nxCapturingLogDevice, MatchersMayAskTheDeviceAndSeeAllOfARecord)
{
    using Log = nxCapturingLogDevice;
    Log log;
    NX_LOG(NX_LOG_LEVEL_INFO) << nxLog::nxLogSourceApplicationDestUserID("gateway", 7U) << "a";
    NX_LOG(NX_LOG_LEVEL_INFO) << "another";
    EXPECT_TRUE(log.WaitFor([&](const nxCapturedRecord&) { return log.Count(Log::Contains("a")) == 2; })) << log;
    EXPECT_TRUE(log.WaitForCount(Log::Contains("a"), 2)) << log;
    EXPECT_FALSE(log.WaitForCount(Log::Contains("a"), 3, std::chrono::milliseconds::min())) << log;
    EXPECT_EQ(log.GetRecords().front().destinationUserID, 7U);
    EXPECT_EQ(log.GetRecords().front().sourceApplication, "gateway");
}

TEST(nxCapturingLogDevice, MatchersCombineAndRecordsPrintThemselves)
{
    using Log = nxCapturingLogDevice;
    Log log;
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "feed/session", 88) << "gap";
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "feed/session", 90) << "gap closed";
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "feed/book", 7) << "rebuilt";
    ASSERT_TRUE(log.WaitFor(Log::Contains("rebuilt"))) << log;
    EXPECT_EQ(log.Count(Log::From("feed/session") && !Log::Contains("closed")), 1u);
    EXPECT_EQ(log.Count(Log::AtLeast(NX_LOG_LEVEL_WARNING) || Log::From("feed/book")), 2u);
    EXPECT_EQ(Streamed(log),
              "ERR gap [feed/session:88]\nINF gap closed [feed/session:90]\nINF rebuilt [feed/book:7]\n");
}
