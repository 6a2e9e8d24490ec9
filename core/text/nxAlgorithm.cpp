// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxAlgorithm.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "core/enum/nxCaseSensitivityEnum.h"
#include "core/text/nxByteArray.h"

namespace
{
constexpr char hexDigits[] = "0123456789ABCDEF";

// The value of a hexadecimal digit, or -1.
int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

template <class Bytes>
void AppendBytes(const Bytes& bytes, std::size_t count, std::string& out)
{
    std::size_t at = out.size();
    out.resize(at + 2 * count);
    for (const unsigned char byte : bytes)
    {
        out[at++] = hexDigits[byte >> 4];
        out[at++] = hexDigits[byte & 0xF];
    }
}

// Compares characters; ASCII letters without regard to case if case does not count.
class Character
{
public:
    explicit Character(const nxCaseSensitivityEnum& sensitivity) : _caseCounts(sensitivity == CASE_SENSITIVE) {}

    bool operator()(char a, char b) const { return _caseCounts ? a == b : Fold(a) == Fold(b); }
    bool CaseCounts() const { return _caseCounts; }

private:
    static char Fold(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
    bool _caseCounts;
};

bool BeginsWith(std::string_view text, std::string_view beginning, const Character& same)
{
    return beginning.size() <= text.size() && std::equal(beginning.begin(), beginning.end(), text.begin(), same);
}

// Edit distance up to a limit that is at most the length of the longer text; limit + 1 when there are more edits.
// Prefixes whose lengths differ by more than the limit need at least that difference of edits. So only a band along the
// diagonal of the table of all prefixes is computed, one row at a time.
std::size_t BoundedDistance(std::string_view a, std::string_view b, std::size_t limit, const Character& same)
{
    const std::size_t tooMany = limit + 1;
    if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > limit)
        return tooMany;
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        const std::size_t first = i > limit ? i - limit : 1;
        const std::size_t last = std::min(b.size(), i + limit);
        std::size_t diagonal = row[first - 1];
        row[first - 1] = first == 1 ? i : tooMany;
        std::size_t smallest = row[first - 1];
        for (std::size_t j = first; j <= last; ++j)
        {
            const std::size_t above = j == i + limit ? tooMany : row[j];
            const std::size_t replaced = diagonal + (same(a[i - 1], b[j - 1]) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, above + 1, row[j - 1] + 1, tooMany});
            smallest = std::min(smallest, row[j]);
        }
        if (smallest > limit)
            return tooMany;
    }
    return row[b.size()];
}

// Remembers the candidate with the smallest distance and whether it is the only one.
class Best
{
public:
    void Offer(const std::string& candidate, unsigned long long distance)
    {
        if (_candidate == nullptr || distance < _distance)
        {
            _candidate = &candidate;
            _distance = distance;
            _unique = true;
        }
        else if (distance == _distance)
            _unique = false;
    }
    bool IsEmpty() const { return _candidate == nullptr; }
    bool Take(std::string& match) const
    {
        if (_candidate != nullptr && _unique)
            match = *_candidate;
        return _candidate != nullptr && _unique;
    }

private:
    const std::string* _candidate = nullptr;
    unsigned long long _distance = 0;
    bool _unique = false;
};
}  // namespace

nxErrorEnum nxAlgorithm::SetFromHex(const std::string_view& text, unsigned char& value)
{
    std::string_view digits = text;
    if (digits.size() > 2 && digits[0] == '0' && digits[1] == 'x')
        digits.remove_prefix(2);
    if (digits.empty() || digits.size() > 2)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const int high = digits.size() == 2 ? HexValue(digits.front()) : 0;
    const int low = HexValue(digits.back());
    if (high < 0 || low < 0)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    value = static_cast<unsigned char>(high * 16 + low);
    return nxErrorEnum();
}

void nxAlgorithm::AppendAsHex(const unsigned char& byte, std::string& out)
{
    const char digits[] = {hexDigits[byte >> 4], hexDigits[byte & 0xF]};
    out.append(digits, sizeof digits);
}

void nxAlgorithm::AppendAsHex(const std::vector<unsigned char>& bytes, std::string& out)
{
    AppendBytes(bytes, bytes.size(), out);
}

void nxAlgorithm::AppendAsHex(const nxByteArray& bytes, std::string& out) { AppendBytes(bytes, bytes.GetSize(), out); }

void nxAlgorithm::GetAsHex(const std::vector<unsigned char>& bytes, std::string& out)
{
    out.clear();
    AppendAsHex(bytes, out);
}

void nxAlgorithm::GetAsHex(const nxByteArray& bytes, std::string& out)
{
    out.clear();
    AppendAsHex(bytes, out);
}

std::string nxAlgorithm::GetAsHex(const unsigned short& value)
{
    std::string text;
    AppendAsHex(static_cast<unsigned char>(value >> 8), text);
    AppendAsHex(static_cast<unsigned char>(value & 0xFF), text);
    return text;
}

bool nxAlgorithm::GetBestMatch(const std::set<std::string>& candidates, const std::string& text,
                               const nxCaseSensitivityEnum& sensitivity, unsigned int maximumDistance,
                               std::string& match)
{
    if (const auto exact = candidates.find(text); exact != candidates.end())
    {
        match = *exact;
        return true;
    }
    const Character same(sensitivity);
    Best equal;
    Best longer;
    Best nearest;
    for (const std::string& candidate : candidates)
    {
        const bool begins = !text.empty() && BeginsWith(candidate, text, same);
        if (begins && candidate.size() == text.size())
            equal.Offer(candidate, 0);
        else if (begins)
            longer.Offer(candidate, 0);
        else if (const auto distance = GetEditDistance(candidate, text, maximumDistance, sensitivity);
                 distance <= maximumDistance && longer.IsEmpty() && equal.IsEmpty())
            nearest.Offer(candidate, distance);
    }
    if (!equal.IsEmpty())
        return equal.Take(match);
    return longer.IsEmpty() ? nearest.Take(match) : longer.Take(match);
}

unsigned long long nxAlgorithm::GetEditDistance(std::string_view a, std::string_view b, unsigned int maximum,
                                                const nxCaseSensitivityEnum& sensitivity)
{
    // The distance never exceeds the length of the longer text.
    const std::size_t longest = std::max(a.size(), b.size());
    const std::size_t distance = BoundedDistance(a, b, std::min<std::size_t>(maximum, longest), Character(sensitivity));
    return distance <= maximum ? distance : 1ULL + maximum;
}

std::vector<std::string> nxAlgorithm::GetNearMatches(const std::set<std::string>& candidates, const std::string& text)
{
    constexpr std::size_t mostMatches = 3;
    constexpr std::size_t longestText = 100;
    if (text.size() > longestText)
        return {};
    const std::size_t length = std::max<std::size_t>(1, text.size());
    const auto bound = static_cast<unsigned>(std::min(std::max<std::size_t>(2, length / 3), length - 1));
    std::vector<std::pair<unsigned long long, std::string>> near;
    for (const std::string& candidate : candidates)
        if (const auto distance = GetEditDistance(text, candidate, bound, nxCaseSensitivityEnum(CASE_INSENSITIVE));
            distance <= bound)
            near.emplace_back(distance, candidate);
    std::sort(near.begin(), near.end());

    std::vector<std::string> matches;
    for (const auto& [distance, candidate] : near)
        if (matches.size() < mostMatches && distance <= near.front().first + 1)
            matches.push_back(candidate);
    return matches;
}
