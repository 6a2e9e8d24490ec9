// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXSCOPEDDESCRIPTOR_H
#define CORE_PLATFORM_LINUX_NXSCOPEDDESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

/// A file descriptor that is closed at the end of the scope, which leaves errno as it is. -1 is none. For short use by the
/// thread that has opened it; see nxDescriptor for one that is kept.
class nxScopedDescriptor
{
public:
    explicit nxScopedDescriptor(int descriptor) : _descriptor(descriptor) {}
    ~nxScopedDescriptor()
    {
        const int error = errno;
        if (_descriptor >= 0)
            close(_descriptor);
        errno = error;
    }
    nxScopedDescriptor(const nxScopedDescriptor&) = delete;
    nxScopedDescriptor& operator=(const nxScopedDescriptor&) = delete;

    int Get() const { return _descriptor; }
    /// Hands the descriptor to the caller, who closes it.
    int Release() { return std::exchange(_descriptor, -1); }

private:
    int _descriptor;
};

#endif
