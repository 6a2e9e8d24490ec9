// SPDX-License-Identifier: Apache-2.0
// The log's thread falls asleep while two threads report; see nxLogIdleSleep.h and nxSleepBell.h.
//
// What is modelled: the head of each ring, the flag by which the log's thread asks for a call, the word of the bell, and for every
// thread a buffer from which its stores reach memory late and in order. An atomic exchange empties the buffer of its thread, the
// process barrier those of all. Sleeps have no time limit here, so that nothing but a call can end them. Left out: rings
// that are made during the sleep, which take their flag under the list's lock, and stops of the thread.
//
// What holds: when nothing moves any more, every record was read.
//
// With URGENT every record is followed by a call and nobody asks for one, as with warnings while records flow: that is the bell
// alone.
//
// RUN  holds    -DRECORDS=2
// RUN  holds    -DRECORDS=3 -DURGENT
// RUN  violated -DRECORDS=1 -DWITHOUT_BARRIER
// RUN  violated -DRECORDS=2 -DURGENT -DWITHOUT_EXCHANGE
// LONG holds    -DRECORDS=3
// LONG holds    -DRECORDS=5
// LONG holds    -DRECORDS=6 -DURGENT
// LONG violated -DRECORDS=1 -DWITHOUT_SECOND_LOOK

#define REPORTERS 2
#define WRITER 2
#define THREADS 3
// The states of the bell's word.
#define AWAKE 0
#define CALLED 1
#define ASLEEP 2
// The stores that wait in a buffer.
#define HEAD 1      // of the reporter's own ring, one record further
#define NO_CALL 2   // the reporter clears its flag
#define ASK_0 3     // the writer sets the flag of a ring
#define ASK_1 4
#define ENOUGH_0 5  // the writer clears it
#define ENOUGH_1 6
#define WAKE 7      // the writer stores AWAKE, where an exchange belongs

byte head[REPORTERS];  // in memory
byte read[REPORTERS];
bool flag[REPORTERS];
byte word = AWAKE;
byte atWork = REPORTERS;
chan buffer0 = [4] of { byte };
chan buffer1 = [4] of { byte };
chan bufferWriter = [4] of { byte };

// A store that waits reaches memory.
inline Store(thread, what)
{
    if
    :: what == HEAD -> head[thread]++
    :: what == NO_CALL -> flag[thread] = false
    :: what == ASK_0 -> flag[0] = true
    :: what == ASK_1 -> flag[1] = true
    :: what == ENOUGH_0 -> flag[0] = false
    :: what == ENOUGH_1 -> flag[1] = false
    :: what == WAKE -> word = AWAKE
    fi
}

proctype Buffer(chan waiting; byte thread)
{
    byte what;
end:
    do
    :: atomic { waiting ? what -> Store(thread, what); what = 0 }
    od
}

inline Ring(waiting)
{
    (empty(waiting));  // an exchange empties the buffer first
    atomic { word = CALLED }  // who slept on the word sees the change
}

inline Report(me, waiting)
{
    waiting ! HEAD;
#ifdef URGENT
    Ring(waiting)
#else
    if
    :: flag[me] -> waiting ! NO_CALL; Ring(waiting)
    :: else
    fi
#endif
}

proctype Reporter(byte me; chan waiting)
{
    byte records = 0;
    do
    :: records < RECORDS -> records++; Report(me, waiting)
    :: else -> break
    od;
    atWork--
}

inline Look()
{
    hasFound = false;
    if :: head[0] != read[0] -> read[0] = head[0]; hasFound = true :: else fi;
    if :: head[1] != read[1] -> read[1] = head[1]; hasFound = true :: else fi
}

inline Sleep()
{
    (empty(bufferWriter));
    hasSlept = false;
    atomic { if :: word == AWAKE -> word = ASLEEP; hasSlept = true :: else fi };
    if
    :: hasSlept ->
        if
        :: word != ASLEEP
        :: timeout ->
            assert(atWork == 0 && read[0] == RECORDS && read[1] == RECORDS);
            goto done
        fi
    :: else
    fi;
#ifdef WITHOUT_EXCHANGE
    bufferWriter ! WAKE
#else
    (empty(bufferWriter));
    word = AWAKE
#endif
}

proctype Writer()
{
    bool hasFound = false, hasSlept = false, areCallsWanted = false;
    do
    :: Look();
        if
        :: hasFound ->
            if
            :: areCallsWanted ->
                bufferWriter ! ENOUGH_0;
                bufferWriter ! ENOUGH_1;
                areCallsWanted = false
            :: else
            fi
        :: else ->
#ifndef URGENT
            areCallsWanted = true;
            bufferWriter ! ASK_0;
            bufferWriter ! ASK_1;
#ifndef WITHOUT_BARRIER
            (empty(bufferWriter));
            (empty(buffer0));
            (empty(buffer1));
#endif
#endif
#ifndef WITHOUT_SECOND_LOOK
            if
            :: head[0] == read[0] && head[1] == read[1] -> Sleep()
            :: else
            fi
#else
            Sleep()
#endif
        fi
    od;
done: skip
}

init
{
    atomic
    {
        run Buffer(buffer0, 0);
        run Buffer(buffer1, 1);
        run Buffer(bufferWriter, WRITER);
        run Reporter(0, buffer0);
        run Reporter(1, buffer1);
        run Writer()
    }
}
