#ifndef CORE_ENUM_NXKEYBOARDMODIFIERBITMASK_H
#define CORE_ENUM_NXKEYBOARDMODIFIERBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The keys held down while another key or a mouse button is pressed.
class NX_CORE_API nxKeyboardModifierBitMask final : public nxTypedBitMask<nxKeyboardModifierBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxKeyboardModifierBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxKeyboardModifierBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
