// SPDX-License-Identifier: Apache-2.0
#include "core/enum/inline/nxEnumTable.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "core/enum/internal/nxNameTag.h"

namespace
{
constexpr std::size_t firstSlotCount = 2048;  // the library's own names fill a third

static_assert(nxEnumTable::MaximumTextSize == nxNameTag::MaximumSize);
}  // namespace

// One name of the hash table. The text is stored last (release): a reader that sees the text (acquire) sees the rest. Relaxed
// on the thread that adds, which is one at a time.
struct [[gnu::visibility("hidden")]] nxEnumTable::Slot
{
    std::atomic<const char*> text;  // null while the slot is free
    std::uint32_t tag;
    std::uint32_t value;
};

// An open hash table of names: this header, and its slots right after it in the same piece of memory.
struct [[gnu::visibility("hidden")]] nxEnumTable::NameTable
{
    const NameTable* previous;  // the smaller table that this one replaced: readers may still be in it, so it is kept
    std::uint32_t mask;         // the number of slots, a power of two, less one

    // Takes a number of any size, of which the lowest bits count.
    Slot& At(std::uint32_t i) { return reinterpret_cast<Slot*>(this + 1)[i & mask]; }
    const Slot& At(std::uint32_t i) const { return reinterpret_cast<const Slot*>(this + 1)[i & mask]; }

    std::size_t GetSlotCount() const { return std::size_t{mask} + 1; }

    // The first slot with this tag from the slot number @p i on, and the name in it, or null.
    const Slot* FindTag(std::uint32_t tag, std::uint32_t i, const char*& name) const
    {
        const Slot* const slots = &At(0);
        const std::uint32_t lowBits = mask;
        for (;; ++i)
        {
            const Slot& slot = slots[i & lowBits];
            name = slot.text.load(std::memory_order_acquire);
            if (name == nullptr)
                return nullptr;
            if (slot.tag == tag)
                return &slot;
        }
    }

    static bool AreSame(const char* name, std::string_view text)
    {
        return std::memcmp(name, text.data(), text.size()) == 0;
    }

    // Goes on after a slot whose name has the same tag but is another one. Not inlined, so that FindName() keeps fewer
    // values across its comparison.
    [[gnu::noinline]] const Slot* FindAfter(const Slot* slot, std::string_view text) const
    {
        const std::uint32_t tag = slot->tag;
        const char* name = nullptr;
        do
            slot = FindTag(tag, static_cast<std::uint32_t>(slot - &At(0)) + 1, name);
        while (slot != nullptr && !AreSame(name, text));
        return slot;
    }

    const Slot* FindName(std::string_view text) const
    {
        const std::uint32_t tag = nxNameTag::Get(text);
        const char* name = nullptr;
        const Slot* const slot = FindTag(tag, tag >> nxNameTag::SizeBits, name);
        if (slot == nullptr || AreSame(name, text)) [[likely]]
            return slot;
        return FindAfter(slot, text);
    }

    // There must be a free slot.
    void Add(std::uint32_t tag, std::uint32_t value, const char* text)
    {
        std::uint32_t i = tag >> nxNameTag::SizeBits;
        while (At(i).text.load(std::memory_order_relaxed) != nullptr)
            ++i;
        Slot& slot = At(i);
        slot.tag = tag;
        slot.value = value;
        slot.text.store(text, std::memory_order_release);
    }

    // A table with twice as many slots, or as many as the first one has, and the same names. @throws std::bad_alloc
    NameTable* MakeLarger() const
    {
        const std::size_t count = std::max(firstSlotCount, 2 * GetSlotCount());
        void* const memory = ::operator new(sizeof(NameTable) + count * sizeof(Slot));
        auto* const larger = new (memory) NameTable{this, static_cast<std::uint32_t>(count - 1)};
        std::uninitialized_value_construct_n(&larger->At(0), count);
        for (std::uint32_t i = 0; i < GetSlotCount(); ++i)
            if (const char* const text = At(i).text.load(std::memory_order_relaxed))
                larger->Add(At(i).tag, At(i).value, text);
        return larger;
    }
};

// All state is initialised with constants: look-ups work before any initialiser of the library has run.
struct [[gnu::visibility("hidden")]] nxEnumTable::Storage
{
    // The table before the first name.
    struct NoNames
    {
        NameTable table;
        Slot slot;  // always free
    };
    static_assert(sizeof(NoNames) == sizeof(NameTable) + sizeof(Slot) && alignof(NameTable) == alignof(Slot));

    // Pages and tables are stored when they are complete (release), readers load them (acquire). Relaxed on the thread that
    // adds, which is one at a time.
    static constinit std::atomic<Page*> pages[_pageCount];
    static constinit NoNames noNames;
    // Replaced by a larger table when half full. Release and acquire as above; relaxed on the thread that adds.
    static constinit std::atomic<NameTable*> names;
    static constinit std::size_t nameCount;
};

constinit std::atomic<nxEnumTable::Page*> nxEnumTable::Storage::pages[_pageCount] = {};
constinit nxEnumTable::Storage::NoNames nxEnumTable::Storage::noNames = {};
constinit std::atomic<nxEnumTable::NameTable*> nxEnumTable::Storage::names = &noNames.table;
constinit std::size_t nxEnumTable::Storage::nameCount = 0;

constinit std::atomic<nxEnumTable::Page*>* const nxEnumTable::_pages = Storage::pages;

std::int64_t nxEnumTable::Find(std::string_view text)
{
    if (text.size() - 1 >= MaximumTextSize) [[unlikely]]
    {
        if (!text.empty())
            return NotFound;
        text = "";  // its data may be null, which must not reach the comparison
    }
    const Slot* const slot = Storage::names.load(std::memory_order_acquire)->FindName(text);
    return slot != nullptr ? std::int64_t{slot->value} : NotFound;
}

std::int64_t nxEnumTable::FindFrom(unsigned from)
{
    std::size_t word = from % _pageSize / _wordBits;
    std::uint64_t wanted = ~std::uint64_t{0} << from % _wordBits;  // of the first word only
    for (std::size_t number = from / _pageSize; number != _pageCount; ++number)
    {
        const Page* const page = _pages[number].load(std::memory_order_acquire);
        for (; page != nullptr && word != _pageSize / _wordBits; ++word)
        {
            const std::uint64_t found = page->present[word].load(std::memory_order_acquire) & wanted;
            if (found != 0)
                return static_cast<std::int64_t>(number * _pageSize + word * _wordBits) + std::countr_zero(found);
            wanted = ~std::uint64_t{0};
        }
        word = 0;
        wanted = ~std::uint64_t{0};
    }
    return NotFound;
}

void nxEnumTable::Reserve(unsigned value)
{
    std::atomic<Page*>& page = _pages[value / _pageSize];
    if (page.load(std::memory_order_relaxed) == nullptr)
    {
        // A page is large and thinly filled. Zeroed memory from the system costs only the parts that are touched, and
        // zero bytes are null pointers and clear bits.
        auto* const made = static_cast<Page*>(std::calloc(1, sizeof(Page)));
        if (made == nullptr)
            throw std::bad_alloc();
        page.store(made, std::memory_order_release);
    }
    const NameTable& names = *Storage::names.load(std::memory_order_relaxed);
    if (2 * (Storage::nameCount + 1) > names.GetSlotCount())
        Storage::names.store(names.MakeLarger(), std::memory_order_release);
}

void nxEnumTable::Add(unsigned value, const Texts& texts) noexcept
{
    Page& page = *_pages[value / _pageSize].load(std::memory_order_relaxed);
    const std::size_t index = value % _pageSize;
    page.texts[index].store(&texts, std::memory_order_release);
    page.present[index / _wordBits].fetch_or(std::uint64_t{1} << index % _wordBits, std::memory_order_release);
    Storage::names.load(std::memory_order_relaxed)->Add(nxNameTag::Get(texts.first), value, texts.first.c_str());
    ++Storage::nameCount;
}
