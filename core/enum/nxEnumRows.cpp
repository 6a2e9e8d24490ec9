#include "core/enum/nxEnumRows.h"

#include <algorithm>
#include <iterator>

namespace
{
constexpr nxEnum::ValueTexts rows[] = {
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) {value, shortDescription, longDescription},
#define NX_ERROR_CODE(value, identifier, wording) {value, #identifier, wording},
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
};

constexpr bool IsBelow(const nxEnum::ValueTexts& left, const nxEnum::ValueTexts& right)
{
    return left.value < right.value;
}
static_assert(std::is_sorted(std::begin(rows), std::end(rows), IsBelow), "the lists stand in ascending order");
}  // namespace

nxEnumRows nxEnumRows::GetAll() { return {std::begin(rows), std::end(rows)}; }

nxEnumRows nxEnumRows::GetRange(unsigned lowest, unsigned highest)
{
    return {std::lower_bound(std::begin(rows), std::end(rows), nxEnum::ValueTexts{lowest, "", ""}, IsBelow),
            std::upper_bound(std::begin(rows), std::end(rows), nxEnum::ValueTexts{highest, "", ""}, IsBelow)};
}
