#include "core/enum/inline/nxEnumTable.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/enum/internal/nxNameTag.h"

// One name of the hash table. The text is stored last: who sees it sees the rest. Element 0 of a table is none of its
// slots but holds, as its value, the number of slots less one and, as its text, the smaller table that it replaced:
// some reader may be in there yet, so that it is kept, and leak checkers find it.
struct [[gnu::visibility("hidden")]] nxEnumTable::Slot
{
    std::atomic<const char*> text;
    std::uint32_t tag;
    std::uint32_t value;
};

namespace
{
constexpr std::size_t FirstSlotCount = 2048;  // the library's own names fill a third

static_assert(nxEnumTable::MaximumTextSize == nxNameTag::MaximumSize);
}  // namespace

// All state is initialised with constants: look-ups work before any initialiser of the library has run.
struct [[gnu::visibility("hidden")]] nxEnumTable::Storage
{
    static constinit std::atomic<Page*> pages[PageCount];
    static constinit Slot noSlots[2];
    static constinit std::atomic<Slot*> slots;  // replaced by a larger table when half full; readers keep the old one
    static constinit std::size_t slotCount;
    static constinit std::size_t nameCount;

    // The first slot with this tag from the slot number @p i on, and the name in it, or null.
    static const Slot* FindTag(const Slot* table, std::uint32_t tag, std::uint32_t i, const char*& name)
    {
        const std::uint32_t mask = table[0].value;
        for (;; ++i)
        {
            const Slot& slot = table[1 + (i & mask)];
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

    // Where another name has the same tag. Not inlined: FindName() then keeps less over its comparison.
    [[gnu::noinline]] static const Slot* FindBehind(const Slot* table, const Slot* slot, std::string_view text)
    {
        const std::uint32_t tag = slot->tag;
        const char* name = nullptr;
        do
            slot = FindTag(table, tag, static_cast<std::uint32_t>(slot - table), name);
        while (slot != nullptr && !AreSame(name, text));
        return slot;
    }

    static const Slot* FindName(const Slot* table, std::string_view text)
    {
        const std::uint32_t tag = nxNameTag::Get(text);
        const char* name = nullptr;
        const Slot* const slot = FindTag(table, tag, tag >> nxNameTag::SizeBits, name);
        if (slot == nullptr || AreSame(name, text)) [[likely]]
            return slot;
        return FindBehind(table, slot, text);
    }

    static void FillFreeSlot(Slot * table, std::uint32_t tag, std::uint32_t value, const char* text)
    {
        const std::uint32_t mask = table[0].value;
        std::uint32_t i = tag >> nxNameTag::SizeBits;
        while (table[1 + (i & mask)].text.load(std::memory_order_relaxed) != nullptr)
            ++i;
        Slot& slot = table[1 + (i & mask)];
        slot.tag = tag;
        slot.value = value;
        slot.text.store(text, std::memory_order_release);
    }

    static void Grow()
    {
        const std::size_t newCount = slotCount == 0 ? FirstSlotCount : 2 * slotCount;
        Slot* const oldTable = slots.load(std::memory_order_relaxed);
        Slot* const newTable = new Slot[1 + newCount]();
        newTable[0].value = static_cast<std::uint32_t>(newCount - 1);
        newTable[0].text.store(reinterpret_cast<const char*>(oldTable), std::memory_order_relaxed);
        for (std::size_t i = 1; i <= slotCount; ++i)
        {
            const Slot& slot = oldTable[i];
            if (const char* const text = slot.text.load(std::memory_order_relaxed))
                FillFreeSlot(newTable, slot.tag, slot.value, text);
        }
        slots.store(newTable, std::memory_order_release);
        slotCount = newCount;
    }
};

constinit std::atomic<nxEnumTable::Page*> nxEnumTable::Storage::pages[PageCount] = {};
constinit nxEnumTable::Slot nxEnumTable::Storage::noSlots[2] = {};
constinit std::atomic<nxEnumTable::Slot*> nxEnumTable::Storage::slots = noSlots;
constinit std::size_t nxEnumTable::Storage::slotCount = 0;
constinit std::size_t nxEnumTable::Storage::nameCount = 0;

constinit std::atomic<nxEnumTable::Page*>* const nxEnumTable::_pages = Storage::pages;

std::int64_t nxEnumTable::Find(std::string_view text)
{
    if (text.size() - 1 >= MaximumTextSize) [[unlikely]]
    {
        if (!text.empty())
            return NotFound;
        text = "";  // with an address, for the comparison
    }
    const Slot* const slot = Storage::FindName(Storage::slots.load(std::memory_order_acquire), text);
    return slot != nullptr ? std::int64_t{slot->value} : NotFound;
}

std::int64_t nxEnumTable::FindFrom(unsigned from)
{
    std::size_t word = from % PageSize / WordBits;
    std::uint64_t wanted = ~std::uint64_t{0} << from % WordBits;  // of the first word only
    for (std::size_t number = from / PageSize; number != PageCount; ++number)
    {
        const Page* const page = _pages[number].load(std::memory_order_acquire);
        for (; page != nullptr && word != PageSize / WordBits; ++word)
        {
            const std::uint64_t found = page->present[word].load(std::memory_order_acquire) & wanted;
            if (found != 0)
                return static_cast<std::int64_t>(number * PageSize + word * WordBits) + std::countr_zero(found);
            wanted = ~std::uint64_t{0};
        }
        word = 0;
        wanted = ~std::uint64_t{0};
    }
    return NotFound;
}

void nxEnumTable::Reserve(unsigned value)
{
    std::atomic<Page*>& page = _pages[value / PageSize];
    if (page.load(std::memory_order_relaxed) == nullptr)
    {
        // A page is large and thinly filled: zeroed memory from the system costs only what is touched, and zero bytes
        // are null pointers and clear bits.
        auto* const made = static_cast<Page*>(std::calloc(1, sizeof(Page)));
        if (made == nullptr)
            throw std::bad_alloc();
        page.store(made, std::memory_order_release);
    }
    if (2 * (Storage::nameCount + 1) > Storage::slotCount)
        Storage::Grow();
}

void nxEnumTable::Add(unsigned value, const Texts& texts) noexcept
{
    Page& page = *_pages[value / PageSize].load(std::memory_order_relaxed);
    const std::size_t index = value % PageSize;
    page.texts[index].store(&texts, std::memory_order_release);
    page.present[index / WordBits].fetch_or(std::uint64_t{1} << index % WordBits, std::memory_order_release);
    Storage::FillFreeSlot(Storage::slots.load(std::memory_order_relaxed), nxNameTag::Get(texts.first), value,
                          texts.first.c_str());
    ++Storage::nameCount;
}
