// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXGENERICBITMASK64_H
#define CORE_ENUM_NXGENERICBITMASK64_H

#include "core/enum/nxTypedBitMask.h"

/// 64 bits without names, for sets of flags whose meaning is known elsewhere.
class NX_CORE_API nxGenericBitMask64 : public nxTypedBitMask<nxGenericBitMask64, nxBitMask64>
{
public:
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

    using nxBitMask64::GetLongDescription;
    using nxBitMask64::GetShortDescription;
    /// @return the word in binary, from its highest set bit down; nothing for the word 0. The null and the no-change
    ///         bit are written like any other.
    virtual std::string GetShortDescription() const;
    /// The same as GetShortDescription().
    virtual std::string GetLongDescription() const;
};

#endif
