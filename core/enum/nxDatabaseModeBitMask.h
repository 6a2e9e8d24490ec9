#ifndef CORE_ENUM_NXDATABASEMODEBITMASK_H
#define CORE_ENUM_NXDATABASEMODEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How a database is opened.
class NX_CORE_API nxDatabaseModeBitMask final : public nxTypedBitMask<nxDatabaseModeBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxDatabaseModeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDatabaseModeBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
