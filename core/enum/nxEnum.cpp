// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxEnum.h"

#include <algorithm>
#include <iterator>
#include <ostream>

#include "core/enum/nxEnumRange.h"
#include "core/enum/nxRefusedTexts.h"

namespace
{
constexpr nxEnum::ValueTexts listedRows[] = {
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) {value, shortDescription, longDescription},
#define NX_ERROR_CODE(value, identifier, wording) {value, #identifier, wording},
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
};

constexpr bool IsBelow(const nxEnum::ValueTexts& left, const nxEnum::ValueTexts& right)
{
    return left.value < right.value;
}
static_assert(std::is_sorted(std::begin(listedRows), std::end(listedRows), IsBelow), "the lists ascend");

// Not looked up, because an application may have registered the identifier for a value of its own.
const nxEnumTable::Texts& TextsOfUnknown()
{
    static const nxEnumTable::Texts& texts = *new nxEnumTable::Texts("NOT_REGISTERED", "not registered");
    return texts;
}

std::string_view View(const char* text) { return text != nullptr ? text : ""; }
}  // namespace

const bool nxEnum::_registered = nxEnum::_RegisterValues();

bool nxEnum::_RegisterValues()
{
    TextsOfUnknown();  // built while the library is loaded, because memory may be short later
    return _RegisterListed(NX_ENUM_UNDEFINED, NX_ENUM_NO_CHANGE);
}

std::map<unsigned, std::pair<std::string, std::string>>& nxEnum::_Map()
{
    // Leaked, because static destructors and threads that outlive main still print.
    static auto& map = *new std::map<unsigned, std::pair<std::string, std::string>>;
    return map;
}

std::map<std::string, unsigned>& nxEnum::_ReverseMap()
{
    static auto& map = *new std::map<std::string, unsigned>;
    return map;
}

bool nxEnum::_Add(unsigned value, std::string_view shortDescription, std::string_view longDescription)
{
    if (shortDescription.size() > nxEnumTable::MaximumTextSize || nxEnumTable::Find(value) != nullptr ||
        nxEnumTable::Find(shortDescription) != nxEnumTable::NotFound)
        return false;
    // Everything that may run out of memory comes first. It leaves nothing behind that would prevent another attempt.
    nxEnumTable::Reserve(value);
    const auto name = _ReverseMap().try_emplace(std::string(shortDescription), value).first;
    try
    {
        const auto entry = _Map().try_emplace(_Map().end(), value, shortDescription, longDescription);
        nxEnumTable::Add(value, entry->second);
    }
    catch (...)
    {
        _ReverseMap().erase(name);
        throw;
    }
    return true;
}

bool nxEnum::_Register(unsigned value, const std::string& shortDescription, const std::string& longDescription)
{
    return _Add(value, shortDescription, longDescription);
}

bool nxEnum::_RegisterAll(const ValueTexts* first, const ValueTexts* last)
{
    for (const ValueTexts* row = first; row != last; ++row)
        if (!_Add(row->value, View(row->shortDescription), View(row->longDescription)))
            nxRefusedTexts::AddValue(row->value, View(row->shortDescription));
    return true;
}

bool nxEnum::_RegisterListed(unsigned lowest, unsigned highest)
{
    return _RegisterAll(
        std::lower_bound(std::begin(listedRows), std::end(listedRows), ValueTexts{lowest, "", ""}, IsBelow),
        std::upper_bound(std::begin(listedRows), std::end(listedRows), ValueTexts{highest, "", ""}, IsBelow));
}

void nxEnum::_FillFromLists()
{
    static const bool isFilled = _RegisterAll(listedRows);
    static_cast<void>(isFilled);
}

const nxEnumTable::Texts& nxEnum::_GetMissingTexts(unsigned value)
{
    _FillFromLists();
    if (const nxEnumTable::Texts* const texts = nxEnumTable::Find(value))
        return *texts;
    return TextsOfUnknown();
}

std::int64_t nxEnum::_FindMissing(std::string_view text)
{
    _FillFromLists();
    return nxEnumTable::Find(text);
}

bool nxEnum::IsRegisteredEnumValue(unsigned value)
{
    if (nxEnumTable::Find(value) == nullptr)
        _FillFromLists();
    return nxEnumTable::Find(value) != nullptr;
}

bool nxEnum::IsSpecificTypeForInstance() const { return _MinValue() < _value && _value < _MaxValue(); }

bool nxEnum::_SetFromText(std::string_view text) { return _SetFromText(text, _MinValue(), _MaxValue()); }

void nxEnum::_Set(unsigned value)
{
    _value = _IsAcceptable(value, _MinValue(), _MaxValue()) ? value : +NX_ENUM_UNDEFINED;
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>& values) const
{
    values.clear();
    _FillFromLists();
    for (const unsigned value : nxEnumRange<unsigned>(_MinValue(), _MaxValue()))
        values.push_back(static_cast<nxEnumValue>(value));
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::set<nxEnumValue>& values) const
{
    values.clear();
    _FillFromLists();
    for (const unsigned value : nxEnumRange<unsigned>(_MinValue(), _MaxValue()))
        values.insert(values.end(), static_cast<nxEnumValue>(value));
}

std::ostream& operator<<(std::ostream& stream, const nxEnum& value) { return stream << value.GetShortDescription(); }
