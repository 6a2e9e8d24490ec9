#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECTPLACE_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECTPLACE_H

#include <sys/types.h>

#include <cstdint>
#include <optional>

/// Where the named objects of a user lie: a file in a directory that only the user can enter.
///
/// There is one place on a machine, so that no two processes can each find another one: below /dev/shm where that is a
/// directory, else below /tmp, or below what the variable NX_SHARED_DIRECTORY says, an absolute path that is read once
/// and that counts for nothing in secure execution. Whatever goes wrong there is an error, never a reason to look
/// elsewhere.
class nxNamedObjectPlace
{
public:
    nxNamedObjectPlace() = delete;

    /// Whose objects they are. A mutex knows its owner by a number of the process-id namespace, and the same user id in
    /// two user namespaces is two users.
    struct Identity
    {
        uid_t user;  ///< The effective one.
        std::uint64_t processNamespace;
        std::uint64_t userNamespace;

        friend bool operator==(const Identity&, const Identity&) = default;
    };

    /// Who the process is now. @return nothing, with errno, when the system does not tell, as in a chroot without /proc.
    static std::optional<Identity> FindIdentity();

    /// Opens the file, and makes an empty one where there is none. Nothing that another user has had a hand in is
    /// followed, changed or trusted; rights of our own that a umask has taken are given back.
    /// @return a descriptor above the standard ones, or -1 with errno; throws std::bad_alloc.
    static int Open(const Identity& identity);
};

#endif
