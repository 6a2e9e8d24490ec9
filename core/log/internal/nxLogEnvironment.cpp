// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogEnvironment.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "core/platform/nxEnvironment.h"
#include "core/process/nxEnvironmentCopy.h"

std::string nxLogEnvironment::Get(const std::string& key)
{
    return nxEnvironment::IsSecureExecution() ? std::string() : nxEnvironmentCopy::GetValue(key);
}

std::string nxLogEnvironment::GetCapitals(const std::string& key)
{
    std::string text = Get(key);
    for (char& c : text)
        if ('a' <= c && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

bool nxLogEnvironment::GetBool(const std::string& key, bool defaultValue)
{
    return nxEnvironment::IsSecureExecution() ? defaultValue : nxEnvironmentCopy::GetBool(key, defaultValue);
}

std::uint64_t nxLogEnvironment::GetNumber(const std::string& key, std::uint64_t defaultValue, std::uint64_t smallest,
                                          std::uint64_t largest)
{
    const std::string text = Get(key);
    const bool isNumber = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber)
        return defaultValue;
    std::uint64_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
        return largest;
    return std::clamp(number, smallest, largest);
}
