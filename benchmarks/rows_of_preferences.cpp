// The user preference store, over a file that gives a value to nearly every key.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <type_traits>

#include "benchmarks/rows.h"
#include "benchmarks/settings_files_on_disk.h"
#include "cfg_ini/cfg_ini.h"

namespace
{
// What the file holds at a row's start.
enum class PREFERENCES
{
    OF_THIS_RELEASE, // all keys but one, in the running release's sections
    NONE,            // no section at all
};

constexpr CFG_USER_INI_ENUMS with_value = SHOW_MESSAGE_ID;
constexpr CFG_USER_INI_ENUMS with_long_value = EDA_TOOL_PATH_QUESTASIM;
constexpr CFG_USER_INI_ENUMS without_value = HDL_PREFERENCE; // has a default; others of its section are in the file
constexpr const char* long_value = "/opt/eda/tools/simulators/linux_x86_64/bin";
constexpr auto no_preference = static_cast<CFG_USER_INI_ENUMS>(39);

// Makes the file, and unloads it again; how many keys it holds.
std::size_t write_file_of_this_release()
{
    std::size_t keys = 0;
    for (int number = 0; number < CFG_USER_INI_ENUMS_END; ++number)
    {
        const auto preference = static_cast<CFG_USER_INI_ENUMS>(number);
        if (preference == without_value)
            continue;
        const char* const first_choice = preference == with_long_value ? long_value : "off";
        if (cfg_set_user_ini_value(preference, first_choice) || cfg_set_user_ini_value(preference, "0"))
            ++keys;
    }
    cfg_write_and_close_user_ini_file();
    return keys;
}

// Loads the preferences wanted, unless they are loaded. What assignments changed stays changed. How many keys there
// are.
std::size_t use(PREFERENCES wanted)
{
    static const std::string with_file = scratch_directory() + "/preferences";
    static const std::string without_file = scratch_directory() + "/no_preferences";
    static std::size_t keys = 0;
    static const std::string* current = nullptr;

    const std::string* const directory = wanted == PREFERENCES::OF_THIS_RELEASE ? &with_file : &without_file;
    if (current == directory)
        return keys;
    if (current != nullptr)
        cfg_write_and_close_user_ini_file();
    std::filesystem::create_directory(*directory);
    setenv("VELMAR2_INI", directory->c_str(), 1);
    if (wanted == PREFERENCES::OF_THIS_RELEASE && keys == 0)
        keys = write_file_of_this_release();
    current = directory;
    return keys;
}

template <typename WHICH>
void lookup(benchmark::State& state, PREFERENCES preferences, WHICH which, const char* expected)
{
    use(preferences);
    if (cfg_get_user_ini_value(which) != expected)
        state.SkipWithError("not the value that the row is about");
    for (auto _ : state)
        benchmark::DoNotOptimize(cfg_get_user_ini_value(which));
}

template <typename WHICH>
void assignment(benchmark::State& state, WHICH which)
{
    use(PREFERENCES::OF_THIS_RELEASE);
    const std::string texts[] = {"on", "off"}; // ends as it began
    while (state.KeepRunningBatch(2))
    {
        for (const std::string& text : texts)
        {
            if constexpr (std::is_same_v<WHICH, const char*>)
                benchmark::DoNotOptimize(cfg_set_user_ini_value(which, text.c_str()));
            else
                benchmark::DoNotOptimize(cfg_set_user_ini_value(which, text));
        }
    }
}

void save(benchmark::State& state)
{
    const std::size_t keys = use(PREFERENCES::OF_THIS_RELEASE);
    benchmark::DoNotOptimize(cfg_get_user_ini_value(with_value)); // loaded
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(keys)))
    {
        if (!cfg_write_user_ini_file())
            state.SkipWithError("the file cannot be written");
    }
}

void load(benchmark::State& state)
{
    const std::size_t keys = use(PREFERENCES::OF_THIS_RELEASE);
    while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(keys)))
    {
        state.PauseTiming();
        cfg_write_and_close_user_ini_file();
        state.ResumeTiming();
        benchmark::DoNotOptimize(cfg_get_user_ini_value(with_value));
    }
}
}

void add_rows_of_preferences()
{
    constexpr auto present = PREFERENCES::OF_THIS_RELEASE;
    constexpr auto absent = PREFERENCES::NONE;
    using BY_NUMBER = CFG_USER_INI_ENUMS;
    using BY_NAME = const char*;

    add_row(work_preference_present, ours, lookup<BY_NUMBER>, present, with_value, "off");
    add_row(work_preference_long, ours, lookup<BY_NUMBER>, present, with_long_value, long_value);
    add_row(work_preference_default, ours, lookup<BY_NUMBER>, present, without_value, "Verilog");
    add_row(work_preference_no_section, ours, lookup<BY_NUMBER>, absent, without_value, "Verilog");
    add_row(work_preference_unknown, ours, lookup<BY_NUMBER>, present, no_preference, "");
    add_row(work_preference_present_by_name, ours, lookup<BY_NAME>, present, "SHOW_MESSAGE_ID", "off");
    add_row(work_preference_default_by_name, ours, lookup<BY_NAME>, present, "HDL_PREFERENCE", "Verilog");
    add_row(work_preference_unknown_by_name, ours, lookup<BY_NAME>, present, "NO_SUCH_PREFERENCE", "");
    add_row(work_assignment, ours, assignment<BY_NUMBER>, with_value);
    add_row(work_assignment_by_name, ours, assignment<BY_NAME>, "SHOW_MESSAGE_ID");
    add_row(work_preference_save, ours, save);
    add_row(work_preference_load, ours, load);
}
