#include "core/testing/nxCapturingLogDevice.h"

#include <gtest/gtest.h>

#include "core/log/nxLogMacros.h"

TEST(nxCapturingLogDevice, KeepsRecordsFromItsConstructionToItsDestruction)
{
    NX_LOG(NX_LOG_LEVEL_INFO) << "before";
    {
        nxCapturingLogDevice log;
        const int line = __LINE__ + 1;
        NX_LOG(NX_LOG_LEVEL_WARNING) << "price " << 7;
        NX_LOG(NX_LOG_LEVEL_DEBUG) << "below the threshold";
        ASSERT_TRUE(log.WaitFor(nxCapturingLogDevice::Both(nxCapturingLogDevice::HasLevel(NX_LOG_LEVEL_WARNING),
                                                           nxCapturingLogDevice::Contains("price 7"))));
        const auto records = log.GetRecords();
        EXPECT_EQ(records.back().line, static_cast<unsigned>(line));
        EXPECT_EQ(log.Count(nxCapturingLogDevice::AtLeast(NX_LOG_LEVEL_ERROR)), 0u);
        EXPECT_FALSE(log.WaitFor(nxCapturingLogDevice::Contains("below"), std::chrono::milliseconds(5)));
        log.Clear();
        EXPECT_TRUE(log.GetRecords().empty());
    }
    NX_LOG(NX_LOG_LEVEL_INFO) << "after";  // must not reach the destroyed device
}
