#ifndef CORE_ENUM_NXHIDEVENTTARGETFILTERBITMASK_H
#define CORE_ENUM_NXHIDEVENTTARGETFILTERBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which window receives the events of an input device such as a trader's keypad.
class NX_CORE_API nxHIDEventTargetFilterBitMask final : public nxTypedBitMask<nxHIDEventTargetFilterBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxHIDEventTargetFilterBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxHIDEventTargetFilterBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
