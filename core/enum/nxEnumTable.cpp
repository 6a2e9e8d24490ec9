#include "core/enum/nxEnumTable.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

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

template <class Word>
std::uint64_t Load(const char* data)
{
    Word word;
    std::memcpy(&word, data, sizeof word);
    return word;
}

// Made of length, first, middle and last eight bytes. The lowest bits are the length itself, so that equal tags mean
// equal lengths; names that differ only elsewhere share a tag, and the comparison tells them apart.
constexpr unsigned SizeBits = std::bit_width(nxEnumTable::MaximumTextSize);

inline std::uint32_t Tag(std::string_view text)
{
    const char* const data = text.data();
    const std::size_t size = text.size();
    std::uint64_t first = 0;
    std::uint64_t middle = 0;
    std::uint64_t last = 0;
    if (size >= 8) [[likely]]
    {
        first = Load<std::uint64_t>(data);
        middle = Load<std::uint64_t>(data + size / 2 - 4);
        last = Load<std::uint64_t>(data + size - 8);
    }
    else if (size >= 4)
    {
        first = Load<std::uint32_t>(data);
        last = Load<std::uint32_t>(data + size - 4);
    }
    else if (size != 0)
    {
        first = Load<std::uint8_t>(data);
        middle = Load<std::uint8_t>(data + size / 2);
        last = Load<std::uint8_t>(data + size - 1);
    }
    const std::uint64_t hash =
        (first + size) * 0x9E3779B97F4A7C15u ^ middle * 0xC2B2AE3D27D4EB4Fu ^ std::rotl(last * 0xD6E8FEB86659FD93u, 32);
    return static_cast<std::uint32_t>(hash >> 32 ^ hash >> 15) << SizeBits | static_cast<std::uint32_t>(size);
}
}  // namespace

// All state is initialised with constants: look-ups work before any initialiser of the library has run.
struct [[gnu::visibility("hidden")]] nxEnumTable::Storage
{
    static constinit std::atomic<Page*> pages[PageCount];
    static constinit Slot noSlots[2];
    static constinit std::atomic<Slot*> slots;  // replaced by a larger table when half full; readers keep the old one
    static constinit std::size_t slotCount;
    static constinit std::size_t nameCount;

    static const Slot* FindName(const Slot* table, std::uint32_t tag, std::string_view text)
    {
        const std::uint32_t mask = table[0].value;
        for (std::uint32_t i = tag >> SizeBits;; ++i)
        {
            const Slot& slot = table[1 + (i & mask)];
            const char* const name = slot.text.load(std::memory_order_acquire);
            if (name == nullptr)
                return nullptr;
            if (slot.tag == tag && std::memcmp(name, text.data(), text.size()) == 0)
                return &slot;
        }
    }

    static void FillFreeSlot(Slot * table, std::uint32_t tag, std::uint32_t value, const char* text)
    {
        const std::uint32_t mask = table[0].value;
        std::uint32_t i = tag >> SizeBits;
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
    if (text.size() > MaximumTextSize) [[unlikely]]
        return NotFound;
    const Slot* const slot = Storage::FindName(Storage::slots.load(std::memory_order_acquire), Tag(text), text);
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
    Storage::FillFreeSlot(Storage::slots.load(std::memory_order_relaxed), Tag(texts.first), value, texts.first.c_str());
    ++Storage::nameCount;
}
