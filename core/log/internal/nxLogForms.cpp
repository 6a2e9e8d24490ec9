// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogForms.h"

#include "core/log/internal/nxLogEnvironment.h"
#include "core/platform/nxStandardStream.h"

namespace
{
using Settings = nxLogFormSettings;

nxLogLineStyle::Form GetParts(Settings::Form form)
{
    return form == Settings::Form::Json ? nxLogLineStyle::Json : nxLogLineStyle::Full;
}
Settings::Form GetForm(const nxLogLineStyle& style)
{
    return style.GetParts() == nxLogLineStyle::Json ? Settings::Form::Json : Settings::Form::Text;
}

// The wish of the user, which programs look for under this name.
bool IsColourRefused() noexcept
{
    try
    {
        return !nxLogEnvironment::Get("NO_COLOR").empty();
    }
    catch (...)
    {
        return true;
    }
}
}  // namespace

constinit nxLogKeptStyle nxLogForms::_file({nxLogLineStyle::Full, true});
constinit nxLogKeptStyle nxLogForms::_console({nxLogLineStyle::Full, false});
constinit std::atomic<nxLogFormSettings::Colour> nxLogForms::_colour{nxLogFormSettings::Colour::Never};

void nxLogForms::Set(const nxLogFormSettings& settings) noexcept
{
    const bool isRefused = settings.colour == Settings::Colour::Auto && IsColourRefused();
    _file.Set(nxLogLineStyle{GetParts(settings.file), settings.carriageReturn}.With(settings.time));
    _console.Set(nxLogLineStyle{GetParts(settings.console), false}.With(settings.time));
    _colour.store(isRefused ? Settings::Colour::Never : settings.colour, std::memory_order_relaxed);
}

nxLogFormSettings nxLogForms::Get() noexcept
{
    const nxLogLineStyle file = _file.Get();
    return {GetForm(file), GetForm(_console.Get()), file.GetTime(), file.carriageReturn,
            _colour.load(std::memory_order_relaxed)};
}

nxLogLineStyle nxLogForms::GetConsoleStyle(nxLogLineStyle::Form form) noexcept
{
    const nxLogLineStyle style = _console.Get();
    if (style.GetParts() == nxLogLineStyle::Json)
        return style;
    const Settings::Colour colour = _colour.load(std::memory_order_relaxed);
    const bool isColoured = colour == Settings::Colour::Always ||
                            (colour == Settings::Colour::Auto && nxStandardStream::GetOutput().IsTerminal());
    return nxLogLineStyle{form, false}.With(style.GetTime()).WithColour(isColoured);
}
