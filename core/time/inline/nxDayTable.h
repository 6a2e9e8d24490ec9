// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_INLINE_NXDAYTABLE_H
#define CORE_TIME_INLINE_NXDAYTABLE_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

/// Some of the days from a first to a last: a bit for each day, and a running count. Finding the 250th of them costs as
/// much as finding the 20th.
///
/// - Units: days are counted from 1 January 1970. A default-constructed table covers none.
/// - Threads: like a std::vector. Ownership: a value that owns its memory.
class nxDayTable
{
public:
    nxDayTable() = default;
    /// Has all days from @p first to @p last, both included, except those of some days of the week.
    /// @param weekend a bit for each day of the week that is left out, Monday first.
    /// @pre first <= last
    nxDayTable(int first, int last, unsigned weekend)
        : _first(first), _last(last), _words(static_cast<std::size_t>(last - first) / 64 + 2), _counts(_words.size())
    {
        unsigned dayOfWeek = static_cast<unsigned>(first % 7 + 7 + 3) % 7;  // 1 January 1970 was a Thursday
        for (int day = first; day <= last; ++day)
        {
            if ((weekend >> dayOfWeek & 1) == 0)
                _words[_WordOf(day)] |= _BitOf(day);
            dayOfWeek = dayOfWeek == 6 ? 0 : dayOfWeek + 1;
        }
        _CountFrom(0);
    }

    nxDayTable(const nxDayTable&) = default;
    /// @p other covers no day afterwards.
    nxDayTable(nxDayTable&& other) noexcept { _Swap(other); }
    nxDayTable& operator=(nxDayTable other) noexcept
    {
        _Swap(other);
        return *this;
    }
    ~nxDayTable() = default;

    /// Removes days. Those that the table does not have are passed over.
    void Remove(const std::vector<int>& days)
    {
        for (const int day : days)
            if (Covers(day))
                _words[_WordOf(day)] &= ~_BitOf(day);
        _CountFrom(0);
    }
    /// Removes one day.
    void Remove(int day)
    {
        if (!Has(day))
            return;
        _words[_WordOf(day)] &= ~_BitOf(day);
        _CountFrom(_WordOf(day));
    }

    bool IsEmpty() const { return _first > _last; }  ///< It covers no day.
    int GetFirst() const { return _first; }
    int GetLast() const { return _last; }
    bool Covers(int day) const { return day >= _first && day <= _last; }
    bool Has(int day) const { return Covers(day) && (_words[_WordOf(day)] & _BitOf(day)) != 0; }

    /// The days of the table from the first on to @p day, which is not counted. @pre first <= day <= last + 1
    int CountBefore(int day) const
    {
        const std::size_t word = _WordOf(day);
        return _counts[word] + std::popcount(_words[word] & (_BitOf(day) - 1));
    }

    /// Finds the day of the table that is number @p count after @p day. @return false when there are not as many.
    /// @pre count >= 1 and first - 1 <= day <= last
    bool FindAfter(int day, long long count, int& found) const
    {
        if (count <= _mostSteps)
        {
            std::uint64_t bits = _GetBitsFrom(day + 1);
            for (long long i = 1; i < count; ++i)
                bits &= bits - 1;
            if (bits != 0)
            {
                found = day + 1 + std::countr_zero(bits);
                return true;
            }
        }
        return _FindByCount(CountBefore(day + 1) + count, found);
    }

    /// Finds the day of the table that is number @p count before @p day. @return false when there are not as many.
    /// @pre count >= 1 and first <= day <= last + 1
    bool FindBefore(int day, long long count, int& found) const
    {
        return _FindByCount(CountBefore(day) - count + 1, found);
    }

private:
    // Up to this count, stepping from bit to bit is faster than the running count.
    static constexpr long long _mostSteps = 16;

    std::size_t _WordOf(int day) const { return static_cast<std::size_t>(day - _first) / 64; }
    std::uint64_t _BitOf(int day) const { return std::uint64_t{1} << (static_cast<unsigned>(day - _first) % 64); }

    // The bits of 64 days, that of `day` lowest. @pre first <= day <= last + 1
    std::uint64_t _GetBitsFrom(int day) const
    {
        const std::size_t word = _WordOf(day);
        const unsigned shift = static_cast<unsigned>(day - _first) % 64;
        const std::uint64_t low = _words[word] >> shift;
        return shift == 0 || word + 1 == _words.size() ? low : low | _words[word + 1] << (64 - shift);
    }

    void _Swap(nxDayTable& other) noexcept
    {
        std::swap(_first, other._first);
        std::swap(_last, other._last);
        std::swap(_wordsPerDay, other._wordsPerDay);
        _words.swap(other._words);
        _counts.swap(other._counts);
    }

    void _CountFrom(std::size_t word)
    {
        for (; word + 1 < _words.size(); ++word)
            _counts[word + 1] = _counts[word] + std::popcount(_words[word]);
        const std::uint64_t words = _words.size() - 1;
        _wordsPerDay = _counts.back() == 0 ? 0 : (words << 32) / static_cast<std::uint64_t>(_counts.back());
    }

    // Finds the day of the table with a number, from 1 on. @return false when there is none.
    bool _FindByCount(long long number, int& found) const
    {
        if (number < 1 || number > _counts.back())
            return false;
        const int before = static_cast<int>(number - 1);
        // The days are spread evenly, so the place that this would give is nearly right.
        auto word = static_cast<std::size_t>(static_cast<std::uint64_t>(before) * _wordsPerDay >> 32);
        while (_counts[word] > before)
            --word;
        while (_counts[word + 1] <= before)
            ++word;
        const unsigned bit = _FindBit(_words[word], before - _counts[word]);
        found = _first + static_cast<int>(64 * word + bit);
        return true;
    }

    // The place of a bit that has `before` set bits below it.
    static unsigned _FindBit(std::uint64_t bits, int before)
    {
        unsigned place = 0;
        for (const unsigned width : {32U, 16U})
        {
            const int count = std::popcount(bits & ((std::uint64_t{1} << width) - 1));
            if (count <= before)
            {
                before -= count;
                bits >>= width;
                place += width;
            }
        }
        for (; before > 0; --before)
            bits &= bits - 1;
        return place + static_cast<unsigned>(std::countr_zero(bits));
    }

    int _first = 0;
    int _last = -1;
    // A bit for each day; one word more than the days need, so that the day after the last has a word as well.
    std::vector<std::uint64_t> _words;
    std::vector<int> _counts;        // of the days before each word
    std::uint64_t _wordsPerDay = 0;  // the average number of words for a day of the table, times 2^32
};

#endif
