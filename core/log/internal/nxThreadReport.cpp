// SPDX-License-Identifier: Apache-2.0
#include "core/thread/internal/nxThreadReport.h"

#include <system_error>

#include "core/log/nxLogMacros.h"
#include "core/text/nxPrintableText.h"
#include "core/thread/nxThreadIndex.h"

// Log searches look for a record by its text, source name and line number. All three stay as they are, wherever the
// code that reports is moved.

void nxThreadReport::RobustAttributeSet(int result)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxMutex", 107) << "Set Robust attribute. result: " << result;
}

void nxThreadReport::MutexNotShared(int result)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxMutex", 127)
        << "Mutex could not be created in shared memory. Result : " << result;
}

void nxThreadReport::ConditionNotShared(int result)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxConditionRaw", 62)
        << "Condition could not be created in shared memory. Result : " << result;
}

void nxThreadReport::SpinLockNotShared()
{
    // The wording says "semaphore" and stays, because log searches look for it.
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxSpinLock", 43) << "Semaphore error";
}

void nxThreadReport::SemaphoreNotShared(int result)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxSemaphore", 87)
        << "Semaphore could not be created in shared memory. Result : " << result;
}

void nxThreadReport::OwnerDiedBeforeLock(bool madeConsistent)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxMutexGuard", 12)
        << "The owner of a robust mutex died while it held the mutex. Made consistent: " << madeConsistent;
}

void nxThreadReport::OwnerDiedDuringWait()
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxConditionMutex", 11)
        << "The owner of a robust mutex died while another thread waited";
}

void nxThreadReport::ExceptionLeftRun(const char* what)
{
    NX_LOG_AT(NX_LOG_LEVEL_FATAL, "core/trunk/nxThread", 14) << "A thread ended with an exception: " << what;
}

void nxThreadReport::ExceptionLeftFunctor(bool isDestructor, const char* what)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxFunctorQueue", 1)
        << (isDestructor ? "The destructor of a functor ended with an exception: "
                         : "A functor ended with an exception: ")
        << what;
}

void nxThreadReport::SignalsNotBlocked(unsigned thread)
{
    NX_LOG_AT(NX_LOG_LEVEL_WARNING, "core/trunk/nxSignalThread", 1)
        << "Thread " << thread
        << " was started before signals were blocked. A signal that it gets has its former effect.";
}

void nxThreadReport::ExceptionLeftHandler(int signal, const char* what)
{
    NX_LOG_AT(NX_LOG_LEVEL_FATAL, "core/trunk/nxSignalThread", 2)
        << "The handler of signal " << signal << " ended with an exception: " << what;
}

void nxThreadReport::BufferAllocated(unsigned size, void* address)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxThreadSpecificMemoryBuffer", 95)
        << "Allocated thread-specific memory buffer. Thread index: " << nxThreadIndex::GetIndexOfCurrentThread()
        << ", Size: " << size << ", Address: " << static_cast<const void*>(address);
}

void nxThreadReport::BufferGrownByItsIncrement(unsigned before, unsigned after)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxThreadSpecificMemoryBuffer", 44)
        << "Growing thread-specific memory buffer. Size: " << before << " -> " << after;
}

void nxThreadReport::BufferGrownToSize(unsigned before, unsigned after)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "core/trunk/nxThreadSpecificMemoryBuffer", 60)
        << "Growing thread-specific memory buffer. Size: " << before << " -> " << after;
}

void nxThreadReport::NamedObjectsRefused(const std::string& name, int error)
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxNamedObject", 16)
        << "Named objects are not to be had, so that " << nxPrintableText::GetQuoted(name) << " excludes nobody. Error "
        << error << ": " << std::generic_category().message(error);
}

void nxThreadReport::NamedObjectsRemoved()
{
    NX_LOG_AT(NX_LOG_LEVEL_ERROR, "core/trunk/nxNamedObject", 20)
        << "The file of the named objects was removed: what is open is not shared with processes that come later.";
}
