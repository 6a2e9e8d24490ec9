// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGENVIRONMENT_H
#define CORE_LOG_INTERNAL_NXLOGENVIRONMENT_H

#include <cstdint>
#include <string>

/// The values that settings of the log have in the environment.
///
/// - A program that has more rights than the user who started it sees none of them.
/// - Errors: none; a value that cannot be understood gives the default. Threads: any.
class nxLogEnvironment
{
public:
    nxLogEnvironment() = delete;

    /// @return the value of @p key; empty if it is not set.
    static std::string Get(const std::string& key);
    /// @return the value of @p key in capitals.
    static std::string GetCapitals(const std::string& key);
    /// @return whether @p key is TRUE or YES; FALSE and NO are false, in any case.
    static bool GetBool(const std::string& key, bool defaultValue);
    /// @return the plain digits of @p key as a number between @p smallest and @p largest.
    static std::uint64_t GetNumber(const std::string& key, std::uint64_t defaultValue, std::uint64_t smallest,
                                   std::uint64_t largest);
};

#endif
