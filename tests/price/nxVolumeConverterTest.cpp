// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxVolumeConverter.h"

#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxScaledVolumeConverter.h"
#include "tests/support/nxTest.h"

namespace
{
typedef nxVolumeConverter::Units Units;
typedef nxVolumeConverter::Volume Volume;
}  // namespace

TEST(nxVolumeConverter, NullAndNoChangePassThrough)
{
    const nxLotVolumeConverter lots(100, 2, 5);
    const nxAbbreviatedVolumeConverter screen(lots, nxAbbreviatedVolumeConverter::Suffixes::KMBT);
    for (const nxVolumeConverter* const converter :
         {static_cast<const nxVolumeConverter*>(&lots), static_cast<const nxVolumeConverter*>(&screen)})
        for (const Units& marked : {Units::GetNullInstance(), Units::GetNoChangeInstance()})
        {
            nxDecimal quantity(7, 0);
            Units units = 7;
            EXPECT_TRUE(converter->GetAsQuantity(marked, quantity).IsOK());
            EXPECT_EQ(quantity.GetAsLogString('.'), marked.GetAsLogString());
            EXPECT_TRUE(converter->GetAsUnits(quantity, units).IsOK());
            EXPECT_EQ(units, marked);
            EXPECT_EQ(converter->GetAsString(marked, '.').append(converter->GetAsLogString(marked, '.')),
                      marked.GetAsLogString());
        }
}

TEST(nxVolumeConverter, AFailureLeavesTheTargetAsItWas)
{
    const nxScaledVolumeConverter coins(8);
    for (const char* const text : {"1.5x", "-1", "0.000000001", "184467440737.1", ""})
    {
        Units units = 7;
        Volume volume = 8;
        EXPECT_FALSE(coins.SetFromString(text, units, '.').IsOK()) << text;
        EXPECT_FALSE(coins.SetFromString(text, volume, '.').IsOK()) << text;
        EXPECT_EQ(units, 7u);
        EXPECT_EQ(volume, 8u);
    }
    nxDecimal quantity(7, 0);
    EXPECT_EQ(coins.GetAsQuantity(Units(10000000000000000001u), quantity), nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE));
    EXPECT_EQ(quantity, nxDecimal(7, 0));
}

TEST(nxVolumeConverter, MarksOfNarrowVolumesAreNoNumbers)
{
    const nxVolumeConverter plain;
    const nxAbbreviatedVolumeConverter screen(plain, nxAbbreviatedVolumeConverter::Suffixes::KMBT);
    Volume volume;
    nxDecimal quantity;
    EXPECT_TRUE(screen.SetFromString("4,294967293B", volume, ',').IsOK());
    EXPECT_EQ(volume, 4294967293u);
    EXPECT_TRUE(screen.GetAsQuantity(volume, quantity).IsOK());
    for (const unsigned mark : {Volume::NoChangeValue, Volume::NullValue})
        EXPECT_EQ(plain.GetAsUnits(nxDecimal(mark, 0), volume), nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE));
    EXPECT_EQ(volume, 4294967293u);
    EXPECT_TRUE(screen.GetAsUnits(nxDecimal::GetNoChangeDecimal(), volume).IsOK());
    EXPECT_TRUE(volume.IsNoChange());
    EXPECT_TRUE(plain.GetAsQuantity(volume, quantity).IsOK());
    EXPECT_TRUE(quantity.IsNoChange());
}
