// SPDX-License-Identifier: Apache-2.0
// A small gateway, as a user of the library writes one: it is built with every usual switch and must say the same. Its third
// source is the plug-in of tests/enum.
#ifndef TESTS_PACKAGE_SWITCHES_GATEWAY_H
#define TESTS_PACKAGE_SWITCHES_GATEWAY_H

#include "core/nxCore.h"

// Everything inline: each source file has the table of virtual functions.
class SideEnum final : public nxTypedEnum<SideEnum, 3000000, 3000003>
{
public:
    static constexpr nxEnumValue Buy{3000001};
    static constexpr nxEnumValue Sell{3000002};

    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;
    std::string GetClassName() const override { return "SideEnum"; }

private:
    static bool _RegisterValues();
    static const bool _registered;
};

// The name out of line: only one source file has the table.
class OrderFlagsBitMask final : public nxTypedBitMask<OrderFlagsBitMask, nxBitMask>
{
public:
    enum Flag : Word
    {
        PRICE_MOVED = Bit(0),
        HAS_STOP = Bit(1),
    };
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;
    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

// Calculates with every operation that compilers may rearrange. @return a digest of all results.
std::string SumUpNumbers();

extern "C" const char* GetPluginAnswers();

#endif
