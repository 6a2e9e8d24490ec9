// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGTEXTS_H
#define CORE_LOG_INLINE_NXLOGTEXTS_H

#include <string>

#include "core/nxExport.h"

class nxBitMask;
class nxBitMask64;
class nxCurrency;
class nxDate;
class nxDateTime;
class nxDateTimeSpan;
class nxExchangeRate;
class nxMoney;
class nxRatio;
class nxStringValue;
class nxTime;
class nxTimeStamp;

/// The texts of the values whose text is made by the reporting thread rather than by the deferred-write thread.
///
/// Errors: empty without memory. Threads: no state.
class NX_CORE_API nxLogTexts
{
public:
    nxLogTexts() = delete;

    static std::string Get(const nxBitMask& mask) noexcept;         ///< The short descriptions, separated by blanks.
    static std::string Get(const nxBitMask64& mask) noexcept;       ///< The short descriptions, separated by blanks.
    static std::string Get(const nxMoney& money) noexcept;          ///< The log form.
    static std::string Get(const nxCurrency& currency) noexcept;    ///< The log form.
    static std::string Get(const nxRatio& ratio) noexcept;          ///< The log form.
    static std::string Get(const nxExchangeRate& rate) noexcept;    ///< The log form.
    static std::string Get(const nxStringValue& value) noexcept;    ///< The log form.
    static std::string Get(const nxDate& date) noexcept;            ///< The log form.
    static std::string Get(const nxTime& time) noexcept;            ///< The log form.
    static std::string Get(const nxDateTime& dateTime) noexcept;    ///< The log form.
    static std::string Get(const nxDateTimeSpan& span) noexcept;    ///< The log form.
    static std::string Get(const nxTimeStamp& timeStamp) noexcept;  ///< The 24 characters, or nothing.
};

#endif
