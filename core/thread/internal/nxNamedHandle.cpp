#include "core/thread/internal/nxNamedHandle.h"

#include <cerrno>
#include <system_error>

#include "core/log/nxLogMacros.h"
#include "core/platform/linux/nxNamedObjectTable.h"
#include "core/text/nxPrintableText.h"

namespace
{
void Tell(nxNamedObjectTable::Notice notice, const std::string& name, int error)
{
    static constexpr char sourceFile[] = "core/trunk/nxNamedObject";
    if (notice == nxNamedObjectTable::Notice::Refused)
        NX_LOG_AT(NX_LOG_LEVEL_ERROR, sourceFile, __LINE__)
            << "Named objects are not to be had, so that " << nxPrintableText::GetQuoted(name)
            << " excludes nobody. Error " << error << ": " << std::generic_category().message(error);
    if (notice == nxNamedObjectTable::Notice::Removed)
        NX_LOG_AT(NX_LOG_LEVEL_ERROR, sourceFile, __LINE__)
            << "The file of the named objects was removed: what is open is not shared with processes that come later.";
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
        // No memory to tell it with; the handle is null all the same.
    }
    errno = error;
    return object;
}
