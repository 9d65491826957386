// The default mutex: one word that waiters sleep on (a futex), and a count of the owner's further holds.
//
// The word has three states: free; held, by the thread whose identity it is; and held with sleepers, the same with the
// lowest bit set. Locking turns free into held. A thread that finds the mutex held spins for a moment, since the store
// holds it for some nanoseconds only; then it turns held into held with sleepers, and sleeps for as long as the word is
// that. Unlocking exchanges the word for free, and wakes one sleeper if it was held with sleepers. A thread that gave
// up spinning takes the mutex as held with sleepers, as others may still sleep: at worst one wake-up finds nobody.
// Without contention, locking and unlocking are one atomic instruction each.
//
// Why it is right. The numbers stand at the accesses below; all are to one atomic object, the word.
// - Exclusion: the word leaves free only in (1), (2) and (5), which are atomic read-modify-writes: of each free that is
//   written by (3), one of them at most makes something else. Only the owner does (3).
// - What the last holder wrote is seen: (3) releases; (1), (2) and (5) acquire, and the free that they read was written
//   by a (3), or nobody has held the mutex. So all that comes before an unlocking happens before all that follows the
//   next locking. The count needs nothing else.
// - No wake-up is lost: the word's modifications have one order, whatever their memory order. A thread sleeps only if
//   the kernel finds the word held with sleepers, which it compares and enqueues for in one step with regard to
//   wake-ups. Only (3) ends that state, reads it in doing so, and wakes a sleeper, if not another that comes to (6) in
//   the meantime sees for itself that the word has changed. Who is woken takes the mutex as held with sleepers (5), or
//   finds it held and sees to it that it is held with sleepers (6), so that the unlocking after it wakes the next. So
//   (6) needs no order of its own: it guards no data, and either comes before the next (3), which reads it, or fails.
// - Whether the caller is the owner (4) needs no order either: a thread reads its own last store to the word or a later
//   one. It alone ever writes its identity, so it finds it there if and only if it holds the mutex. Identities are
//   never given twice, so that of an ended thread is nobody's.
// Nothing rests on the order of accesses to two objects; hence there is neither a fence nor an access that is
// sequentially consistent.
#include <bit>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/thr/thr_fork.h"
#include "platform/thr/thr_mutex_state.h"

using zon_thr::identity;

static_assert(std::atomic<zon_thr::WORD>::is_always_lock_free);

[[gnu::tls_model("initial-exec")]] constinit thread_local zon_thr::WORD zon_thr::identity = 0; // said again for g++

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
            // Not before (6): this thread may have taken a wake-up, which is another's if this one gives up.
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

// The half that holds the lowest bit: the kernel compares 32 bits. Where only the other half has changed, the mutex has
// another owner and is held with sleepers all the same.
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
