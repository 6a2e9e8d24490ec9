// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXZONEOFPROCESS_H
#define TESTS_SUPPORT_NXZONEOFPROCESS_H

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

/// The time zone of the process for the length of a test; afterwards it is what it was.
class nxZoneOfProcess
{
public:
    /// @param setting what TZ becomes, "FIX-5:30"; null takes the variable away.
    explicit nxZoneOfProcess(const char* setting)
    {
        if (const char* const before = std::getenv("TZ"))
            _before = before;
        Set(setting);
    }
    ~nxZoneOfProcess() { Set(_before ? _before->c_str() : nullptr); }

    /// Changes it again within the test.
    static void Set(const char* setting)
    {
        setting != nullptr ? setenv("TZ", setting, 1) : unsetenv("TZ");
        tzset();
    }

private:
    std::optional<std::string> _before;
};

#endif
