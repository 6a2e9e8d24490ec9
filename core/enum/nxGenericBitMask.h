// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXGENERICBITMASK_H
#define CORE_ENUM_NXGENERICBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// 32 bits without names, for sets of flags whose meaning is known elsewhere.
class NX_CORE_API nxGenericBitMask : public nxTypedBitMask<nxGenericBitMask, nxBitMask>
{
public:
    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

    using nxBitMask::GetLongDescription;
    using nxBitMask::GetShortDescription;
    /// @return the word in binary, from its highest set bit down; nothing for the word 0. The null and the no-change
    ///         bit are written like any other.
    virtual std::string GetShortDescription() const;
    /// The same as GetShortDescription().
    virtual std::string GetLongDescription() const;
};

#endif
