// SPDX-License-Identifier: Apache-2.0
#include "core/enum/internal/nxListedTexts.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <new>

namespace
{
constexpr unsigned listedValues[] = {
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) value,
#define NX_ERROR_CODE(value, identifier, wording) value,
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
};
static_assert(std::adjacent_find(std::begin(listedValues), std::end(listedValues), std::greater_equal<>()) ==
                  std::end(listedValues),
              "the lists ascend");

// The identifier and the wording of each value, with the zero byte that ends each, and their sizes. Arrays without a pointer,
// because the loader would have to relocate it.
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) shortDescription "\0" longDescription "\0"
#define NX_ERROR_CODE(value, identifier, wording) #identifier "\0" wording "\0"
constexpr char listedBytes[] =
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
    ;
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE

struct ListedSizes
{
    unsigned char identifier;
    unsigned char wording;
};
constexpr ListedSizes listedSizes[] = {
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) \
    {sizeof shortDescription - 1, sizeof longDescription - 1},
#define NX_ERROR_CODE(value, identifier, wording) {sizeof #identifier - 1, sizeof wording - 1},
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
};

// Room for the strings. They are never destroyed, because threads that outlive main still print.
alignas(nxListedTexts::Texts) constinit std::byte
    listedTextsRoom[std::size(listedValues) * sizeof(nxListedTexts::Texts)]{};

const nxListedTexts::Texts* MakeListedTexts()
{
    auto* const texts = reinterpret_cast<nxListedTexts::Texts*>(listedTextsRoom);
    const char* next = listedBytes;
    const auto take = [&next](std::size_t size)
    {
        const std::string_view text(next, size);
        next += size + 1;
        return text;
    };
    auto* made = texts;
    for (const auto& [identifierSize, wordingSize] : listedSizes)
    {
        const std::string_view identifier = take(identifierSize);
        std::construct_at(made++, identifier, take(wordingSize));
    }
    return std::launder(texts);
}

const nxListedTexts::Texts& TextsAt(const unsigned* value)
{
    return nxListedTexts::GetTexts()[static_cast<std::size_t>(value - listedValues)];
}
}  // namespace

constinit const std::size_t nxListedTexts::Count = std::size(listedValues);

constinit const nxListedTexts::ForDebuggers nxListedTexts::_forDebuggers = {listedValues, std::size(listedValues),
                                                                            listedTextsRoom, sizeof(Texts)};

std::span<const unsigned> nxListedTexts::GetValues() { return listedValues; }

std::span<const nxListedTexts::Texts> nxListedTexts::GetTexts()
{
    static const Texts* const texts = MakeListedTexts();
    return {texts, Count};
}

const nxListedTexts::Texts* nxListedTexts::Find(unsigned value)
{
    const unsigned* const found = FindFrom(value);
    return found != nullptr && *found == value ? &TextsAt(found) : nullptr;
}

const unsigned* nxListedTexts::Find(std::string_view text)
{
    for (const unsigned& value : listedValues)
        if (TextsAt(&value).first == text)
            return &value;
    return nullptr;
}

const unsigned* nxListedTexts::FindFrom(unsigned from)
{
    const unsigned* const found = std::lower_bound(std::begin(listedValues), std::end(listedValues), from);
    return found != std::end(listedValues) ? found : nullptr;
}
