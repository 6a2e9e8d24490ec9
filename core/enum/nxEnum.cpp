#include "core/enum/nxEnum.h"

#include <ostream>

namespace
{
const std::size_t MaximumIdentifierLength = 64;
}

std::map<unsigned, std::pair<std::string, std::string>>& nxEnum::_Map()
{
    // Leaked: static destructors and threads that outlive main still print.
    static auto& map = *new std::map<unsigned, std::pair<std::string, std::string>>;
    return map;
}

std::map<std::string, unsigned>& nxEnum::_ReverseMap()
{
    static auto& map = *new std::map<std::string, unsigned>;
    return map;
}

bool nxEnum::_Register(unsigned value, const std::string& shortDescription, const std::string& longDescription)
{
    if (shortDescription.size() > MaximumIdentifierLength || _Map().count(value) != 0 ||
        _ReverseMap().count(shortDescription) != 0)
        return false;
    _Map().emplace(value, std::make_pair(shortDescription, longDescription));
    _ReverseMap().emplace(shortDescription, value);
    return true;
}

const bool nxEnum::_registered = nxEnum::_RegisterValues();

bool nxEnum::_RegisterValues()
{
#define NX_ENUM_VALUE(constant, value, shortDescription, longDescription) \
    _Register(value, shortDescription, longDescription);
#define NX_ERROR_CODE(value, identifier, wording) _Register(value, #identifier, wording);
#include "core/enum/nxEnumValues.inc"
#include "core/enum/nxErrorCodes.inc"
#undef NX_ENUM_VALUE
#undef NX_ERROR_CODE
    return true;
}

bool nxEnum::IsRegisteredEnumValue(unsigned value) { return _Map().count(value) != 0; }

const std::string& nxEnum::GetShortDescription() const
{
    const auto found = _Map().find(_value);
    return found != _Map().end() ? found->second.first : _Map()[NX_ENUM_NOT_REGISTERED].first;
}

const std::string& nxEnum::GetLongDescription() const
{
    const auto found = _Map().find(_value);
    return found != _Map().end() ? found->second.second : _Map()[NX_ENUM_NOT_REGISTERED].second;
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::vector<nxEnumValue>& values) const
{
    values.clear();
    for (auto entry = _Map().lower_bound(_MinValue()); entry != _Map().end() && entry->first <= _MaxValue(); ++entry)
        values.push_back(static_cast<nxEnumValue>(entry->first));
}

void nxEnum::GetRegisteredEnumValuesForInstance(std::set<nxEnumValue>& values) const
{
    std::vector<nxEnumValue> ascending;
    GetRegisteredEnumValuesForInstance(ascending);
    values = std::set<nxEnumValue>(ascending.begin(), ascending.end());
}

bool nxEnum::SetFromShortDescriptionString(const std::string& text)
{
    const auto found = _ReverseMap().find(text);
    if (found == _ReverseMap().end())
        return false;
    _Set(found->second);
    return _value == found->second;
}

void nxEnum::_Set(unsigned value)
{
    const bool acceptable = (_MinValue() < value && value < _MaxValue() && value != NX_ENUM_NOT_REGISTERED) ||
                            value == NX_ENUM_UNDEFINED || value == NX_ENUM_NO_CHANGE;
    _value = acceptable ? value : static_cast<unsigned>(NX_ENUM_UNDEFINED);
}

std::ostream& operator<<(std::ostream& stream, const nxEnum& value) { return stream << value.GetShortDescription(); }
