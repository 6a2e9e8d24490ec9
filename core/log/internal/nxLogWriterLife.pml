// SPDX-License-Identifier: Apache-2.0
// The life of the deferred-write thread: threads report while others start, stop and adjust it, fork, and end the process; see
// nxLogWriterThread.cpp, nxLogWriter.cpp, nxLogExit.cpp, nxLogFork.cpp and nxLogManager::Destroy().
//
// What is modelled: the state of the thread and its changes, the locks of starting, of the settings, of the round, of a device, of the
// list of devices and of the list of rings; the join before the next thread is made; rounds of the thread and of others, with
// a device that reports itself; tickets of waiting threads; Destroy() followed by a registration; both steps of the end of the
// process; a fork, after which the model follows either the parent or the child, because they share nothing. The child reports,
// stops and ends. Rings are one count of records. Left out: the sleep (nxLogIdleSleep.pml), several devices
// (nxLogDeviceList.pml), limits of time except that of Stop(), records that are kept for the first device, forks from inside a
// device, and memory orders, which the locks and the changes of state give.
//
// What holds: one deferred-write thread at most in a process (ONE). What was reported before Destroy(), a wait or the end of the
// process was given to the devices when these are over (WRITTEN), and without them it is written in the end, too, because
// some thread does it (SERVED). No round goes on when the process is gone (GONE). A fork copies no device that a thread is
// inside of (WHOLE). The child has an empty queue, a thread of its own, and loses nothing. Nothing waits for ever.
//
// This file has the protocol, from the start of the thread to the end of the process. The threads, the loop of the deferred-write
// thread among them, and the device are in nxLogWriterLifeWorld.pml.
//
// MENU adds up what main and a second thread may do once each: 1 Destroy() and register, 2 SetWriteThread(), 4 fork, 8 wait until
// all is written, 16 start the thread, as a record does that is no warning. OTHER is the menu of the second thread. GIVE_UPS is
// how often Stop() no longer waits for the thread. REFUSALS is how often the system refuses one; what is reported is then a
// warning, which the reporting thread writes itself while the other does not run.
//
// The longest check, -DMENU=4 -DOTHER=1, has 6,916,004 states to a depth of 387. All of both menus but starting the thread,
// -DMENU=15 -DOTHER=15, is beyond the memory of --long: it held by hand with pan -w27, 77,450,166 states to a depth of 428 in
// 4.3 GB.
//
// RUN  holds    -DMENU=0 -DOTHER=2
// RUN  violated -DMENU=0 -DOTHER=2 -DWITHOUT_SETTINGS_LOCK
// RUN  violated -DMENU=0 -DOTHER=0 -DWITHOUT_BLOCKING_ROUNDS
// RUN  holds    -DMENU=16 -DOTHER=0 -DREFUSALS=2
// RUN  violated -DMENU=16 -DOTHER=0 -DREFUSALS=1 -DRUNNING_BEFORE_THREAD
// RUN  violated -DMENU=16 -DOTHER=0 -DREFUSALS=1 -DWRITTEN_BY_THE_REFUSED_ALONE
// LONG holds    -DMENU=1 -DOTHER=2
// LONG holds    -DMENU=4 -DOTHER=0
// LONG holds    -DMENU=4 -DOTHER=1
// LONG holds    -DMENU=1 -DOTHER=0 -DGIVE_UPS=1
// LONG holds    -DMENU=16 -DOTHER=16 -DREFUSALS=2
// LONG violated -DMENU=1 -DOTHER=0 -DGIVE_UPS=1 -DWITHOUT_JOIN
// LONG violated -DMENU=1 -DOTHER=0 -DGIVE_UPS=1 -DWITHOUT_EXCHANGE_IN_START
// LONG violated -DMENU=4 -DOTHER=0 -DRINGS_BEFORE_DEVICES
// LONG violated -DMENU=4 -DOTHER=1 -DWITHOUT_SECOND_LOOK
// LONG violated -DMENU=4 -DOTHER=0 -DWITHOUT_STATE_OF_CHILD
// LONG violated -DMENU=4 -DOTHER=0 -DWITHOUT_ROUND_LOCK_OF_CHILD
// LONG violated -DMENU=4 -DOTHER=2 -DWITHOUT_START_LOCK_OF_CHILD

#define PARENT 0
#define CHILD 1
// Threads, as holders of locks.
#define NOBODY 0
#define WRITER 1
#define REPORTER 2
#define MAIN 3
#define SECOND 4
#define OF_PARENT 5  // a thread that does not exist in the child
// States of the thread.
#define STOPPED 0
#define RUNNING 1
#define STOPPING 2

byte state = STOPPED;
byte startLock;
byte settingsLock;
byte roundLock;
byte deviceLock;
byte devicesLock;   // of the list of devices
byte ringsLock;     // of the list of rings
bool hasThread;     // what the next start has to join
byte threads;       // deferred-write threads from their start to their return
bool isRegistered;  // the device
byte listVersion;   // of the list of devices
byte reported;      // records in the queue, or taken from it
byte given;         // records that a round has taken and passed on
byte wanted;
byte reached;
bool isInRound;

#define Lock(lock) atomic { lock == NOBODY -> lock = me }
#define Unlock(lock) lock = NOBODY
#define IsEmpty (given == reported)

// nxLogWriterThread::Start(). In a device of a thread that writes as well.
inline Start()
{
    running = false;
    atomic
    {
        if
        :: startLock == NOBODY -> startLock = me; isMine = true
        :: else -> isMine = false
        fi
    };
    if
    :: isMine ->
        TakeOver();
        if
        :: !running -> StartNow()
        :: else
        fi;
        Unlock(startLock)
    :: else
    fi
}

// A thread that Stop() no longer waits for runs on.
inline TakeOver()
{
#ifdef WITHOUT_EXCHANGE_IN_START
    seen = state;
    if
    :: seen == STOPPING -> state = RUNNING
    :: else
    fi;
    running = seen != STOPPED
#else
    atomic
    {
        running = state != STOPPED;
        if
        :: state == STOPPING -> state = RUNNING
        :: else
        fi
    }
#endif
}

inline StartNow()
{
#ifndef WITHOUT_SETTINGS_LOCK
    Lock(settingsLock);
#endif
#ifndef WITHOUT_JOIN
    (!hasThread || threads == 0);
#endif
    hasThread = true;
#ifdef RUNNING_BEFORE_THREAD
    state = RUNNING;
#endif
    if
    :: atomic { refusals > 0 -> refusals--; hasThread = false }
    :: atomic
       {
           threads++;
           assert(threads == 1);  // ONE
           run Writer(process);
           running = true
       }
    fi;
    state = (running -> RUNNING : STOPPED);
    couldNotStart = !running;
#ifndef WITHOUT_SETTINGS_LOCK
    Unlock(settingsLock)
#endif
}

inline EnsureRunning()
{
    if
    :: state == RUNNING -> running = true
    :: else -> Start()
    fi
}

inline Report()
{
    EnsureRunning();
    Lock(ringsLock);  // the first record of a thread gets it a ring
    Unlock(ringsLock);
    reported++
}

// nxLogWriterThread::Urge()
inline Warn()
{
    Report();
    EnsureRunning();
#ifdef WRITTEN_BY_THE_REFUSED_ALONE
    if
    :: !running && couldNotStart -> Lock(roundLock); Round()
#else
    if
    :: !running -> Lock(roundLock); Round()
#endif
    :: else
    fi
}

inline GetDevices()
{
    Lock(devicesLock);
    hasDevice = isRegistered;
    Unlock(devicesLock)
}

// Within the lock of the round, which it gives back.
inline Round()
{
    atomic { awaited = wanted; isInRound = true };
    count = reported - given;
    if
    :: count > 0 ->
        GetDevices();
        if
        :: hasDevice -> CallDevice()
        :: else
        fi;
        Lock(ringsLock);
        given = given + count;
        Unlock(ringsLock)
    :: else
    fi;
    atomic { isInRound = false; count = 0; hasDevice = false };
    atomic { reached = awaited; awaited = 0; roundLock = NOBODY }
}

inline RunRoundHere()
{
    if
    :: atomic { roundLock == NOBODY -> roundLock = me }; Round()
    :: roundLock != NOBODY
    fi
}

// nxLogWriter::_WaitUntilReached()
inline WaitUntilReached(mayStart)
{
    atomic { wanted++; ticket = wanted };
    do
    :: reached >= ticket -> break
    :: reached < ticket && (mayStart -> state != RUNNING && (startLock == NOBODY || roundLock == NOBODY) :
                                           state == STOPPED && roundLock == NOBODY) ->
        if
        :: mayStart -> EnsureRunning()
        :: else -> running = false
        fi;
        if
        :: !running -> RunRoundHere()
        :: else
        fi
    od;
    ticket = 0
}

inline WaitUntilWritten()
{
    target = reported;
    WaitUntilReached(true);
    assert(given >= target);  // WRITTEN
    target = 0
}

inline WriteOutAtEnd()
{
    target = reported;
    // A look at the state, and one at the rings.
    if
    :: state == STOPPED ->
        if
        :: atomic { ringsLock == NOBODY && IsEmpty }
        :: atomic { ringsLock == NOBODY && !IsEmpty } -> WaitUntilReached(false)
        fi
    :: else -> WaitUntilReached(false)
    fi;
    assert(given >= target);  // WRITTEN
    target = 0
}

inline Stop()
{
    Lock(startLock);
    atomic
    {
        if
        :: state == RUNNING -> state = STOPPING
        :: else
        fi
    };
    if
    :: state == STOPPED ->
        Lock(settingsLock);
        (!hasThread || threads == 0);
        Unlock(settingsLock)
    :: atomic { state != STOPPED && giveUps > 0 -> giveUps-- }
    fi;
    Unlock(startLock)
}

inline TakeDevicesForFork()
{
    do
    :: atomic { devicesLock == NOBODY -> hasDevice = isRegistered; version = listVersion };
        if
        :: hasDevice -> Lock(deviceLock)
        :: else
        fi;
        Lock(devicesLock);
#ifdef WITHOUT_SECOND_LOOK
        break
#else
        if
        :: version == listVersion -> break
        :: else ->
            Unlock(devicesLock);
            if
            :: hasDevice -> Unlock(deviceLock)
            :: else
            fi
        fi
#endif
    od
}

// What the only thread of the child finds, and makes new.
inline BecomeChild()
{
    atomic { reported = 0; given = 0; wanted = 0; reached = 0; isInRound = false };
    atomic { hasThread = false; threads = 0; atWork = 0 };
    atomic { settingsLock = NOBODY; deviceLock = NOBODY; devicesLock = NOBODY; ringsLock = NOBODY };
#ifndef WITHOUT_STATE_OF_CHILD
    state = STOPPED;
#endif
#ifdef WITHOUT_START_LOCK_OF_CHILD
    startLock = (startLock == NOBODY -> NOBODY : OF_PARENT);
#else
    startLock = NOBODY;
#endif
#ifdef WITHOUT_ROUND_LOCK_OF_CHILD
    roundLock = (roundLock == NOBODY -> NOBODY : OF_PARENT);
#else
    roundLock = NOBODY;
#endif
    run Child();
    process = CHILD  // the last step: the threads of the parent end here
}

inline Fork()
{
#ifdef RINGS_BEFORE_DEVICES
    Lock(ringsLock);
    TakeDevicesForFork();
#else
    TakeDevicesForFork();
    Lock(ringsLock);
#endif
    atomic
    {
        assert(!isRegistered || deviceLock == NOBODY || deviceLock == me);  // WHOLE
        if
        :: true
        :: BecomeChild()
        fi
    };
    Unlock(ringsLock);
    Unlock(devicesLock);
    if
    :: hasDevice -> Unlock(deviceLock)
    :: else
    fi;
    atomic { hasDevice = false; version = 0 }
}

// The step at exit(), and that of the library's end.
inline Exit()
{
    WriteOutAtEnd();
    WriteOutAtEnd();
#ifndef WITHOUT_BLOCKING_ROUNDS
    Lock(roundLock);
#endif
    atomic
    {
        assert(!isInRound);  // GONE
        isGone = true
    }
}

#include "nxLogWriterLifeWorld.pml"
