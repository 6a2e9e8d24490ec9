// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxVersionNumber.h"

#include <algorithm>
#include <climits>
#include <string_view>

#include "core/nxVersion.h"
#include "core/text/nxStringParser.h"

namespace
{
// As C's atoi, whose result is undefined for a number that is too large. Here such a number becomes the nearest int.
int ReadLeadingNumber(std::string_view field)
{
    field.remove_prefix(std::min(field.find_first_not_of(" \t\n\v\f\r"), field.size()));
    const bool negative = !field.empty() && field.front() == '-';
    if (negative || (!field.empty() && field.front() == '+'))
        field.remove_prefix(1);
    constexpr long long beyond = 1LL + INT_MAX;
    long long magnitude = 0;
    for (const char c : field)
    {
        if (c < '0' || c > '9')
            break;
        magnitude = std::min(magnitude * 10 + (c - '0'), beyond);
    }
    return static_cast<int>(negative ? -magnitude : std::min<long long>(magnitude, INT_MAX));
}
}  // namespace

nxVersionNumber& nxVersionNumber::GetInstance()
{
    static nxVersionNumber instance;
    return instance;
}

std::string nxVersionNumber::GetVersionNumber() const { return NX_CORE_VERSION; }

void nxVersionNumber::GetMajorMinorSubVersionParts(const std::string& version, unsigned int& major, unsigned int& minor,
                                                   unsigned int& sub) const
{
    nxStringParser parser(version);
    major = static_cast<unsigned>(ReadLeadingNumber(parser.GetSubString('.')));
    minor = static_cast<unsigned>(ReadLeadingNumber(parser.GetSubString('.')));
    sub = static_cast<unsigned>(ReadLeadingNumber(parser.GetSubString('.')));
}

bool nxVersionNumber::IsCompatibleVersionNumber(const std::string& other) const
{
    unsigned major = 0;
    unsigned minor = 0;
    unsigned sub = 0;
    unsigned ownMajor = 0;
    unsigned ownMinor = 0;
    GetMajorMinorSubVersionParts(other, major, minor, sub);
    GetMajorMinorSubVersionParts(GetVersionNumber(), ownMajor, ownMinor, sub);
    return major == ownMajor && minor == ownMinor;
}
