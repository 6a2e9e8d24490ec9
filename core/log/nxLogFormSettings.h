// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_NXLOGFORMSETTINGS_H
#define CORE_LOG_NXLOGFORMSETTINGS_H

#include "core/log/nxLogLineSink.h"
#include "core/nxExport.h"

/// How the lines of the log file and of the console look: see nxLogLineStyle. By default both are text with the local time.
///
/// nxLogManager::Apply() sets it for the process, at any time: lines that are written together have one form, and the next
/// ones have the new one. nxFileLogDevice::Create(), and with it nxLogSetUp(), does so with what the environment says.
///
/// - Errors: none. A value of the environment that cannot be understood, the empty text included, is as not set.
/// - A program that has more rights than the user who started it ignores the environment, as for nxLogSettings.
/// - Threads: Read() may be called at any time; the values are like any struct.
/// @code
/// nxLogManager& manager = nxLogManager::GetInstance();
/// nxLogFormSettings forms = manager.GetFormSettings();
/// forms.file = nxLogFormSettings::Form::Json;
/// manager.Apply(forms);
/// @endcode
struct NX_CORE_API nxLogFormSettings
{
    /// What a line is.
    enum class Form
    {
        Text,  ///< As the device's documentation shows it.
        Json   ///< nxLogLineStyle::Json. Of the console as well, whatever its short form.
    };
    /// When the console's lines of text have colours: see nxLogLineStyle::WithColour().
    enum class Colour
    {
        Never,
        Auto,  ///< While standard output is a terminal. Becomes Never when NO_COLOR is set and not empty.
        Always
    };

    Form file = Form::Text;     ///< NX_LOG_FORM: TEXT or JSON, in any case, like all values here.
    Form console = Form::Text;  ///< NX_LOG_CONSOLE_FORM: TEXT or JSON.
    /// NX_LOG_TIME: LOCAL, UTC, ISO or ISO_UTC. In the file and on the console.
    nxLogLineStyle::Time time = nxLogLineStyle::Time::Local;
    bool carriageReturn = true;     ///< NX_LOG_LINE_END: CRLF or LF. The file's lines; those of the console end in LF.
    Colour colour = Colour::Never;  ///< NX_LOG_COLOUR: NEVER, AUTO or ALWAYS.

    /// @return what the environment says; what it does not set is as in @p otherwise.
    static nxLogFormSettings Read(const nxLogFormSettings& otherwise);
    /// The same with the defaults for what it does not set.
    static nxLogFormSettings Read();

    /// Equal settings make equal lines.
    friend bool operator==(const nxLogFormSettings&, const nxLogFormSettings&) = default;
};

#endif
