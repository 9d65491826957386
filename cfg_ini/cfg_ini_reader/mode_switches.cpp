// Questions about how the host runs, each answered from a variable once and remembered, and the debug-message settings,
// which follow their variables.
//
// A remembered answer is one atomic byte, so that asking again costs one load and takes no lock. There are two kinds:
//   - the JTAG and benchmarking questions: racing first callers may each compute the answer, and so emit the message
//     about benchmarking more than once;
//   - the modes: racing first callers wait for one computation, which runs under the store's lock. Forcing the modes
//     off is kept apart from the answers, so that a mode first asked afterwards still reads, and counts, its variable.
// An answer is remembered as the last step. A failure in between, such as a lack of memory, leaves the question open.
//
// The debug-message settings are cached as well. The flag cfg_ini_dirty, which every store sets, says when to read them
// again. It is cleared only after all three are read, so that a failure in between leaves it set. While nothing
// changes, a call costs one lock.
#include <atomic>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/debug_message.h"
#include "cfg_ini/cfg_ini_reader/own_variables.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_access.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"

namespace zon_cfg
{
namespace
{
// Set once by the host, never cleared.
constinit std::atomic<bool> cfg_force_vexe_mode_off_var = false;
constinit std::atomic<bool> cfg_vexe_ini_applied_var = false;

// The answer of a question that is asked of the settings once.
enum class ANSWER : unsigned char
{
    UNKNOWN,
    NO,
    YES
};
using REMEMBERED_ANSWER = std::atomic<ANSWER>;

ANSWER answer_of(bool yes)
{
    return yes ? ANSWER::YES : ANSWER::NO;
}

// Racing first callers may each compute the answer; intended, the question is not worth a lock.
bool answer_of_variable(REMEMBERED_ANSWER& remembered, const char* variable, void (*when_first_on)() = nullptr)
{
    if (const ANSWER answer = remembered.load(std::memory_order_acquire); answer != ANSWER::UNKNOWN) [[likely]]
        return answer == ANSWER::YES;
    const bool value = cfg_is_on(variable);
    if (value && when_first_on != nullptr)
        when_first_on();
    remembered.store(answer_of(value), std::memory_order_release);
    return value;
}

// Racing first callers wait for one computation, under the store's own lock. A separate guard could cause a deadlock: a
// callback, which holds the lock, would wait for the guard, and the owner of the guard for the lock.
[[gnu::noinline]] ANSWER decide_mode_once(REMEMBERED_ANSWER& mode, const char* disabling_variable)
{
    const STORE_LOCK lock;
    ANSWER decided = mode.load(std::memory_order_relaxed);
    if (decided != ANSWER::UNKNOWN)
        return decided;
    const bool value = !cfg_is_on(disabling_variable);
    // The answer is known by now if the lookup loaded the settings, and a callback of that load asked the same
    // question.
    decided = mode.load(std::memory_order_relaxed);
    if (decided == ANSWER::UNKNOWN)
    {
        decided = answer_of(value);
        mode.store(decided, std::memory_order_release);
    }
    return decided;
}

// A mode is on unless its disabling variable is, or all modes were forced off.
[[gnu::always_inline]] inline bool mode_not_disabled_by(REMEMBERED_ANSWER& mode, const char* disabling_variable)
{
    ANSWER answer = mode.load(std::memory_order_acquire);
    if (answer == ANSWER::UNKNOWN) [[unlikely]]
        answer = decide_mode_once(mode, disabling_variable);
    return answer == ANSWER::YES && !cfg_force_vexe_mode_off_var.load(std::memory_order_relaxed);
}

struct DEBUG_SETTINGS
{
    bool global = false;
    bool per_subsystem = false;
    int global_level = -1;
};

// As last read.
constinit DEBUG_SETTINGS debug_settings ZON_GUARDED;

// Each read takes the lock again.
DEBUG_SETTINGS current_debug_settings()
{
    const auto read_if_changed = [](const STORE_LOCK& /*held*/) ZON_LOCK_HELD
    {
        if (cfg_ini_dirty)
        {
            debug_settings.global = cfg_is_on(OWN_VARIABLE::debug_msg);
            debug_settings.per_subsystem = cfg_is_on(OWN_VARIABLE::msg_debug_per_subsystem);
            debug_settings.global_level = cfg_get_int_value(OWN_VARIABLE::debug_msg_level, 2);
            cfg_ini_dirty = false;
        }
        return debug_settings;
    };
    return with_loaded_store<STORE_LOCK>(read_if_changed);
}
}
}

using namespace zon_cfg;

void cfg_force_vexe_mode_off()
{
    cfg_force_vexe_mode_off_var.store(true, std::memory_order_relaxed);
}

void cfg_vexe_ini_applied()
{
    cfg_vexe_ini_applied_var.store(true, std::memory_order_relaxed);
}

bool cfg_is_vexe_ini_applied()
{
    return cfg_vexe_ini_applied_var.load(std::memory_order_relaxed);
}

bool cfg_jtag_auto_config()
{
    static constinit REMEMBERED_ANSWER answer = ANSWER::UNKNOWN;
    return answer_of_variable(answer, OWN_VARIABLE::jtag_auto_config);
}

bool cfg_is_jtag_server_mode()
{
    static constinit REMEMBERED_ANSWER answer = ANSWER::UNKNOWN;
    return answer_of_variable(answer, OWN_VARIABLE::jtag_server_mode);
}

bool cfg_is_benchmarking_mode()
{
    static constinit REMEMBERED_ANSWER answer = ANSWER::UNKNOWN;
    return answer_of_variable(answer, OWN_VARIABLE::enable_benchmarking_mode,
                              [] { ini_debug_message("Benchmarking Mode Enabled"); });
}

bool cfg_is_vexe_mode()
{
    static constinit REMEMBERED_ANSWER mode = ANSWER::UNKNOWN;
    return mode_not_disabled_by(mode, OWN_VARIABLE::disable_vexe_mode);
}

bool cfg_is_vexe_cmd_mode()
{
    static constinit REMEMBERED_ANSWER mode = ANSWER::UNKNOWN;
    return mode_not_disabled_by(mode, OWN_VARIABLE::disable_vexe_cmd_mode);
}

bool cfg_is_vexe_rpt_mode()
{
    static constinit REMEMBERED_ANSWER mode = ANSWER::UNKNOWN;
    return mode_not_disabled_by(mode, OWN_VARIABLE::disable_vexe_rpt_mode);
}

void cfg_check_debug_ini_values(bool* global, bool* per_subsystem, int* global_level)
{
    // A copy, so that the caller's variables are written without the lock.
    const DEBUG_SETTINGS settings = current_debug_settings();
    if (global != nullptr)
        *global = settings.global;
    if (per_subsystem != nullptr)
        *per_subsystem = settings.per_subsystem;
    if (global_level != nullptr)
        *global_level = settings.global_level;
}
