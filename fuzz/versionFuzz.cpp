// SPDX-License-Identifier: Apache-2.0
// Version numbers: any text has three parts, and only those of the library's own major and minor number go with it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/text/nxVersionNumber.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const nxVersionNumber& version = nxVersionNumber::GetInstance();
    unsigned major = 0;
    unsigned minor = 0;
    unsigned sub = 0;
    unsigned own[3] = {};
    version.GetMajorMinorSubVersionParts(text, major, minor, sub);
    version.GetMajorMinorSubVersionParts(version.GetVersionNumber(), own[0], own[1], own[2]);
    if (version.IsCompatibleVersionNumber(text) != (major == own[0] && minor == own[1]))
        std::abort();
    // The parts written out again have the same parts; negative ones wrap and come back as large numbers.
    if (major > 0x7FFFFFFF || minor > 0x7FFFFFFF || sub > 0x7FFFFFFF)
        return 0;
    unsigned again[3] = {};
    version.GetMajorMinorSubVersionParts(
        std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(sub), again[0], again[1], again[2]);
    if (again[0] != major || again[1] != minor || again[2] != sub)
        std::abort();
    return 0;
}
