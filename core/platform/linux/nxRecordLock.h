#ifndef CORE_PLATFORM_LINUX_NXRECORDLOCK_H
#define CORE_PLATFORM_LINUX_NXRECORDLOCK_H

#include <sys/types.h>

/// Locks on single bytes of a file. They belong to the open file and not to the process: closing another descriptor of
/// the file loses none, and the system takes them away when the last descriptor of the open file has gone.
///
/// - Errors: false, with errno. - Threads: any; the threads of a process that share a descriptor share its locks.
class nxRecordLock
{
public:
    nxRecordLock() = delete;

    /// Locks the byte for this open file beside others that do the same.
    static bool TryShared(int descriptor, off_t byte) noexcept;
    /// Locks the byte for this open file alone. Does not wait: EAGAIN while another has it.
    static bool TryExclusive(int descriptor, off_t byte) noexcept;
    /// Gives the byte back. Leaves errno as it is.
    static void Unlock(int descriptor, off_t byte) noexcept;
    /// Whether another open file has the byte locked. In doubt it has.
    static bool IsLockedByAnother(int descriptor, off_t byte) noexcept;
};

#endif
