#ifndef CORE_PLATFORM_NXDESCRIPTOR_H
#define CORE_PLATFORM_NXDESCRIPTOR_H

#include <cstdint>

#include "core/nxExport.h"

struct stat;

/// Which file a descriptor or a name stands for.
struct nxFileIdentity
{
    nxFileIdentity() = default;  ///< Of no file.
    explicit nxFileIdentity(const struct stat& status);

    friend bool operator==(const nxFileIdentity&, const nxFileIdentity&) = default;

    std::uint64_t device = 0;
    std::uint64_t inode = 0;
};

/// A file descriptor that the library has opened, told by the file that it was opened for.
///
/// Other code of the process may close descriptors that it did not open (daemons do so when they start) and open files
/// of its own, which then get the same numbers. So a number is worth nothing without a look at what it stands for: what is
/// no longer ours is never closed, and callers ask Check() before they write or cut.
///
/// - Errors: the system's numbers. Ownership: closes on destruction. Threads: like an int.
class NX_CORE_API nxDescriptor
{
public:
    nxDescriptor() = default;

    /// Takes over what open() has returned. It is never one of the three standard numbers afterwards: where these were
    /// closed, a new file would take their place and receive what other code prints.
    /// Not open, with errno set, when there was nothing to take over or it cannot be told.
    explicit nxDescriptor(int opened);

    nxDescriptor(nxDescriptor&& other) noexcept;
    nxDescriptor& operator=(nxDescriptor&& other) noexcept;
    ~nxDescriptor() { Close(); }

    bool IsOpen() const { return _number >= 0; }
    int Get() const { return _number; }
    const nxFileIdentity& GetIdentity() const { return _identity; }

    /// @return 0 with the file's @p status; EBADF when somebody has closed the number, be it that it stands for another
    ///         file now or for none; else why the system cannot tell.
    int Check(struct stat& status) const;

    /// Closes what is still ours, and forgets the number.
    void Close();
    /// Leaves the number alone.
    void Forget() { _number = -1; }

private:
    int _number = -1;
    nxFileIdentity _identity;
};

#endif
