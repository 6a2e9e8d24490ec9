// SPDX-License-Identifier: Apache-2.0
// Devices that are registered, written to, unregistered and ended by several threads; see nxLogDeviceList.cpp and
// nxLogDeviceEntry.h.
//
// What is modelled: the list as a set of entries that is published in one step under the list's lock, the mark of a removed
// entry, the lock of a device, which all its referenced entries share, the references of threads to entries, copies of the list
// that fail for want of memory, and devices that unregister, and register, themselves while they are called. Left out: forks,
// the limits of time at the end of the process and inside another device, and the memory order of the mark, which the locks give.
//
// What holds: no call of a device begins, or goes on, after an Unregister of it has returned (DEAD). One thread at a time is
// inside a device (ONE). With memory, a device can be registered again (AGAIN). A record that was queued before an Unregister
// has reached the device when that returns, unless another thread has taken the device out (DELIVERED). Each record counts
// either as written, because a device was given it, or as unheard (COUNTED). Nothing waits for ever.
//
// This file has the protocol, as the list and its entries follow it. The threads that use it, the devices and what must hold
// at each call are in nxLogDeviceListWorld.pml.
//
// MENU adds up what the second thread may do: 1 Destroy, 2 UnregisterAll, 4 Flush, 8 Unregister, 16 Register; NESTED what the owner's
// device does when it is called: 1 unregisters itself, 2 unregisters and registers itself.
//
// The longest check, -DMENU=31 -DLIVES=2 -DOPERATIONS=2 -DOOM=1, has 35,214,916 states to a depth of 1,114, and takes 47 seconds of
// processor time and 2.1 GB. With -DNESTED=3 in place of -DOOM=1 the search does not end within 2.5 GB: no violation in
// 45 million states.
//
// RUN  holds    -DMENU=15 -DLIVES=1
// RUN  holds    -DMENU=31 -DLIVES=1 -DNESTED=3
// RUN  holds    -DMENU=4 -DLIVES=2 -DROUND_OOM=1
// RUN  violated -DMENU=1 -DLIVES=1 -DWITHOUT_EARLY_MARK
// RUN  violated -DMENU=4 -DLIVES=2 -DOOM=1 -DWITHOUT_DROPPING_MARKED
// LONG holds    -DMENU=15 -DLIVES=2
// LONG holds    -DMENU=15 -DLIVES=1 -DOOM=1
// LONG holds    -DMENU=31 -DLIVES=2 -DOPERATIONS=2 -DOOM=1
// LONG violated -DMENU=2 -DLIVES=1 -DWITHOUT_EARLY_MARK
// LONG violated -DMENU=8 -DLIVES=1 -DWITHOUT_WAIT_IN_REMOVE
// LONG violated -DMENU=1 -DLIVES=1 -DWITHOUT_ENDED
// LONG violated -DMENU=8 -DLIVES=1 -DOOM=1 -DWITHOUT_MARKED_IN_WAIT
// LONG violated -DMENU=4 -DLIVES=1 -DNESTED=2 -DWITHOUT_SHARED_LOCK
// LONG violated -DMENU=2 -DLIVES=1 -DWITHOUT_COUNTING_LIVE
// LONG violated -DMENU=4 -DLIVES=1 -DROUND_OOM=1 -DWITHOUT_HONEST_TICKET

#define DEVICES 2  // 0 is registered from the start and lives for ever; 1 belongs to the owner
#define ENTRIES 6
#define THREADS 3  // writer, owner, second thread
#define NOBODY 255
#define NONE 255
#define BIT(e) (1 << (e))
#define HAS(set, e) (((set) & BIT(e)) != 0)

byte list = 0;             // the published set of entries
byte leaving = 0;          // removed entries that are not in the list
byte references[THREADS];  // the entries that a thread refers to
byte deviceOf[ENTRIES];
byte lockOf[ENTRIES];
bool isRemoved[ENTRIES];
bool isEnded[ENTRIES];
byte holder[ENTRIES];     // of a lock
byte visits[THREADS];     // the locks that a thread holds as visits

// The queue: records that wait, and the tickets of threads that wait until they are written.
byte queued = 0;
byte wanted = 0, reached = 0;

// Whether the thread is in a call of the device itself.
#define IsInside(me, d) (callOf[me] == d)
#define IsReferenced(e) (HAS(list, e) || HAS(references[0] | references[1] | references[2], e))

// _CopyLive() and _Publish(): within the list's lock.
inline PublishLive()
{
    for (i : 0 .. ENTRIES - 1)
    {
        if
        :: HAS(list, i) && isRemoved[i] -> list = list & ~BIT(i); leaving = leaving | BIT(i)
        :: else
        fi
    }
    i = 0
}

// The entries among those that leave which nobody refers to any more are gone.
inline ForgetExpired()
{
    for (i : 0 .. ENTRIES - 1)
    {
        if :: HAS(leaving, i) && !IsReferenced(i) -> leaving = leaving & ~BIT(i) :: else fi
    }
    i = 0
}

inline Add(me, d)
{
    atomic
    {
        FindMemory();
        if
        :: hasMemory ->
            isGone[d] = false;
            registrations[d]++;
            ForgetExpired();
            isThere = false;
            sharedLock = NONE;
            for (i : 0 .. ENTRIES - 1)
            {
                if
#ifdef WITHOUT_DROPPING_MARKED
                :: HAS(list, i) && deviceOf[i] == d -> isThere = true
#else
                :: HAS(list, i) && deviceOf[i] == d && !isRemoved[i] -> isThere = true
#endif
                :: else
                fi;
                if
#ifndef WITHOUT_SHARED_LOCK
                :: (HAS(list, i) || HAS(leaving, i)) && isRemoved[i] && deviceOf[i] == d -> sharedLock = lockOf[i]
#endif
                :: else
                fi
            }
            i = 0;
            if
            :: !isThere ->
                // A free entry, and a free lock unless one is shared.
                e = 0;
                do
                :: HAS(leaving, e) || IsReferenced(e) -> e++; assert(e < ENTRIES)
                :: else -> break
                od;
                if
                :: sharedLock == NONE ->
                    sharedLock = 0;
                    do
                    :: sharedLock < ENTRIES ->
                        isThere = false;
                        for (i : 0 .. ENTRIES - 1)
                        {
                            if :: (HAS(leaving, i) || IsReferenced(i)) && lockOf[i] == sharedLock -> isThere = true :: else fi
                        }
                        i = 0;
                        if :: isThere -> sharedLock++ :: else -> break fi
                    od
                :: else
                fi;
                deviceOf[e] = d;
                lockOf[e] = sharedLock;
                isRemoved[e] = false;
                isEnded[e] = false;
#ifndef WITHOUT_DROPPING_MARKED
                PublishLive();
#endif
                list = list | BIT(e)
            :: else
            fi;
            // AGAIN
            isThere = false;
            for (i : 0 .. ENTRIES - 1)
            {
                if :: HAS(list, i) && deviceOf[i] == d && !isRemoved[i] -> isThere = true :: else fi
            }
            assert(isThere);
            i = 0; e = 0; isThere = false; sharedLock = NONE
        :: else
        fi;
        hasMemory = false
    }
}

// Visit: with `given` the lock was taken, or the thread is inside already.
inline Enter(me, e)
{
    atomic
    {
        if
        :: HAS(visits[me], lockOf[e]) -> given = false
        :: !HAS(visits[me], lockOf[e]) && holder[lockOf[e]] == NOBODY ->
            holder[lockOf[e]] = me;
            visits[me] = visits[me] | BIT(lockOf[e]);
            given = true
        fi
    }
}
inline Leave(me, e)
{
    atomic
    {
        holder[lockOf[e]] = NOBODY;
        visits[me] = visits[me] & ~BIT(lockOf[e])
    }
}

inline MarkAll(d)
{
    for (i : 0 .. ENTRIES - 1)
    {
        if :: HAS(list, i) && deviceOf[i] == d -> isRemoved[i] = true :: else fi
    }
    i = 0
}

inline WaitUntilLeft(me, d)
{
    atomic
    {
        any = NONE;
        ForgetExpired();
        for (i : 0 .. ENTRIES - 1)
        {
            if
#ifndef WITHOUT_MARKED_IN_WAIT
            :: HAS(list, i) && isRemoved[i] && deviceOf[i] == d -> any = i
#endif
            :: HAS(leaving, i) && deviceOf[i] == d -> any = i
            :: else
            fi
        }
        i = 0;
        if :: any != NONE -> references[me] = references[me] | BIT(any) :: else fi
    }
    if
    :: any != NONE ->
        Enter(me, any);
        atomic
        {
            ForgetExpired();
            for (i : 0 .. ENTRIES - 1)
            {
                if :: (HAS(list, i) || HAS(leaving, i)) && isRemoved[i] && deviceOf[i] == d -> isEnded[i] = true :: else fi
            }
            i = 0
        }
        if :: given -> Leave(me, any) :: else fi;
        atomic { references[me] = references[me] & ~BIT(any) | keep; any = NONE; given = false }
    :: else
    fi
}

// Until a round that began later has ended. A thread inside a device does not wait.
inline WriteOut(me)
{
    if
    :: callOf[me] == NONE ->
        atomic { wanted++; seen = wanted };
        (reached >= seen);
        seen = 0
    :: else
    fi
}

// Remove() and what the caller knows after it.
inline Unregister(me, d)
{
    atomic
    {
        seen = registrations[d];
        if :: me != 1 -> wasTakenOutByOther = true :: else fi;
#ifndef WITHOUT_EARLY_MARK
        isThere = false;
        for (i : 0 .. ENTRIES - 1)
        {
            if :: HAS(list, i) && deviceOf[i] == d -> isThere = true :: else fi
        }
        i = 0;
        if
        :: isThere ->
            MarkAll(d);
            FindMemory();
            if :: hasMemory -> PublishLive() :: else fi
        :: else
        fi;
        hasMemory = false
#else
        // Taken out first, marked afterwards, in a step of its own.
        late = 0;
        for (i : 0 .. ENTRIES - 1)
        {
            if
            :: HAS(list, i) && deviceOf[i] == d -> late = late | BIT(i); list = list & ~BIT(i); leaving = leaving | BIT(i)
            :: else
            fi
        }
        i = 0;
        isThere = late != 0
#endif
    }
#ifdef WITHOUT_EARLY_MARK
    MarkLate();
#endif
#ifdef WITHOUT_WAIT_IN_REMOVE
    if :: isThere -> WaitUntilLeft(me, d) :: else fi;
#else
    WaitUntilLeft(me, d);
#endif
    atomic
    {
        isThere = false;
        if
        :: registrations[d] == seen && !IsInside(me, d) -> assert(inside[d] == 0); isGone[d] = true
        :: else
        fi;
        seen = 0
    }
}

inline TakeAll(me)
{
    atomic
    {
        wasTakenOutByOther = true;
        taken = list;
        references[me] = references[me] | taken;
        keep = taken;
#ifndef WITHOUT_EARLY_MARK
        for (i : 0 .. ENTRIES - 1)
        {
            if :: HAS(list, i) -> isRemoved[i] = true :: else fi
        }
        i = 0;
        FindMemory();
        if :: hasMemory -> PublishLive() :: else fi;
        hasMemory = false
#else
        leaving = leaving | list;
        list = 0
#endif
    }
}

inline Call(me, e)
{
    Enter(me, e);
    isTaken = false;
    if
    :: given ->
        if
        :: isRemoved[e] -> skip
        :: else ->
            BeginCall(deviceOf[e]);
            isTaken = true;
            callOf[me] = deviceOf[e];
            if :: me == 0 && inRound != 0 && deviceOf[e] == 1 -> isDelivered = true :: else fi;
            DoInCall(me, e);
            atomic { given = true; inner = 0 };
            callOf[me] = NONE;
            EndCall(deviceOf[e])
        fi;
        Leave(me, e)
    :: else
    fi;
    given = false
}

// End(): the entry's last Flush() and Destroy().
inline End(me, e)
{
    Enter(me, e);
    if
    :: given ->
        if
#ifdef WITHOUT_ENDED
        :: true ->
#else
        :: !isEnded[e] ->
            isEnded[e] = true;
#endif
            callOf[me] = deviceOf[e];
            BeginCall(deviceOf[e]);
            EndCall(deviceOf[e]);
            BeginCall(deviceOf[e]);
            EndCall(deviceOf[e]);
            callOf[me] = NONE
#ifndef WITHOUT_ENDED
        :: else
#endif
        fi;
        Leave(me, e)
    :: else
    fi;
    given = false
}

#include "nxLogDeviceListWorld.pml"
