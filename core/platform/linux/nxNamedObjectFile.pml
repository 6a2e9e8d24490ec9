// SPDX-License-Identifier: Apache-2.0
// Processes that open named objects in one shared file, with a kill before every step; see nxNamedObjectFile.cpp.
//
// What is modelled: the exclusive lock of the table, the shared locks of the entries, which end with their process and which
// other code may drop by closing the descriptor, the words `used`, kind and name of each entry, and the making of an object as
// two steps. Left out: growing the file, removing it, namespaces, forks, failing system calls, the five seconds of patience.
//
// What holds: a process that was given an object, and has its locks, sees a finished object of the name and kind for which it
// asked. All such processes of one name see the same object. No object is made again while one of them has it.
//
// The longest check, -DPROCESSES=3 -DKILLS=2 -DASKS=1 -DCLOSES=1, has 19,231,601 states to a depth of 456, and takes 28 seconds of
// processor time and 1 GB. Three processes that ask twice, with one kill, do not end within 2.5 GB: no violation in 46 million
// states.
//
// RUN  holds    -DPROCESSES=2 -DKILLS=1 -DASKS=1 -DCLOSES=1
// RUN  violated -DPROCESSES=2 -DKILLS=1 -DASKS=2 -DCLOSES=1 -DWITHOUT_LOCK_IN_LOCK_AGAIN
// LONG holds    -DPROCESSES=2 -DKILLS=2 -DASKS=2
// LONG holds    -DPROCESSES=3 -DKILLS=1 -DASKS=1
// LONG holds    -DPROCESSES=3 -DKILLS=3 -DASKS=1
// LONG holds    -DPROCESSES=2 -DKILLS=1 -DASKS=2 -DCLOSES=1
// LONG holds    -DPROCESSES=3 -DKILLS=1 -DASKS=1 -DCLOSES=1
// LONG holds    -DPROCESSES=3 -DKILLS=2 -DASKS=1 -DCLOSES=1
// LONG violated -DPROCESSES=2 -DKILLS=0 -DASKS=1 -DWITHOUT_TABLE_LOCK
// LONG violated -DPROCESSES=2 -DKILLS=1 -DASKS=2 -DCLOSES=1 -DWITHOUT_KIND_IN_LOCK_AGAIN

#ifndef CLOSES
#define CLOSES 0  // how often other code closes a process's descriptors
#endif
#define NAMES 2
#define KINDS 2
#define ENTRIES 2
#define NOBODY 255
#define NONE 255

// The shared file.
bool used[ENTRIES];
byte kind[ENTRIES];
byte name[ENTRIES];
bool isFinished[ENTRIES];  // the mutex or semaphore itself
byte making[ENTRIES];      // how often one was made in this entry
// The kernel's locks. They belong to a descriptor, here to a process.
byte tableLock = NOBODY;
byte entryLocks[ENTRIES];  // one bit for each process

byte kills = KILLS;
byte closes = CLOSES;

// What each process remembers: the entry of a name, NONE for none.
typedef Memory
{
    byte entry[NAMES];
    byte kindAsked[NAMES];
    byte makingSeen[NAMES];
    bool hasLocks;  // false after other code has closed the descriptor
}
Memory memory[PROCESSES];

#define BIT(process) (1 << (process))
#define IsLockedByAnother(e, me) ((entryLocks[e] & ~BIT(me)) != 0)

// Before every step the process may be killed: the kernel drops its locks.
#define KILLABLE                                     \
    if                                               \
    :: kills > 0 -> kills--; goto killed             \
    :: true                                          \
    fi

inline DropLocks(me)
{
    atomic
    {
        if :: tableLock == me -> tableLock = NOBODY :: else fi;
        for (e : 0 .. ENTRIES - 1) { entryLocks[e] = entryLocks[e] & ~BIT(me) }
        e = 0
    }
}

inline LockTable(me)
{
#ifndef WITHOUT_TABLE_LOCK
    atomic { tableLock == NOBODY -> tableLock = me }
#else
    skip
#endif
}

inline UnlockTable(me)
{
    atomic { if :: tableLock == me -> tableLock = NOBODY :: else fi }
}

// nxNamedObjectFile::_LockEntries
inline LockEntries(me)
{
    n = 0;
    do
    :: n < NAMES ->
        if
        :: memory[me].entry[n] != NONE ->
            e = memory[me].entry[n];
            KILLABLE;
            entryLocks[e] = entryLocks[e] | BIT(me);
            KILLABLE;
            atomic
            {
                if
#ifdef WITHOUT_LOCK_IN_LOCK_AGAIN
                :: name[e] == n -> skip
#elif defined(WITHOUT_KIND_IN_LOCK_AGAIN)
                :: used[e] && name[e] == n -> skip
#else
                :: used[e] && name[e] == n && kind[e] == memory[me].kindAsked[n] -> skip
#endif
                :: else -> entryLocks[e] = entryLocks[e] & ~BIT(me); memory[me].entry[n] = NONE
                fi;
                // An object that was made again has the name and the kind: it is used like any other.
                if :: memory[me].entry[n] != NONE -> memory[me].makingSeen[n] = making[e] :: else fi
            }
        :: else
        fi;
        n++
    :: else -> break
    od;
    n = 0;
    e = 0
}

// What a process may rely on that holds its locks.
inline CheckAll()
{
    atomic
    {
        for (p : 0 .. PROCESSES - 1)
        {
            for (n : 0 .. NAMES - 1)
            {
                if
                :: memory[p].hasLocks && memory[p].entry[n] != NONE ->
                    e = memory[p].entry[n];
                    assert(used[e] && isFinished[e]);
                    assert(name[e] == n && kind[e] == memory[p].kindAsked[n]);
                    assert(making[e] == memory[p].makingSeen[n]);
                    for (q : 0 .. PROCESSES - 1)
                    {
                        assert(!memory[q].hasLocks || memory[q].entry[n] == NONE || memory[q].entry[n] == e)
                    }
                :: else
                fi
            }
        }
        p = 0; q = 0; n = 0; e = 0
    }
}

proctype Process(byte me)
{
    byte asks = 0, wanted = 0, wantedKind = 0, found = NONE, n = 0, e = 0, p = 0, q = 0;
    bool isAlive = false;

    do
    :: asks < ASKS ->
        asks++;
        if :: wanted = 0 :: wanted = 1 fi;
        if :: wantedKind = 1 :: wantedKind = 2 fi;
        // Other code closes the descriptor: the locks end, and the process does not notice until it asks again.
        if
        :: atomic { closes > 0 && memory[me].hasLocks -> closes--; DropLocks(me); memory[me].hasLocks = false }
        :: true
        fi;
        KILLABLE;
        // _EnsureFile
        if
        :: !memory[me].hasLocks ->
#ifndef WITHOUT_LOCK_IN_LOCK_AGAIN
            LockTable(me);
#endif
            LockEntries(me);
            atomic { UnlockTable(me); memory[me].hasLocks = true };
            CheckAll()
        :: else
        fi;
        KILLABLE;
        // _OpenInFile
        if
        :: memory[me].entry[wanted] != NONE -> skip
        :: else ->
            LockTable(me);
            KILLABLE;
            // _Find
            found = NONE;
            e = 0;
            do
            :: e < ENTRIES && found == NONE ->
                if :: used[e] && name[e] == wanted -> found = e :: else fi;
                e++
            :: else -> break
            od;
            e = 0;
            KILLABLE;
            isAlive = (found != NONE && IsLockedByAnother(found, me));
            if
            :: isAlive && kind[found] != wantedKind -> goto refused
            :: else
            fi;
            KILLABLE;
            // _FindFree: a free entry, then a dead one
            e = 0;
            do
            :: e < ENTRIES && found == NONE -> if :: !used[e] -> found = e :: else fi; e++
            :: else -> break
            od;
            e = 0;
            do
            :: e < ENTRIES && found == NONE ->
                if
                :: !IsLockedByAnother(e, me) && memory[me].entry[0] != e && memory[me].entry[1] != e -> found = e
                :: else
                fi;
                e++
            :: else -> break
            od;
            e = 0;
            if :: found == NONE -> goto refused :: else fi;
            KILLABLE;
            entryLocks[found] = entryLocks[found] | BIT(me);
            if
            :: !isAlive ->
                KILLABLE;
                used[found] = false;
                KILLABLE;
                atomic { isFinished[found] = false; making[found]++ };
                KILLABLE;
                isFinished[found] = true;
                KILLABLE;
                kind[found] = wantedKind;
                KILLABLE;
                name[found] = wanted;
                KILLABLE;
                used[found] = true
            :: else
            fi;
            KILLABLE;
            atomic
            {
                memory[me].entry[wanted] = found;
                memory[me].kindAsked[wanted] = wantedKind;
                memory[me].makingSeen[wanted] = making[found]
            };
            CheckAll();
refused:    UnlockTable(me);
            found = NONE;
            isAlive = false
        fi;
        goto next;
killed: // a process that begins again with nothing
        atomic
        {
            DropLocks(me);
            for (n : 0 .. NAMES - 1) { memory[me].entry[n] = NONE; memory[me].kindAsked[n] = 0; memory[me].makingSeen[n] = 0 }
            n = 0; e = 0; found = NONE; isAlive = false;
            memory[me].hasLocks = true
        };
next:   CheckAll()
    :: else -> break
    od
}

init
{
    byte i = 0, k = 0;
    atomic
    {
        for (i : 0 .. ENTRIES - 1) { name[i] = NONE }
        for (i : 0 .. PROCESSES - 1)
        {
            memory[i].hasLocks = true;
            for (k : 0 .. NAMES - 1) { memory[i].entry[k] = NONE }
        }
        for (i : 0 .. PROCESSES - 1) { run Process(i) }
    }
}
