// SPDX-License-Identifier: Apache-2.0
// Compiled by clang++ twice: as it stands it must compile, with NX_MISUSE it must not. Nobody runs it.

#include "core/thread/nxConditionalMutexGuard.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxReaderWriterLockGuard_Read.h"
#include "core/thread/nxReaderWriterLockGuard_Write.h"
#include "core/thread/nxSpinLockGuard.h"

namespace
{
struct Book
{
    void Add()
    {
        const nxMutexGuard guard(mutex);
        ++orders;
        const nxSpinLockGuard spinGuard(spinLock);
        ++ticks;
        const nxReaderWriterLockGuard_Write writer(lock);
        ++prices;
    }
    void AddPerhapsLocked(bool locked)
    {
        const nxConditionalMutexGuard guard(mutex, !locked);
        ++orders;
    }
    void Try()
    {
        if (!mutex.TryLock().IsOK())
            return;
        mutex.AssertHeld();
        ++orders;
        mutex.Unlock();
    }
    int Read()
    {
        const nxReaderWriterLockGuard_Read reader(lock);
        return prices;
    }

#if NX_MISUSE == 1
    void Unguarded() { ++orders; }
#elif NX_MISUSE == 2
    void NeverUnlocked() { mutex.Lock(); }
#elif NX_MISUSE == 3
    void Twice()
    {
        const nxMutexGuard guard(mutex);
        const nxMutexGuard again(mutex);
    }
#elif NX_MISUSE == 4
    void WrittenUnderAReadersLock()
    {
        const nxReaderWriterLockGuard_Read reader(lock);
        ++prices;
    }
#elif NX_MISUSE == 5
    void Unguarded() { ++ticks; }
#endif

    nxMutex mutex;
    nxSpinLock spinLock;
    nxReaderWriterLock lock;
    int orders NX_GUARDED_BY(mutex) = 0;
    int ticks NX_GUARDED_BY(spinLock) = 0;
    int prices NX_GUARDED_BY(lock) = 0;
};
}  // namespace

int main()
{
    Book book;
    book.Add();
    book.AddPerhapsLocked(false);
    book.Try();
    return book.Read();
}
