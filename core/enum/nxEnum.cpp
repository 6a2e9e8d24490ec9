// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxEnum.h"

#include <ostream>

#include "core/enum/internal/nxListedTexts.h"
#include "core/enum/internal/nxRegistrationLock.h"
#include "core/enum/nxEnumRange.h"
#include "core/enum/nxRefusedTexts.h"

namespace
{
using ValueMap = std::map<unsigned, nxEnumTable::Texts>;
using NameMap = std::map<std::string, unsigned>;

// What was registered, and the library's own values once somebody has asked for all. Under the registration lock. Leaked, because
// static destructors and threads that outlive main still print.
ValueMap& RegisteredValues()
{
    static auto& map = *new ValueMap;
    return map;
}

NameMap& RegisteredNames()
{
    static auto& map = *new NameMap;
    return map;
}

void AddListedToMaps()
{
    static constinit bool isDone = false;
    if (isDone)
        return;
    const unsigned* value = nxListedTexts::GetValues().data();
    for (const nxEnumTable::Texts& texts : nxListedTexts::GetTexts())
    {
        RegisteredValues().try_emplace(*value, texts);
        RegisteredNames().try_emplace(texts.first, *value++);
    }
    isDone = true;
}

std::string_view View(const char* text) { return text != nullptr ? text : ""; }
}  // namespace

const bool nxEnum::_registered = nxEnum::_RegisterValues();

bool nxEnum::_RegisterValues() { return _RegisterListed(NX_ENUM_UNDEFINED, NX_ENUM_NO_CHANGE); }

std::map<unsigned, std::pair<std::string, std::string>>& nxEnum::_Map()
{
    const nxRegistrationLock lock;
    AddListedToMaps();
    return RegisteredValues();
}

std::map<std::string, unsigned>& nxEnum::_ReverseMap()
{
    const nxRegistrationLock lock;
    AddListedToMaps();
    return RegisteredNames();
}

bool nxEnum::_Add(unsigned value, std::string_view shortDescription, std::string_view longDescription)
{
    const nxRegistrationLock lock;
    if (shortDescription.size() > nxEnumTable::MaximumTextSize || nxEnumTable::FindAnywhere(value) != nullptr ||
        nxEnumTable::FindAnywhere(shortDescription) != nxEnumTable::NotFound)
        return false;
    // Everything that may run out of memory comes first. It leaves nothing behind that would prevent another attempt.
    nxEnumTable::Reserve(value);
    const auto name = RegisteredNames().try_emplace(std::string(shortDescription), value).first;
    try
    {
        ValueMap& values = RegisteredValues();
        const auto entry = values.try_emplace(values.end(), value, shortDescription, longDescription);
        nxEnumTable::Add(value, entry->second);
    }
    catch (...)
    {
        RegisteredNames().erase(name);
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

// Whichever class comes first, the texts of all are made: it is one step, and they are in one place.
bool nxEnum::_RegisterListed(unsigned, unsigned) { return !nxListedTexts::GetTexts().empty(); }

void nxEnum::_FillFromLists() { static_cast<void>(nxListedTexts::GetTexts()); }

const nxEnumTable::Texts& nxEnum::_GetMissingTexts(unsigned value)
{
    const nxEnumTable::Texts* const texts = nxEnumTable::FindMissing(value);
    return texts != nullptr ? *texts : *nxListedTexts::Find(NX_ENUM_NOT_REGISTERED);
}

std::int64_t nxEnum::_FindMissing(std::string_view text) { return nxEnumTable::FindMissing(text); }

bool nxEnum::IsRegisteredEnumValue(unsigned value) { return nxEnumTable::FindAnywhere(value) != nullptr; }

bool nxEnum::IsSpecificTypeForInstance() const { return _MinValue() < _value && _value < _MaxValue(); }

bool nxEnum::_SetFromText(std::string_view text) { return _SetFromText(text, _MinValue(), _MaxValue()); }

void nxEnum::_Set(unsigned value)
{
    _value = _IsAcceptable(value, _MinValue(), _MaxValue()) ? value : +NX_ENUM_UNDEFINED;
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>& values) const
{
    values.clear();
    for (const unsigned value : nxEnumRange<unsigned>(_MinValue(), _MaxValue()))
        values.push_back(static_cast<nxEnumValue>(value));
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::set<nxEnumValue>& values) const
{
    values.clear();
    for (const unsigned value : nxEnumRange<unsigned>(_MinValue(), _MaxValue()))
        values.insert(values.end(), static_cast<nxEnumValue>(value));
}

std::ostream& operator<<(std::ostream& stream, const nxEnum& value) { return stream << value.GetShortDescription(); }
