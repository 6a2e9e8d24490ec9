#ifndef CORE_THREAD_INTERNAL_NXNAMEDHANDLE_H
#define CORE_THREAD_INTERNAL_NXNAMEDHANDLE_H

#include <string>

#include "core/platform/linux/nxNamedObjectFile.h"

/// Opens named objects for the classes that hold them. It reports to the log that named objects cannot be opened, or
/// that their file was removed: once, until it works again.
class nxNamedHandle
{
public:
    nxNamedHandle() = delete;

    /// @return null, with errno, as nxNamedObjectTable::Open() does. Throws nothing.
    static nxNamedObject* Open(const std::string& name, nxNamedObjectKind kind,
                               const nxNamedObjectFile::Initialiser& initialise) noexcept;
};

#endif
