// A cached variable for hot loops. It asks the store for an internal variable once. Then it answers from memory,
// without the store's lock, until the variable changes.
//
// Example:
//
//     static const CFG_CACHED_VALUE<bool> trace_moves("trace_moves", false);
//     static const CFG_CACHED_VALUE<int> max_fanout("max_fanout", 12);
//     static const CFG_CACHED_VALUE report_dir("report_dir", "reports");   // a default of characters makes a text
//
//     for (int net = 0; net < 1000000; ++net)
//     {
//         if (trace_moves.get())                // two loads; asks the store only at first use and after a change
//             print(report_dir.get());
//         route(max_fanout.get());
//     }
//
// Which answer it gives. While nothing changes, it answers as the store's own reader does:
//   CFG_CACHED_VALUE<bool>           cfg_is_on(name, default)
//   CFG_CACHED_VALUE<int>            cfg_get_int_value(name, default)
//   CFG_CACHED_VALUE<unsigned int>   cfg_get_uint_value(name, default)
//   CFG_CACHED_VALUE<double>         cfg_get_double_value(name, default)
//   CFG_CACHED_VALUE<std::string>    cfg_get_value(name), or the default if that text is empty
//
// Which changes it follows: each store under exactly its name, and each time that the settings are emptied or reloaded.
// When the function that stored or emptied has returned, every get() that begins later answers from the new state. A
// change only invalidates the cached answer, and the next get() asks again. So a variable that nobody asks for is not
// read.
//
// Which changes it misses.
// - A store under another letter case of the name, such as "Trace_Moves". That store changes the same variable, but the
//   library notifies exact spellings only. The old answer stays until the next store under this spelling or the next
//   reload. This also applies to settings files: a later line in another letter case is missed if a get() came between.
// - Changes during a notification. A CFG_INI_CALLBACK object that is notified before this one, and calls get() in its
//   notification, gets the old answer. One that calls get() in reset_to_default() during a reload can make this object
//   keep an answer from settings that the reload then drops. Use the store's own readers in notifications.
//
// Usage counts. Only a get() that asks the store counts as an access; the first get() of an unset variable does not, as
// for every reader. A switch that is asked for a million times has one access for each change. So the ranked report
// shows that a run asked, not how often. If the variable changes while a get() asks the store, the next get() asks, and
// counts, once more. This includes the very first get() if it loads the settings files.
//
// Threads. Any thread may call get(), and so may notifications, apart from the cases above. get() waits for the store's
// lock only when it asks the store. A notification only marks the answer as unknown. Apart from that lock, nothing here
// waits for another thread: if other threads copy a text at that moment, get() asks the store for it, and counts an
// access. While the object is constructed or destroyed, no other thread may store the variable or reload the settings,
// as for every CFG_INI_CALLBACK.
//
// fork. A child may call get() of any of these objects. If another thread of the parent was using an object at that
// moment, the object may ask the store at each get() in the child, which is correct but slower. If the child starts
// without a store (see the public header), the objects answer as in the parent until the store itself is used. That use
// loads the settings. If no callback stays registered in that child, the objects keep the parent's answers for good.
//
// Static objects. The constructor registers the object and reads nothing. So an object may be constructed at load, also
// in libraries that are loaded and unloaded at run time. The order relative to other static objects does not matter,
// unless these call get() themselves. If other static initialisers call get() of an object, declare it as an inline
// variable in a header, or as a local static in a function. Call such a function once before a notification calls it.
// Otherwise the notification constructs the object, which it must not, or waits for ever for a thread that is
// constructing it.
//
// The header uses only the public one, and compiles as C++17.
#ifndef CFG_INI_CFG_CACHED_VALUE_H
#define CFG_INI_CFG_CACHED_VALUE_H

#include <atomic>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

#include "cfg_ini/cfg_ini.h"

// Not for hosts: how the class below works.
//
// An object keeps the store's last answer in a cell, and one word of state. The state counts the changes of the
// variable, and has a bit that says whether the cell holds a valid answer. get() loads the state, and if the bit is
// set, the cell. A notification adds one change and clears the bit, which makes the answer invalid in one step. A
// thread that asked the store sets the bit only if the count is still the one from before it asked. So no answer that
// is older than a change becomes valid after it.
namespace CFG_CACHED_VALUE_DETAIL
{
// Each function calls the store's reader for its type.
inline bool ask_store(const char* name, bool default_value)
{
    return cfg_is_on(name, default_value);
}

inline int ask_store(const char* name, int default_value)
{
    return cfg_get_int_value(name, default_value);
}

inline unsigned int ask_store(const char* name, unsigned int default_value)
{
    return cfg_get_uint_value(name, default_value);
}

inline double ask_store(const char* name, double default_value)
{
    return cfg_get_double_value(name, default_value);
}

inline std::string ask_store(const char* name, const std::string& default_value)
{
    return cfg_get_value_as<std::string>(name).value_or(default_value);
}

// Storage for a number. One thread at a time writes it, and any thread reads it. A relaxed atomic is enough, because
// the state in KEPT_ANSWER orders the accesses.
template <typename T>
class CELL
{
    static_assert(std::atomic<T>::is_always_lock_free);

public:
    // Both return whether they succeeded, which a number always does.
    bool load(T& out) const
    {
        out = value.load(std::memory_order_relaxed);
        return true;
    }

    bool store(T new_value)
    {
        value.store(new_value, std::memory_order_relaxed);
        return true;
    }

private:
    std::atomic<T> value{};
};

// The same for a text. A flag is held while the text is copied. Nobody waits long for the flag: in the child of a fork
// it may be held by a thread that does not exist there, and then it stays held.
template <typename TEXT>
class TEXT_CELL
{
public:
    // Both return whether they succeeded. They fail if the flag stayed held.
    bool load(TEXT& out) const
    {
        if (!take())
            return false;
        const RELEASE_AT_END release{taken};
        out = value;
        return true;
    }

    bool store(TEXT new_value)
    {
        if (!take())
            return false;
        const RELEASE_AT_END release{taken};
        value = std::move(new_value);
        return true;
    }

private:
    struct RELEASE_AT_END
    {
        std::atomic<bool>& flag;
        ~RELEASE_AT_END()
        {
            flag.store(false, std::memory_order_release);
        }
    };

    // Tries to get the flag, for about as long as another thread needs to copy a text.
    bool take() const
    {
        constexpr int tries = 200;
        for (int n = 0; n < tries; ++n)
        {
            if (!taken.load(std::memory_order_relaxed) && !taken.exchange(true, std::memory_order_acquire))
                return true;
        }
        return false;
    }

    mutable std::atomic<bool> taken{false};
    TEXT value;
};

template <>
class CELL<std::string> : public TEXT_CELL<std::string>
{
};

// The cached answer, and whether it is still valid. Any thread may call any of these functions, and none waits.
//
// A get() that finds no valid answer takes changes(), asks the store, and passes both to keep(). If forget() was called
// in between, the answer may be older than the change. keep() then drops it, and the next get() asks again.
template <typename T, typename STORAGE = CELL<T>>
class KEPT_ANSWER
{
public:
    // Whether a valid answer could be read without waiting. If so, `answer` becomes this answer or a newer one.
    bool load(T& answer) const
    {
        return (state.load(std::memory_order_acquire) & known) != 0 && cell.load(answer);
    }

    // Identifies the changes so far. Take it before asking the store.
    std::uint64_t changes() const
    {
        return state.load(std::memory_order_acquire) & ~known;
    }

    // Keeps the store's answer, unless there was a change since `changes_before` was taken.
    void keep(T answer, std::uint64_t changes_before)
    {
        // One thread at a time writes the cell; the others give up. The writer tests for changes again when it is the
        // only one. Otherwise a late writer could overwrite a newer answer that is already valid.
        if (writing.exchange(true, std::memory_order_acquire))
            return;
        if (state.load(std::memory_order_relaxed) == changes_before && cell.store(std::move(answer)))
        {
            state.compare_exchange_strong(changes_before, changes_before | known, std::memory_order_release,
                                          std::memory_order_relaxed);
        }
        writing.store(false, std::memory_order_release);
    }

    // Counts a change: from now on no answer is valid.
    void forget()
    {
        std::uint64_t before = state.load(std::memory_order_relaxed);
        while (!state.compare_exchange_weak(before, (before & ~known) + one_change, std::memory_order_release,
                                            std::memory_order_relaxed))
        {
        }
    }

private:
    // The lowest bit says whether the cell holds a valid answer. The bits above count the changes, so no two changes
    // share a number.
    static constexpr std::uint64_t known = 1;
    static constexpr std::uint64_t one_change = 2;
    std::atomic<std::uint64_t> state{0};
    std::atomic<bool> writing{false};
    STORAGE cell;
};
}

// A cached variable of type T: bool, int, unsigned int, double or std::string. The object may be const. It cannot be
// copied or moved.
template <typename T>
class CFG_CACHED_VALUE final : public CFG_INI_CALLBACK
{
    static_assert(std::is_same_v<T, bool> || std::is_same_v<T, int> || std::is_same_v<T, unsigned int> ||
                      std::is_same_v<T, double> || std::is_same_v<T, std::string>,
                  "a variable is cached as bool, int, unsigned int, double or std::string");

public:
    // Registers under exactly this spelling, and reads nothing. The characters must outlive the object unchanged. A
    // null name throws std::logic_error and leaves the store's lock held, as for every CFG_INI_CALLBACK.
    CFG_CACHED_VALUE(const char* variable_name, T default_answer)
        : CFG_INI_CALLBACK(variable_name), name(variable_name), default_value(std::move(default_answer))
    {
    }

    // The variable's value, or the default if the value does not convert to T. Throws what the store's reader throws:
    // std::bad_alloc and, if it has to load the settings, the exceptions of the host's own functions.
    T get() const
    {
        T answer{};
        return kept.load(answer) ? answer : ask();
    }

    // For the store, which calls both with its lock held; not for hosts.
    void refresh() override
    {
        kept.forget();
    }

    void reset_to_default() override
    {
        kept.forget();
    }

private:
    // Asks the store. Not inlined, so that get() stays small where it is.
    __attribute__((noinline)) T ask() const
    {
        const std::uint64_t changes_before = kept.changes();
        T answer = CFG_CACHED_VALUE_DETAIL::ask_store(name, default_value);
        kept.keep(answer, changes_before);
        return answer;
    }

    const char* const name;
    const T default_value;
    mutable CFG_CACHED_VALUE_DETAIL::KEPT_ANSWER<T> kept;
};

// A default given as characters makes a cached std::string, so that no type has to be named.
CFG_CACHED_VALUE(const char*, const char*)->CFG_CACHED_VALUE<std::string>;

#endif
