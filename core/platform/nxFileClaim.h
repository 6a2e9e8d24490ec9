// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILECLAIM_H
#define CORE_PLATFORM_NXFILECLAIM_H

#include <string>

#include "core/platform/nxDescriptor.h"
#include "core/platform/nxDirectory.h"

/// An existing file to which this object alone has the right, of all that ask for it in this way: neither a process that
/// writes it (see nxFile::CreateNew()) nor another claim has it.
///
/// - The system gives the right back when the object and all descriptors that were inherited from it are closed, also by
///   the end of a process.
/// - Errors: the system's numbers. Threads: like an int.
class nxFileClaim
{
public:
    /// Claims a regular file of this user; links are not followed. It does not wait.
    /// @return 0; EAGAIN while another has the file; ENOENT if there is none, or no more; EPERM if it is no such file; EROFS or
    ///         ENOLCK, for example, where the file cannot be locked.
    [[nodiscard]] int Take(const nxDirectory& directory, const std::string& name);

    const nxDescriptor& GetDescriptor() const { return _descriptor; }

private:
    nxDescriptor _descriptor;
};

#endif
