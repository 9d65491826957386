// A sequence of calls and file changes, coded in bytes, against a model: what each call answers, how often callbacks
// are told, whether there is a store, and at the end every record with its count and marks.
#include <array>
#include <cmath>
#include <memory>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/plain_variables.h"
#include "tests/support/plain_rules.h"

using namespace zon_cfg;

using fuzz::expect;
using fuzz::expect_equal;

namespace
{
constexpr std::array names = {"alpha",
                              "ALPHA",
                              "Alpha",
                              "beta",
                              "be ta",
                              "",
                              "cfg_min_accessed_to_report",
                              "cfg_max_to_report",
                              "debug_msg",
                              "Debug_Msg_Level",
                              "msg_debug_per_subsystem",
                              "msg_sqlite",
                              "MSG_SQLITE",
                              "noisy_debug_msg",
                              "NOISY_DEBUG_MSG_LEVEL",
                              "a_name_that_is_longer_than_a_short_string"};
constexpr std::array values = {"on", "OFF",   "1", "0",       "-1",   "2147483648",
                               "12", "2.5ms", "",  "\"a;b\"", "0x10", "maybe"};

enum FILE_NAME : unsigned int
{
    MAIN,
    REGTEST,
    APPENDED,
    FILE_COUNT
};

// A callback that counts, and reads its variable when told of a store.
class COUNTER : public CFG_INI_CALLBACK
{
public:
    explicit COUNTER(const char* variable) : CFG_INI_CALLBACK(variable), name(variable) {}

    void refresh() override
    {
        ++refreshes;
        seen = cfg_get_value(name);
    }

    void reset_to_default() override
    {
        ++resets;
    }

    const std::string name;
    int refreshes = 0;
    int resets = 0;
    std::string seen;

    int expected_refreshes = 0;
    int expected_resets = 0;
    std::string expected_seen;
};

class SEQUENCE
{
public:
    explicit SEQUENCE(fuzz::INPUT bytes) : input(bytes)
    {
        cfg_close_ini_file();
        unsetenv("APPENDED_VELMAR_INI");
        unsetenv("VELMAR_INI_VARS");
        for (unsigned int file = MAIN; file < FILE_COUNT; ++file)
            fuzz::remove_file(path(file));
    }

    void run()
    {
        while (!input.empty())
        {
            step();
            expect_equal(cfg_ini_file.load() != nullptr, exists, "whether there is a store");
            expect_equal(cfg_ini_dirty, dirty, "whether variables changed");
        }
        if (exists)
            variables.expect_same_store();
        for (const auto& counter : counters)
        {
            expect_equal(counter->refreshes, counter->expected_refreshes, "refreshes of " + counter->name);
            expect_equal(counter->resets, counter->expected_resets, "resets of " + counter->name);
            expect_equal(counter->seen, counter->expected_seen, "value seen for " + counter->name);
        }
    }

private:
    // --- The model ---

    void close()
    {
        if (exists)
        {
            for (const auto& counter : counters)
                ++counter->expected_resets;
        }
        exists = false;
        dirty = true;
    }

    void store(const std::string& name, const std::string& value, bool external)
    {
        need_store();
        variables.store(name, value, external);
        for (const auto& counter : counters)
        {
            if (counter->name == name)
            {
                ++counter->expected_refreshes;
                counter->expected_seen = variables.text(name);
            }
        }
        dirty = true;
    }

    void lay(FILE_NAME file, bool external)
    {
        if (!files[file])
            return;
        last_paths()[file] = path(file);
        for (const auto& [name, value] : plain::assignments_of_file(*files[file]))
            store(name, value, external);
    }

    void lay_inline(const std::string& text, bool external)
    {
        for (const auto& [name, value] : plain::assignments_of_inline_text(text))
            store(name, value, external);
    }

    void read()
    {
        close();
        exists = true;
        variables = {};
        lay(MAIN, true);
        if (appended_wanted)
            lay(APPENDED, false);
        lay_inline(inline_variables, true);
    }

    void need_store()
    {
        if (!exists)
            read();
    }

    PLAIN_VARIABLES& variables_read()
    {
        need_store();
        return variables;
    }

    // --- Taking the input apart ---

    std::string name()
    {
        return names[input.below(names.size())];
    }

    std::string value()
    {
        const unsigned int choice = input.below(values.size() + 1);
        return choice < values.size() ? values[choice] : input.text();
    }

    // Some lines or items of an assignment, with whatever else.
    std::string assignments(const std::string& separator)
    {
        std::string bytes;
        for (unsigned int count = input.below(5); count > 0; --count)
            bytes += (input.below(8) == 0 ? input.text() : name() + " = " + value()) + separator;
        return bytes;
    }

    static std::string path(unsigned int file)
    {
        static const std::array<std::string, FILE_COUNT> paths = {
            fuzz::directory() + "/velmar.ini", fuzz::directory() + "/regtest.ini", fuzz::directory() + "/appended.ini"};
        return paths[file];
    }

    // The paths last opened, which outlive every store.
    static std::array<std::string, FILE_COUNT>& last_paths()
    {
        static std::array<std::string, FILE_COUNT> paths;
        return paths;
    }

    // --- The steps ---

    void step()
    {
        switch (input.below(5))
        {
        case 0:
            set();
            break;
        case 1:
        case 2:
            get();
            break;
        case 3:
            report();
            break;
        default:
            change();
        }
    }

    void set()
    {
        const std::string variable = name();
        const unsigned int how = input.below(8);
        switch (how)
        {
        case 0:
        case 1:
            if (how == 0)
                cfg_set_on(variable);
            else
                cfg_set_off(variable);
            store(variable, how == 0 ? "on" : "off", false);
            break;
        case 2:
        {
            const int number = static_cast<int>(input.below(256)) * 8000000 - 1000000000;
            cfg_set_int_value(variable.c_str(), number);
            store(variable, std::to_string(number), false);
            break;
        }
        case 3:
        {
            const bool internal = input.flag();
            const std::string text = assignments(input.flag() ? ";" : ":");
            cfg_process_ini_string(text, internal);
            lay_inline(text, !internal);
            break;
        }
        case 4:
        {
            const std::string text = value();
            cfg_set_value(CFG_INI_VAR_MSG_SQLITE, text.c_str());
            store("msg_sqlite", text.c_str(), false);
            break;
        }
        default:
        {
            const std::string text = value();
            cfg_set_value(variable, text);
            store(variable, text, false);
        }
        }
    }

    void get()
    {
        const std::string variable = name();
        switch (input.below(12))
        {
        case 0:
            expect_equal(cfg_is_on(variable, true), variables_read().boolean(variable).value_or(true), variable);
            break;
        case 1:
            expect_equal(cfg_is_on(variable.c_str(), false), variables_read().boolean(variable).value_or(false),
                         variable);
            break;
        case 2:
            expect_equal(cfg_get_int_value(std::string_view(variable), 5),
                         variables_read().integer(variable).value_or(5), variable);
            break;
        case 3:
            expect_equal(cfg_get_uint_value(variable, 6), variables_read().unsigned_integer(variable).value_or(6),
                         variable);
            break;
        case 4:
            expect_equal(cfg_get_value(variable), variables_read().text(variable), variable);
            break;
        case 5:
            get_double(variable);
            break;
        case 6:
            expect(cfg_get_value_as<int>(variable) == variables_read().integer(variable), variable);
            break;
        case 7:
            expect(cfg_get_value_as<bool>(variable.c_str()) == variables_read().boolean(variable), variable);
            break;
        case 8:
            get_for_zanth(variable);
            break;
        case 9:
            expect_equal(cfg_is_on(variable),
                         variables_read().boolean(variable).value_or(catalogued_default(variable) == "on"), variable);
            break;
        case 10:
            get_catalogued();
            break;
        default:
            expect_equal(cfg_ini_is_external(variable), exists && variables.is_external(variable), variable);
        }
    }

    static std::string catalogued_default(const std::string& variable)
    {
        return variable == "msg_sqlite" ? cfg_get_default_value(CFG_INI_VAR_MSG_SQLITE) : "";
    }

    void get_catalogued()
    {
        const std::string answer = cfg_get_value(CFG_INI_VAR_MSG_SQLITE);
        const std::string text = variables_read().text("msg_sqlite");
        expect_equal(answer, text.empty() ? catalogued_default("msg_sqlite") : text, "msg_sqlite");
    }

    void get_double(const std::string& variable)
    {
        const double answer = cfg_get_double_value(variable, 0.25);
        const double expected = variables_read().floating(variable).value_or(0.25);
        expect(answer == expected || (std::isnan(answer) && std::isnan(expected)), variable);
    }

    void get_for_zanth(const std::string& variable)
    {
        // One byte behind the size that is told is the callers' custom, and no more.
        const unsigned int size = input.below(16);
        const std::unique_ptr<char[]> buffer(new char[size + 1]());
        const char* const characters = variable.c_str();
        const int answer = cfg_ini_get_value_for_zanth(nullptr, &characters, buffer.get(), size);
        if (variable.empty())
        {
            expect_equal(answer, -1, "no name");
            return;
        }
        const std::string text = variables_read().text(variable);
        expect_equal(answer, size >= text.size() ? 0 : static_cast<int>(text.size()), variable);
        if (answer == 0)
            expect_equal(std::string(buffer.get()), std::string(text.c_str()), variable);
    }

    void report()
    {
        std::map<std::string, std::string> map;
        switch (input.below(5))
        {
        case 0:
            cfg_get_used_variable_value_map(&map);
            expect(map == (exists ? variables.used() : map_of_nothing), "used variables");
            break;
        case 1:
            cfg_get_external_variable_value_map(&map);
            expect(map == (exists ? variables.externals() : map_of_nothing), "external variables");
            break;
        case 2:
        {
            std::vector<std::pair<std::string, std::string>> ranks;
            cfg_get_most_accessed(&ranks);
            expect(ranks == variables_read().most_accessed(), "ranks");
            break;
        }
        case 3:
        {
            std::string most;
            std::string text;
            const std::uint64_t count = cfg_get_single_most_accessed_ini(most, text);
            (exists ? variables : PLAIN_VARIABLES()).expect_single_most_accessed(count, most, text);
            break;
        }
        default:
            debug_settings();
        }
    }

    void debug_settings()
    {
        bool global = false;
        bool per_subsystem = false;
        int level = 0;
        cfg_check_debug_ini_values(&global, &per_subsystem, &level);
        need_store();
        if (!dirty)
            return;
        dirty = false;
        expect_equal(global, variables.boolean("debug_msg").value_or(false), "debug_msg");
        expect_equal(per_subsystem, variables.boolean("msg_debug_per_subsystem").value_or(false), "per subsystem");
        expect_equal(level, variables.integer("debug_msg_level").value_or(2), "level");
    }

    void change()
    {
        switch (input.below(9))
        {
        case 0:
            cfg_close_ini_file();
            close();
            break;
        case 1:
            change_file(static_cast<FILE_NAME>(input.below(FILE_COUNT)));
            break;
        case 2:
            cfg_read_ini_file(path(MAIN));
            read();
            break;
        case 3:
            cfg_read_regtest_ini_file(path(REGTEST));
            lay(REGTEST, false);
            break;
        case 4:
        {
            const bool regtest = input.flag();
            cfg_read_project_ini_file(fuzz::directory().c_str(), regtest);
            read();
            if (regtest)
                lay(REGTEST, false);
            break;
        }
        case 5:
            change_environment();
            break;
        case 6:
            if (counters.size() < 4)
                counters.push_back(std::make_unique<COUNTER>(names[input.below(names.size())]));
            break;
        case 7:
            if (!counters.empty())
                counters.erase(counters.begin() +
                               static_cast<int>(input.below(static_cast<unsigned int>(counters.size()))));
            break;
        default:
            if (exists)
            {
                cfg_read_and_append_environment_ini_file(path(APPENDED));
                lay(APPENDED, false);
            }
        }
        expect_equal(std::string(cfg_get_ini_file_path_name()), last_paths()[MAIN], "main path");
        expect_equal(std::string(cfg_get_regtest_ini_file_path_name()), last_paths()[REGTEST], "regtest path");
        expect_equal(std::string(cfg_get_appended_envrionment_ini_file_path_name()), last_paths()[APPENDED],
                     "appended");
    }

    // New bytes, no file, or a directory in its place, which opens and has no lines.
    void change_file(FILE_NAME file)
    {
        const unsigned int how = input.below(8);
        if (how == 0)
        {
            fuzz::remove_file(path(file));
            files[file].reset();
        }
        else if (how == 1)
        {
            fuzz::make_directory(path(file));
            files[file] = "";
        }
        else
        {
            files[file] = assignments("\n");
            fuzz::write_file(path(file), *files[file]);
        }
    }

    void change_environment()
    {
        appended_wanted = input.flag();
        if (appended_wanted)
            setenv("APPENDED_VELMAR_INI", path(APPENDED).c_str(), 1);
        else
            unsetenv("APPENDED_VELMAR_INI");
        inline_variables = assignments(";").c_str(); // the environment ends it at a zero
        setenv("VELMAR_INI_VARS", inline_variables.c_str(), 1);
    }

    inline static const std::map<std::string, std::string> map_of_nothing;

    fuzz::INPUT input;
    bool exists = false;
    bool dirty = true;
    PLAIN_VARIABLES variables;
    std::vector<std::unique_ptr<COUNTER>> counters;
    std::array<std::optional<std::string>, FILE_COUNT> files;
    bool appended_wanted = false;
    std::string inline_variables;
};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::directory();
    SEQUENCE(fuzz::INPUT(data, size)).run();
    return 0;
}
