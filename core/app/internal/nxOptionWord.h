// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_APP_INTERNAL_NXOPTIONWORD_H
#define CORE_APP_INTERNAL_NXOPTIONWORD_H

#include "core/numeric/nxDecimal.h"

/// Whether a word of the command line is an option rather than a value: it begins with a dash, and is not the negative
/// number that the option before it waits for.
inline bool nxIsOptionWord(const char* word, bool isValueAwaited)
{
    return word[0] == '-' && !(isValueAwaited && nxDecimal().SetFromString(word, '.').IsOK());
}

#endif
