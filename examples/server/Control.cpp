// SPDX-License-Identifier: Apache-2.0
#include "Control.h"

#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <system_error>
#include <utility>

#include "core/nxCore.h"

namespace
{
// Each takes the text of a value and leaves everything as it is if it does not understand it.
using Setting = std::function<nxErrorEnum(const std::string& value)>;

nxErrorEnum SetLevel(const std::string& value)
{
    nxLogLevelEnum level;
    const nxErrorEnum error = nxStringHelper::SetFromStringExact(value, level);
    if (error.IsOK())
        nxLogManager::SetLogLevel(level);
    return error;
}

nxErrorEnum SetFlushTime(const std::string& value)
{
    nxDecimal seconds;
    const nxErrorEnum error = seconds.SetFromStringExact(value, '.');
    if (error.IsOK())
        nxLogManager::GetInstance().SetTimeBetweenFlushes(seconds.GetAsDouble());
    return error;
}

// A setting with few values, each with its word.
template <class Value, class Set>
Setting OneOf(std::map<std::string, Value> values, Set set)
{
    return [values = std::move(values), set](const std::string& word)
    {
        const auto value = values.find(word);
        if (value == values.end())
            return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
        set(value->second);
        return nxErrorEnum();
    };
}

template <class Set>
Setting Switch(Set set)
{
    return OneOf<bool>({{"on", true}, {"off", false}}, set);
}

// A device that is registered while the setting is on.
Setting Device(nxLogDevice& device)
{
    return Switch(
        [&device](bool isOn)
        {
            nxLogManager& manager = nxLogManager::GetInstance();
            isOn ? manager.RegisterLogDevice(&device) : manager.UnregisterLogDevice(&device);
        });
}

// Changes one member of the settings for the form of lines.
template <class Value>
auto SetForm(Value nxLogFormSettings::*member)
{
    return [member](const Value& value)
    {
        nxLogManager& manager = nxLogManager::GetInstance();
        nxLogFormSettings forms = manager.GetFormSettings();
        forms.*member = value;
        manager.Apply(forms);
    };
}

// How many files are kept, 0 for all, and what compresses them, "none" for nothing: "20,gzip".
nxErrorEnum SetRetention(const std::string& value)
{
    nxLogRetention retention;
    const std::size_t comma = value.find(',');
    if (comma == std::string::npos)
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    if (const nxErrorEnum error = nxStringHelper::SetFromStringExact(value.substr(0, comma), retention.files);
        !error.IsOK())
        return error;
    if (const std::string compressor = value.substr(comma + 1); compressor != "none")
        retention.compressor = compressor;
    nxFileLogDevice::GetInstance().SetRetention(retention);
    return nxErrorEnum();
}

const std::map<std::string, Setting>& GetSettings()
{
    using Form = nxLogFormSettings::Form;
    using Time = nxLogLineStyle::Time;
    using Colour = nxLogFormSettings::Colour;
    static const std::map<std::string, Setting> settings = {
        {"colour", OneOf<Colour>({{"never", Colour::Never}, {"auto", Colour::Auto}, {"always", Colour::Always}},
                                 SetForm(&nxLogFormSettings::colour))},
        {"console", Device(nxConsoleLogDevice::GetInstance())},
        {"console-form",
         OneOf<Form>({{"text", Form::Text}, {"json", Form::Json}}, SetForm(&nxLogFormSettings::console))},
        {"flush", SetFlushTime},
        {"form", OneOf<Form>({{"text", Form::Text}, {"json", Form::Json}}, SetForm(&nxLogFormSettings::file))},
        {"index", Switch([](bool isOn) { nxLogManager::GetInstance().SetLogThreadIndex(isOn); })},
        {"journal", Device(nxJournalLogDevice::GetInstance())},
        {"level", SetLevel},
        {"levels", [](const std::string& value) { return nxLogLevels::Set(value); }},
        {"line-end", OneOf<bool>({{"crlf", true}, {"lf", false}}, SetForm(&nxLogFormSettings::carriageReturn))},
        {"processor", Switch([](bool isOn) { nxLogManager::GetInstance().SetLogThreadCPU(isOn); })},
        {"retention", SetRetention},
        {"time",
         OneOf<Time>({{"local", Time::Local}, {"utc", Time::UTC}, {"iso", Time::ISO}, {"iso-utc", Time::ISOInUTC}},
                     SetForm(&nxLogFormSettings::time))},
        {"syslog", Device(nxSyslogLogDevice::GetInstance())},
    };
    return settings;
}

void CarryOutLine(const std::string& line)
{
    std::istringstream words(line);
    std::string name, value;
    words >> name >> value;
    const auto setting = GetSettings().find(name);
    const nxErrorEnum error = setting == GetSettings().end() ? nxErrorEnum(NX_ERR_NOT_FOUND) : setting->second(value);
    if (error.IsOK())
        NX_LOG(NX_LOG_LEVEL_INFO) << "setting '" << name << "' is now '" << value << "'";
    else
        NX_LOG(NX_LOG_LEVEL_WARNING) << "setting '" << name << "' stays, '" << value << "' is refused: " << error;
}
}  // namespace

void Control::CarryOut() const
{
    std::ifstream file(_file);
    for (std::string line; std::getline(file, line);)
        CarryOutLine(line);
    std::error_code ignored;
    std::filesystem::remove(_file, ignored);
}
