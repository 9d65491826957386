// A cached switch for hot loops: an internal variable that is read once and then answers from memory, without the
// store's lock, until the variable changes.
//
//     static CFG_CACHED_VALUE<bool> trace_moves("trace_moves", false);
//     ...
//     if (trace_moves.get())      // two loads; asks the store only at first use and after a change
//
// What it answers. As long as nothing changes, what the store's own reader answers: CFG_CACHED_VALUE<bool> as
// cfg_is_on(name, default), <int> as cfg_get_int_value, <unsigned int> as cfg_get_uint_value, <double> as
// cfg_get_double_value, and <std::string> as cfg_get_value, with the default in place of an empty text.
//
// What it follows. Each store under exactly its name, and each emptying or rereading of the settings: when the
// function that stored or emptied has returned, every get() that begins later answers from the new state. It is told
// of the change and asks again at the next get(), so variables that nobody asks for are not read.
//
// What it cannot see.
//   * A store under another letter case of the name ("Trace_Moves"): it reaches the same variable, but the library
//     notifies exact spellings only. The old answer then stays until the next store under this spelling, or the next
//     rereading. Settings files count as well: a later line in another letter case is not seen if a get() came between.
//   * Within one change, what other CFG_INI_CALLBACK objects see: one that is told before this object, and asks it from
//     within its notification, gets the old answer; and one that asks it from within reset_to_default() while settings
//     are reread makes it keep an answer of the settings before. Ask the store's own readers there.
//
// What it does to the usage counts. Only a get() that asks the store counts as an access (a first get() of an unset
// variable is not counted, as for every reader). A switch asked for a million times shows one access per change, so
// the ranked report tells that a run asked, not how often. A get() during whose reading the variable changes (the very
// first one too, if it is what makes the settings files be read) leaves the next get() to ask, and count, once more.
//
// Threads. get() may be called from any thread, and from notifications but for the cases above. It takes the store's
// lock only when it asks; the notifications only mark the answer as unknown, and nothing here waits for another thread.
// A text that other threads copy at that moment is asked for, and counted, like an unknown one. As for every
// CFG_INI_CALLBACK, no other thread may store the variable or reread the settings while the object is being destroyed.
//
// fork. A child may ask any of these objects. One that another thread of the parent was using at that moment may ask
// the store at each get() in the child: right, and slower. In a child that starts without a store (see the public
// header) the objects answer as in the parent until the store itself is used, which loads the settings.
//
// Static objects. Constructing registers the object and reads nothing, so it may be done at load, in libraries that
// are loaded and unloaded at run time as well, in any order relative to other static objects that do not themselves
// call get(). One that is to be asked by other static initialisers belongs in a header as an inline variable, or in a
// function as a local static.
//
// The header stands on the public one and compiles as C++17.
#ifndef CFG_INI_CFG_CACHED_VALUE_H
#define CFG_INI_CFG_CACHED_VALUE_H

#include <atomic>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

#include "cfg_ini/cfg_ini.h"

namespace CFG_CACHED_VALUE_DETAIL
{
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

// A number that one thread writes at a time and any thread reads.
template <typename T>
class CELL
{
    static_assert(std::atomic<T>::is_always_lock_free);

public:
    // Both answer whether they did it: always.
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

// A text likewise, under a flag that is held while the text is copied. Nobody waits for the flag for long: the child of
// a fork may find it taken by a thread that the child does not have, and then it stays taken.
template <typename TEXT>
class TEXT_CELL
{
public:
    // Both answer whether they did it: not if the flag stayed taken.
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

// An answer of the store, as long as it is one. Any thread may call any of it; nobody waits.
template <typename T, typename STORAGE = CELL<T>>
class KEPT_ANSWER
{
public:
    // Whether an answer is known and could be had without waiting; `answer` then becomes it, or a newer one.
    bool load(T& answer) const
    {
        return (state.load(std::memory_order_acquire) & known) != 0 && cell.load(answer);
    }

    // Stands for the changes so far; to be taken before the store is asked.
    std::uint64_t changes() const
    {
        return state.load(std::memory_order_acquire) & ~known;
    }

    // Keeps what the store answered, unless there was a change since `changes_before` was taken.
    void keep(T answer, std::uint64_t changes_before)
    {
        // One thread writes the cell at a time; the others let it go. The writer looks for changes again once it is the
        // only one: otherwise a late writer could overwrite the answer of a newer one that is already known.
        if (writing.exchange(true, std::memory_order_acquire))
            return;
        if (state.load(std::memory_order_relaxed) == changes_before && cell.store(std::move(answer)))
        {
            state.compare_exchange_strong(changes_before, changes_before | known, std::memory_order_release,
                                          std::memory_order_relaxed);
        }
        writing.store(false, std::memory_order_release);
    }

    // Counts a change: no answer is known.
    void forget()
    {
        std::uint64_t before = state.load(std::memory_order_relaxed);
        while (!state.compare_exchange_weak(before, (before & ~known) + one_change, std::memory_order_release,
                                            std::memory_order_relaxed))
        {
        }
    }

private:
    // The number of changes, above one bit that says whether the cell answers. No number comes twice.
    static constexpr std::uint64_t known = 1;
    static constexpr std::uint64_t one_change = 2;
    std::atomic<std::uint64_t> state{0};
    std::atomic<bool> writing{false};
    STORAGE cell;
};
}

// T is bool, int, unsigned int, double or std::string. May be declared const.
template <typename T>
class CFG_CACHED_VALUE final : public CFG_INI_CALLBACK
{
    static_assert(std::is_same_v<T, bool> || std::is_same_v<T, int> || std::is_same_v<T, unsigned int> ||
                      std::is_same_v<T, double> || std::is_same_v<T, std::string>,
                  "a variable is cached as bool, int, unsigned int, double or std::string");

public:
    // Registers under exactly this spelling. The characters must outlive the object unchanged; null throws
    // std::logic_error with the store's lock held, as for every CFG_INI_CALLBACK.
    CFG_CACHED_VALUE(const char* variable_name, T default_answer)
        : CFG_INI_CALLBACK(variable_name), name(variable_name), default_value(std::move(default_answer))
    {
    }

    // The variable's value, or the default when it has none that converts to T. Throws what the store's reader throws
    // (std::bad_alloc).
    T get() const
    {
        T answer{};
        return kept.load(answer) ? answer : ask();
    }

    // Called by the store, with its lock held.
    void refresh() override
    {
        kept.forget();
    }

    // Called by the store, with its lock held.
    void reset_to_default() override
    {
        kept.forget();
    }

private:
    // Out of line, so that get() stays small where it is inlined.
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

// A default given as characters makes a text.
CFG_CACHED_VALUE(const char*, const char*)->CFG_CACHED_VALUE<std::string>;

#endif
