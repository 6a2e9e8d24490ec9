// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXRECORDLOCK_H
#define CORE_PLATFORM_LINUX_NXRECORDLOCK_H

#include <sys/types.h>

/// Locks on single bytes of a file. They belong to the open file and not to the process: closing another descriptor of
/// the file releases none of them, and the system releases all of them with the last descriptor of the open file.
///
/// - Errors: false, with errno. - Threads: any; the threads of a process that share a descriptor share its locks.
class nxRecordLock
{
public:
    nxRecordLock() = delete;

    /// Locks the byte for this open file. Others may have the same lock.
    static bool TryShared(int descriptor, off_t byte) noexcept;
    /// Locks the byte for this open file alone. Does not wait: EAGAIN while another open file has it.
    static bool TryExclusive(int descriptor, off_t byte) noexcept;
    /// Unlocks the byte. Leaves errno as it is.
    static void Unlock(int descriptor, off_t byte) noexcept;
    /// Whether another open file has locked the byte. True when the system does not tell.
    static bool IsLockedByAnother(int descriptor, off_t byte) noexcept;
};

#endif
