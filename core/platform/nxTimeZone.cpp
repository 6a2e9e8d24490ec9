// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxTimeZone.h"

#include <algorithm>
#include <array>

#include "core/platform/nxZoneFiles.h"
#include "core/platform/nxZoneRule.h"

namespace
{
// One half of a zone file: numbers with the most significant byte first.
class ZoneFile
{
public:
    // Finds the newest half that the file has: the first has times of 32 bits, the second of 64.
    bool Read(std::string_view bytes)
    {
        if (!ReadHeader(bytes, 4))
            return false;
        const char version = bytes[4];
        if (version == '\0')
            return true;
        bytes.remove_prefix(_size);
        if (!ReadHeader(bytes, 8))
            return false;
        return ReadFooter(bytes.substr(_size));
    }

    bool CountsLeapSeconds() const { return _leapSeconds != 0; }
    std::size_t GetTransitionCount() const { return _transitions; }
    std::string_view GetRule() const { return _rule; }

    std::int64_t GetTransition(std::size_t i) const { return Number(_times + i * _timeSize, _timeSize); }
    std::size_t GetTransitionType(std::size_t i) const { return static_cast<unsigned char>(_bytes[_indices + i]); }
    std::size_t GetTypeCount() const { return _types; }
    std::int32_t GetOffset(std::size_t type) const
    {
        return static_cast<std::int32_t>(Number(_typeInfos + type * typeSize, 4));
    }
    bool IsSummer(std::size_t type) const { return _bytes[_typeInfos + type * typeSize + 4] != 0; }

private:
    static constexpr std::size_t headerSize = 44;
    static constexpr std::size_t typeSize = 6;

    std::int64_t Number(std::size_t at, std::size_t size) const
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(_bytes[at + i]);
        return size == 8 ? static_cast<std::int64_t>(value)
                         : static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    }

    bool ReadHeader(std::string_view bytes, std::size_t timeSize)
    {
        if (bytes.size() < headerSize || bytes.substr(0, 4) != "TZif")
            return false;
        _bytes = bytes;
        _timeSize = timeSize;
        std::size_t counts[6];
        for (std::size_t i = 0; i < 6; ++i)
        {
            counts[i] = static_cast<std::uint32_t>(Number(20 + 4 * i, 4));
            if (counts[i] > bytes.size())
                return false;
        }
        const auto [utc, standard, leap, times, types, names] = std::to_array(counts);
        _leapSeconds = leap;
        _transitions = times;
        _types = types;
        _times = headerSize;
        _indices = _times + times * timeSize;
        _typeInfos = _indices + times;
        _size = _typeInfos + types * typeSize + names + leap * (timeSize + 4) + standard + utc;
        return types > 0 && _size <= bytes.size() && TypesAreKnown();
    }

    bool TypesAreKnown() const
    {
        for (std::size_t i = 0; i < _transitions; ++i)
            if (GetTransitionType(i) >= _types || (i > 0 && GetTransition(i) <= GetTransition(i - 1)))
                return false;
        constexpr std::int32_t largestOffset = 26 * 3'600;
        for (std::size_t i = 0; i < _types; ++i)
            if (GetOffset(i) < -largestOffset || GetOffset(i) > largestOffset)
                return false;
        return true;
    }

    bool ReadFooter(std::string_view text)
    {
        if (text.empty() || text.front() != '\n')
            return false;
        const std::size_t end = text.find('\n', 1);
        if (end == std::string_view::npos)
            return false;
        _rule = text.substr(1, end - 1);
        return true;
    }

    std::string_view _bytes;
    std::string_view _rule;
    std::size_t _timeSize = 0;
    std::size_t _leapSeconds = 0;
    std::size_t _transitions = 0;
    std::size_t _types = 0;
    std::size_t _times = 0;
    std::size_t _indices = 0;
    std::size_t _typeInfos = 0;
    std::size_t _size = 0;
};
}  // namespace

// From `second` on, `offset` is in effect. Called in order of time.
void nxTimeZone::_Add(std::int64_t second, std::int32_t offset)
{
    const std::int64_t begin = std::max(second, FirstSecond);
    if (_count > 0 && _begins[_count - 1] == begin)
        --_count;
    const bool changes = _count == 0 || _offsets[_count - 1] != offset;
    if (!changes || begin >= EndSecond || _count == _capacity)
        return;
    _begins[_count] = begin;
    _offsets[_count] = offset;
    ++_count;
}

void nxTimeZone::_AddRule(const nxZoneRule& rule, std::int64_t begin)
{
    if (begin < EndSecond)
        rule.Unroll(std::max(begin, FirstSecond), EndSecond,
                    [this](std::int64_t second, std::int32_t offset) { _Add(second, offset); });
}

bool nxTimeZone::_Finish()
{
    _begins[_count] = EndSecond;
    std::size_t i = 0;
    for (std::size_t bucket = 0; bucket < _bucketCount; ++bucket)
    {
        const std::int64_t second = _firstBucketSecond + (static_cast<std::int64_t>(bucket) << _bucketShift);
        while (i + 1 < _count && second >= _begins[i + 1])
            ++i;
        _buckets[bucket] = static_cast<std::uint16_t>(i);
    }
    return _count < _capacity;  // a full table may be incomplete
}

bool nxTimeZone::ReadFile(std::string_view bytes)
{
    ZoneFile file;
    if (!file.Read(bytes) || file.CountsLeapSeconds())
        return false;
    const std::size_t transitions = file.GetTransitionCount();
    nxZoneRule rule;
    const bool hasRule = !file.GetRule().empty() && transitions != 0;
    if (hasRule && !rule.Read(file.GetRule()))
        return false;

    // Before the first transition, the first offset that is not of summer time is in effect.
    std::size_t early = 0;
    while (early < file.GetTypeCount() && file.IsSummer(early))
        ++early;
    _count = 0;
    _Add(FirstSecond, file.GetOffset(early < file.GetTypeCount() ? early : 0));
    for (std::size_t i = 0; i < transitions; ++i)
        _Add(file.GetTransition(i), file.GetOffset(file.GetTransitionType(i)));
    if (hasRule)
        _AddRule(rule, file.GetTransition(transitions - 1));
    return _Finish();
}

bool nxTimeZone::ReadRule(std::string_view text)
{
    nxZoneRule rule;
    if (!rule.Read(text))
        return false;
    _count = 0;
    _AddRule(rule, FirstSecond);
    return _Finish();
}

bool nxTimeZone::Load(const char* setting, std::span<char> scratch)
{
    std::string_view content;
    if (setting == nullptr)
        return nxZoneFiles::ReadMachineZone(scratch, content) == nxZoneFiles::Outcome::Read && ReadFile(content);
    std::string_view name = setting;
    if (!name.empty() && name.front() == ':')
        name.remove_prefix(1);
    if (name.empty())
        return ReadRule("UTC0");
    switch (nxZoneFiles::Read(name, scratch, content))
    {
        case nxZoneFiles::Outcome::Read:
            return ReadFile(content);
        case nxZoneFiles::Outcome::NoFile:
            return ReadRule(name);
        default:
            return false;
    }
}
