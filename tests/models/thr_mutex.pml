// A model of the default mutex (platform/thr/): every interleaving of a few threads that lock, unlock and fork is gone
// through by spin (scripts/check lock-model). Steps are named after the code's; the numbers are those of the accesses in
// thr_mutex.cpp.
//
// THREADS threads lock and unlock ROUNDS times each, every second round twice over. The last one forks instead, once a
// round, if FORK is defined: at any moment, without the mutex or (FORK_WHILE_HOLDING) with it, waiting for the mutex
// until a deadline that may pass at any moment. The child is copied in one step here; in truth others write meanwhile, but
// the handler in the child asks of what they write only whether the owner is the forking thread.
//
// What is shown, by assertions and by the end states that spin takes for valid:
// - exclusion: `inside` is never raised by two threads, in the parent or in the child;
// - no lost wake-up: the parent's threads and the child come to their ends (an invalid end state is a lost wake-up);
// - fork: it returns while another thread sleeps or holds the mutex; the child gets in; what it finds is whole
//   (`is_whole`), unless it was told that it is lost; the child is told only if the mutex was not taken.
//
// All accesses are to one atomic object, whose modifications have one order, and each step of the code between two of
// them touches nothing shared. So interleavings of these steps are all there is; that the data follows the mutex is the
// business of acquire and release, for which thr_mutex.cpp argues.
//
// Models that are broken on purpose, each of which spin must refuse:
//   BROKEN_UNLOCK          unlocking writes free without asking whether somebody sleeps
//   BROKEN_PLAIN_UNLOCK    unlocking reads the word, then writes free, in two steps
//   BROKEN_TAKE            who has slept takes the mutex as held, without sleepers
//   BROKEN_SLEEP           a thread sleeps without a second look at the word
//   BROKEN_GIVE_UP         a thread gives up at its deadline before it has marked the mutex as held with sleepers
//   BROKEN_IDENTITY        all threads have the same identity
//   BROKEN_FORK            no handler takes the mutex before the fork, and none frees it in the child
//   BROKEN_CHILD           the handler in the child leaves a lost mutex as it was copied
//   BROKEN_SILENCE         the child is not told of a lost mutex

#ifndef THREADS
#define THREADS 2
#endif
#ifndef ROUNDS
#define ROUNDS 2
#endif

#ifdef BROKEN_IDENTITY
#define IDENTITY(thread) 2
#else
#define IDENTITY(thread) (2 * ((thread) + 1))
#endif
#define FREE_WORD 0
#define OWNER(word) (((word) / 2) * 2)
#define HAS_SLEEPERS(word) ((word) % 2 == 1)

// One of each for the parent and one for the child.
byte word[2];   // owner's identity, +1 with sleepers
byte count[2];  // further holds of the owner
byte inside[2]; // threads between locking and unlocking
bool is_whole[2] = true; // what the mutex guards; a holder has it broken for a while
bool was_lost = false;

bool sleeping[THREADS]; // the futex's queue, of the parent; in the child nobody else is there
bool has_ended[THREADS];

// --- The kernel ---

// Compares and enqueues in one step; may return for no reason where MAY_PASS, as at a deadline.
inline futex_wait(thread, expected)
{
    atomic
    {
        if
#ifdef BROKEN_SLEEP
        :: true -> sleeping[thread] = true
#else
        :: word[0] == expected -> sleeping[thread] = true
        :: else
#endif
        fi
    }
    !sleeping[thread]
}

inline futex_wait_until_deadline(thread, expected)
{
    atomic
    {
        if
        :: word[0] == expected -> sleeping[thread] = true
        :: else
        fi
    }
    if
    :: !sleeping[thread]
    :: sleeping[thread] = false; deadline_has_passed = true
    fi
}

// Wakes any one of those that sleep.
inline futex_wake()
{
    atomic
    {
        if
        :: sleeping[0] -> sleeping[0] = false
        :: sleeping[1] -> sleeping[1] = false
#if THREADS > 2
        :: sleeping[2] -> sleeping[2] = false
#endif
        :: else
        fi
    }
}

// --- The mutex; `world` is 0 in the parent, 1 in the child ---

// lock() and lock_slowly(): leaves is_locked and, unless the caller is the owner or came first, goes on to wait().
inline take_if_free(world, self)
{
    atomic // (1)
    {
        seen = word[world];
        if
        :: seen == FREE_WORD -> word[world] = self; is_locked = true
        :: else -> is_locked = false
        fi
    }
    if
    :: !is_locked ->
        seen = word[world]; // (4)
        if
        :: OWNER(seen) == self -> count[world]++; is_locked = true
        :: else
        fi
    :: else
    fi
}

// One look in wait(): while it spins, which it does until it first sleeps, or after; leaves is_locked or is_marked.
inline look(world, self)
{
    is_marked = false;
    seen = word[world];
    if
    :: seen == FREE_WORD ->
        atomic
        {
            if
            :: word[world] == seen && !has_spun -> word[world] = self; is_locked = true // (2)
            :: word[world] == seen -> // (5)
#ifdef BROKEN_TAKE
                word[world] = self;
#else
                word[world] = self + 1;
#endif
                is_locked = true
            :: else
            fi
        }
    :: seen != FREE_WORD && HAS_SLEEPERS(seen) -> is_marked = true
    :: seen != FREE_WORD && !HAS_SLEEPERS(seen) ->
        atomic
        {
            if
            :: word[world] == seen -> word[world] = seen + 1; seen = seen + 1; is_marked = true // (6)
            :: else
            fi
        }
    fi
}

inline lock(self)
{
    has_spun = false;
    take_if_free(0, self);
    do
    :: is_locked -> break
    :: else ->
        look(0, self);
        if
        :: !is_locked && is_marked -> has_spun = true; futex_wait(_pid - 1, seen)
        :: else
        fi
    od
}

// lock_slowly() with a deadline; leaves is_locked.
inline lock_until_deadline(self)
{
    has_spun = false;
    deadline_has_passed = false;
    take_if_free(0, self);
    do
    :: is_locked -> break
    :: else ->
#ifdef BROKEN_GIVE_UP
        if
        :: deadline_has_passed -> break
        :: else
        fi;
#endif
        look(0, self);
        if
        :: !is_locked && is_marked && deadline_has_passed -> break
        :: !is_locked && is_marked && !deadline_has_passed ->
            has_spun = true;
            futex_wait_until_deadline(_pid - 1, seen)
            // A thread that was woken may find that its deadline has passed as well.
            if
            :: deadline_has_passed = true
            :: true
            fi
        :: else
        fi
    od
}

inline unlock(world)
{
    if
    :: count[world] > 0 -> count[world]--
    :: else ->
#ifdef BROKEN_PLAIN_UNLOCK
        seen = word[world];
        word[world] = FREE_WORD;
#else
        d_step { seen = word[world]; word[world] = FREE_WORD } // (3)
#endif
#ifndef BROKEN_UNLOCK
        if
        :: HAS_SLEEPERS(seen) && world == 0 -> futex_wake()
        :: else
        fi
#endif
    fi
}

// What a holder does.
inline be_inside(world)
{
    inside[world]++;
    assert(inside[world] == 1);
    is_whole[world] = false;
    is_whole[world] = true;
    inside[world]--
}

// --- Fork ---

inline before_fork(self)
{
#ifdef BROKEN_FORK
    is_held_for_fork = false
#else
    lock_until_deadline(self);
    is_held_for_fork = is_locked
#endif
}

inline fork()
{
    d_step
    {
        word[1] = word[0];
        count[1] = count[0];
        inside[1] = 0;
        is_whole[1] = is_whole[0];
        was_lost = false
    }
}

inline after_fork_in_parent()
{
    if
    :: is_held_for_fork -> unlock(0)
    :: else
    fi
}

// One step: nobody else is in the child.
inline after_fork_in_child(self)
{
    if
    :: OWNER(word[1]) == self -> // is_own(), hence held for the fork
        if
        :: is_held_for_fork -> unlock(1)
        :: else
        fi
    :: else ->
        // Not taken before the fork: lost, whatever its word says.
#ifndef BROKEN_FORK
        assert(!is_held_for_fork);
#ifndef BROKEN_CHILD
        count[1] = 0;
        word[1] = FREE_WORD; // set_free_if_lost
#endif
#ifndef BROKEN_SILENCE
        was_lost = true;
#endif
#endif
    fi
}

// The child's life: it locks, as no other thread is there to wait for, looks, unlocks and ends.
inline live_in_child(self, holds)
{
    after_fork_in_child(self);
    assert(holds == 0 || OWNER(word[1]) == self); // as its parent
    take_if_free(1, self);
    assert(is_locked);
    assert(is_whole[1] || was_lost || holds > 0);
    assert(!was_lost || !is_held_for_fork);
    unlock(1);
    if
    :: holds > 0 -> unlock(1)
    :: else
    fi;
    assert(word[1] == FREE_WORD && count[1] == 0)
}

// --- The threads ---

proctype thread()
{
    byte seen;
    byte round = 0;
    bool is_locked, is_marked, has_spun;
    do
    :: round < ROUNDS ->
        lock(IDENTITY(_pid - 1));
        if
        :: round % 2 == 1 -> lock(IDENTITY(_pid - 1)); unlock(0)
        :: else
        fi;
        be_inside(0);
        unlock(0);
        round++
    :: else -> break
    od;
    has_ended[_pid - 1] = true
}

proctype forking_thread()
{
    byte seen;
    byte round = 0;
    byte holds;
    bool is_locked, is_marked, has_spun, deadline_has_passed, is_held_for_fork;
    do
    :: round < ROUNDS ->
#ifdef FORK_WHILE_HOLDING
        holds = 1;
        lock(IDENTITY(_pid - 1));
#else
        holds = 0;
#endif
        before_fork(IDENTITY(_pid - 1));
        fork();
        // The child shares nothing with the parent, and each of its runs is the same from here on: it is run at once.
        atomic { live_in_child(IDENTITY(_pid - 1), holds) };
        after_fork_in_parent();
        if
        :: holds > 0 -> be_inside(0); unlock(0)
        :: else
        fi;
        round++
    :: else -> break
    od;
    has_ended[_pid - 1] = true
}

init
{
    byte started = 0;
    byte others;
    atomic
    {
#ifdef FORK
        others = THREADS - 1;
#else
        others = THREADS;
#endif
        do
        :: started < others -> run thread(); started++
        :: else -> break
        od;
        if
        :: others < THREADS -> run forking_thread()
        :: else
        fi
    };
    // All threads have ended, or spin reports an invalid end state.
    started = 0;
    do
    :: started < THREADS -> has_ended[started]; started++
    :: else -> break
    od;
    assert(word[0] == FREE_WORD && count[0] == 0 && is_whole[0])
}
