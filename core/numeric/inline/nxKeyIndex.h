// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_NUMERIC_INLINE_NXKEYINDEX_H
#define CORE_NUMERIC_INLINE_NXKEYINDEX_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Finds the places of keys in a list, in the same few steps for a list of any length.
///
/// Errors: throws only when memory runs out, and then nothing has changed. Threads: like a std::vector. Ownership: owns its
/// memory.
class nxKeyIndex
{
public:
    static constexpr std::size_t None = SIZE_MAX;  ///< The place of a key that is not there.

    /// @return the place of the key, from 0, or None.
    std::size_t Find(std::uint64_t key) const
    {
        if (_slots.empty())
            return None;
        for (std::size_t at = _GetFirst(key);; at = (at + 1) & (_slots.size() - 1))
        {
            const _Slot& slot = _slots[at];
            if (slot.key == key || slot.place == None)
                return slot.place;
        }
    }
    /// Adds a key at the end of the list.
    /// @param place the number of keys before. @pre Find(key) == None
    void Append(std::uint64_t key, std::size_t place)
    {
        if (2 * (place + 1) > _slots.size())
            _Grow();
        _Put(key, place);
    }

private:
    struct _Slot
    {
        std::uint64_t key = 0;
        std::size_t place = None;
    };

    // An odd factor spreads every bit of the key over the upper bits.
    std::size_t _GetFirst(std::uint64_t key) const
    {
        return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15u) >> (64 - std::countr_zero(_slots.size())));
    }
    void _Put(std::uint64_t key, std::size_t place)
    {
        std::size_t at = _GetFirst(key);
        while (_slots[at].place != None)
            at = (at + 1) & (_slots.size() - 1);
        _slots[at] = {key, place};
    }
    void _Grow()
    {
        constexpr std::size_t fewest = 8;
        nxKeyIndex larger;
        larger._slots.resize(_slots.empty() ? fewest : 2 * _slots.size());
        for (const _Slot& slot : _slots)
            if (slot.place != None)
                larger._Put(slot.key, slot.place);
        _slots.swap(larger._slots);
    }

    std::vector<_Slot> _slots;  // a power of two of them, at most half of them in use
};

#endif
