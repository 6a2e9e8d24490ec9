#include "core/enum/nxErrorEnum.h"

#include <gtest/gtest.h>

TEST(nxErrorEnum, DefaultIsSuccess)
{
    EXPECT_TRUE(nxErrorEnum().IsOK());
    EXPECT_EQ(nxErrorEnum().GetShortDescription(), "UNDEFINED");
    EXPECT_EQ(nxErrorEnum(NX_ERR_NOT_FOUND).GetLongDescription(), "not found");
    EXPECT_FALSE(nxErrorEnum(NX_ERR_NOT_FOUND) == nxErrorEnum());
    nxErrorEnum e;
    e = NX_ERR_INTERNAL;
    EXPECT_EQ(e, NX_ERR_INTERNAL);
    EXPECT_NE(e, nxErrorEnum());
    nxErrorEnum f = e;
    EXPECT_TRUE(f == e);
}
