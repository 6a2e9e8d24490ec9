// SPDX-License-Identifier: Apache-2.0
#include <iterator>

#include "core/enum/internal/nxEnumInterval.h"
#include "core/enum/nxAPIConnectionTypeEnum.h"
#include "core/enum/nxBoolEnum.h"
#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/enum/nxRoundingMethodEnum.h"
#include "core/enum/nxValueStatusEnum.h"
#include "core/enum/nxWorkpaceGroupTypeEnum.h"

namespace
{
template <class Enum>
constexpr nxEnumInterval IntervalOf(const char* name)
{
    return {name, Enum::MinimumValue, Enum::MaximumValue};
}

constexpr nxEnumInterval libraryIntervals[] = {
    IntervalOf<nxCaseSensitivityEnum>("nxCaseSensitivityEnum"),
    IntervalOf<nxLogLevelEnum>("nxLogLevelEnum"),
    IntervalOf<nxValueStatusEnum>("nxValueStatusEnum"),
    IntervalOf<nxBoolEnum>("nxBoolEnum"),
    IntervalOf<nxRoundingMethodEnum>("nxRoundingMethodEnum"),
    IntervalOf<nxWorkpaceGroupTypeEnum>("nxWorkpaceGroupTypeEnum"),
    IntervalOf<nxAPIConnectionTypeEnum>("nxAPIConnectionTypeEnum"),
    IntervalOf<nxErrorEnum>("nxErrorEnum"),
};

static_assert(std::adjacent_find(std::begin(libraryIntervals), std::end(libraryIntervals),
                                 [](const nxEnumInterval& left, const nxEnumInterval& right)
                                 { return left.maximum > right.minimum + 1; }) == std::end(libraryIntervals),
              "the intervals ascend and have no value in common");
}  // namespace

std::span<const nxEnumInterval> nxEnumInterval::OfLibrary() noexcept { return libraryIntervals; }
