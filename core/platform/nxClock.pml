// SPDX-License-Identifier: Apache-2.0
// The lines of the clock, which one thread publishes and others read without a lock; see inline/nxClock.h and nxClock.cpp.
//
// What is modelled: memory orders, as C++ has them without the reordering of a load with a later store. Every store to a
// location is a message. A thread has a view: for each location the oldest message that it may still read. A load takes any
// message that is not older than the view, so a relaxed load may see less than the thread has seen elsewhere. A release attaches
// the thread's view to its message, and an acquire that reads the message takes over that view. The n-th message of a location
// has the number n as its value, so that values of different updates can be told apart. The three locations beside the sequence
// stand for all values of a line. Left out: two threads that update at once, which exclude each other by the exchange.
//
// What holds: a reader that found one even number at both looks has the values of one update, that of the number.
//
// A store that is not a release and a load that is not an acquire leave out the same views, so the checks of the stores have the
// states of those of the loads. They are the long ones for that reason.
//
// RUN  holds    -DUPDATES=3
// RUN  violated -DUPDATES=2 -DFIRST_LOOK=RELAXED
// RUN  violated -DUPDATES=2 -DLOAD_TICKS=RELAXED
// RUN  violated -DUPDATES=2 -DLOAD_RATE=RELAXED
// RUN  violated -DUPDATES=2 -DLOAD_VALIDITY=RELAXED
// LONG violated -DUPDATES=2 -DSTORE_VALIDITY=RELAXED
// LONG violated -DUPDATES=2 -DSTORE_TICKS=RELAXED
// LONG violated -DUPDATES=2 -DSTORE_RATE=RELAXED
// LONG violated -DUPDATES=2 -DSTORE_SEQUENCE=RELAXED

#define RELAXED 0
#define ORDERED 1  // acquire for a load, release for a store

#ifndef FIRST_LOOK
#define FIRST_LOOK ORDERED
#endif
#ifndef LOAD_TICKS
#define LOAD_TICKS ORDERED
#endif
#ifndef LOAD_RATE
#define LOAD_RATE ORDERED
#endif
#ifndef LOAD_VALIDITY
#define LOAD_VALIDITY ORDERED
#endif
#ifndef STORE_VALIDITY
#define STORE_VALIDITY ORDERED
#endif
#ifndef STORE_TICKS
#define STORE_TICKS ORDERED
#endif
#ifndef STORE_RATE
#define STORE_RATE ORDERED
#endif
#ifndef STORE_SEQUENCE
#define STORE_SEQUENCE ORDERED
#endif

#define LOCATIONS 4
#define SEQUENCE 0
#define TICKS 1
#define RATE 2
#define VALIDITY 3
#define MESSAGES 8  // of a location, the one of the beginning included

typedef View
{
    byte oldest[LOCATIONS];
}
typedef History
{
    View views[MESSAGES];  // attached to the messages
    byte latest;
}
History memory[LOCATIONS];
View reader;

// The writer alone stores, so its view is the latest message of every location.
inline Store(location, order)
{
    atomic
    {
        memory[location].latest++;
        if
        :: order == ORDERED ->
            for (i : 0 .. LOCATIONS - 1)
            {
                memory[location].views[memory[location].latest].oldest[i] = memory[i].latest
            }
        :: else ->
            memory[location].views[memory[location].latest].oldest[location] = memory[location].latest
        fi;
        i = 0
    }
}

// An exchange reads the latest message, and what was attached to that stays attached.
inline ExchangeSequence()
{
    atomic
    {
        for (i : 0 .. LOCATIONS - 1)
        {
            memory[SEQUENCE].views[memory[SEQUENCE].latest + 1].oldest[i] = memory[SEQUENCE].views[memory[SEQUENCE].latest].oldest[i]
        }
        memory[SEQUENCE].latest++;
        memory[SEQUENCE].views[memory[SEQUENCE].latest].oldest[SEQUENCE] = memory[SEQUENCE].latest;
        i = 0
    }
}

inline Load(location, order, value)
{
    atomic
    {
        select(value : reader.oldest[location] .. memory[location].latest);
        reader.oldest[location] = value;
        if
        :: order == ORDERED ->
            for (j : 0 .. LOCATIONS - 1)
            {
                if
                :: memory[location].views[value].oldest[j] > reader.oldest[j] ->
                    reader.oldest[j] = memory[location].views[value].oldest[j]
                :: else
                fi
            }
        :: else
        fi;
        j = 0
    }
}

active proctype Update()
{
    byte i, round;
    for (round : 1 .. UPDATES)
    {
        ExchangeSequence();
        Store(VALIDITY, STORE_VALIDITY);
        Store(TICKS, STORE_TICKS);
        Store(RATE, STORE_RATE);
        Store(SEQUENCE, STORE_SEQUENCE)
    }
}

active proctype Now()
{
    byte j, first, ticks, rate, validity, second;
    Load(SEQUENCE, FIRST_LOOK, first);
    Load(TICKS, LOAD_TICKS, ticks);
    Load(RATE, LOAD_RATE, rate);
    Load(VALIDITY, LOAD_VALIDITY, validity);
    Load(SEQUENCE, RELAXED, second);
    if
    :: validity != 0 && first % 2 == 0 && first == second ->
        assert(ticks == first / 2 && rate == first / 2 && validity == first / 2)
    :: else
    fi
}
