// A hook that lies in wait for the nth call of a service.
#ifndef TESTS_FAKES_CALL_HOOK_H
#define TESTS_FAKES_CALL_HOOK_H

#include <mutex>
#include <utility>

#include "tests/fakes/fake_platform.h"

namespace fake
{
class CALL_HOOK
{
public:
    void arm(int nth, HOOK action)
    {
        const std::lock_guard lock(mutex);
        calls_to_go = nth;
        hook = std::move(action);
    }

    void disarm()
    {
        arm(0, nullptr);
    }

    // Counts a call; runs and forgets the hook when it is the one.
    void called()
    {
        HOOK due;
        {
            const std::lock_guard lock(mutex);
            if (calls_to_go == 0 || --calls_to_go > 0)
                return;
            due = std::exchange(hook, nullptr);
        }
        due();
    }

private:
    std::mutex mutex;
    int calls_to_go = 0;
    HOOK hook;
};
}

#endif
