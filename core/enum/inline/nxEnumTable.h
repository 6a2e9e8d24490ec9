// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INLINE_NXENUMTABLE_H
#define CORE_ENUM_INLINE_NXENUMTABLE_H

#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "core/nxExport.h"

/// The look-up tables of all enumerations, by value and by short description. nxEnum is the interface to them.
///
/// By value it is a table of pages, by text an open hash table. Both are initialised with constants, so look-ups work at
/// any moment of the process's life. One thread at a time adds entries; meanwhile any number of threads may look up, and
/// find an entry either whole or not at all. Nothing is ever removed, and texts stay at their addresses.
///
/// The library's own values enter the tables when they are first looked for: a value alone, the names all at once. Before
/// that, and where there is no memory for the tables, they are found in their list (nxListedTexts).
class NX_CORE_API nxEnumTable
{
public:
    using Texts = std::pair<std::string, std::string>;  ///< Short description, long description.

    static constexpr std::int64_t NotFound = -1;        ///< Means "no value".
    static constexpr std::size_t MaximumTextSize = 64;  ///< The longest short description.

    /// @return the texts of @p value; null where there are none, and for one of the library's own values that FindMissing()
    ///         has not found yet.
    static const Texts* Find(const unsigned& value)
    {
        if (const Page* const page = _pages[_UpperHalf(value)].load(std::memory_order_acquire); page != nullptr)
            [[likely]]
            return page->texts[_LowerHalf(value)].load(std::memory_order_acquire);
        return nullptr;
    }

    /// @return the value whose short description is @p text, or NotFound; the latter also for the library's own texts until
    ///         FindMissing() was called.
    static std::int64_t Find(std::string_view text);

    /// @return the smallest value with texts that is not below @p from, or NotFound.
    static std::int64_t FindFrom(unsigned from);

    /// The second step of a look-up, after Find() has found nothing.
    [[gnu::visibility("hidden")]] static const Texts* FindMissing(unsigned value);
    /// @copydoc FindMissing(unsigned)
    [[gnu::visibility("hidden")]] static std::int64_t FindMissing(std::string_view text);

    /// Both steps of a look-up.
    [[gnu::visibility("hidden")]] static const Texts* FindAnywhere(unsigned value);
    /// @copydoc FindAnywhere(unsigned)
    [[gnu::visibility("hidden")]] static std::int64_t FindAnywhere(std::string_view text);

    /// Makes room for @p value and one more name. @throws std::bad_alloc
    static void Reserve(unsigned value);

    /// Adds a value and its short description, neither of which is registered yet; the description is not too long.
    /// @p texts must live as long as the process. @pre Reserve(value)
    static void Add(unsigned value, const Texts& texts) noexcept;

private:
    static constexpr std::size_t _pageSize = 65536;
    static constexpr std::size_t _pageCount = 65536;

    // Each half is loaded by itself from the memory of the value. This takes half the instructions of splitting a loaded
    // value, a seventh of the whole look-up.
    static std::uint16_t _UpperHalf(const unsigned& value) { return _Half(value, _littleEndian ? 1 : 0); }
    static std::uint16_t _LowerHalf(const unsigned& value) { return _Half(value, _littleEndian ? 0 : 1); }
    static std::uint16_t _Half(const unsigned& value, std::size_t index)
    {
        static_assert(sizeof value == 2 * sizeof(std::uint16_t) && _pageSize == 65536 && _pageCount == 65536);
        std::uint16_t half;
        std::memcpy(&half, reinterpret_cast<const char*>(&value) + index * sizeof half, sizeof half);
        return half;
    }
    static constexpr bool _littleEndian = std::endian::native == std::endian::little;
    static constexpr std::size_t _wordBits = 64;

    // Texts are stored when they are complete, and then their bit (release); readers load either (acquire). The library's own
    // values have no bit, because a walk reads their list.
    struct Page
    {
        std::atomic<const Texts*> texts[_pageSize];
        std::atomic<std::uint64_t> present[_pageSize / _wordBits];  // one bit a value, for walks over sparse values
    };
    struct Slot;
    struct NameTable;
    struct Storage;

    // The smallest value from @p from to @p to that Add() has added, or NotFound.
    [[gnu::visibility("hidden")]] static std::int64_t _FindAdded(unsigned from, unsigned to);

    // A pointer rather than the array itself: programs that are not position-independent copy exported data.
    static std::atomic<Page*>* const _pages;
};

#endif
