// SPDX-License-Identifier: Apache-2.0
// One byte of hex from any text, and the search for the best match.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/text/nxAlgorithm.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckHex(std::string_view text)
{
    unsigned char value = 42;
    const bool read = nxAlgorithm::SetFromHex(text, value).IsOK();
    const bool prefixed = text.size() > 2 && text.substr(0, 2) == "0x";
    const std::string digits(text.substr(prefixed ? 2 : 0));
    const bool wellFormed = (digits.size() == 1 || digits.size() == 2) &&
                            digits.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
    Require(read == wellFormed);
    Require(value == (read ? std::strtoul(digits.c_str(), nullptr, 16) : 42));
}

void CheckBestMatch(const std::string& text, unsigned distance)
{
    const nxCaseSensitivityEnum sensitivity(distance % 2 == 0 ? CASE_SENSITIVE : CASE_INSENSITIVE);
    std::set<std::string> candidates;
    for (std::size_t begin = 0; begin < text.size(); begin += 5)
        candidates.insert(text.substr(begin, 7));
    const std::string wanted = text.substr(text.size() / 3, 6);
    std::string match = "none";
    if (nxAlgorithm::GetBestMatch(candidates, wanted, sensitivity, distance, match))
        Require(candidates.count(match) == 1);
    else
        Require(match == "none" && candidates.count(wanted) == 0);
    for (const std::string& candidate : candidates)
        Require(nxAlgorithm::GetEditDistance(candidate, wanted, distance, sensitivity) ==
                nxAlgorithm::GetEditDistance(wanted, candidate, distance, sensitivity));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckHex(text);
    CheckHex(text.substr(0, 4));
    if (size != 0 && size < 400)
        CheckBestMatch(std::string(text), data[0] % 16);
    std::string hex;
    nxAlgorithm::GetAsHex(std::vector<unsigned char>(data, data + size), hex);
    Require(hex.size() == 2 * size);
    for (std::size_t i = 0; i < size; ++i)
    {
        unsigned char byte = 0;
        Require(nxAlgorithm::SetFromHex(std::string_view(hex).substr(2 * i, 2), byte).IsOK() && byte == data[i]);
    }
    return 0;
}
