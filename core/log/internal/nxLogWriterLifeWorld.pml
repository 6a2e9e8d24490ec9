// SPDX-License-Identifier: Apache-2.0
// The world around the protocol of nxLogWriterLife.pml, which includes this file: the device, the deferred-write
// thread, and the threads of the parent and of the child with their menus.

#ifndef RECORDS
#define RECORDS 1
#endif
#ifndef GIVE_UPS
#define GIVE_UPS 0
#endif
#ifndef REFUSALS
#define REFUSALS 0
#endif

// What the world knows, not the program.
byte process = PARENT;  // the one that the model follows
bool isGone;
byte atWork = 2;        // reporter and second thread
byte nested = (REFUSALS > 0 -> 0 : 1);  // records that the device reports itself
byte giveUps = GIVE_UPS;
byte refusals = REFUSALS;
bool couldNotStart;     // at the last attempt

inline CallDevice()
{
    Lock(deviceLock);
    if
    :: nested > 0 -> nested--; Report()
    :: true
    fi;
    Unlock(deviceLock)
}

// nxLogManager::Destroy(), and the device is registered again.
inline DestroyAndRegister()
{
    WriteOutAtEnd();
    Stop();
    atomic { devicesLock == NOBODY -> isRegistered = false; listVersion++ };
    Lock(deviceLock);  // the last call of the device
    Unlock(deviceLock);
    Register()
}

inline Register()
{
    GetDevices();
    if
    :: !hasDevice ->
        if
        :: !IsEmpty || isInRound -> WaitUntilWritten()
        :: else
        fi;
        atomic { devicesLock == NOBODY -> isRegistered = true; listVersion++ };
        EnsureRunning()
    :: else -> hasDevice = false
    fi
}

inline SetThread()
{
#ifdef WITHOUT_SETTINGS_LOCK
    Lock(startLock);
    Unlock(startLock)
#else
    Lock(settingsLock);
    Unlock(settingsLock)
#endif
}

inline Operate(menu)
{
    if
    :: menu & 1 -> DestroyAndRegister()
    :: menu & 2 -> SetThread()
    :: menu & 4 -> Fork()
    :: menu & 8 -> WaitUntilWritten()
    :: menu & 16 -> EnsureRunning()
    :: true
    fi
}

proctype Writer(byte mine)
{
    byte me = WRITER, count, awaited, seen;
    bool running, isMine, hasDevice;
    {
        do
        :: atomic { state == STOPPING -> state = STOPPED }; break
        // It sleeps; without a limit here, so that nothing else makes progress for it.
        :: state != STOPPING && (!IsEmpty || wanted != reached) -> Lock(roundLock); Round()
        od;
        Lock(ringsLock);  // takes back the wish for calls
        Unlock(ringsLock);
        threads--
    }
    unless { isGone || process != mine }
}

proctype Reporter()
{
    byte me = REPORTER, records = RECORDS, seen, count, awaited;
    bool running, isMine, hasDevice;
    {
        do
#if REFUSALS
        :: records > 0 -> records--; Warn()
#else
        :: records > 0 -> records--; Report()
#endif
        :: else -> break
        od;
        atWork--
    }
    unless { isGone || process == CHILD }
}

proctype Second()
{
    byte me = SECOND, count, awaited, seen, ticket, target, version;
    bool running, isMine, hasDevice;
    {
        Operate(OTHER);
        atWork--
    }
    unless { isGone || process == CHILD }
}

proctype Main()
{
    byte me = MAIN, count, awaited, seen, ticket, target, version;
    bool running, isMine, hasDevice;
    {
        Operate(MENU);
        // It ends the process when the others are done and all is written, or at any other moment.
        if
        :: true -> (atWork == 0 && IsEmpty)  // SERVED
        :: true
        fi;
        Exit()
    }
    unless { process == CHILD }
}

proctype Child()
{
    byte me = MAIN, count, awaited, seen, ticket, target;
    bool running, isMine, hasDevice;
    Report();
    (IsEmpty);  // SERVED
    DestroyAndRegister();
    Exit()
}

init
{
    atomic
    {
        isRegistered = true;
        run Reporter();
        run Second();
        run Main()
    }
}
