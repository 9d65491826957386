// velmar-cfg list: every variable, and where it came from. Rows are written as they come; only a table for a terminal
// is kept until its columns can be measured.
#include <algorithm>
#include <fnmatch.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/text_table.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/states/listed_variables.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
struct LIST_OPTIONS
{
    STATE_OPTIONS state;
    std::optional<std::string> pattern;
    LISTED_KINDS kinds;
    bool show_origin = false;

    bool with_defaults() const
    {
        return kinds.unset_too || kinds.only_changed;
    }
};

bool wanted(const LIST_OPTIONS& options, const LISTED_VARIABLE& variable)
{
    return !options.pattern || fnmatch(options.pattern->c_str(), std::string(variable.name).c_str(), FNM_CASEFOLD) == 0;
}

void write_row(const LIST_OPTIONS& options, JSON_WRITER& out, const LISTED_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("set", variable.is_set());
    out.field("value", variable.value);
    out.field("external", variable.external);
    write_location_fields(out, variable.location ? &*variable.location : nullptr);
    if (options.with_defaults())
        out.field_or_null("default", variable.default_text);
    if (options.kinds.by_reads)
        out.field("reads", variable.reads);
    out.end_object();
}

std::string origin_of(const LISTED_VARIABLE& variable)
{
    return variable.location ? location_as_text(*variable.location) : "";
}

// What stands for the value of a variable that has none.
std::string absence_of_value(const LISTED_VARIABLE& variable)
{
    switch (variable.without_value)
    {
    case ABSENT_VARIABLE::NOT_RECORDED:
        return variable.reads > 0 ? "set, value not recorded" : "set, value not recorded, never read";
    case ABSENT_VARIABLE::NOT_KNOWN:
        return "no usable value";
    case ABSENT_VARIABLE::UNSET:
        break;
    }
    return "not set";
}

// For scripts: nothing is escaped, so that a mask would look like a value.
void write_record(const LIST_OPTIONS& options, const LISTED_VARIABLE& variable, OUTPUT& out)
{
    constexpr std::string_view end("\0", 1);
    if (options.show_origin)
        out << origin_of(variable) << end;
    if (options.kinds.by_reads)
        out << std::to_string(variable.reads) << end;
    out << variable.name;
    if (variable.value && !has_hidden_parts(*variable.value))
        out << "=" << *variable.value;
    out << end;
}

void write_line(const LIST_OPTIONS& options, const LISTED_VARIABLE& variable, OUTPUT& out)
{
    if (options.show_origin)
        out << out.painted(STYLE::FAINT, printable(origin_of(variable))) << "\t";
    if (options.kinds.by_reads)
        out << std::to_string(variable.reads) << "\t";
    out << out.painted(STYLE::STRONG, printable(variable.name));
    if (variable.value)
        out << "=" << printable(*variable.value) << "\n";
    else
    {
        const bool with_default = options.with_defaults() && !variable.default_text.empty();
        out << "\t"
            << out.painted(STYLE::FAINT, absence_of_value(variable) +
                                             (with_default ? ", default " + std::string(variable.default_text) : ""))
            << "\n";
    }
}

// For people at a terminal.
class LIST_TABLE
{
public:
    explicit LIST_TABLE(const LIST_OPTIONS& list_options) : options(list_options), table(headings(list_options)) {}

    void add(const LISTED_VARIABLE& variable)
    {
        std::vector<TABLE_CELL> row;
        if (options.kinds.by_reads)
            row.push_back({std::to_string(variable.reads)});
        row.push_back({printable(shortened(variable.name, longest_name)), STYLE::STRONG});
        if (variable.value)
            row.push_back(
                {printable(shortened(*variable.value, length_by_shown_length(*variable.value, longest_value)))});
        else
            row.push_back({absence_of_value(variable), STYLE::FAINT});
        if (options.with_defaults())
            row.push_back({std::string(variable.default_text), STYLE::FAINT});
        row.push_back({printable(origin_of(variable)), STYLE::FAINT});
        table.add(std::move(row));
    }

    void write(OUTPUT& out) const
    {
        table.write(out);
    }

private:
    static constexpr std::size_t longest_name = 60;
    static constexpr std::size_t longest_value = 100;

    static std::vector<std::string> headings(const LIST_OPTIONS& options)
    {
        std::vector<std::string> all;
        if (options.kinds.by_reads)
            all.emplace_back("READS");
        all.insert(all.end(), {"NAME", "VALUE"});
        if (options.with_defaults())
            all.emplace_back("DEFAULT");
        all.emplace_back("ORIGIN");
        return all;
    }

    const LIST_OPTIONS& options;
    TEXT_TABLE table;
};

EXIT_CODE list(const LIST_OPTIONS& options, TOOL& tool)
{
    const STATE state = state_of(options.state, {.settings = true}, tool);
    require_listed(state, options.kinds);
    const SETTINGS settings(state.layers);
    const bool as_table = !tool.options.json && !tool.options.nul_terminated && tool.out.is_terminal();
    JSON_WRITER json(tool.out);
    LIST_TABLE table(options);
    if (tool.options.json)
        json.begin_list();
    else if (!tool.options.nul_terminated)
        write_view(state, tool.out);
    bool found = false;
    const auto write = [&](const LISTED_VARIABLE& variable)
    {
        if (!wanted(options, variable))
            return;
        found = true;
        if (tool.options.json)
            write_row(options, json, variable);
        else if (tool.options.nul_terminated)
            write_record(options, variable, tool.out);
        else if (as_table)
            table.add(variable);
        else
            write_line(options, variable, tool.out);
    };
    for_each_listed(state, settings, options.kinds, write);
    if (tool.options.json)
    {
        json.end_list();
        json.finish();
    }
    else if (found && as_table)
        table.write(tool.out);
    return found || !options.pattern ? EXIT_CODE::FINE : EXIT_CODE::FINDINGS;
}
}

void add_list_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<LIST_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "list", "List the internal variables with their values, by name: as a table on a terminal, else as pairs",
        "velmar-cfg --project designs/cpu list 'debug_*' --show-origin\n"
        "      what a run in designs/cpu would see of the debug switches, each with its file and line\n"
        "  velmar-cfg list --of run.json --read\n"
        "      what a run had, the most read first",
        [options, &tool] { return list(*options, tool); });
    command.add_optional_argument(
        "PATTERN", options->pattern,
        "Only names that match this shell pattern, letter case ignored; exit code 1 when there is none");
    command.add_flag("--show-origin", options->show_origin,
                     "Show where each value came from: FILE:LINE, or "
                     "VELMAR_INI_VARS:ITEM");
    command.add_flag("--external", options->kinds.only_external,
                     "Only variables that count as external: those that the main "
                     "settings file or VELMAR_INI_VARS sets");
    command.add_flag(
        "--all", options->kinds.unset_too,
        "Also known variables that are not set: the catalogue's, with their defaults, and the library's own");
    command.add_flag("--changed", options->kinds.only_changed,
                     "Only known variables that are set to a value other than their default; for those without a "
                     "default, any but the empty text");
    command.add_flag("--read", options->kinds.by_reads,
                     "With a run report: show how often the run read each variable, the most read first");
    add_state_option(command, options->state, tool);
    add_what_if_options(command, options->state.what_if);
    command.add_nul_flag(tool);
}
