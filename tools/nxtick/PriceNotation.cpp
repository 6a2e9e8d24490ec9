// SPDX-License-Identifier: Apache-2.0
#include "PriceNotation.h"

#include <memory>

#include "Failure.h"
#include "Text.h"
#include "core/price/nxPriceConverterHelper.h"

namespace nxtick
{
namespace
{
const char* FindFault(const std::string& name)
{
    std::unique_ptr<const nxPriceConverter> converter;
    const nxErrorEnum error = nxPriceConverterHelper::Create(name, converter);
    return error == nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)
               ? " has numbers that no notation can have; see NOTATIONS in man nxtick"
               : " is not a notation, such as DECIMAL:2, FRACTION:32 or MODIFIED:32/4";
}
}  // namespace

PriceNotation::PriceNotation(const std::string& name)
    : _converter(nxPriceConverterHelper::Get(name)),
      _malformed("is not a price in " + name),
      _outside("has a fraction that " + name + " does not have, or more digits than a price can hold")
{
    if (_converter == nullptr)
        throw Failure("-notation " + Quoted(name) + FindFault(name));
}

const char* PriceNotation::_ReadNotation(const PriceGrid& grid, std::string_view text, nxDecimal& price,
                                         char point) const
{
    nxDecimal value;
    const nxErrorEnum error = _converter->SetFromStringView(WithoutBlanks(text), value, point);
    if (error == nxErrorEnum(NX_ERR_INVALID_PARAMETER))
        return _malformed.c_str();
    if (!error.IsOK() || !grid.HasRoomAt(value))
        return _outside.c_str();
    price = CopyFresh(value);
    return nullptr;
}

std::string PriceNotation::GetText(const nxDecimal& price, char point) const
{
    return IsPlain() ? DecimalText(price, point) : _converter->GetAsString(price, point);
}
}  // namespace nxtick
