// The store under load: eight threads look up, store, report and register callbacks beside one that empties and
// rereads, and every count must come out exactly. For two seconds, or as many as ZON_LOAD_SECONDS says. Over the plain
// platform services, so that the thread sanitizer sees what hosts would see.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "tests/support/isolated_test.h"
#include "tests/support/threads.h"

using namespace zon_cfg;

namespace
{
constexpr int variable_count = 50;

std::string variable(int number)
{
    return "variable_" + std::to_string(number);
}

int load_seconds()
{
    const char* const text = std::getenv("ZON_LOAD_SECONDS");
    return text != nullptr ? std::max(1, std::atoi(text)) : 2;
}

// Told of a variable that the settings file sets and the program does not: once for each reading. Its numbers are
// ordered by the store's lock.
class READINGS : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        ++readings;
    }
    void reset_to_default() override
    {
        ++emptyings;
    }
    std::uint64_t readings = 0;
    std::uint64_t emptyings = 0;
};

// Told of what the program stores; looks a variable up each time, with the lock held.
class STORES : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        ++stores;
        EXPECT_EQ(cfg_get_int_value("variable_1", -1), 1);
    }
    std::uint64_t stores = 0;
};

class STORE_LOAD_TEST : public ISOLATED_TEST
{
protected:
    STORE_LOAD_TEST()
    {
        cfg_close_ini_file();
        // Reports list every variable.
        std::string text = "cfg_min_accessed_to_report=0\ncfg_max_to_report=-1\n";
        for (int i = 0; i < variable_count; ++i)
            text += variable(i) + "=" + std::to_string(i) + "\n";
        write_file(main_file, text);
        write_file(temporary.path("appended.ini"), "appended=1\n");
        environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
        environment.set("VELMAR_INI_VARS", "inline=1");
    }

    ~STORE_LOAD_TEST() override
    {
        cfg_close_ini_file();
    }

    // Looks every variable up once, by one form after the other; each lookup is one counted access.
    void look_up()
    {
        for (int i = 0; i < variable_count; ++i)
        {
            const std::string name = variable(i);
            switch (i % 5)
            {
            case 0:
                EXPECT_EQ(cfg_get_int_value(name, -1), i);
                break;
            case 1:
                EXPECT_EQ(cfg_get_value(name.c_str()), std::to_string(i));
                break;
            case 2:
                EXPECT_EQ(cfg_get_double_value("VARIABLE_" + std::to_string(i), -1), i);
                break;
            case 3:
                EXPECT_EQ(cfg_get_value_as<int>(name), i);
                break;
            default:
                EXPECT_EQ(cfg_get_uint_value(name, 1000), static_cast<unsigned int>(i));
                break;
            }
        }
        lookups += variable_count;
    }

    void store()
    {
        cfg_set_value("stored", "a text that is too long to be kept in place");
        cfg_set_int_value("stored", 7);
        cfg_process_ini_string("stored=1;inline=2", true);
        stores += 3;
    }

    static void report()
    {
        std::map<std::string, std::string> variables;
        cfg_get_used_variable_value_map(&variables);
        for (const auto& [name, value] : variables)
            EXPECT_NE(value, "") << name;
        cfg_get_external_variable_value_map(&variables);
        std::string name;
        std::string value;
        cfg_get_single_most_accessed_ini(name, value);
        int level = -1;
        cfg_check_debug_ini_values(nullptr, nullptr, &level);
        EXPECT_EQ(level, 2);
    }

    static void register_callbacks()
    {
        const CFG_INI_CALLBACK passing("stored");
        const CFG_INI_CALLBACK another("variable_1");
    }

    // Adds up what a report says of the lookups. The caller holds the lock.
    void add_report()
    {
        std::vector<std::pair<std::string, std::string>> ranks;
        cfg_get_most_accessed(&ranks);
        for (const auto& [name, count] : ranks)
        {
            if (name.starts_with("variable_"))
                reported += std::stoull(count);
        }
    }

    // A report of what is about to be forgotten, and a new start: one after the other by emptying alone, so that the
    // next lookup of any thread reads, by reading, and by reading a project's files.
    void reread(std::uint64_t round)
    {
        const STORE_LOCK lock; // no lookup between the report and the emptying
        if (cfg_ini_file.load() != nullptr)
            add_report();
        if (round % 3 == 0)
            cfg_close_ini_file();
        else if (round % 3 == 1)
            cfg_read_ini_file(main_file);
        else
            cfg_read_project_ini_file(temporary.path("cwd").c_str(), true);
    }

    const std::string main_file = temporary.path("cwd/velmar.ini");
    std::atomic<std::uint64_t> lookups = 0;
    std::atomic<std::uint64_t> stores = 0;
    std::uint64_t reported = 0;
};

TEST_F(STORE_LOAD_TEST, every_lookup_is_reported_and_every_store_and_reading_told)
{
    const READINGS readings("variable_0");
    const STORES told("stored");
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(load_seconds());
    std::uint64_t rounds = 0;

    const auto looking_up = [this] { look_up(); };
    const auto storing = [this] { store(); };
    run_while({looking_up, looking_up, looking_up, looking_up, storing, storing, report, register_callbacks},
              [&]
              {
                  for (; std::chrono::steady_clock::now() < end; ++rounds)
                  {
                      reread(rounds);
                      std::this_thread::yield();
                  }
              });
    look_up(); // there is a store now, whichever way the last round left it
    add_report();

    EXPECT_EQ(told.stores, stores);
    EXPECT_EQ(reported, lookups + told.stores) << "a callback looks up once for each store";
    EXPECT_EQ(readings.readings, readings.emptyings + 1) << "each store but the last was emptied";
    EXPECT_GT(readings.emptyings, 0U);
    if (std::getenv("ZON_LOAD_SECONDS") != nullptr)
    {
        std::printf("%llu lookups, %llu stores, %llu rereadings\n", static_cast<unsigned long long>(lookups.load()),
                    static_cast<unsigned long long>(stores.load()), static_cast<unsigned long long>(readings.readings));
    }
}
}
