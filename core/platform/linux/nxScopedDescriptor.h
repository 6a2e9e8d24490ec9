#ifndef CORE_PLATFORM_LINUX_NXSCOPEDDESCRIPTOR_H
#define CORE_PLATFORM_LINUX_NXSCOPEDDESCRIPTOR_H

#include <unistd.h>

#include <cerrno>
#include <utility>

/// A file descriptor of the thread that has just opened it, closed at the end of the scope; errno stays. -1 is none.
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
    /// Leaves the closing to the caller.
    int Release() { return std::exchange(_descriptor, -1); }

private:
    int _descriptor;
};

#endif
