// The default mutexes around fork: see thr_fork.cpp.
#ifndef PLATFORM_THR_THR_FORK_H
#define PLATFORM_THR_THR_FORK_H

struct THR_MUTEX;

namespace zon_thr
{
// Registers the fork handlers unless they are registered. Throws std::bad_alloc.
[[gnu::visibility("hidden")]] void protect_from_forks();

// Adds a new mutex to those that the fork handlers know.
[[gnu::visibility("hidden")]] void enlist(THR_MUTEX& mutex);

// For a thread in a child of fork in which our handler has not run yet, for example because a handler that another
// library registered earlier runs first. Frees now what our handler would free. Does nothing anywhere else.
[[gnu::visibility("hidden")]] void settle_if_forked();
}

#endif
