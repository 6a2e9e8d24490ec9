#include "core/log/nxLog.h"

#include <gtest/gtest.h>

#include "core/log/nxLogMacros.h"

TEST(nxLog, EveryValueBecomesItsText)
{
    nxLog record(NX_LOG_LEVEL_INFO, "core/trunk/nxLogTest", 7, nxTimeStamp(10, 500));
    record << true << ' ' << "text" << std::string("string") << std::string_view("view") << nxLogCharLenPair("pair!", 4)
           << -1 << 18446744073709551615ULL << nxErrorEnum(NX_ERR_NOT_FOUND);
    EXPECT_EQ(record.GetText(), "TRUE32textstringviewpair-118446744073709551615NX_ERR_NOT_FOUND");
}
