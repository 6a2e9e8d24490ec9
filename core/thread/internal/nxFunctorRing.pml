// SPDX-License-Identifier: Apache-2.0
// Threads post to a functor queue, run what is in it, stop it and wait for its end; see nxFunctorRing.h.
//
// What is modelled: the counts under the lock, functors that are made in a reserved cell, the words on which threads sleep, calls
// that are made after the unlock, the batch of the only thread with its counter, and what takes a batch back. What happens under
// the lock is one step. The system refuses a sleep on a word that has changed. Left out: the time after which a thread that waits
// for room looks by itself, so that the calls alone have to suffice; the order of functors; threads that are unwound.
//
// What holds: nothing waits for ever. Each accepted functor runs or is abandoned. None begins after a return from a Stop that
// abandons. No more wait than the capacity. A thread that waits for the idle queue finds it idle.
//
// Faults on purpose: LATE_READ looks at the word after the unlock, WITHOUT_COMING lets a thread that was called count as such for
// ever, WITHOUT_CLOSE leaves a batch to its thread.
//
// With EARLY the queue is stopped at any moment, otherwise once it is idle. With TIMED one producer and one consumer give up
// their sleeps at any moment.
//
// RUN  holds    -DPOSTS=1 -DCAPACITY=1 -DCONSUMERS=2 -DBATCH=1
// RUN  holds    -DPOSTS=2 -DCAPACITY=4 -DCONSUMERS=1 -DBATCH=2 -DEARLY
// RUN  violated -DPOSTS=1 -DCAPACITY=1 -DCONSUMERS=2 -DBATCH=1 -DLATE_READ
// RUN  violated -DPOSTS=2 -DCAPACITY=2 -DCONSUMERS=2 -DBATCH=1 -DWITHOUT_COMING
// RUN  violated -DPOSTS=2 -DCAPACITY=4 -DCONSUMERS=1 -DBATCH=2 -DEARLY -DWITHOUT_CLOSE
// LONG holds    -DPOSTS=1 -DCAPACITY=1 -DCONSUMERS=2 -DBATCH=1 -DTIMED -DMADE
// LONG holds    -DPOSTS=2 -DCAPACITY=2 -DCONSUMERS=2 -DBATCH=1
// LONG holds    -DPOSTS=1 -DCAPACITY=1 -DCONSUMERS=2 -DBATCH=1 -DEARLY
// LONG holds    -DPOSTS=2 -DCAPACITY=2 -DCONSUMERS=1 -DBATCH=1 -DTIMED -DMADE -DEARLY
// LONG holds    -DPOSTS=3 -DCAPACITY=4 -DCONSUMERS=1 -DBATCH=2 -DEARLY
// LONG holds    -DPOSTS=3 -DCAPACITY=4 -DCONSUMERS=1 -DBATCH=2 -DTIMED

#define PRODUCERS 2
#define OWNER (PRODUCERS + CONSUMERS)
#define PROCESSES (OWNER + 1)
#if CONSUMERS == 1
#define SPARE BATCH
#else
#define SPARE CONSUMERS
#endif
// The words. 0 stands for none.
#define WORK 1
#define ROOM 2
#define CHANGE 3

byte queued, reserved, running, held;  // held: cells of functors that threads have taken
byte posted, ran, abandoned;
byte sleepers, called;
byte threads = CONSUMERS, atWork = PRODUCERS;
bool isStopped, isRoomAwaited, isIdleAwaited, isEndAwaited;
bool hasAbandoned;  // a Stop that abandons has returned
// The batch of the only consumer.
byte taken, begun;
bool isAhead, isClosed;
// The word that a process has read and that has not changed since, and whether it sleeps on it.
byte reads[PROCESSES];
bool isAsleep[PROCESSES];

#define Ahead (isAhead -> taken - begun : 0)
#define AheadAtMost (isAhead -> taken - 1 : 0)
#define HasFree (queued + reserved + held < CAPACITY + SPARE)
#define HasRoom (HasFree && queued + reserved + Ahead < CAPACITY)
#define HasMuchRoom (HasFree && queued + reserved + AheadAtMost <= CAPACITY / 2)
#define IsIdle (queued == 0 && running == 0)

// Under the lock.
inline Change(word)
{
    for (i : 0 .. PROCESSES - 1)
    {
        if :: reads[i] == word && !isAsleep[i] -> reads[i] = 0 :: else fi
    }
    i = 0
}

inline GetCalls()
{
    if :: sleepers > called && queued > called -> called++; callsWork = true; Change(WORK) :: else fi;
    if :: isRoomAwaited && HasMuchRoom -> isRoomAwaited = false; callsRoom = true; Change(ROOM) :: else fi;
    if :: isIdleAwaited && IsIdle -> isIdleAwaited = false; callsChange = true; Change(CHANGE) :: else fi;
    if :: isEndAwaited && threads == 0 -> isEndAwaited = false; callsChange = true; Change(CHANGE) :: else fi
}

// After the unlock.
inline WakeAll(word)
{
    for (i : 0 .. PROCESSES - 1)
    {
        if :: isAsleep[i] && reads[i] == word -> isAsleep[i] = false; reads[i] = 0 :: else fi
    }
    i = 0
}

inline WakeOne()
{
    if
    :: isAsleep[PRODUCERS] && reads[PRODUCERS] == WORK -> isAsleep[PRODUCERS] = false; reads[PRODUCERS] = 0
#if CONSUMERS == 2
    :: isAsleep[PRODUCERS + 1] && reads[PRODUCERS + 1] == WORK -> isAsleep[PRODUCERS + 1] = false; reads[PRODUCERS + 1] = 0
    :: !(isAsleep[PRODUCERS] && reads[PRODUCERS] == WORK) && !(isAsleep[PRODUCERS + 1] && reads[PRODUCERS + 1] == WORK)
#else
    :: else
#endif
    fi
}

inline MakeCalls()
{
    if :: callsWork -> atomic { WakeOne(); callsWork = false } :: else fi;
    if :: callsRoom -> atomic { WakeAll(ROOM); callsRoom = false } :: else fi;
    if :: callsChange -> atomic { WakeAll(CHANGE); callsChange = false } :: else fi
}

// The system puts the process to sleep if the word is what it has read.
inline Sleep(word)
{
#ifdef LATE_READ
    atomic { reads[me] = word };
#endif
    atomic { if :: reads[me] == word -> isAsleep[me] = true :: else fi };
    if
    :: !isAsleep[me]
#ifdef TIMED
    :: (me == 0 || me == PRODUCERS) && isAsleep[me] -> atomic { isAsleep[me] = false; reads[me] = 0; isOver = true }
#endif
    fi
}

inline Read(word)
{
#ifndef LATE_READ
    reads[me] = word
#else
    skip
#endif
}

inline Recall()
{
    if
    :: isAhead && begun < taken ->
        isClosed = true;
        queued = queued + taken - begun;
        held = held - (taken - begun);
        taken = begun;
        isAhead = false
    :: else -> isAhead = false
    fi
}

inline Enqueue()
{
    if :: true :: Recall() fi;  // of its priority or of a higher one
    queued++;
    posted++;
    assert(queued + Ahead <= CAPACITY)
}

proctype Producer(byte me)
{
    byte left = POSTS, i;
    bool callsWork, callsRoom, callsChange, isOver, isReserved;
    do
    :: left == 0 -> break
    :: left > 0 ->
        atomic
        {
            if
            :: isStopped || (isOver && !HasRoom) -> left--; isOver = false
            :: !isStopped && HasRoom ->
                isOver = false;
                left--;
#ifdef MADE
                if :: Enqueue() :: reserved++; isReserved = true fi
#else
                Enqueue()
#endif
            :: !isStopped && !isOver && !HasRoom -> isRoomAwaited = true; Read(ROOM)
            fi;
            GetCalls()
        };
        MakeCalls();
        if
        :: isReserved ->
            atomic
            {
                isReserved = false;
                reserved--;
                if
                :: !isStopped -> Enqueue()
                :: true  // no memory, or stopped
                fi;
                GetCalls()
            };
            MakeCalls()
#ifdef LATE_READ
        :: !isReserved && isRoomAwaited && left > 0 -> Sleep(ROOM)
        :: !isReserved && !(isRoomAwaited && left > 0)
#else
        :: !isReserved && reads[me] == ROOM -> Sleep(ROOM)
        :: !isReserved && reads[me] != ROOM
#endif
        fi
    od;
    atWork--
}

proctype Consumer(byte me)
{
    byte mine, i;
    bool callsWork, callsRoom, callsChange, isOver, isSleeper, hasEnded;
    do
    :: hasEnded -> break
    :: !hasEnded ->
        atomic
        {
            if
            :: isSleeper ->
                isSleeper = false;
                sleepers--;
#ifndef WITHOUT_COMING
                if :: called > 0 -> called-- :: else fi
#endif
            :: else
            fi;
            if
            :: mine > 0 ->
                if :: BATCH > 1 -> mine = taken :: else fi;
                ran = ran + mine;
                held = held - mine;
                running--;
                mine = 0;
                isAhead = false
            :: else
            fi;
            if
            :: queued > 0 ->
                mine = (queued < BATCH -> queued : BATCH);
                queued = queued - mine;
                held = held + mine;
                running++;
                taken = (BATCH > 1 -> mine : 0);
                begun = (BATCH > 1 -> 1 : 0);
                isClosed = false;
                isAhead = (mine > 1);
                assert(!hasAbandoned)
            :: queued == 0 && isStopped -> hasEnded = true; threads--
            :: else -> sleepers++; isSleeper = true; Read(WORK)
            fi;
            GetCalls()
        };
        MakeCalls();
        if
        :: isSleeper -> Sleep(WORK); isOver = false
        :: !isSleeper && mine > 1 ->
            do
            :: atomic { !isClosed && begun < mine -> begun++; assert(!hasAbandoned) }
            :: atomic { isClosed || begun == mine -> break }
            od
        :: !isSleeper && mine <= 1
        fi
    od
}

inline Stop(abandons)
{
    atomic
    {
        isStopped = true;
        if
        :: abandons ->
#ifndef WITHOUT_CLOSE
            Recall();
#endif
            abandoned = abandoned + queued;
            queued = 0
        :: else
        fi;
        Change(WORK);
        Change(ROOM);
        Change(CHANGE)
    };
    atomic { WakeAll(WORK); WakeAll(ROOM); WakeAll(CHANGE) };
    if :: abandons -> hasAbandoned = true :: else fi
}

proctype Owner()
{
    byte me = OWNER, i;
    bool callsWork, callsRoom, callsChange, isOver, holds;
#ifndef EARLY
    (atWork == 0);
    do
    :: holds -> break
    :: !holds ->
        atomic { if :: IsIdle -> holds = true :: else -> isIdleAwaited = true; Read(CHANGE) fi };
        if :: !holds -> Sleep(CHANGE) :: else fi
    od;
    assert(posted == ran);
    holds = false;
    Stop(false);
#else
    if :: Stop(false) :: Stop(true) :: Stop(false); Stop(true) fi;
#endif
    do
    :: holds -> break
    :: !holds ->
        atomic { if :: threads == 0 -> holds = true :: else -> isEndAwaited = true; Read(CHANGE) fi };
        if :: !holds -> Sleep(CHANGE) :: else fi
    od;
    (atWork == 0);
    assert(queued == 0 && reserved == 0 && running == 0 && held == 0 && posted == ran + abandoned)
}

init
{
    atomic
    {
        run Producer(0);
        run Producer(1);
        run Consumer(PRODUCERS);
#if CONSUMERS == 2
        run Consumer(PRODUCERS + 1);
#endif
        run Owner()
    }
}
