// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxBitMask.h"

#include <ostream>

#include "core/enum/internal/nxBitMaskRegistry.h"

namespace
{
using RegistryOf32Bits = nxBitMaskRegistry<nxBitMask::Word>;
}  // namespace

nxBitMask::~nxBitMask() = default;

bool nxBitMask::IsValid() const { return (_word & (NullBit | NoChangeBit)) == 0; }

bool nxBitMask::IsNoChange() const { return (_word & NoChangeBit) != 0; }

bool nxBitMask::IsNull() const { return (_word & NullBit) != 0; }

void nxBitMask::SetBits(unsigned bits) { _word = (IsValid() ? _word : 0) | bits; }

void nxBitMask::SetBits(const nxBitMask& bits) { SetBits(bits._word); }

void nxBitMask::SetNull() { _word = NullBit; }

void nxBitMask::SetNoChange() { _word = NoChangeBit; }

std::string nxBitMask::GetShortDescription(const std::string& separator) const
{
    return RegistryOf32Bits::GetInstance().Describe(*this, separator, &RegistryOf32Bits::Texts::first);
}

std::string nxBitMask::GetLongDescription(const std::string& separator) const
{
    return RegistryOf32Bits::GetInstance().Describe(*this, separator, &RegistryOf32Bits::Texts::second);
}

bool nxBitMask::_Register(const std::string& className, unsigned bit, const std::string& shortDescription,
                          const std::string& longDescription)
{
    return RegistryOf32Bits::GetInstance().Register(className, bit, shortDescription, longDescription);
}

bool nxBitMask::_Register(unsigned bit, const std::string& shortDescription, const std::string& longDescription)
{
    return _Register(GetClassName(), bit, shortDescription, longDescription);
}

nxBitMask::DescriptionMap& nxBitMask::_GetDescriptionMap() { return RegistryOf32Bits::GetInstance().GetMap(); }

std::ostream& operator<<(std::ostream& stream, const nxBitMask& mask)
{
    return stream << mask.GetShortDescription(" ");
}
