// SPDX-License-Identifier: Apache-2.0
// The world around the protocol of nxLogDeviceList.pml, which includes this file: devices, memory that runs out, the
// deferred-write thread, the owner of a device, and a second thread with its menu.

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

// What the world knows, not the program.
byte inside[DEVICES];         // threads in a call
bool isGone[DEVICES];         // an Unregister has returned, and nothing has registered it since
byte registrations[DEVICES];  // how often it was registered
byte callOf[THREADS];         // the device in whose call a thread is
byte nestedCalls = 1;
bool wasTakenOutByOther = false;
bool isDelivered = false;  // the owner's record to the owner's device
byte reported = 0, written = 0, unheard = 0;
byte memoryFails = OOM;
byte roundFails = ROUND_OOM;
byte atWork = 2;  // owner and second thread

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

// What a device does itself while it is called.
inline DoInCall(me, e)
{
    if
    :: deviceOf[e] == 1 && (NESTED & 1) != 0 && nestedCalls > 0 ->
        nestedCalls--; inner = e; Unregister(me, 1); e = inner
    :: deviceOf[e] == 1 && (NESTED & 2) != 0 && nestedCalls > 0 ->
        nestedCalls--; inner = e; Unregister(me, 1); Add(me, 1); e = inner
    :: true
    fi
}

// The step in which entries that were taken out first are marked afterwards.
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
