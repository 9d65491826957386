// An isolated test of the internal variable store over the fakes. It begins without a store and ends without one, and
// with the store's lock free.
#ifndef TESTS_SUPPORT_STORE_TEST_H
#define TESTS_SUPPORT_STORE_TEST_H

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/faked_test.h"

using ASSIGNMENTS = std::map<std::string, std::string>;

// The library's message for a null name or value, with any standard library.
constexpr std::string_view message_of_null_text = "basic_string: construction from null is not valid";

class STORE_TEST : public FAKED_TEST
{
protected:
    ~STORE_TEST() override
    {
        fake::reset(); // no hook may meet the emptying
        EXPECT_EQ(fake::thr::depth(), 0);
        cfg_close_ini_file();
    }

    // Makes a store of a main settings file with these bytes.
    void read_main_file(const std::string& bytes)
    {
        write_file(temporary.path("velmar.ini"), bytes);
        cfg_read_ini_file(temporary.path("velmar.ini"));
    }

    // Makes a store without any variable.
    static void make_empty_store()
    {
        cfg_read_ini_file("");
    }

    static bool store_exists()
    {
        return cfg_ini_file.load() != nullptr;
    }

    // A copy of the variable's record; empty when it has none or there is no store. Counts nothing.
    static std::optional<CFG_INI_RECORD> record_of(const std::string& name)
    {
        const zon_cfg::STORE_LOCK lock;
        const CFG_INI_RECORD* const record = store_exists() ? cfg_ini_get_record(name) : nullptr;
        return record != nullptr ? std::optional<CFG_INI_RECORD>(*record) : std::nullopt;
    }

    // Every record, by name; none when there is no store. Counts nothing.
    static std::map<std::string, CFG_INI_RECORD> all_records()
    {
        std::map<std::string, CFG_INI_RECORD> records;
        const zon_cfg::STORE_LOCK lock;
        if (store_exists())
        {
            for (const auto& [name, record] : *cfg_ini_file.load())
                records.emplace(name, *record);
        }
        return records;
    }

    // The text of every record, by name. Counts nothing.
    static ASSIGNMENTS all_values()
    {
        ASSIGNMENTS values;
        for (const auto& [name, record] : all_records())
            values.emplace(name, record.value);
        return values;
    }

    // Gives back what an exception left held on this thread; returns how often it was held.
    static int release_lock()
    {
        const int depth = fake::thr::depth();
        for (int i = 0; i < depth; ++i)
            thr_mutex_unlock(cfg_ini_mutex.load());
        return depth;
    }
};

#endif
