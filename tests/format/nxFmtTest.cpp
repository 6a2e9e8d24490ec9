#include "core/format/nxFmt.h"

#include <gtest/gtest.h>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxProductStateBitMask.h"
#include "core/format/nxFormat.h"
#include "core/numeric/nxMoney.h"
#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxValueWrapper.h"
#include "core/time/nxDate.h"

TEST(nxFmt, ValuesPrintAsInTheLog)
{
    nxProductStateBitMask state;
    state.SetBits(nxProductStateBitMask::CLOSED | nxProductStateBitMask::EXPIRING);
    EXPECT_EQ(fmt::format("[{}] [{:>7}] [{:<6}]", nxErrorEnum(NX_ERR_NOT_FOUND), nxDecimal(5, 2),
                          nxDecimal::GetNullDecimal()),
              "[NX_ERR_NOT_FOUND] [   5.00] [NULL  ]");
    EXPECT_EQ(fmt::format("{} {} {}", state, nxValueWrapper<unsigned>(4294967294U), nxDoubleValueWrapper(2.5)),
              "CLOSED EXPIRING NO_CHANGE 2.5");
    EXPECT_EQ(fmt::format("{}", nxTimeStamp(0, 5'000)).substr(17), "000.005");
    EXPECT_EQ(fmt::format("{}", nxDate()), "NULL");
    EXPECT_EQ(fmt::format("{}", nxMoney()), nxMoney().GetAsLogString('.'));
}

#ifdef __cpp_lib_format
TEST(nxFormat, ValuesPrintAsInTheLog)
{
    EXPECT_EQ(std::format("[{}] [{:>7}]", nxErrorEnum(NX_ERR_NOT_FOUND), nxDecimal(5, 2)),
              "[NX_ERR_NOT_FOUND] [   5.00]");
}
#endif
