// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxBitMask64.h"

#include <ostream>

#include "core/enum/internal/nxBitMaskRegistry.h"

namespace
{
using RegistryOf64Bits = nxBitMaskRegistry<nxBitMask64::Word>;
}  // namespace

nxBitMask64::~nxBitMask64() = default;

bool nxBitMask64::IsValid() const { return (_word & (NullBit | NoChangeBit)) == 0; }

bool nxBitMask64::IsNoChange() const { return (_word & NoChangeBit) != 0; }

bool nxBitMask64::IsNull() const { return (_word & NullBit) != 0; }

void nxBitMask64::SetBits(unsigned long long bits) { _word = (IsValid() ? _word : 0) | bits; }

void nxBitMask64::SetBits(const nxBitMask64& bits) { SetBits(bits._word); }

void nxBitMask64::SetNull() { _word = NullBit; }

void nxBitMask64::SetNoChange() { _word = NoChangeBit; }

std::string nxBitMask64::GetShortDescription(const std::string& separator) const
{
    return RegistryOf64Bits::GetInstance().Describe(*this, separator, &RegistryOf64Bits::Texts::first);
}

std::string nxBitMask64::GetLongDescription(const std::string& separator) const
{
    return RegistryOf64Bits::GetInstance().Describe(*this, separator, &RegistryOf64Bits::Texts::second);
}

bool nxBitMask64::_Register(const std::string& className, unsigned long long bit, const std::string& shortDescription,
                            const std::string& longDescription)
{
    return RegistryOf64Bits::GetInstance().Register(className, bit, shortDescription, longDescription);
}

bool nxBitMask64::_Register(unsigned long long bit, const std::string& shortDescription,
                            const std::string& longDescription)
{
    return _Register(GetClassName(), bit, shortDescription, longDescription);
}

nxBitMask64::DescriptionMap& nxBitMask64::_GetDescriptionMap() { return RegistryOf64Bits::GetInstance().GetMap(); }

std::ostream& operator<<(std::ostream& stream, const nxBitMask64& mask)
{
    return stream << mask.GetShortDescription(" ");
}
