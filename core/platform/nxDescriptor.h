// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXDESCRIPTOR_H
#define CORE_PLATFORM_NXDESCRIPTOR_H

#include <cstdint>

#include "core/nxExport.h"

struct stat;

/// The file that a descriptor or a name refers to.
struct nxFileIdentity
{
    nxFileIdentity() = default;  ///< Of no file.
    explicit nxFileIdentity(const struct stat& status);

    friend bool operator==(const nxFileIdentity&, const nxFileIdentity&) = default;

    std::uint64_t device = 0;
    std::uint64_t inode = 0;
};

/// A file descriptor that the library has opened, together with the identity of its file.
///
/// Other code of the process may close descriptors that it did not open, as daemons do when they start, and the numbers
/// are then given to files of its own. The library therefore compares the file before it uses the number: it never closes
/// a descriptor of another file, and callers call Check() before they write or cut.
///
/// - Errors: the system's numbers. Ownership: closes on destruction. Threads: like an int.
class NX_CORE_API nxDescriptor
{
public:
    nxDescriptor() = default;

    /// Takes over what open() has returned. If that is one of the three standard numbers it is moved to another: where a
    /// standard stream was closed, the file would take its place and receive what other code prints.
    /// Not open, with errno set, when @p opened is negative or the system cannot tell the file's identity.
    explicit nxDescriptor(int opened);

    nxDescriptor(nxDescriptor&& other) noexcept;
    nxDescriptor& operator=(nxDescriptor&& other) noexcept;
    ~nxDescriptor() { Close(); }

    bool IsOpen() const { return _number >= 0; }
    int Get() const { return _number; }
    const nxFileIdentity& GetIdentity() const { return _identity; }

    /// @return 0 with the file's @p status; EBADF when other code has closed the descriptor, whether or not its number
    ///         refers to another file now; else the reason why the system cannot tell.
    int Check(struct stat& status) const;

    /// Closes the descriptor if it still refers to the same file, and forgets the number.
    void Close();
    /// Forgets the number without closing it.
    void Forget() { _number = -1; }

private:
    int _number = -1;
    nxFileIdentity _identity;
};

#endif
