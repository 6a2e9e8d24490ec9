// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXBITMASKREGISTRY_H
#define CORE_ENUM_INTERNAL_NXBITMASKREGISTRY_H

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "core/enum/internal/nxRegistrationLock.h"

/// The texts of all flags of the 32-bit masks, or of the 64-bit ones.
///
/// The texts of the library's own masks are constants; loading the library only puts each class into an index. Ordered maps
/// hold the texts of other masks, and an index of their single-bit entries grows by publishing finished nodes. Threads
/// therefore print masks without a lock while a plug-in registers its own during loading. Nothing is ever removed.
template <class Word>
class nxBitMaskRegistry
{
public:
    using Texts = std::pair<std::string, std::string>;
    using Map = std::map<std::string, std::map<Word, Texts>>;

    /// A flag of a mask of the library.
    struct Flag
    {
        Word word;
        const char* shortDescription;
        const char* longDescription;
    };

    /// A mask of the library, with its flags: a static object.
    struct ListedClass
    {
        std::string_view name;
        std::span<const Flag> flags;
        ListedClass* next = nullptr;

        const Flag* Find(Word word) const
        {
            // Nearly every list has all bits from the lowest on.
            if (const std::size_t index = Index(word); index < flags.size() && flags[index].word == word)
                return &flags[index];
            const auto found =
                std::find_if(flags.begin(), flags.end(), [word](const Flag& flag) { return flag.word == word; });
            return found != flags.end() ? &*found : nullptr;
        }
    };

    /// The one registry of its kind; never destroyed, because static destructors print too.
    static nxBitMaskRegistry& GetInstance()
    {
        static nxBitMaskRegistry& instance = *new nxBitMaskRegistry;
        return instance;
    }

    /// All texts. The first call copies those of the library's masks. @throws std::bad_alloc
    Map& GetMap()
    {
        const nxRegistrationLock lock;
        if (!_hasListedInMap)
            for (const std::atomic<ListedClass*>& bucket : _listedBuckets)
                for (const ListedClass* listed = bucket.load(std::memory_order_relaxed); listed; listed = listed->next)
                    for (const Flag& flag : listed->flags)
                        _map[std::string(listed->name)].try_emplace(flag.word, flag.shortDescription,
                                                                    flag.longDescription);
        _hasListedInMap = true;
        return _map;
    }

    /// Adds a mask of the library, while this is loaded. @return true
    bool AddListed(ListedClass& added)
    {
        const nxRegistrationLock lock;
        std::atomic<ListedClass*>& bucket = _listedBuckets[Bucket(added.name)];
        added.next = bucket.load(std::memory_order_relaxed);
        bucket.store(&added, std::memory_order_release);
        _hasListedInMap = false;
        return true;
    }

    /// Adds a flag's texts.
    bool Register(const std::string& className, Word word, const std::string& shortDescription,
                  const std::string& longDescription)
    {
        const nxRegistrationLock lock;
        if (const ListedClass* const listed = Find(_listedBuckets, className);
            listed != nullptr && listed->Find(word) != nullptr)
            return false;
        // The flag comes last: when memory runs out before, another attempt finds it missing and adds it.
        const auto classEntry = _map.try_emplace(className).first;
        Class& indexed = FindOrAdd(classEntry->first);
        const auto [entry, added] = classEntry->second.try_emplace(word, shortDescription, longDescription);
        if (added && std::has_single_bit(word))
            indexed.texts[Index(word)].store(&entry->second, std::memory_order_release);
        return added;
    }

    /// The texts of the flags set in @p mask, lowest bit first, or the word for a mask that is not valid.
    template <class Mask>
    std::string Describe(const Mask& mask, std::string_view separator, std::string Texts::*text) const
    {
        if (mask.IsNull())
            return "Null";
        if (mask.IsNoChange())
            return "No Change";
        return Describe(mask.GetClassName(), mask.GetValue(), separator, text);
    }

    /// The texts of the flags set in @p word, lowest bit first.
    std::string Describe(std::string_view className, Word word, std::string_view separator,
                         std::string Texts::*text) const
    {
        const ListedClass* const listed = Find(_listedBuckets, className);
        const Class* const added = Find(_buckets, className);
        if (listed == nullptr && added == nullptr)
            return "No Description Available";
        std::string result;
        for (; word != 0; word &= word - 1)
        {
            if (!result.empty())
                result += separator;
            result += GetText(listed, added, Word{1} << Index(word), text);
        }
        return result;
    }

private:
    static constexpr std::size_t _bitCount = std::numeric_limits<Word>::digits;
    static constexpr std::size_t _bucketCount = 64;

    // A class is stored when it is complete (release), and Find() loads it (acquire). Relaxed under the lock.
    template <class Item>
    using Buckets = std::array<std::atomic<Item*>, _bucketCount>;

    struct Class
    {
        std::string_view name;
        Class* next;
        // Register() stores texts that are complete (release), Describe() loads them (acquire).
        std::array<std::atomic<const Texts*>, _bitCount> texts{};
    };

    static std::string_view GetText(const ListedClass* listed, const Class* added, Word bit, std::string Texts::*text)
    {
        if (const Flag* const flag = listed != nullptr ? listed->Find(bit) : nullptr)
            return text == &Texts::first ? flag->shortDescription : flag->longDescription;
        const Texts* const texts =
            added != nullptr ? added->texts[Index(bit)].load(std::memory_order_acquire) : nullptr;
        return texts != nullptr ? std::string_view(texts->*text) : "???";
    }

    static std::size_t Index(Word word) { return static_cast<std::size_t>(std::countr_zero(word)); }
    static std::size_t Bucket(std::string_view name) { return std::hash<std::string_view>()(name) % _bucketCount; }

    template <class Item>
    static Item* Find(const Buckets<Item>& buckets, std::string_view name)
    {
        Item* found = buckets[Bucket(name)].load(std::memory_order_acquire);
        while (found != nullptr && found->name != name)
            found = found->next;
        return found;
    }

    Class& FindOrAdd(const std::string& name)
    {
        if (Class* const found = Find(_buckets, name))
            return *found;
        std::atomic<Class*>& bucket = _buckets[Bucket(name)];
        Class* const added = new Class{name, bucket.load(std::memory_order_relaxed), {}};
        bucket.store(added, std::memory_order_release);
        return *added;
    }

    Map _map;
    Buckets<Class> _buckets{};
    Buckets<ListedClass> _listedBuckets{};
    bool _hasListedInMap = false;
};

#endif
