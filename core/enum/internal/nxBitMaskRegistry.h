// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXBITMASKREGISTRY_H
#define CORE_ENUM_INTERNAL_NXBITMASKREGISTRY_H

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>

/// The texts of all flags of the 32-bit masks, or of the 64-bit ones.
///
/// The ordered maps hold the texts. An index of the single-bit entries grows by publishing finished nodes, so threads
/// print masks without a lock while a plug-in registers its own during loading. Nothing is ever removed.
template <class Word>
class nxBitMaskRegistry
{
public:
    using Texts = std::pair<std::string, std::string>;
    using Map = std::map<std::string, std::map<Word, Texts>>;

    /// The one registry of its kind; never destroyed, because static destructors print too.
    static nxBitMaskRegistry& GetInstance()
    {
        static nxBitMaskRegistry& instance = *new nxBitMaskRegistry;
        return instance;
    }

    Map& GetMap() { return _map; }

    /// Adds a flag's texts. Only one thread at a time may call this.
    bool Register(const std::string& className, Word word, const std::string& shortDescription,
                  const std::string& longDescription)
    {
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
        const Class* const found = Find(className);
        if (found == nullptr)
            return "No Description Available";
        std::string result;
        for (; word != 0; word &= word - 1)
        {
            const Texts* const texts = found->texts[Index(word)].load(std::memory_order_acquire);
            if (!result.empty())
                result += separator;
            result += texts != nullptr ? std::string_view(texts->*text) : "???";
        }
        return result;
    }

private:
    static constexpr std::size_t _bitCount = std::numeric_limits<Word>::digits;
    static constexpr std::size_t _bucketCount = 64;

    struct Class
    {
        const std::string* name;
        Class* next;
        // Register() stores texts that are complete (release), Describe() loads them (acquire).
        std::array<std::atomic<const Texts*>, _bitCount> texts{};
    };

    static std::size_t Index(Word word) { return static_cast<std::size_t>(std::countr_zero(word)); }
    static std::size_t Bucket(std::string_view name) { return std::hash<std::string_view>()(name) % _bucketCount; }

    Class* Find(std::string_view name) const
    {
        Class* found = _buckets[Bucket(name)].load(std::memory_order_acquire);
        while (found != nullptr && *found->name != name)
            found = found->next;
        return found;
    }

    Class& FindOrAdd(const std::string& name)
    {
        if (Class* const found = Find(name))
            return *found;
        std::atomic<Class*>& bucket = _buckets[Bucket(name)];
        Class* const added = new Class{&name, bucket.load(std::memory_order_relaxed), {}};
        bucket.store(added, std::memory_order_release);
        return *added;
    }

    Map _map;
    // FindOrAdd() stores a class that is complete (release), Find() loads it (acquire). Relaxed on the thread that adds.
    std::array<std::atomic<Class*>, _bucketCount> _buckets{};
};

#endif
