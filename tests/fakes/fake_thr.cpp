#include <atomic>

#include "platform/thr/thr.h"
#include "tests/fakes/call_hook.h"
#include "tests/fakes/fake_services.h"
#include "tests/fakes/real_platform.h"

namespace
{
constinit std::atomic<long> creation_count = 0;
constinit std::atomic<long> lock_count = 0;
constinit std::atomic<long> unlock_count = 0;
constinit thread_local int locks_held = 0;

struct HOOKS
{
    fake::CALL_HOOK creation;
    fake::CALL_HOOK lock;
    fake::CALL_HOOK unlock;
};

HOOKS& hooks()
{
    // Never destroyed: the library locks until the process has ended.
    static HOOKS& instance = *new HOOKS;
    return instance;
}
}

THR_MUTEX* thr_mutex_create()
{
    ++creation_count;
    hooks().creation.called();
    return real_thr_mutex_create();
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    ++lock_count;
    hooks().lock.called();
    real_thr_mutex_lock(mutex);
    ++locks_held;
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    ++unlock_count;
    hooks().unlock.called();
    --locks_held;
    real_thr_mutex_unlock(mutex);
}

void thr_mutex_call_if_lost(THR_MUTEX* mutex, void (*lost)())
{
    real_thr_mutex_call_if_lost(mutex, lost);
}

long fake::thr::creations()
{
    return creation_count;
}

long fake::thr::locks()
{
    return lock_count;
}

long fake::thr::unlocks()
{
    return unlock_count;
}

int fake::thr::depth()
{
    return locks_held;
}

void fake::thr::before_creation(int nth, HOOK hook)
{
    hooks().creation.arm(nth, std::move(hook));
}

void fake::thr::before_lock(int nth, HOOK hook)
{
    hooks().lock.arm(nth, std::move(hook));
}

void fake::thr::before_unlock(int nth, HOOK hook)
{
    hooks().unlock.arm(nth, std::move(hook));
}

void fake::thr::reset()
{
    creation_count = 0;
    lock_count = 0;
    unlock_count = 0;
    hooks().creation.disarm();
    hooks().lock.disarm();
    hooks().unlock.disarm();
}
