#ifndef CORE_ENUM_NXDATAOBJECTCACHEOBSERVERBITMASK_H
#define CORE_ENUM_NXDATAOBJECTCACHEOBSERVERBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How an observer of the data object cache is notified.
class NX_CORE_API nxDataObjectCacheObserverBitMask final
    : public nxTypedBitMask<nxDataObjectCacheObserverBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxDataObjectCacheObserverBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDataObjectCacheObserverBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
