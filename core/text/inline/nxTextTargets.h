// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TEXT_INLINE_NXTEXTTARGETS_H
#define CORE_TEXT_INLINE_NXTEXTTARGETS_H

#include <concepts>

// The types that nxStringHelper reads and writes for the layers that define them.
class nxCaseSensitivityEnum;
class nxCurrency;
class nxDate;
class nxDateTime;
class nxDateTimeSpan;
class nxDecimal;
class nxDoubleValueWrapper;
class nxMoney;
class nxRatio;
class nxTime;
template <std::integral T, T NullMark, T NoChangeMark>
class nxValueWrapper;

#endif
