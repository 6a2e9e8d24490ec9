// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PRICEMEMORY_H
#define NXTICK_PRICEMEMORY_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace nxtick
{
class PriceGrid;

/// Remembers the columns that were added for the text of a price, because prices repeat. Each text has one place, which
/// the last text that needs it takes. After a window of texts of which fewer than a quarter were found, the memory rests
/// for many windows, because looking and storing cost more than they save then.
class PriceMemory
{
public:
    struct Entry
    {
        static constexpr std::size_t longest = 64;

        std::uint64_t first = 0;  // bytes of the price's text
        std::uint64_t last = 0;
        const PriceGrid* grid = nullptr;
        unsigned char priceSize = 0;  // 0: the place is free
        unsigned char size = 0;
        bool isMoved = false;        ///< Whether the price is off the grid.
        char columns[longest] = {};  ///< All of it can be copied; the first `size` bytes count.
    };

    /// @return null when the price is not known on the grid; Remember() may follow then.
    const Entry* Find(std::string_view price, const PriceGrid& grid)
    {
        _place = nullptr;
        if (++_count >= window) [[unlikely]]
            _EndWindow();
        if (_entries.empty() || _restingWindows != 0 || price.empty() || price.size() > longestPrice)
            return nullptr;
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        _Load(price, first, last);
        Entry& entry = _entries[((first + last * 31) * 0x9E3779B97F4A7C15) >> (64 - bits)];
        if (entry.first == first && entry.last == last && entry.priceSize == price.size() && entry.grid == &grid)
        {
            ++_hits;
            return &entry;
        }
        entry.first = first;
        entry.last = last;
        entry.grid = &grid;
        entry.priceSize = 0;
        _place = &entry;
        _priceSize = static_cast<unsigned char>(price.size());
        return nullptr;
    }

    /// Remembers the columns of the price that was not found last.
    void Remember(std::string_view columns, bool isMoved)
    {
        if (_place == nullptr || columns.size() > Entry::longest)
            return;
        std::memcpy(_place->columns, columns.data(), columns.size());
        _place->size = static_cast<unsigned char>(columns.size());
        _place->isMoved = isMoved;
        _place->priceSize = _priceSize;
        _place = nullptr;
    }

private:
    static constexpr std::size_t longestPrice = 16;
    static constexpr unsigned bits = 13;
    static constexpr unsigned window = 4096;
    static constexpr unsigned windowsOfRest = 63;

    // The text in two words, which overlap if it is short. Together with its size they are the whole text.
    static void _Load(std::string_view text, std::uint64_t& first, std::uint64_t& last)
    {
        const char* const end = text.data() + text.size();
        if (text.size() >= 8)
        {
            std::memcpy(&first, text.data(), 8);
            std::memcpy(&last, end - 8, 8);
        }
        else if (text.size() >= 4)
        {
            std::memcpy(&first, text.data(), 4);
            std::memcpy(&last, end - 4, 4);
        }
        else
        {
            std::memcpy(&first, text.data(), 1);
            std::memcpy(&last, end - 1, 1);
            last = last << 8 | static_cast<unsigned char>(text[text.size() / 2]);
        }
    }

    // The first window costs nothing, so that small files need no memory.
    void _EndWindow()
    {
        if (_entries.empty())
            _entries.resize(std::size_t{1} << bits);
        else if (_restingWindows != 0)
            --_restingWindows;
        else if (_hits < window / 4)
            _restingWindows = windowsOfRest;
        _count = 0;
        _hits = 0;
    }

    std::vector<Entry> _entries;
    Entry* _place = nullptr;  // of the price that was not found last
    unsigned char _priceSize = 0;
    unsigned _count = 0;  // of the prices of this window
    unsigned _hits = 0;
    unsigned _restingWindows = 0;
};
}  // namespace nxtick

#endif
