// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLEVELRULES_H
#define CORE_LOG_INTERNAL_NXLOGLEVELRULES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/enum/nxLogLevelEnum.h"
#include "core/log/nxLogLevelRule.h"

/// Levels by source, and perhaps a level for all, as one text gives them. See nxLogLevels for the text.
///
/// Invariant: no two rules name the same sources by the same text, and each rule has a level.
///
/// Errors: std::bad_alloc is thrown; all others are returned, and nothing has changed then. Threads: like any value.
class nxLogLevelRules
{
public:
    static constexpr std::size_t MostRules = 256;     ///< In one text.
    static constexpr std::size_t LongestWhere = 255;  ///< Bytes of what names the sources of a rule.

    /// Reads rules from a text. @param fault says what is wrong with which line.
    [[nodiscard]] static nxErrorEnum Read(std::string_view text, nxLogLevelRules& rules, std::string& fault);

    /// Adds a rule, in the place of one for the same text. @param fault says what is wrong.
    [[nodiscard]] nxErrorEnum Set(std::string_view where, nxEnumValue level, std::string& fault);

    /// @return the level of the rule that fits @p path best; NX_ENUM_UNDEFINED where none fits.
    nxEnumValue Find(std::string_view path) const noexcept;

    /// The level for all sources that no rule fits; NX_ENUM_UNDEFINED when there is none.
    nxEnumValue GetLevelForAll() const noexcept { return _levelForAll; }
    /// The lowest and the highest level of a rule; both NX_ENUM_UNDEFINED when there is no rule.
    nxEnumValue GetLowest() const noexcept;
    nxEnumValue GetHighest() const noexcept;  ///< @copydoc GetLowest()

    const std::vector<nxLogLevelRule>& GetRules() const noexcept { return _rules; }
    /// @return the rules as one line that Read() takes: "INF, orders/=DBG".
    std::string GetText() const;

private:
    nxErrorEnum _ReadEntry(std::string_view entry, std::string& fault);

    nxEnumValue _levelForAll = NX_ENUM_UNDEFINED;
    std::vector<nxLogLevelRule> _rules;
};

#endif
