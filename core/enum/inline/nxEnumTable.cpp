// SPDX-License-Identifier: Apache-2.0
#include "core/enum/inline/nxEnumTable.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "core/enum/internal/nxListedTexts.h"
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

    // A table of free slots; null when there is no memory.
    static NameTable* Make(const NameTable* previous, std::size_t slotCount)
    {
        void* const memory = ::operator new(sizeof(NameTable) + slotCount * sizeof(Slot), std::nothrow);
        if (memory == nullptr)
            return nullptr;
        auto* const made = new (memory) NameTable{previous, static_cast<std::uint32_t>(slotCount - 1)};
        std::uninitialized_value_construct_n(&made->At(0), slotCount);
        return made;
    }

    // A table with twice as many slots and the same names. @throws std::bad_alloc
    NameTable* MakeLarger() const
    {
        NameTable* const larger = Make(this, 2 * GetSlotCount());
        if (larger == nullptr)
            throw std::bad_alloc();
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

    // Any thread that looks up may make a page, and exchanges it when it is complete (release); all load it (acquire).
    // Relaxed on the thread that adds, after it has loaded it once.
    static constinit std::atomic<Page*> pages[_pageCount];
    static constinit NoNames noNames;
    // Any thread may exchange noNames for the first table, which has the library's own names (release); all load it (acquire).
    // The thread that adds stores a larger one when it is half full (release); relaxed where it has loaded it before.
    static constinit std::atomic<NameTable*> names;
    static constinit std::size_t addedCount;  // of names besides the library's own

    // The page of a value; null when there is no memory for it.
    static Page* GetPage(unsigned value);
    // Sees to it that the library's own names are in the table. @return false when there is no memory for that.
    static bool FillNames();
};

constinit std::atomic<nxEnumTable::Page*> nxEnumTable::Storage::pages[_pageCount] = {};
constinit nxEnumTable::Storage::NoNames nxEnumTable::Storage::noNames = {};
constinit std::atomic<nxEnumTable::NameTable*> nxEnumTable::Storage::names = &noNames.table;
constinit std::size_t nxEnumTable::Storage::addedCount = 0;

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

nxEnumTable::Page* nxEnumTable::Storage::GetPage(unsigned value)
{
    std::atomic<Page*>& page = pages[value / _pageSize];
    Page* known = page.load(std::memory_order_acquire);
    if (known != nullptr)
        return known;
    // A page is large and thinly filled. Zeroed memory from the system costs only the parts that are touched, and zero bytes
    // are null pointers and clear bits.
    auto* const made = static_cast<Page*>(std::calloc(1, sizeof(Page)));
    if (made == nullptr ||
        page.compare_exchange_strong(known, made, std::memory_order_release, std::memory_order_acquire))
        return made;
    std::free(made);
    return known;
}

bool nxEnumTable::Storage::FillNames()
{
    NameTable* known = names.load(std::memory_order_acquire);
    if (known != &noNames.table)
        return true;
    NameTable* const made = NameTable::Make(nullptr, firstSlotCount);
    if (made == nullptr)
        return false;
    const unsigned* value = nxListedTexts::GetValues().data();
    for (const Texts& texts : nxListedTexts::GetTexts())
        made->Add(nxNameTag::Get(texts.first), *value++, texts.first.c_str());
    if (!names.compare_exchange_strong(known, made, std::memory_order_release, std::memory_order_acquire))
        ::operator delete(made);
    return true;
}

const nxEnumTable::Texts* nxEnumTable::FindMissing(unsigned value)
{
    const Texts* const texts = nxListedTexts::Find(value);
    if (texts != nullptr)
        if (Page* const page = Storage::GetPage(value))
            page->texts[value % _pageSize].store(texts, std::memory_order_release);
    return texts;
}

std::int64_t nxEnumTable::FindMissing(std::string_view text)
{
    if (Storage::FillNames())
        return Find(text);
    const unsigned* const listed = nxListedTexts::Find(text);
    return listed != nullptr ? std::int64_t{*listed} : NotFound;
}

const nxEnumTable::Texts* nxEnumTable::FindAnywhere(unsigned value)
{
    const Texts* const texts = Find(value);
    return texts != nullptr ? texts : FindMissing(value);
}

std::int64_t nxEnumTable::FindAnywhere(std::string_view text)
{
    const std::int64_t value = Find(text);
    return value != NotFound ? value : FindMissing(text);
}

std::int64_t nxEnumTable::FindFrom(unsigned from)
{
    const unsigned* const listed = nxListedTexts::FindFrom(from);
    const std::int64_t added = _FindAdded(from, listed != nullptr ? *listed : ~0U);
    return added != NotFound || listed == nullptr ? added : std::int64_t{*listed};
}

std::int64_t nxEnumTable::_FindAdded(unsigned from, unsigned to)
{
    constexpr std::size_t wordCount = _pageSize / _wordBits;
    const std::size_t last = to / _wordBits;
    std::uint64_t wanted = ~std::uint64_t{0} << from % _wordBits;  // of the first word only
    for (std::size_t word = from / _wordBits; word <= last; wanted = ~std::uint64_t{0})
    {
        const Page* const page = _pages[word / wordCount].load(std::memory_order_acquire);
        if (page == nullptr)
        {
            word = (word / wordCount + 1) * wordCount;
            continue;
        }
        const std::uint64_t found = page->present[word % wordCount].load(std::memory_order_acquire) & wanted;
        if (found != 0)
        {
            const auto value = static_cast<std::int64_t>(word * _wordBits) + std::countr_zero(found);
            return value <= to ? value : NotFound;
        }
        ++word;
    }
    return NotFound;
}

void nxEnumTable::Reserve(unsigned value)
{
    if (Storage::GetPage(value) == nullptr || !Storage::FillNames())
        throw std::bad_alloc();
    const NameTable& names = *Storage::names.load(std::memory_order_relaxed);
    if (2 * (nxListedTexts::Count + Storage::addedCount + 1) > names.GetSlotCount())
        Storage::names.store(names.MakeLarger(), std::memory_order_release);
}

void nxEnumTable::Add(unsigned value, const Texts& texts) noexcept
{
    Page& page = *_pages[value / _pageSize].load(std::memory_order_relaxed);
    const std::size_t index = value % _pageSize;
    page.texts[index].store(&texts, std::memory_order_release);
    page.present[index / _wordBits].fetch_or(std::uint64_t{1} << index % _wordBits, std::memory_order_release);
    Storage::names.load(std::memory_order_relaxed)->Add(nxNameTag::Get(texts.first), value, texts.first.c_str());
    ++Storage::addedCount;
}
