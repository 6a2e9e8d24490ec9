// SPDX-License-Identifier: Apache-2.0
// A ring that one thread fills and another empties, with the reuse of its segments; see nxLogRing.cpp and nxLogMerge.cpp.
//
// What is modelled: threads one after another that each fill a few records of two or three cells, jumps of two cells to the start
// of the segment or to another one, the gap before the tail, the limit that is looked up in quarters, waiting for room, the end
// of a thread and the reuse of its ring and its segments; rounds of the emptying thread that give room back at any moment.
// Every store to head and tail is kept, and a load takes any of them that coherence and what the thread knows allow; each
// cell knows by which store its writing and its last reading were published. Left out: records in blocks of their own, nested rings, first
// rings that are smaller, and the order between rings.
//
// What holds: each record is read once and in order. No cell is read whose writing is not known to the reader, and none written
// whose last reading is not known to the writer. No free segment is touched. In the end every segment is free. Nothing waits for
// ever.
//
// Eight records in one segment do not end within 2.5 GB: no violation in 36 million states.
//
// RUN  holds    -DTHREADS=2 -DRECORDS=2 -DSEGMENTS=2 -DDROPS=1
// RUN  holds    -DTHREADS=1 -DRECORDS=4 -DSEGMENTS=1 -DDROPS=1
// RUN  violated -DTHREADS=1 -DRECORDS=3 -DSEGMENTS=2 -DRELAXED_HEAD
// RUN  violated -DTHREADS=1 -DRECORDS=5 -DSEGMENTS=1 -DDROPS=1 -DWITHOUT_TAIL_AFTER_JUMP
// LONG holds    -DTHREADS=1 -DRECORDS=4 -DSEGMENTS=2
// LONG holds    -DTHREADS=1 -DRECORDS=5 -DSEGMENTS=2
// LONG holds    -DTHREADS=2 -DRECORDS=3 -DSEGMENTS=2 -DDROPS=1
// LONG violated -DTHREADS=1 -DRECORDS=6 -DSEGMENTS=1 -DRELAXED_TAIL
// LONG violated -DTHREADS=1 -DRECORDS=7 -DSEGMENTS=1 -DGAP=0
// LONG violated -DTHREADS=1 -DRECORDS=7 -DSEGMENTS=2 -DGAP=1
// LONG violated -DTHREADS=1 -DRECORDS=3 -DSEGMENTS=1 -DCELLS=8 -DLARGEST=5

#ifndef CELLS
#define CELLS 12  // of a segment
#endif
#ifndef GAP
#define GAP 3
#endif
#ifndef DROPS
#define DROPS 0  // records for which room was found, and that are not published
#endif
#define JUMP 2
#define QUARTER (CELLS / 4)
#ifndef LARGEST
#define LARGEST 3  // cells of a record
#endif
#define ROOM (CELLS + JUMP)                // a jump fits after the end
#define ALL (SEGMENTS * ROOM)
#define STORES (THREADS * (2 * RECORDS + 4) + 4)
#define BEGIN(s) ((s) * ROOM)
#define END(s) ((s) * ROOM + CELLS)
#define SEGMENT(at) ((at) / ROOM)
#define NONE 255
#if SEGMENTS == 1
#define HasFreeSegment (!isTaken[0])
#else
#define HasFreeSegment (!isTaken[0] || !isTaken[1])
#endif

// The cells. What is in the first cell of a record or jump: its size and number, or the target and size 0.
byte sizeAt[ALL];
byte valueAt[ALL];
byte writtenIn[ALL];  // the store to the head that publishes the writing
byte readIn[ALL];     // the store to the tail that publishes the last reading
bool isTaken[SEGMENTS];

// All stores to head and tail. The numbers say how many there were.
byte heads[STORES];
byte headStores = 0;
byte tails[STORES];
byte tailStores = 0;

// The mutex of the list and the memory, and what its holders knew: how many stores.
bool isLocked = false;
byte mutexKnowsHeads = 0;
byte mutexKnowsTails = 0;

// The ring.
bool isAttached = false;
bool hasEnded = false;
byte segment = NONE;  // of the filling thread
byte readSegment = NONE;
byte reading = 0;  // position of the emptying thread
byte seen = 0;

byte fillerKnowsTails = 0;  // how many stores to the tail the filling thread has seen
byte emptierKnowsHeads = 0;
byte nextRead = 0;  // the number of the record that must come next
byte threadsLeft = THREADS;
byte allRecords = 0;
byte drops = DROPS;

inline Lock(knowsHeads, knowsTails)
{
    atomic
    {
        !isLocked -> isLocked = true;
        if :: mutexKnowsHeads > knowsHeads -> knowsHeads = mutexKnowsHeads :: else fi;
        if :: mutexKnowsTails > knowsTails -> knowsTails = mutexKnowsTails :: else fi
    }
}
inline Unlock(knowsHeads, knowsTails)
{
    atomic { mutexKnowsHeads = knowsHeads; mutexKnowsTails = knowsTails; isLocked = false }
}

// The filling thread writes the cells of a record or a jump.
inline Write(at, count, kind, value)
{
    atomic
    {
        assert(isTaken[SEGMENT(at)]);
        for (i : 0 .. count - 1)
        {
            assert(at + i < BEGIN(SEGMENT(at)) + ROOM);
            assert(readIn[at + i] <= fillerKnowsTails);
            writtenIn[at + i] = headStores + 1
        }
        i = 0;
        sizeAt[at] = kind;
        valueAt[at] = value
    }
}
inline StoreHead(at)
{
    atomic { heads[headStores] = at; headStores++; head = at }
}
inline StoreTail()
{
    atomic
    {
        hasMoved = tailStores == 0 || tails[tailStores - 1] != reading;
        tails[tailStores] = reading;
        if :: hasMoved -> tailStores++ :: else fi;
        hasMoved = false
    }
}
// A load may give any store that is not older than what the thread knows.
inline LoadTail()
{
    atomic
    {
        chosen = fillerKnowsTails;
        do
        :: chosen < tailStores -> chosen++
        :: break
        od;
        tail = tails[chosen - 1];
        looked = chosen;
#ifndef RELAXED_TAIL
        fillerKnowsTails = chosen;
#endif
        chosen = 0
    }
}
inline LoadHead()
{
    atomic
    {
        chosenHead = emptierKnowsHeads;
        do
        :: chosenHead < headStores -> chosenHead++
        :: break
        od;
        seen = heads[chosenHead - 1];
#ifndef RELAXED_HEAD
        emptierKnowsHeads = chosenHead;
#endif
        chosenHead = 0
    }
}

#define IsInSegment(at) (BEGIN(segment) <= (at) && (at) <= END(segment))

// _LookForRoom(): sets `limit`.
inline LookForRoom(bytes)
{
    LoadTail();
    if
    :: IsInSegment(tail) && tail <= head && END(segment) - head < bytes && tail >= BEGIN(segment) + bytes + GAP ->
        Write(head, JUMP, 0, BEGIN(segment));
        StoreHead(BEGIN(segment))
    :: else
    fi;
    atomic
    {
        room = END(segment) - head;
        if
        :: IsInSegment(tail) && tail > head -> room = (tail - GAP > head && tail > GAP -> tail - GAP - head : 0)
        :: else
        fi;
        most = (bytes > QUARTER -> bytes : QUARTER);
        if :: room > most -> room = most :: else fi;
        limit = head + room;
        room = 0; most = 0
    }
}

// AppendSegment(): `found` is the new one, NONE without memory.
inline AppendSegment()
{
    Lock(headStores, fillerKnowsTails);
    atomic
    {
        found = NONE;
        for (i : 0 .. SEGMENTS - 1)
        {
            if :: !isTaken[i] && found == NONE -> found = i :: else fi
        }
        i = 0;
        if :: found != NONE -> isTaken[found] = true :: else fi
    }
    Unlock(headStores, fillerKnowsTails)
}

inline Report(size)
{
    do
    :: limit >= head + size -> break
    :: else ->
        LookForRoom(size);
        if
        :: limit >= head + size -> break
        :: else ->
            AppendSegment();
            if
            :: found != NONE ->
                Write(head, JUMP, 0, BEGIN(found));
                atomic { segment = found; limit = BEGIN(found) };
                StoreHead(BEGIN(found));
                found = NONE
            :: else ->
                // Waits until the tail moves or a segment is free.
                (tailStores > looked || HasFreeSegment)
            fi
        fi
    od;
    if
    :: drops > 0 -> drops--; limit = head
    :: true ->
        Write(head, size, size, record);
        StoreHead(head + size);
        atomic { record++; allRecords++ }
    fi
}

proctype Filler()
{
    byte head = 0, tail = 0, limit = 0, records = 0, record = 0, found = NONE, chosen = 0, room = 0, most = 0, cells = 0, looked = 0, i = 0;
    do
    :: threadsLeft > 0 ->
        // A new thread takes a ring and a segment for it.
        !isAttached;
        do
        :: AppendSegment();
            if :: found != NONE -> break :: else -> HasFreeSegment fi
        od;
        Lock(headStores, fillerKnowsTails);
        atomic
        {
            segment = found; readSegment = found; found = NONE;
            head = BEGIN(segment); limit = head; reading = head; seen = head;
            heads[headStores] = head; headStores++;
            tails[tailStores] = head; tailStores++;
            fillerKnowsTails = tailStores;
            emptierKnowsHeads = headStores;
            hasEnded = false; isAttached = true; records = 0
        };
        Unlock(headStores, fillerKnowsTails);
        do
        :: records < RECORDS ->
            records++;
            if :: cells = 2 :: cells = LARGEST fi;
            Report(cells)
        :: else -> break
        od;
        hasEnded = true;
        threadsLeft--
    :: else -> break
    od
}

inline GiveSegment(which)
{
    atomic { assert(isTaken[which]); isTaken[which] = false }
}

inline ReadCells(howMany)
{
    atomic
    {
        assert(isTaken[SEGMENT(reading)]);
        for (k : 0 .. howMany - 1)
        {
            assert(writtenIn[reading + k] != 0 && writtenIn[reading + k] <= emptierKnowsHeads);
            readIn[reading + k] = tailStores + 1
        }
        k = 0
    }
}

inline GiveBackRoom()
{
    Lock(emptierKnowsHeads, tailStores);
    StoreTail();
    Unlock(emptierKnowsHeads, tailStores)
}

proctype Emptier()
{
    byte chosenHead = 0, k = 0, target = 0, count = 0;
    bool hasMoved = false, wasEnded = false;
    do
    :: isAttached ->
        // A round begins.
        Lock(emptierKnowsHeads, tailStores);
        wasEnded = hasEnded;
        if :: wasEnded -> emptierKnowsHeads = headStores :: else fi;
        LoadHead();
        if
        :: wasEnded && heads[headStores - 1] == tails[tailStores - 1] ->
            GiveSegment(readSegment);
            atomic { readSegment = NONE; isAttached = false }
        :: else
        fi;
        Unlock(emptierKnowsHeads, tailStores);
        count = 0;
        do
        :: isAttached && reading != seen ->
            if
            :: sizeAt[reading] == 0 ->
                ReadCells(JUMP);
                atomic { target = valueAt[reading]; reading = target };
                if
                :: SEGMENT(target) != readSegment ->
                    Lock(emptierKnowsHeads, tailStores);
                    StoreTail();
                    GiveSegment(readSegment);
                    readSegment = SEGMENT(target);
                    Unlock(emptierKnowsHeads, tailStores)
                :: else
                fi
            :: else ->
                ReadCells(sizeAt[reading]);
                atomic
                {
                    assert(valueAt[reading] == nextRead);
                    nextRead++;
                    count = 1;
                    reading = reading + sizeAt[reading]
                }
            fi;
            if :: GiveBackRoom() :: true fi
        :: else -> break
        od;
#ifdef WITHOUT_TAIL_AFTER_JUMP
        if :: count != 0 -> GiveBackRoom() :: else fi
#else
        if :: isAttached -> GiveBackRoom() :: else fi
#endif
        // The next look has something new to see.
        if
        :: isAttached -> (heads[headStores - 1] != tails[tailStores - 1] || hasEnded)
        :: else
        fi;
#ifdef WITHOUT_TAIL_AFTER_JUMP
        // A look that can change nothing is not repeated.
        if :: isAttached && hasEnded && reading == heads[headStores - 1] && reading != tails[tailStores - 1] -> assert(false) :: else fi
#endif
    :: !isAttached && threadsLeft == 0 -> break
    od;
    assert(nextRead == allRecords && allRecords + DROPS - drops == THREADS * RECORDS);
    for (k : 0 .. SEGMENTS - 1) { assert(!isTaken[k]) }
}

init
{
    atomic { run Filler(); run Emptier() }
}
