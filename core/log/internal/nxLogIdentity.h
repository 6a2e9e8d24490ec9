// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGIDENTITY_H
#define CORE_LOG_INTERNAL_NXLOGIDENTITY_H

#include <string>

#include "core/enum/nxEnumValue.h"

/// What log services of the machine are told about a record besides its parts.
///
/// Threads: no state.
class nxLogIdentity
{
public:
    nxLogIdentity() = delete;

    /// @return @p identifier, or the name of the application, or that of the program; the first one that is not empty.
    static std::string GetIdentifier(const std::string& identifier);

    /// @return the severity of RFC 5424 for a level: 7 for debug to 2 for fatal. The public levels are notices.
    static unsigned GetSeverity(nxEnumValue level) noexcept;
};

#endif
