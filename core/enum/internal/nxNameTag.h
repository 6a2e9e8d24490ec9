// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INTERNAL_NXNAMETAG_H
#define CORE_ENUM_INTERNAL_NXNAMETAG_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// The hash of an identifier, as the hash table of nxEnumTable stores it.
class nxNameTag
{
public:
    static constexpr std::size_t MaximumSize = 64;  ///< The longest identifier.

    /// The lowest bits of a tag are the length itself: equal tags mean equal lengths.
    static constexpr unsigned SizeBits = std::bit_width(MaximumSize);

    /// Computed from every byte, because most names share a prefix and an ending with others.
    /// @pre name.size() <= MaximumSize
    static std::uint32_t Get(std::string_view name)
    {
        // The fold and the second product spread the upper bits over the whole tag.
        std::uint64_t hash = _Hash(name.data(), name.size());
        hash = (hash ^ hash >> 32) * 0x9E3779B97F4A7C15u;
        return static_cast<std::uint32_t>(hash >> (32 + SizeBits)) << SizeBits |
               static_cast<std::uint32_t>(name.size());
    }

private:
    static std::uint64_t _Hash(const char* data, std::size_t size)
    {
        const char* const end = data + size;
        if (size >= 16) [[likely]]
        {
            const std::uint64_t outer = _Mix(_Load(data), _Load(data + 8), _Load(end - 16), _Load(end - 8));
            if (size <= 32)
                return outer;
            return outer ^ std::rotl(_Mix(_Load(data + 16), _Load(data + 24), _Load(end - 32), _Load(end - 24)), 29);
        }
        if (size >= 8)
            return _Mix(_Load(data), _Load(end - 8), 0, 0);
        if (size >= 4)
            return _Mix(_Load<std::uint32_t>(data), _Load<std::uint32_t>(end - 4), 0, 0);
        if (size != 0)
            return _Mix(_Load<std::uint8_t>(data), _Load<std::uint8_t>(data + size / 2), _Load<std::uint8_t>(end - 1),
                        0);
        return 0;
    }

    static std::uint64_t _Mix(std::uint64_t first, std::uint64_t second, std::uint64_t third, std::uint64_t fourth)
    {
        return first * 0x9E3779B97F4A7C15u ^ second * 0xC2B2AE3D27D4EB4Fu ^ third * 0xD6E8FEB86659FD93u ^
               fourth * 0xA0761D6478BD642Fu;
    }

    template <class Word = std::uint64_t>
    static std::uint64_t _Load(const char* data)
    {
        Word word;
        std::memcpy(&word, data, sizeof word);
        return word;
    }
};

#endif
