// SPDX-License-Identifier: Apache-2.0
// A plug-in that uses the library in its static initialisers and registers its own values and mask there.
#include <string>

#include "core/nxCore.h"

namespace
{
class PluginEnum final : public nxTypedEnum<PluginEnum, 4000000, 4010000>
{
public:
    using nxTypedEnum::nxTypedEnum;
    std::string GetClassName() const override { return "PluginEnum"; }

private:
    static bool _RegisterValues()
    {
        for (unsigned i = 0; i != 5000; ++i)
            _Register(4000001 + i, "PLUGIN_VALUE_" + std::to_string(i), "value of a plug-in");
        return true;
    }
    static const bool _registered;
};

class PluginBitMask final : public nxTypedBitMask<PluginBitMask, nxBitMask>
{
public:
    using nxTypedBitMask::nxTypedBitMask;
    std::string GetClassName() const override { return "PluginBitMask"; }

private:
    static bool _RegisterValues()
    {
        static constexpr FlagTexts flags[] = {{Bit(0), "PLUGGED", "Plugged"}};
        return _RegisterFlags("PluginBitMask", flags);
    }
    static const bool _registered;
};

const bool PluginEnum::_registered = _RegisterValues();
const bool PluginBitMask::_registered = _RegisterValues();

// The answers of the library and of the registrations above during the loading of the plug-in.
const std::string answers = nxErrorEnum(NX_ERR_NOT_FOUND).GetLongDescription() + ", " +
                            nxProductStateBitMask(2).GetShortDescription(" ") + ", " +
                            PluginEnum(4005000).GetShortDescription() + ", " + PluginBitMask(1).GetLongDescription(" ");
}  // namespace

extern "C" NX_CORE_API const char* GetPluginAnswers() { return answers.c_str(); }
