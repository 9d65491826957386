// A test of the preference store: nothing loaded, a profile directory of its own, releases 23.4 (running), 23.3, 23.2.
#ifndef TESTS_CFG_USER_INI_READER_PREFERENCE_TEST_H
#define TESTS_CFG_USER_INI_READER_PREFERENCE_TEST_H

#include <gtest/gtest.h>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"
#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"
#include "tests/support/faked_test.h"

struct RECORD
{
    std::string section;
    std::string name;
    std::string value;

    bool operator==(const RECORD&) const = default;
};

inline void PrintTo(const RECORD& record, std::ostream* out)
{
    *out << '[' << record.section << "] " << record.name << " = " << record.value;
}

using RECORDS = std::vector<RECORD>;
using SECTIONS = std::set<std::string>;

class PREFERENCE_TEST : public FAKED_TEST
{
protected:
    PREFERENCE_TEST()
    {
        begin_services();
        write_file(temporary.path("home/other"), ""); // makes the directory
    }

    ~PREFERENCE_TEST() override
    {
        cfg_close_user_ini_file();
    }

    // The platform services as at the start of a test, with nothing recorded.
    void begin_services() const
    {
        fake::reset();
        fake::gen::set_user_profile_directory(temporary.path("home"));
        fake::ver::set_version("23.4");
        fake::ver::set_all_versions({"23.4", "23.3", "23.2"});
    }

    // The preference file, in the profile directory.
    std::string file_path() const
    {
        return temporary.path("home/velmar2.ini");
    }

    void write_preferences(const std::string& bytes) const
    {
        write_file(file_path(), bytes);
    }

    std::string preferences() const
    {
        return read_file(file_path());
    }

    // What is loaded, in the order of the map.
    static RECORDS records()
    {
        RECORDS copies;
        for (const auto& [key, record] : *cfg_user_ini_records)
            copies.push_back({record->section, record->name, record->value});
        return copies;
    }

    static SECTIONS sections_read()
    {
        SECTIONS names;
        for (const auto& [name, nothing] : *cfg_user_ini_sections_read)
            names.insert(name);
        return names;
    }
};

#endif
