// What the catalogue must hold, written down a second time: the rows that belong to a preference, by number.
#ifndef TESTS_CFG_USER_INI_READER_EXPECTED_PREFERENCES_H
#define TESTS_CFG_USER_INI_READER_EXPECTED_PREFERENCES_H

#include <string>
#include <utility>
#include <vector>

struct EXPECTED_PREFERENCE
{
    int number;
    std::string key;
    std::string section;
    std::vector<std::string> values; // one empty text where any is allowed
    std::string default_value;
    std::string registry_name;
    std::string registry_branch;

    bool takes_any_text() const
    {
        return values.front().empty();
    }
};

const std::vector<EXPECTED_PREFERENCE>& expected_preferences();

// (current key, old name), in the order in which old names are tried.
const std::vector<std::pair<std::string, std::string>>& expected_old_names();

#endif
