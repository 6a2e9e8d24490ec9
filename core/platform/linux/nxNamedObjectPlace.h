// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXNAMEDOBJECTPLACE_H
#define CORE_PLATFORM_LINUX_NXNAMEDOBJECTPLACE_H

#include <sys/types.h>

#include <cstdint>
#include <optional>

/// The place of a user's named objects: a file in a directory that only the user can enter.
///
/// There is one place on a machine, so that all processes find the same: below the directory that the variable
/// NX_SHARED_DIRECTORY names, else below /dev/shm, or below /tmp where /dev/shm does not exist. The variable holds an
/// absolute path, is read once and is ignored in secure execution. A failure in this place is an error; no other place is
/// tried.
class nxNamedObjectPlace
{
public:
    nxNamedObjectPlace() = delete;

    /// The owner of the objects. A mutex stores its owner as a number of the process-id namespace, and the same user id in
    /// two user namespaces means two users.
    struct Identity
    {
        uid_t user;  ///< The effective one.
        std::uint64_t processNamespace;
        std::uint64_t userNamespace;

        friend bool operator==(const Identity&, const Identity&) = default;
    };

    /// The present identity of the process. @return nothing, with errno, when the system does not tell, as in a chroot
    ///         without /proc.
    static std::optional<Identity> FindIdentity();

    /// Opens the file, or makes an empty one. Files, directories and links that another user may have made or changed are
    /// not followed, changed or trusted. Rights of this user that a umask has removed are restored.
    /// @return a descriptor above the standard ones, or -1 with errno; throws std::bad_alloc.
    static int Open(const Identity& identity);
};

#endif
