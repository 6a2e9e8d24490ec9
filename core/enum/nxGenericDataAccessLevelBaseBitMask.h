#ifndef CORE_ENUM_NXGENERICDATAACCESSLEVELBASEBITMASK_H
#define CORE_ENUM_NXGENERICDATAACCESSLEVELBASEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How far somebody may reach a data object.
///
/// These are levels, not single bits: compare the value (`mask == READ_WRITE_ACCESS`) rather than test bits. Printing
/// goes by bits, as for every mask.
class NX_CORE_API nxGenericDataAccessLevelBaseBitMask final
    : public nxTypedBitMask<nxGenericDataAccessLevelBaseBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxGenericDataAccessLevelBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxGenericDataAccessLevelBaseBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
