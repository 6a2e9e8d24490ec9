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
// LONG holds    -DMENU=15 -DLIVES=2
// LONG holds    -DMENU=15 -DLIVES=1 -DOOM=1
// LONG holds    -DMENU=31 -DLIVES=2 -DOPERATIONS=2 -DOOM=1
// LONG violated -DMENU=2 -DLIVES=1 -DWITHOUT_EARLY_MARK
// LONG violated -DMENU=8 -DLIVES=1 -DWITHOUT_WAIT_IN_REMOVE
// LONG violated -DMENU=1 -DLIVES=1 -DWITHOUT_ENDED
// LONG violated -DMENU=4 -DLIVES=2 -DOOM=1 -DWITHOUT_DROPPING_MARKED
// LONG violated -DMENU=8 -DLIVES=1 -DOOM=1 -DWITHOUT_MARKED_IN_WAIT
// LONG violated -DMENU=4 -DLIVES=1 -DNESTED=2 -DWITHOUT_SHARED_LOCK
// LONG violated -DMENU=2 -DLIVES=1 -DWITHOUT_COUNTING_LIVE
// LONG violated -DMENU=4 -DLIVES=1 -DROUND_OOM=1 -DWITHOUT_HONEST_TICKET

#ifndef OPERATIONS
#define OPERATIONS 1
#endif
#ifndef OOM
#define OOM 0
#endif
#ifndef NESTED
#define NESTED 0
#endif
#ifndef ROUND_OOM
#define ROUND_OOM 0
#endif
#define ROUNDS 1  // that nobody asks for
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
byte memoryFails = OOM;

// What the world knows, not the program.
byte inside[DEVICES];         // threads in a call
bool isGone[DEVICES];         // an Unregister has returned, and nothing has registered it since
byte registrations[DEVICES];  // how often it was registered
byte callOf[THREADS];         // the device in whose call a thread is
byte nestedCalls = 1;
bool wasTakenOutByOther = false;
bool isDelivered = false;  // the owner's record to the owner's device
byte reported = 0, written = 0, unheard = 0;

// The queue: records that wait, and the tickets of threads that wait until they are written.
byte queued = 0;
byte wanted = 0, reached = 0;
byte roundFails = ROUND_OOM;
byte atWork = 2;  // owner and second thread

// Whether the thread is in a call of the device itself.
#define IsInside(me, d) (callOf[me] == d)
#define IsReferenced(e) (HAS(list, e) || HAS(references[0] | references[1] | references[2], e))

inline BeginCall(d)
{
    atomic
    {
        assert(!isGone[d]);       // DEAD
        assert(inside[d] == 0);   // ONE
        inside[d]++
    }
}
inline EndCall(d)
{
    atomic
    {
        inside[d]--
    }
}

// Whether the copy of the list finds memory.
inline FindMemory()
{
    hasMemory = true;
    if
    :: memoryFails > 0 -> memoryFails--; hasMemory = false
    :: true
    fi
}

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

inline MarkLate()
{
    atomic
    {
        for (i : 0 .. ENTRIES - 1)
        {
            if :: HAS(late, i) -> isRemoved[i] = true :: else fi
        }
        i = 0; late = 0
    }
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
            if
            :: deviceOf[e] == 1 && (NESTED & 1) != 0 && nestedCalls > 0 ->
                nestedCalls--; inner = e; Unregister(me, 1); e = inner
            :: deviceOf[e] == 1 && (NESTED & 2) != 0 && nestedCalls > 0 ->
                nestedCalls--; inner = e; Unregister(me, 1); Add(me, 1); e = inner
            :: true
            fi;
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

#define LOCALS                                                                                                \
    byte i = 0, e = 0, any = NONE, sharedLock = NONE, taken = 0, keep = 0, seen = 0, inner = 0, late = 0, at = 0; \
    bool hasMemory = false, isThere = false, given = false, isTaken = false, isMeant = false

// Calls every entry of the list as it is now.
inline CallAll(me)
{
    atomic { taken = list; keep = taken; references[me] = taken; wasHeard = false };
    at = 0;
    do
    :: at < ENTRIES ->
        if
        :: HAS(taken, at) -> Call(me, at); wasHeard = wasHeard || isTaken
        :: else
        fi;
        at++
    :: else -> break
    od;
    at = 0
}

inline DropReferences(me)
{
    atomic { references[me] = 0; taken = 0; keep = 0; isTaken = false; wasHeard = false }
}

// A round fixes its records first, its devices afterwards.
proctype Writer()
{
    LOCALS;
    byte inRound = 0, rounds = ROUNDS, ticket = 0;
    bool wasHeard = false;
    do
    :: atomic { queued > 0 || wanted != reached || rounds > 0 -> if :: queued == 0 && wanted == reached -> rounds-- :: else fi };
        ticket = wanted;
        if
        :: roundFails > 0 ->
            // No memory for the round: the records wait.
            roundFails--;
#ifdef WITHOUT_HONEST_TICKET
            reached = ticket
#endif
        :: true ->
            atomic { inRound = queued; queued = 0 };
            CallAll(0);
            atomic
            {
#ifdef WITHOUT_COUNTING_LIVE
                if :: taken != 0 -> written = written + inRound :: else -> unheard = unheard + inRound fi;
#else
                if :: wasHeard -> written = written + inRound :: else -> unheard = unheard + inRound fi;
#endif
                if :: inRound != 0 -> assert((written != 0) == wasHeard || written + unheard > 1) :: else fi;
                assert(written + unheard + queued == reported);
                inRound = 0
            };
            DropReferences(0);
            reached = ticket
        fi
    :: atWork == 0 && queued == 0 && wanted == reached -> break
    od
}

proctype Owner()
{
    LOCALS;
    byte inRound = 0, lives = 0;
    do
    :: lives < LIVES ->
        lives++;
        atomic { isDelivered = false; wasTakenOutByOther = false };
        Add(1, 1);
        atomic { isThere = memoryFails == OOM; queued++; reported++ };
        isMeant = isThere;
        atomic { isThere = false };
        WriteOut(1);
        // DELIVERED
        assert(!isMeant || isDelivered || wasTakenOutByOther);
        Unregister(1, 1)
    :: else -> break
    od;
    atWork--
}

// Destroy() as it was: each entry is flushed, marked and ended one after the other.
inline CallTaken(me)
{
    at = 0;
    do
    :: at < ENTRIES ->
        if
        :: HAS(taken, at) ->
            Call(me, at);
            atomic { isRemoved[at] = true };
            End(me, at)
        :: else
        fi;
        at++
    :: else -> break
    od;
    at = 0
}

proctype Second()
{
    LOCALS;
    byte inRound = 0, operations = 0;
    bool wasHeard = false;
    do
    :: operations < OPERATIONS ->
        operations++;
        if
        :: (MENU & 1) != 0 ->
            TakeAll(2);
#ifdef WITHOUT_EARLY_MARK
            CallTaken(2);
#else
            at = 0;
            do
            :: at < ENTRIES -> if :: HAS(taken, at) -> End(2, at) :: else fi; at++
            :: else -> break
            od;
            at = 0;
#endif
            DropReferences(2)
        :: (MENU & 2) != 0 ->
            TakeAll(2);
#ifdef WITHOUT_EARLY_MARK
            atomic { late = taken };
            MarkLate();
#endif
            at = 0;
            do
            :: at < ENTRIES -> if :: HAS(taken, at) -> WaitUntilLeft(2, deviceOf[at]) :: else fi; at++
            :: else -> break
            od;
            at = 0;
            DropReferences(2)
        :: (MENU & 4) != 0 -> CallAll(2); DropReferences(2)
        :: (MENU & 8) != 0 -> Unregister(2, 1)
        :: (MENU & 16) != 0 -> Add(2, 1)
        fi
    :: else -> break
    od;
    atWork--
}

init
{
    byte i = 0;
    atomic
    {
        for (i : 0 .. ENTRIES - 1) { holder[i] = NOBODY; lockOf[i] = i }
        for (i : 0 .. THREADS - 1) { callOf[i] = NONE }
        deviceOf[0] = 0;
        list = BIT(0);
        run Writer();
        run Owner();
        run Second()
    }
}
