// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXTHREADREPORT_H
#define CORE_THREAD_INTERNAL_NXTHREADREPORT_H

#include <string>

/// What core/thread reports to the log, one function a record.
///
/// The log is above this folder, so the functions are declared here and defined there: the locks and threads include
/// nothing of the log. Texts, source names and line numbers of the records are in core/log/internal/nxThreadReport.cpp.
///
/// Threads: any thread at any time. A record below the log's threshold costs one comparison.
class nxThreadReport
{
public:
    nxThreadReport() = delete;

    // Locks in shared memory. `result` is the error number of the first step that failed, 0 for success.
    static void RobustAttributeSet(int result);
    static void MutexNotShared(int result);
    static void ConditionNotShared(int result);
    static void SpinLockNotShared();
    static void SemaphoreNotShared(int result);

    // Robust mutexes whose owner died.
    static void OwnerDiedBeforeLock(bool madeConsistent);
    static void OwnerDiedDuringWait();

    /// @param what the exception's own text, or "of unknown type".
    static void ExceptionLeftRun(const char* what);

    /// @param isDestructor whether it left the functor's destructor rather than its call.
    static void ExceptionLeftFunctor(bool isDestructor, const char* what);

    // Threads that wait for signals. `thread` is the system's number of one in which a signal is not blocked.
    static void SignalsNotBlocked(unsigned thread);
    static void ExceptionLeftHandler(int signal, const char* what);

    // Buffers of one thread. Sizes are bytes.
    static void BufferAllocated(unsigned size, void* address);
    static void BufferGrownByItsIncrement(unsigned before, unsigned after);
    static void BufferGrownToSize(unsigned before, unsigned after);

    // Named objects. `error` is an errno value.
    static void NamedObjectsRefused(const std::string& name, int error);
    static void NamedObjectsRemoved();
};

#endif
