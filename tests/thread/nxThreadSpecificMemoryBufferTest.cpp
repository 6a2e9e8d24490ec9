#include "core/thread/nxThreadSpecificMemoryBuffer.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "tests/support/nxSystemCallFault.h"

TEST(nxThreadSpecificMemoryBuffer, KeepsContentsAndFillLevelThroughGrowth)
{
    nxThreadSpecificMemoryBuffer buffer(16);
    ASSERT_NE(buffer.GetData(), nullptr);
    EXPECT_EQ(buffer.GetUsed(), 0U);
    const std::string text = "bid 99.5 x 1000";
    text.copy(buffer.GetData(), text.size());
    buffer.SetUsed(static_cast<unsigned>(text.size()));
    for (const unsigned capacity : {32U, 48U})
    {
        buffer.GrowBuffer();
        EXPECT_EQ(buffer.GetCapacity(), capacity);
    }
    buffer.GrowBufferToSize(1 << 20);
    EXPECT_EQ(std::string(buffer.GetData(), buffer.GetUsed()), text);
    buffer.GrowBufferToSize(3);
    EXPECT_EQ(buffer.GetCapacity(), 3U);
    EXPECT_EQ(buffer.GetUsed(), text.size()) << "the fill level is the user's";
    EXPECT_EQ(std::string(buffer.GetData(), 3), "bid");
    buffer.GrowBuffer();
    EXPECT_EQ(buffer.GetCapacity(), 19U) << "grows by the size at construction";
}

TEST(nxThreadSpecificMemoryBuffer, ASizeOfZeroNeverGrows)
{
    nxThreadSpecificMemoryBuffer buffer(0);
    buffer.GrowBuffer();
    EXPECT_EQ(buffer.GetCapacity(), 0U);
    buffer.GrowBufferToSize(8);
    ASSERT_NE(buffer.GetData(), nullptr);
    buffer.GetData()[7] = 'x';
    buffer.GrowBufferToSize(0);
    EXPECT_EQ(buffer.GetData(), nullptr);
}

TEST(nxThreadSpecificMemoryBuffer, IsNullWhenMemoryRunsOut)
{
    nxThreadSpecificMemoryBuffer buffer(8);
    {
        const nxSystemCallFault fault("realloc", ENOMEM);
        buffer.GrowBuffer();
        EXPECT_EQ(fault.GetHits(), 1U);
    }
    EXPECT_EQ(buffer.GetData(), nullptr);
    EXPECT_EQ(buffer.GetCapacity(), 16U) << "what was asked for";
    buffer.GrowBuffer();
    EXPECT_NE(buffer.GetData(), nullptr);

    const nxSystemCallFault fault("malloc", ENOMEM);
    EXPECT_EQ(nxThreadSpecificMemoryBuffer(8).GetData(), nullptr);
}
