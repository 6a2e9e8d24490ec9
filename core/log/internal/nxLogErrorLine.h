// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGERRORLINE_H
#define CORE_LOG_INTERNAL_NXLOGERRORLINE_H

#include <string>

#include "core/platform/nxStandardStream.h"
#include "core/text/nxPrintableText.h"

/// What the log tells of its own trouble with files.
class nxLogErrorLine
{
public:
    nxLogErrorLine() = delete;

    /// Writes one line to the error stream. @p line may hold file names of any origin.
    static void Tell(const std::string& line)
    {
        nxStandardStream::GetErrors().Write(nxPrintableText::GetEscaped(line) + '\n');
    }
};

#endif
