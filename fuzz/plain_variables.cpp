#include "fuzz/plain_variables.h"

#include <algorithm>
#include <cstdlib>

#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "fuzz/fuzz_support.h"
#include "tests/support/plain_rules.h"

using namespace zon_cfg;

using fuzz::expect;
using fuzz::expect_equal;

namespace
{
bool ends_in(const std::string& name, const std::string& suffix)
{
    return name.size() > suffix.size() && plain::folded_up_to_zero(name.substr(name.size() - suffix.size())) == suffix;
}

bool is_reported_as_single(const std::string& name)
{
    return !ends_in(name, "_debug_msg") && !ends_in(name, "_debug_msg_level");
}

void expect_same_record(const CFG_INI_RECORD& record, const PLAIN_VARIABLE& variable)
{
    const std::string about = "variable " + fuzz::quoted(variable.spelling);
    expect_equal(record.value, variable.value, about);
    expect_equal(record.access_count, variable.count, about + ", count");
    expect_equal(record.had_valid_read, variable.had_valid_read, about + ", valid read");
    expect_equal(record.external, variable.external, about + ", external");

    const std::optional<bool> boolean = plain::boolean(variable.value);
    expect_equal(record.bool_valid, boolean.has_value(), about + ", is a boolean");
    expect_equal(record.bool_value, boolean.value_or(false), about + ", boolean");
    const std::optional<int> integer = plain::number<int>(variable.value);
    expect_equal(record.int_valid, integer.has_value(), about + ", is an integer");
    expect_equal(integer ? record.int_value : 0, integer.value_or(0), about + ", integer");
    const std::optional<unsigned int> natural = plain::number<unsigned int>(variable.value);
    expect_equal(record.uint_valid, natural.has_value(), about + ", is an unsigned integer");
    expect_equal(natural ? record.uint_value : 0, natural.value_or(0), about + ", unsigned integer");
}
}

void PLAIN_VARIABLES::store(const std::string& name, const std::string& value, bool external)
{
    PLAIN_VARIABLE& variable =
        variables.try_emplace(plain::folded_up_to_zero(name), PLAIN_VARIABLE{name, {}}).first->second;
    variable.value = value;
    variable.had_valid_read = false;
    if (external)
        variable.external = true;
}

PLAIN_VARIABLE& PLAIN_VARIABLES::counted(const std::string& name)
{
    const auto [place, created] = variables.try_emplace(plain::folded_up_to_zero(name), PLAIN_VARIABLE{name, {}});
    if (!created)
        ++place->second.count;
    return place->second;
}

std::optional<bool> PLAIN_VARIABLES::boolean(const std::string& name)
{
    PLAIN_VARIABLE& variable = counted(name);
    const std::optional<bool> result = plain::boolean(variable.value);
    variable.had_valid_read |= result.has_value();
    return result;
}

std::optional<int> PLAIN_VARIABLES::integer(const std::string& name)
{
    PLAIN_VARIABLE& variable = counted(name);
    const std::optional<int> result = plain::number<int>(variable.value);
    variable.had_valid_read |= result.has_value();
    return result;
}

std::optional<unsigned int> PLAIN_VARIABLES::unsigned_integer(const std::string& name)
{
    PLAIN_VARIABLE& variable = counted(name);
    const std::optional<unsigned int> result = plain::number<unsigned int>(variable.value);
    variable.had_valid_read |= result.has_value();
    return result;
}

std::optional<double> PLAIN_VARIABLES::floating(const std::string& name)
{
    PLAIN_VARIABLE& variable = counted(name);
    if (variable.value.empty())
        return std::nullopt;
    char* end = nullptr;
    const double result = std::strtod(variable.value.c_str(), &end);
    variable.had_valid_read |= *end == '\0';
    return result;
}

std::string PLAIN_VARIABLES::text(const std::string& name)
{
    PLAIN_VARIABLE& variable = counted(name);
    variable.had_valid_read = true;
    return variable.value;
}

bool PLAIN_VARIABLES::is_external(const std::string& name) const
{
    const auto place = variables.find(plain::folded_up_to_zero(name));
    return place != variables.end() && place->second.external;
}

std::map<std::string, std::string> PLAIN_VARIABLES::used() const
{
    std::map<std::string, std::string> values;
    for (const auto& [folded, variable] : variables)
    {
        if (variable.count != 0 && variable.had_valid_read && !variable.value.empty())
            values[variable.spelling] = variable.value;
    }
    return values;
}

std::map<std::string, std::string> PLAIN_VARIABLES::externals() const
{
    std::map<std::string, std::string> values;
    for (const auto& [folded, variable] : variables)
    {
        if (variable.external && !variable.value.empty())
            values[variable.spelling] = variable.value;
    }
    return values;
}

std::vector<std::pair<std::string, std::string>> PLAIN_VARIABLES::most_accessed()
{
    const int min = integer("cfg_min_accessed_to_report").value_or(0);
    const int max = integer("cfg_max_to_report").value_or(10);
    std::vector<std::pair<std::uint64_t, std::string>> usages;
    for (const auto& [folded, variable] : variables)
    {
        if (min >= 0 && variable.count >= static_cast<std::uint64_t>(min))
            usages.emplace_back(variable.count, variable.spelling);
    }
    std::sort(usages.rbegin(), usages.rend());
    if (max >= 0 && usages.size() > static_cast<std::size_t>(max))
        usages.resize(static_cast<std::size_t>(max));
    std::vector<std::pair<std::string, std::string>> report;
    for (const auto& [count, name] : usages)
        report.emplace_back(name, std::to_string(count));
    return report;
}

void PLAIN_VARIABLES::expect_single_most_accessed(std::uint64_t count, const std::string& name,
                                                  const std::string& value) const
{
    std::uint64_t highest = 0;
    bool named = false;
    for (const auto& [folded, variable] : variables)
    {
        if (!is_reported_as_single(variable.spelling))
            continue;
        highest = std::max(highest, variable.count);
        named |= variable.spelling == name && variable.value == value && variable.count == count;
    }
    expect_equal(count, highest, "highest count");
    expect(count == 0 || named, "no most-accessed variable is " + fuzz::quoted(name) + " = " + fuzz::quoted(value));
}

void PLAIN_VARIABLES::expect_same_store() const
{
    const STORE_LOCK lock;
    const CFG_INI_TABLE* const table = cfg_ini_file.load();
    expect(table != nullptr, "no store");
    expect_equal(table->size(), variables.size(), "number of variables");
    for (const auto& [name, record] : *table)
    {
        const auto place = variables.find(plain::folded_up_to_zero(name));
        expect(place != variables.end(), "a variable that nothing made: " + fuzz::quoted(name));
        expect_equal<std::string>(name, place->second.spelling, "name");
        expect_same_record(*record, place->second);
    }
}
