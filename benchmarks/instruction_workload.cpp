// A fixed workload in sections, whose instructions scripts/check instructions counts. Run plainly it does the same work
// and counts nothing.
#include <valgrind/callgrind.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/generated_settings.h"
#include "benchmarks/settings_files_on_disk.h"
#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"

namespace
{
constexpr int rounds = 10'000;

// What the workload read, printed in the end: work with a visible result is not optimised away.
std::uint64_t sum = 0;

template <typename T>
void note(T value)
{
    sum += static_cast<std::uint64_t>(value);
}

// The instructions of `work` and nothing else go to the section.
template <typename WORK>
void section(const char* name, WORK work)
{
    work(); // what only a first call does
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    work();
    CALLGRIND_DUMP_STATS_AT(name);
    CALLGRIND_STOP_INSTRUMENTATION;
}

void look_up_hot_names()
{
    const std::string name = hot_name;
    for (int i = 0; i < rounds; ++i)
    {
        note(cfg_is_on(name, false));
        note(cfg_is_on(hot_name, false));
        note(cfg_get_int_value(name, 0));
        note(cfg_get_uint_value(name, 0));
    }
}

void look_up_texts_and_numbers()
{
    const std::string name = hot_name;
    for (int i = 0; i < rounds; ++i)
    {
        note(cfg_get_value(name).size());
        note(cfg_get_double_value(name, 0.0));
    }
}

void look_up(const std::vector<std::string>& names)
{
    for (const std::string& name : names)
        note(cfg_is_on(name, false));
}

void set_values()
{
    const std::string name = hot_name;
    const std::string values[] = {"1", "off", "/opt/tools/bin", "1"};
    for (int i = 0; i < rounds; ++i)
        cfg_set_value(name, values[i % 4]);
}

void report()
{
    std::vector<std::pair<std::string, std::string>> usages;
    cfg_get_most_accessed(&usages);
    note(usages.size());
}

void ask_modes_and_catalogue()
{
    bool global = false;
    int level = 0;
    for (int i = 0; i < rounds; ++i)
    {
        note(cfg_is_vexe_mode());
        note(cfg_is_on(CFG_INI_VAR_MSG_SQLITE));
        cfg_check_debug_ini_values(&global, nullptr, &level);
        note(level);
    }
}

void look_up_preferences()
{
    for (int i = 0; i < rounds / 10; ++i)
    {
        note(cfg_get_user_ini_value(SHOW_MESSAGE_ID).size());
        note(cfg_get_user_ini_value(HDL_PREFERENCE).size());
        note(cfg_get_user_ini_value("SHOW_MESSAGE_ID").size());
        note(cfg_get_user_ini_value("NO_SUCH_PREFERENCE").size());
    }
}

void assign_preferences()
{
    const std::string values[] = {"off", "on"};
    for (int i = 0; i < rounds / 10; ++i)
        cfg_set_user_ini_value(SHOW_MESSAGE_ID, values[i % 2]);
}
}

int main()
{
    setenv("VELMAR_INI_DISABLED", "1", 1);
    unsetenv("APPENDED_VELMAR_INI");
    unsetenv("VELMAR_INI_VARS");
    setenv("VELMAR2_INI", scratch_directory().c_str(), 1);

    const std::string& file_of_10_000 = file_of_lines(10'000).path;
    section("load_10000_lines",
            [&file_of_10_000]
            {
                cfg_close_ini_file();
                cfg_read_ini_file(file_of_10_000);
            });

    const std::string& file = file_for_lookups().path;
    const std::vector<std::string>& thousand = names_to_look_up(VALUE_KIND::BOOLEAN_WORD);
    const std::vector<std::string>& all = all_names_to_look_up();
    const std::vector<std::string> unknown = generate_unknown_names(2'000);
    cfg_read_ini_file(file);
    section("hot_lookups", look_up_hot_names);
    section("text_and_number_lookups", look_up_texts_and_numbers);
    section("shuffled_lookups", [&thousand] { look_up(thousand); });
    section("lookups_of_all_names", [&all] { look_up(all); });
    section("creating_misses",
            [first = unknown.begin()]() mutable
            {
                look_up({first, first + 1'000});
                first += 1'000;
            });
    section("misses", [&unknown] { look_up(unknown); });
    section("sets", set_values);
    section("modes_and_catalogue", ask_modes_and_catalogue);
    section("report_ten", report);
    cfg_set_int_value("cfg_max_to_report", -1);
    section("report_all", report);

    CFG_CACHED_VALUE<bool> cached(hot_name, false);
    section("cached_switch",
            [&cached]
            {
                for (int i = 0; i < rounds; ++i)
                    note(cached.get());
            });

    cfg_set_user_ini_value(SHOW_MESSAGE_ID, "off");
    cfg_write_and_close_user_ini_file(); // and the next access reads a file with one section
    section("preference_assignments", assign_preferences);
    section("preference_lookups", look_up_preferences);
    std::cout << sum << '\n';
    return 0;
}
