// velmar-cfg prefs list, get, describe and path: the preferences as they are.
#include <fnmatch.h>

#include "platform/fio/fio.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
constexpr std::string_view zero_byte("\0", 1);

void write_list_entry(const PREFERENCE& preference, OUTPUT& out)
{
    out << out.painted(STYLE::STRONG, preference.key) << "=" << printable(preference.value) << "\n    "
        << printable(origin_as_text(preference.origin)) << "; default "
        << (preference.default_value.empty() ? "none" : printable(preference.default_value))
        << "; allowed: " << allowed_as_text(preference.allowed) << "\n";
}

void write_json(JSON_WRITER& out, const PREFERENCE& preference)
{
    out.begin_object();
    write_preference_fields(out, preference);
    out.end_object();
}

// The state with its preferences; refused when it does not know them.
STATE state_with_preferences(const STATE_OPTIONS& options, TOOL& tool, const std::shared_ptr<SECRETS>& secrets)
{
    STATE state = state_of(options, {.preferences = true}, tool, secrets);
    state.require(state.preferences.has_value());
    return state;
}

PREFERENCE preference_in(const STATE& state, CFG_USER_INI_ENUMS number)
{
    std::optional<PREFERENCE> preference = state.preferences->look_up(number);
    if (!preference)
        throw TOOL_ERROR(EXIT_CODE::USAGE, state.name + ": knows no preference " + cfg_get_user_ini_ini_string(number) +
                                               ", which its release may not have had");
    return *std::move(preference);
}

struct PREFS_LIST_OPTIONS
{
    STATE_OPTIONS state;
    std::optional<std::string> pattern;
    bool all = false;
    bool changed = false;
};

bool is_wanted(const PREFS_LIST_OPTIONS& options, const PREFERENCE& preference)
{
    if (options.pattern && fnmatch(options.pattern->c_str(), preference.key.c_str(), FNM_CASEFOLD) != 0)
        return false;
    const bool only_changed = options.changed || (!options.all && !options.pattern);
    return !only_changed || preference.differs_from_default();
}

EXIT_CODE list(const PREFS_LIST_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_with_preferences(options.state, tool, tool.options.scope.secrets);
    std::vector<PREFERENCE> wanted;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        std::optional<PREFERENCE> preference = state.preferences->look_up(number);
        if (preference && is_wanted(options, *preference))
            wanted.push_back(*std::move(preference));
    }
    const EXIT_CODE exit_code = wanted.empty() && options.pattern ? EXIT_CODE::FINDINGS : EXIT_CODE::FINE;
    if (tool.options.json)
    {
        answer_in_json(tool, [&](JSON_WRITER& out) { out.list(wanted, write_json); });
        return exit_code;
    }
    if (!tool.options.nul_terminated)
        write_view(state, tool.out);
    for (const PREFERENCE& preference : wanted)
    {
        if (tool.options.nul_terminated)
            tool.out << preference.key << (has_hidden_parts(preference.value) ? "" : "=" + preference.value)
                     << zero_byte; // as in list, a masked value is left out
        else
            write_list_entry(preference, tool.out);
    }
    return exit_code;
}

struct KEY_OPTIONS
{
    STATE_OPTIONS state;
    std::string key;
};

EXIT_CODE get(const KEY_OPTIONS& options, TOOL& tool)
{
    const CFG_USER_INI_ENUMS number = preference_number(options.key);
    const auto shown = std::make_shared<SECRETS>();
    shown->show_all(); // the value is what was asked for
    const STATE state = state_with_preferences(options.state, tool, shown);
    const PREFERENCE preference = preference_in(state, number);
    const bool masked = has_hidden_parts(preference.value);
    if (tool.options.json)
        answer_with_view(tool, state,
                         [&](JSON_WRITER& out)
                         {
                             write_preference_fields(out, preference);
                             out.field("masked", masked);
                         });
    else if (!preference.value.empty() && !masked)
        tool.out << preference.value << (tool.options.nul_terminated ? zero_byte : "\n");
    if (!preference.value.empty() && !masked)
        return EXIT_CODE::FINE;
    complain(preference.key +
             (masked ? " is masked in " + state.name + ": its value is not known" : " is not set, and has no default"));
    return EXIT_CODE::FINDINGS;
}

std::vector<std::string> old_names(const PREFERENCE& preference)
{
    std::vector<std::string> names;
    for (const auto& [current, old] : cfg_user_ini_name_old_name_table)
    {
        if (preference.key == current)
            names.emplace_back(old);
    }
    return names;
}

EXIT_CODE describe(const KEY_OPTIONS& options, TOOL& tool)
{
    const CFG_USER_INI_ENUMS number = preference_number(options.key);
    const STATE state = state_with_preferences(options.state, tool, tool.options.scope.secrets);
    const PREFERENCE preference = preference_in(state, number);
    if (tool.options.json)
    {
        answer_with_view(tool, state,
                         [&](JSON_WRITER& out)
                         {
                             write_preference_fields(out, preference);
                             out.field("description", cfg_get_user_ini_ini_desc(number));
                             out.field("catalogue_section", preference.section);
                             out.field("old_names", old_names(preference));
                             out.field_or_null("registry_name", cfg_get_user_ini_registry_string(number));
                             out.field_or_null("registry_branch", cfg_get_user_ini_registry_branch_string(number));
                         });
        return EXIT_CODE::FINE;
    }
    write_view(state, tool.out);
    tool.out << tool.out.painted(STYLE::STRONG, preference.key) << "\n\n"
             << cfg_get_user_ini_ini_desc(number) << "\n\n";
    tool.out << "value    " << (preference.value.empty() ? "none" : printable(preference.value)) << ", "
             << printable(origin_as_text(preference.origin)) << "\n";
    tool.out << "default  " << (preference.default_value.empty() ? "none" : printable(preference.default_value))
             << "\n";
    tool.out << "allowed  " << allowed_as_text(preference.allowed) << "\n";
    tool.out << "section  " << preference.section << "\n";
    for (const std::string& name : old_names(preference))
        tool.out << "formerly " << name << "\n";
    if (const std::string name = cfg_get_user_ini_registry_string(number); !name.empty())
        tool.out << "registry " << name << ", in " << cfg_get_user_ini_registry_branch_string(number) << "\n";
    return EXIT_CODE::FINE;
}

EXIT_CODE path(TOOL& tool)
{
    const PREFERENCE_FILE_LOCATION location = preference_file_location();
    if (!location.remark.empty())
        complain(hide_in_value("", location.remark, *tool.options.scope.secrets));
    tool.files.note_absence(location.path);
    if (tool.options.json)
        answer_in_json(tool,
                       [&](JSON_WRITER& out)
                       {
                           out.begin_object();
                           out.field("path", location.path);
                           out.field("exists", FIO_FILE_SYSTEM::exists(location.path.c_str()));
                           out.field("from", location.from_variable ? "VELMAR2_INI" : "profile directory");
                           out.end_object();
                       });
    else if (tool.options.nul_terminated)
        tool.out << location.path << zero_byte;
    else
        tool.out << printable(location.path) << "\n";
    return EXIT_CODE::FINE;
}

void add_list(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<PREFS_LIST_OPTIONS>();
    COMMAND command = prefs.add_command(
        tool, "list",
        "List preferences with value, where it comes from, default and allowed values. Without PATTERN, list those "
        "whose value differs from the default; with PATTERN, list all that match.",
        "velmar-cfg prefs list --all\n      every preference, those at their default too\n"
        "  velmar-cfg prefs list 'proxy_*' --changed\n      the proxy preferences that differ from their default",
        [options, &tool] { return list(*options, tool); });
    command.add_optional_argument(
        "PATTERN", options->pattern,
        "Only keys that match this shell pattern, letter case ignored; exit code 1 when there is none");
    command.add_flag("--all", options->all, "Also those that have their default value");
    command.add_flag("--changed", options->changed,
                     "Only those that differ from the default; letter case does not count");
    add_state_option(command, options->state, tool);
    command.add_nul_flag(tool);
}

COMMAND add_keyed(COMMAND prefs, TOOL& tool, const std::string& name, const std::string& description,
                  const std::string& example, EXIT_CODE (*run)(const KEY_OPTIONS&, TOOL&))
{
    auto options = std::make_shared<KEY_OPTIONS>();
    COMMAND command =
        prefs.add_command(tool, name, description, example, [options, run, &tool] { return run(*options, tool); });
    command.add_argument("KEY", options->key, "The preference, in any letter case");
    add_state_option(command, options->state, tool);
    return command;
}
}

void add_prefs_show_commands(COMMAND prefs, TOOL& tool)
{
    add_list(prefs, tool);
    COMMAND get_command = add_keyed(
        prefs, tool, "get", "Print the value of a preference; exit code 1 when it has none, not even a default",
        "velmar-cfg prefs get HDL_PREFERENCE\n      the value, or the default: Verilog", get);
    get_command.add_nul_flag(tool);
    add_keyed(prefs, tool, "describe",
              "Show what a preference does, its value, its default, the values allowed and its older names",
              "velmar-cfg prefs describe NUM_PARALLEL_PROCESSORS\n      what the preference means, and its default",
              describe);
    COMMAND command = prefs.add_command(tool, "path", "Print the path of the preference file, existing or not",
                                        "velmar-cfg prefs path\n      the velmar2.ini that the programs read",
                                        [&tool] { return path(tool); });
    command.add_nul_flag(tool);
}
