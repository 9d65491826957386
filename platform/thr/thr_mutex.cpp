// The default mutex: one word that waiters sleep on (a futex), and a count of the owner's further holds.
//
// The word has three states:
// - free;
// - held: the word is the identity of the owner;
// - held with sleepers: the same, with the lowest bit set.
//
// Locking turns free into held. A thread that finds the mutex held spins for a moment, since the store holds it for
// some nanoseconds only. Then it turns held into held with sleepers, and sleeps as long as the word stays so. Unlocking
// exchanges the word for free. If the word was held with sleepers, unlocking wakes one sleeper. A thread that gave up
// spinning takes the mutex as held with sleepers, since others may still sleep; at worst one wake-up finds nobody.
// Without contention, locking and unlocking are one atomic instruction each.
//
// Why it is correct. The numbers stand at the accesses below. All are to one atomic object, the word.
// - Mutual exclusion. The word leaves free only in (1), (2) and (5), which are atomic read-modify-writes. So for each
//   free that (3) writes, at most one of them replaces it. Only the owner does (3). The one exception is the child of a
//   fork, which frees the mutexes whose owners it lacks (thr_fork.cpp).
// - Visibility. (3) releases; (1), (2) and (5) acquire. The free that they read was written by a (3), or nobody has
//   held the mutex yet. So everything before an unlock happens before everything after the next lock. The count needs
//   nothing else.
// - No lost wake-up. The modifications of the word have one order, whatever their memory order. A thread sleeps only if
//   the kernel finds the word held with sleepers; the kernel compares and enqueues in one step with regard to wake-ups.
//   Only (3) ends that state. It reads the state as it does so, and wakes a sleeper. A thread that has passed (6) but
//   does not sleep yet sees for itself that the word has changed. A woken thread takes the mutex as held with sleepers
//   (5), or makes sure that it is held with sleepers (6). So the next unlock wakes the next sleeper. (6) needs no order
//   of its own: it guards no data, and either comes before the next (3), which reads it, or fails.
// - Ownership. The test (4) whether the caller is the owner needs no order either: a thread reads its own last store to
//   the word or a later one. Only the thread itself puts its identity into the word, and (6) of other threads only
//   keeps it there. So the thread finds its identity if and only if it holds the mutex. No identity is given twice, so
//   that of an ended thread is nobody's.
// Nothing depends on the order of accesses to two objects. So there is neither a fence nor a sequentially consistent
// access.
#include <bit>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/thr/thr_fork.h"
#include "platform/thr/thr_mutex_state.h"

using zon_thr::identity;

static_assert(std::atomic<zon_thr::WORD>::is_always_lock_free);

[[gnu::tls_model("initial-exec")]] constinit thread_local zon_thr::WORD zon_thr::identity = 0; // repeated for g++

namespace
{
constexpr int spins_before_sleep = 200;

constinit std::atomic<zon_thr::WORD> last_identity = 0;

void pause_processor()
{
#if defined(__x86_64__)
    __builtin_ia32_pause();
#endif
}

bool has_passed(const timespec& deadline)
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (std::int64_t{now.tv_sec} - deadline.tv_sec) * 1'000'000'000 + (now.tv_nsec - deadline.tv_nsec) >= 0;
}
}

[[gnu::noinline]] bool THR_MUTEX::lock_slowly(const timespec* deadline)
{
    if (identity == 0)
        identity = last_identity.fetch_add(2, std::memory_order_relaxed) + 2;
    if (is_own())
    {
        ++count;
        return true;
    }
    return wait(deadline);
}

bool THR_MUTEX::wait(const timespec* deadline)
{
    zon_thr::settle_if_forked();
    for (int spin = 0; spin < spins_before_sleep; ++spin)
    {
        zon_thr::WORD seen = word.load(std::memory_order_relaxed);
        if (seen == zon_thr::free_word &&
            word.compare_exchange_strong(seen, identity, std::memory_order_acquire, std::memory_order_relaxed)) // (2)
            return true;
        pause_processor();
    }
    for (;;)
    {
        zon_thr::WORD seen = word.load(std::memory_order_relaxed);
        if (seen == zon_thr::free_word)
        {
            if (word.compare_exchange_strong(seen, identity | zon_thr::sleepers, std::memory_order_acquire,
                                             std::memory_order_relaxed)) // (5)
                return true;
        }
        else if ((seen & zon_thr::sleepers) != 0 ||
                 word.compare_exchange_strong(seen, seen | zon_thr::sleepers, std::memory_order_relaxed)) // (6)
        {
            // Not before (6): this thread may have taken a wake-up. If it then gives up, (6) has the next unlock wake
            // another.
            if (deadline != nullptr && has_passed(*deadline))
                return false;
            sleep_while(seen | zon_thr::sleepers, deadline);
        }
    }
}

// May return early.
void THR_MUTEX::sleep_while(zon_thr::WORD seen, const timespec* deadline)
{
    syscall(SYS_futex, lower_half(), FUTEX_WAIT_BITSET_PRIVATE, static_cast<std::uint32_t>(seen), deadline, nullptr,
            FUTEX_BITSET_MATCH_ANY);
}

[[gnu::noinline]] void THR_MUTEX::wake_one()
{
    syscall(SYS_futex, lower_half(), FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

// The half that holds the lowest bit, since the kernel compares only 32 bits. If only the other half has changed, the
// mutex has another owner and is still held with sleepers.
char* THR_MUTEX::lower_half()
{
    return reinterpret_cast<char*>(&word) + (std::endian::native == std::endian::little ? 0 : 4);
}

THR_MUTEX* thr_mutex_create()
{
    zon_thr::protect_from_forks();
    auto* const mutex = new THR_MUTEX;
    zon_thr::enlist(*mutex);
    return mutex;
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    mutex->lock();
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    mutex->unlock();
}
