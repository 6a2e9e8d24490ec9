// SPDX-License-Identifier: Apache-2.0
#include "core/process/nxApplicationName.h"

#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
struct KeptName
{
    nxMutex mutex;
    std::string text NX_GUARDED_BY(mutex);
};

KeptName& TheName();
nxMutex& MutexOfTheName() { return TheName().mutex; }

// Never destroyed, because threads and the destructors of other globals may ask while the process ends.
KeptName& TheName()
{
    static KeptName& name = *new KeptName;
    static const bool survivesForks = nxForkMutex::Register<&MutexOfTheName>(nxForkHandlers::Rank::ApplicationName);
    static_cast<void>(survivesForks);
    return name;
}

// Made while the library is loaded. A child forked during a first use would wait for the guard of the static for ever.
[[maybe_unused]] const KeptName& nameMadeAtLoad = TheName();
}  // namespace

std::string nxApplicationName::Get()
{
    KeptName& name = TheName();
    const nxMutexGuard guard(name.mutex);
    return name.text;
}

void nxApplicationName::Set(const std::string& text)
{
    KeptName& name = TheName();
    const nxMutexGuard guard(name.mutex);
    name.text = text;
}
