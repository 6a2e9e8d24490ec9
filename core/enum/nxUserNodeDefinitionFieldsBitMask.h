#ifndef CORE_ENUM_NXUSERNODEDEFINITIONFIELDSBITMASK_H
#define CORE_ENUM_NXUSERNODEDEFINITIONFIELDSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The fields of a user's definition that a request carries.
class NX_CORE_API nxUserNodeDefinitionFieldsBitMask final
    : public nxTypedBitMask<nxUserNodeDefinitionFieldsBitMask, nxBitMask64>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxUserNodeDefinitionFieldsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxUserNodeDefinitionFieldsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
