// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogFormSettings.h"

#include <initializer_list>
#include <string>
#include <string_view>

#include "core/log/internal/nxLogEnvironment.h"

namespace
{
template <class Value>
struct NamedValue
{
    std::string_view name;
    Value value;
};

// Sets the value that is called `text`, if one is.
template <class Value>
void Choose(const std::string& text, std::initializer_list<NamedValue<Value>> names, Value& value)
{
    for (const NamedValue<Value>& each : names)
        if (text == each.name)
            value = each.value;
}
}  // namespace

nxLogFormSettings nxLogFormSettings::Read() { return Read(nxLogFormSettings()); }

nxLogFormSettings nxLogFormSettings::Read(const nxLogFormSettings& otherwise)
{
    using Time = nxLogLineStyle::Time;
    nxLogFormSettings settings = otherwise;
    Choose(nxLogEnvironment::GetCapitals("NX_LOG_FORM"), {{"TEXT", Form::Text}, {"JSON", Form::Json}}, settings.file);
    Choose(nxLogEnvironment::GetCapitals("NX_LOG_CONSOLE_FORM"), {{"TEXT", Form::Text}, {"JSON", Form::Json}},
           settings.console);
    Choose(nxLogEnvironment::GetCapitals("NX_LOG_TIME"),
           {{"LOCAL", Time::Local}, {"UTC", Time::UTC}, {"ISO", Time::ISO}, {"ISO_UTC", Time::ISOInUTC}},
           settings.time);
    Choose(nxLogEnvironment::GetCapitals("NX_LOG_LINE_END"), {{"CRLF", true}, {"LF", false}}, settings.carriageReturn);
    Choose(nxLogEnvironment::GetCapitals("NX_LOG_COLOUR"),
           {{"NEVER", Colour::Never}, {"AUTO", Colour::Auto}, {"ALWAYS", Colour::Always}}, settings.colour);
    return settings;
}
