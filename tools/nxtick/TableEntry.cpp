// SPDX-License-Identifier: Apache-2.0
#include "TableEntry.h"

namespace nxtick
{
std::string GetDoubt(const TableFacts& facts)
{
    if (facts.isExpired)
        return "expired on " + facts.expires + ", looked up on " + facts.lookedUp +
               ": compare it with the exchange's own document";
    if (facts.status == "assumed")
        return "assumed: the link of its values to this table is not confirmed; compare it with the exchange's own "
               "document";
    return "";
}
}  // namespace nxtick
