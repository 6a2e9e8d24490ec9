// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGLEVELRULE_H
#define CORE_LOG_NXLOGLEVELRULE_H

#include <string>

#include "core/enum/nxLogLevelEnum.h"

/// The level from which on the statements of some sources report. See nxLogLevels.
struct nxLogLevelRule
{
    /// The end of a source's path, "Gateway.cpp"; or with a slash at its end one folder or several in sequence, "orders/".
    std::string where;
    nxLogLevelEnum level;  ///< Statements below this level do not report.
};

#endif
