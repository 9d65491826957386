#include "tools/velmar-cfg/preferences/preference_edit.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

#include "cfg_run_report/whole_file.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/file_lock.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/staged_file.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
constexpr const char* file_name = "velmar2.ini";
constexpr const char* directory_variable = "VELMAR2_INI";

// The library finds its file in another directory for a scope. Nothing is loaded at its beginning and at its end.
class ELSEWHERE
{
public:
    explicit ELSEWHERE(const std::string& directory)
    {
        if (const char* const value = std::getenv(directory_variable); value != nullptr)
            before = value;
        cfg_close_user_ini_file();
        setenv(directory_variable, directory.c_str(), 1);
    }
    ~ELSEWHERE()
    {
        cfg_close_user_ini_file();
        if (before)
            setenv(directory_variable, before->c_str(), 1);
        else
            unsetenv(directory_variable);
    }
    ELSEWHERE(const ELSEWHERE&) = delete;
    ELSEWHERE& operator=(const ELSEWHERE&) = delete;

private:
    std::optional<std::string> before;
};

[[noreturn]] void refuse(const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::REFUSED, what);
}

std::string key_of(CFG_USER_INI_ENUMS number)
{
    return cfg_get_user_ini_ini_string(number);
}

void check_value(const PREFERENCE_CHANGE& change)
{
    if (!change.value)
        return;
    const std::string key = key_of(change.number);
    if (change.value->empty())
        refuse("an empty value counts as none; velmar-cfg prefs reset " + key + " goes back to the default");
    if (find_fitting_triple(change.number, change.value->c_str()) == nullptr)
        refuse("'" + *change.value + "' is not allowed for " + key +
               "; allowed: " + allowed_as_text(allowed_preference_values(change.number)));
}

// --- What is loaded, for comparison ---

using VALUES = std::map<CFG_USER_INI_ENUMS, std::string>;

// Every preference as a program would get it. Looking a preference up is also what carries its value over.
VALUES all_values()
{
    VALUES values;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
        values[number] = cfg_get_user_ini_value(number);
    return values;
}

struct PLAIN_RECORD
{
    std::string section;
    std::string name;
    std::string value;

    bool operator==(const PLAIN_RECORD&) const = default;
};

// The loaded records that a save writes, by the library's key.
std::map<std::string, PLAIN_RECORD> records_to_write()
{
    std::map<std::string, PLAIN_RECORD> records;
    for (const auto& [key, record] : *cfg_user_ini_records)
    {
        if (!record->value.empty())
            records[key] = {record->section, record->name, record->value};
    }
    return records;
}

// Complains about a record that did not come back as it was written.
void compare_records(const std::map<std::string, PLAIN_RECORD>& written,
                     const std::map<std::string, PLAIN_RECORD>& read, const PREFERENCE_CHANGE& change)
{
    for (const auto& [key, record] : written)
    {
        const auto found = read.find(key);
        if (found != read.end() && found->second == record)
            continue;
        if (record.name == key_of(change.number) && change.value == record.value)
            refuse("the file cannot hold this value: it would be read back " +
                   (found == read.end() ? "as nothing" : "as '" + found->second.value + "'") +
                   "; leave out '[', line ends, and blanks or quotes at both ends");
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, "[" + record.section + "] " + record.name + " = " + record.value +
                                                     ": this line would not survive a save; mend it first (velmar-cfg "
                                                     "prefs lint)");
    }
    if (read.size() != written.size())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, "the new file holds more than was written; nothing was changed");
}

// --- The change ---

// The loaded record of the running release, or null.
CFG_USER_VALUE_STRUCT* current_record(CFG_USER_INI_ENUMS number)
{
    const auto found =
        cfg_user_ini_records->find(cfg_get_section_for_name(key_of(number).c_str(), nullptr, true) + key_of(number));
    return found == cfg_user_ini_records->end() ? nullptr : found->second;
}

// Whether the file says already what the change wants.
bool nothing_to_do(const PREFERENCE_CHANGE& change, std::string_view bytes)
{
    const PREFERENCE preference = PREFERENCES(bytes).look_up(change.number);
    if (!change.value)
        return preference.origin.source == PREFERENCE_SOURCE::DEFAULT ||
               preference.origin.source == PREFERENCE_SOURCE::NOWHERE;
    return preference.origin.source == PREFERENCE_SOURCE::RUNNING_RELEASE && preference.value == *change.value;
}

void assign(CFG_USER_INI_ENUMS number, const std::string& value)
{
    if (!cfg_set_user_ini_value(number, value))
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, key_of(number) + ": the library refused the value");
}

void save_and_read_back(const PREFERENCE_CHANGE& change, const std::string& path)
{
    const std::map<std::string, PLAIN_RECORD> written = records_to_write();
    if (!cfg_write_and_close_user_ini_file())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, path + ": cannot be written; nothing was changed");
    cfg_read_user_ini_file();
    compare_records(written, records_to_write(), change);
}

// Brings the preference back to its default: first by leaving it out; if an older release then shines through, by
// writing the default.
void save_reset(const PREFERENCE_CHANGE& change, const std::string& path)
{
    const std::string default_value = default_preference_value(change.number);
    if (CFG_USER_VALUE_STRUCT* const record = current_record(change.number); record != nullptr)
        record->value.clear(); // empty values are not written
    save_and_read_back(change, path);
    if (cfg_get_user_ini_value(change.number) == default_value)
        return;
    if (default_value.empty())
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN,
                         key_of(change.number) + " has no default that could be written, and " +
                             "the section of an older release gives it a value; remove it there");
    assign(change.number, default_value);
    save_and_read_back(change, path);
}

// No other preference may change its value, but for one that an older release allowed and this one does not: a warning.
std::vector<std::string> compare_values(const VALUES& before, const VALUES& after, const PREFERENCE_CHANGE& change)
{
    std::vector<std::string> warnings;
    for (const auto& [number, value] : before)
    {
        const std::string& now = after.at(number);
        if (number == change.number || now == value)
            continue;
        std::string change_of_value = key_of(number);
        change_of_value.append(" from '").append(value).append("' to '").append(now).append("'");
        if (find_fitting_triple(number, value.c_str()) != nullptr)
            throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN,
                             "a save would also change " + change_of_value +
                                 "; set that one first, so that this release has its own value");
        warnings.push_back("this also changes " + change_of_value + ": an older release's value, no longer allowed");
    }
    if (change.value && after.at(change.number) != *change.value)
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, key_of(change.number) + ": the new file answers '" +
                                                     after.at(change.number) + "'; nothing was changed");
    return warnings;
}

// Makes the change in the staged copy; returns the warnings.
std::vector<std::string> rewrite(const STAGED_FILE& staged, const PREFERENCE_CHANGE& change)
{
    const ELSEWHERE staging(staged.directory());
    const VALUES before = all_values();
    if (change.value)
    {
        assign(change.number, *change.value);
        save_and_read_back(change, staged.path());
    }
    else
        save_reset(change, staged.path());
    return compare_values(before, all_values(), change);
}

std::size_t count_dropped_lines(std::string_view text)
{
    std::size_t dropped = 0;
    while (!text.empty())
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const PREFERENCE_LINE_KIND kind = classify_preference_line(line).kind;
        const bool ignored = kind != PREFERENCE_LINE_KIND::HEADER && kind != PREFERENCE_LINE_KIND::KEY;
        if (ignored && !trimmed(line).empty())
            ++dropped;
    }
    return dropped;
}

// Where the file is, links followed.
std::string target_of(const std::string& path)
{
    try
    {
        return followed_path(path);
    }
    catch (const std::system_error&)
    {
        throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN,
                         path + ": no such directory, or links in a circle; make the directory first");
    }
}
}

EDITED_FILE edit_preference(const PREFERENCE_CHANGE& change, bool dry_run, std::chrono::milliseconds patience)
{
    INPUT_FILES files;
    preference_file_in_use(files); // must be readable
    check_value(change);
    EDITED_FILE result;
    result.path = target_of(cfg_generate_user_ini_file_path());

    std::unique_ptr<FILE_LOCK> lock;
    if (!dry_run)
    {
        lock = std::make_unique<FILE_LOCK>(result.path + ".lock", patience);
        remove_abandoned_staging(result.path, file_name);
    }
    STAGED_FILE staged(result.path, file_name, !dry_run);
    result.before = staged.bytes_before();
    if (nothing_to_do(change, result.before))
    {
        result.after = result.before;
        return result;
    }
    result.warnings = rewrite(staged, change);
    result.after = read_input_file(staged.path());
    result.dropped_lines = count_dropped_lines(result.before);
    if (!dry_run && result.changed())
        staged.replace_target();
    return result;
}
