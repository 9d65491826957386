// The default mutexes around fork: see thr_fork.cpp.
#ifndef PLATFORM_THR_THR_FORK_H
#define PLATFORM_THR_THR_FORK_H

struct THR_MUTEX;

namespace zon_thr
{
// Sees to it that the fork handlers are registered. Throws std::bad_alloc.
[[gnu::visibility("hidden")]] void protect_from_forks();

// Adds a new mutex to those that the fork handlers know.
[[gnu::visibility("hidden")]] void enlist(THR_MUTEX& mutex);

// Where the calling thread is in a child whose fork handler has yet to run, as that of a library which registered its
// own before: frees now what the handler would.
[[gnu::visibility("hidden")]] void settle_if_forked();
}

#endif
