#include "core/thread/internal/nxNamedHandle.h"

#include <cerrno>

#include "core/platform/linux/nxNamedObjectTable.h"
#include "core/thread/internal/nxThreadReport.h"

namespace
{
void Tell(nxNamedObjectTable::Notice notice, const std::string& name, int error)
{
    if (notice == nxNamedObjectTable::Notice::Refused)
        nxThreadReport::NamedObjectsRefused(name, error);
    if (notice == nxNamedObjectTable::Notice::Removed)
        nxThreadReport::NamedObjectsRemoved();
}
}  // namespace

nxNamedObject* nxNamedHandle::Open(const std::string& name, nxNamedObjectKind kind,
                                   const nxNamedObjectFile::Initialiser& initialise) noexcept
{
    nxNamedObjectTable::Notice notice{};
    nxNamedObject* const object = nxNamedObjectTable::GetInstance().Open(name, kind, initialise, notice);
    if (notice == nxNamedObjectTable::Notice::None)
        return object;
    const int error = errno;
    try
    {
        Tell(notice, name, error);
    }
    catch (...)
    {
        // No memory for the report. The result is the same without it.
    }
    errno = error;
    return object;
}
