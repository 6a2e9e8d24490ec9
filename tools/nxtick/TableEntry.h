// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_TABLEENTRY_H
#define NXTICK_TABLEENTRY_H

#include <string>

#include "core/price/nxVariableTickTable.h"

namespace nxtick
{
/// What is known of a table beside its bands. Texts are empty where it is not known; days are YYYY-MM-DD.
struct TableFacts
{
    std::string list;    ///< "own", "catalogue" or "today".
    std::string status;  ///< One word: how well the bands are known; "custom" for the user's own.
    std::string source;  ///< Several are separated by " | ".
    std::string note;
    std::string venue;
    std::string markets;  ///< Market identifier codes, separated by blanks.
    std::string instruments;
    std::string currency;
    std::string unit;
    std::string validFrom;
    std::string evidence;  ///< The day that the newest source speaks of.
    std::string lookedUp;
    std::string expires;
    bool isExpired = false;
};

/// A table and what is known of it.
struct TableEntry
{
    std::string id;
    const nxVariableTickTable* table = nullptr;
    TableFacts facts;
    std::string gridWarning;  ///< Of roundings that leave the grid; empty when none does.
};

/// Why the table should be compared with the exchange's own document before use; empty for no reason.
std::string GetDoubt(const TableFacts& facts);
}  // namespace nxtick

#endif
