// velmar-cfg lint: what is ignored, or does not do what it seems to do. All files are read and, with --fix, changed
// before the first finding is written. Findings are written as they are found, and none is kept.
#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/commands.h"
#include "tools/velmar-cfg/commands/edit_options.h"
#include "tools/velmar-cfg/commands/findings_output.h"
#include "tools/velmar-cfg/commands/lint_fix.h"
#include "tools/velmar-cfg/commands/sarif_output.h"
#include "tools/velmar-cfg/commands/state_options.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/documents/any_document.h"
#include "tools/velmar-cfg/lint/environment_rules.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/states/state.h"

namespace
{
struct LINT_OPTIONS : FIX_OPTIONS
{
    bool of_states = true; // not so for prefs lint, which has no --fix either
    STATE_OPTIONS state;
    std::vector<std::string> files;
    bool strict = false;
    bool list_reasons = false;
    std::vector<std::string> ignored;
    std::string format = "text";
};

FINDINGS_OPTIONS output_options(const LINT_OPTIONS& options, const TOOL& tool)
{
    const bool sarif = options.format == "sarif";
    FINDINGS_OPTIONS output{FINDINGS_FORMAT::TEXT, options.strict, checked_reasons(options.ignored)};
    output.format = options.dry_run     ? FINDINGS_FORMAT::NONE
                    : sarif             ? FINDINGS_FORMAT::SARIF
                    : tool.options.json ? FINDINGS_FORMAT::JSON
                                        : FINDINGS_FORMAT::TEXT;
    return output;
}

using TAKE = std::function<void(const FINDING&)>;

// What a command checks, in order. All is read before the first finding is written: what cannot be read is an error and
// nothing else.
class CHECKS
{
public:
    explicit CHECKS(TOOL& the_tool) : tool(the_tool) {}

    void add_settings(LAYERS layers)
    {
        for (const LAYER& layer : layers)
        {
            if (is_file(layer.kind))
                texts.push_back(layer.source);
        }
        checks.emplace_back([layers = std::move(layers)](const TAKE& take) { lint_settings(layers, take); });
    }

    void add_preferences(std::shared_ptr<const INPUT_FILE> file)
    {
        texts.push_back(file);
        checks.emplace_back([file = std::move(file), &secrets = *tool.options.scope.secrets](const TAKE& take)
                            { lint_preferences(*file, secrets, take); });
    }

    void add(std::vector<FINDING> findings)
    {
        checks.emplace_back([findings = std::move(findings)](const TAKE& take)
                            { std::ranges::for_each(findings, take); });
    }

    EXIT_CODE run(const FINDINGS_OPTIONS& options) const
    {
        FINDINGS_OUTPUT output(options, texts, tool);
        for (const std::function<void(const TAKE&)>& check : checks)
            check([&output](const FINDING& finding) { output.write(finding); });
        return output.finish();
    }

private:
    TOOL& tool;
    std::vector<std::function<void(const TAKE&)>> checks;
    CHECKED_TEXTS texts;
};

struct REASON_GROUP
{
    const char* of;
    std::span<const REASON> reasons;
};

EXIT_CODE list_reasons(const std::vector<REASON_GROUP>& groups, TOOL& tool)
{
    if (tool.options.json)
        answer_in_json(tool,
                       [&groups](JSON_WRITER& out)
                       {
                           out.begin_list();
                           for (const REASON_GROUP& group : groups)
                           {
                               for (const REASON& reason : group.reasons)
                               {
                                   out.begin_object();
                                   out.field("reason", reason.name);
                                   out.field("of", group.of);
                                   out.field("meaning", reason.meaning);
                                   out.end_object();
                               }
                           }
                           out.end_list();
                       });
    else
    {
        for (const REASON_GROUP& group : groups)
        {
            tool.out << "Of " << group.of << ":\n";
            for (const REASON& reason : group.reasons)
            {
                std::string name = reason.name;
                name.resize(std::max<std::size_t>(name.size(), 18), ' ');
                tool.out << "  " << name << "  " << reason.meaning << "\n";
            }
        }
    }
    return EXIT_CODE::FINE;
}

// The files without those that are named a second time, by whatever path.
std::vector<std::string> each_once(const std::vector<std::string>& files)
{
    std::set<std::string> seen;
    std::vector<std::string> once;
    std::ranges::copy_if(files, std::back_inserter(once),
                         [&seen](const std::string& file)
                         { return seen.insert(file == "-" ? file : real_path(file)).second; });
    return once;
}

void require_no_contradiction(const LINT_OPTIONS& options, const TOOL& tool)
{
    // Listing the reasons goes with nothing that says what to check or how.
    const bool checks = !options.files.empty() || options.fix || options.state.of || !options.state.what_if.empty();
    const bool shows = options.strict || !options.ignored.empty() || options.format != "text";
    if (options.list_reasons && (checks || shows))
        throw TOOL_ERROR(EXIT_CODE::USAGE, std::string("--list-reasons checks nothing: files, ") +
                                               (options.of_states ? "--fix, --of, --with, --without, " : "") +
                                               "--strict, --ignore and --format sarif exclude it");
    const bool sarif = options.format == "sarif";
    if (sarif && tool.options.json)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--json and --format exclude each other");
    if (sarif && options.dry_run)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--dry-run and --format exclude each other");
    if (options.fix && std::ranges::count(options.files, "-") > 0)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--fix changes files, not standard input");
    if (options.fix && options.state.of)
        throw TOOL_ERROR(
            EXIT_CODE::USAGE,
            "--fix changes files of the present state or of --project DIR; --fix and --of exclude each other");
    if (!options.state.what_if.empty() && (options.fix || !options.files.empty()))
        throw TOOL_ERROR(EXIT_CODE::USAGE, std::string("--with and --without are for findings of a state; ") +
                                               (options.fix ? "--fix" : "naming files") + " excludes them");
    if (options.state.of && !options.files.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--of and files exclude each other");
}

// A document has no lines of settings or preferences; --fix would make it unreadable.
bool is_refused_as_document(const INPUT_FILE& file, TOOL& tool)
{
    const bool refused = begins_like_a_document(file.bytes);
    if (refused)
        tool.files.add_problem(file.path + ": is a document; check the state that it holds with lint --of");
    return refused;
}

void add_named_preferences(const std::string& path, CHECKS& checks, TOOL& tool)
{
    std::shared_ptr<const INPUT_FILE> file = tool.files.read_named(path);
    if (!is_refused_as_document(*file, tool))
        checks.add_preferences(std::move(file));
}

EXIT_CODE lint(const LINT_OPTIONS& options, TOOL& tool)
{
    const FINDINGS_OPTIONS output = output_options(options, tool);
    if (options.list_reasons)
        return list_reasons({{"settings", reasons_of_settings()}, {"preferences", reasons_of_preferences()}}, tool);
    FILE_FIXES fixes(options, output.ignored, tool);
    const auto to_check = [&](LAYERS layers) { return options.fix ? fixes.fix(std::move(layers)) : layers; };
    CHECKS checks(tool);
    if (options.files.empty())
    {
        STATE state = state_of(options.state, {.checks = true}, tool);
        state.require(state.findings.has_value());
        if (output.format == FINDINGS_FORMAT::TEXT)
            write_view(state, tool.out);
        checks.add(std::move(*state.findings));
        checks.add_settings(to_check(std::move(state.layers)));
        if (state.preference_file != nullptr)
            checks.add_preferences(std::move(state.preference_file));
    }
    for (const std::string& file : each_once(options.files))
    {
        if (is_preference_file(file))
        {
            add_named_preferences(file, checks, tool);
            continue;
        }
        LAYERS layers = single_layer(file, tool.files, *tool.options.scope.secrets);
        if (!is_refused_as_document(*layers.front().source, tool))
            checks.add_settings(to_check(std::move(layers)));
    }
    const EXIT_CODE end_of_fixes = fixes.finish(); // first: the findings may be more than can be written
    return std::max(checks.run(output), end_of_fixes);
}

EXIT_CODE lint_only_preferences(const LINT_OPTIONS& options, TOOL& tool)
{
    const FINDINGS_OPTIONS output = output_options(options, tool);
    if (options.list_reasons)
        return list_reasons({{"preferences", reasons_of_preferences()}}, tool);
    CHECKS checks(tool);
    if (options.files.empty())
    {
        auto file = preference_file_in_use(tool.files);
        if (file == nullptr)
            checks.add({no_preference_file()});
        else
            checks.add_preferences(std::move(file));
    }
    for (const std::string& file : each_once(options.files))
        add_named_preferences(file, checks, tool);
    return checks.run(output);
}

void add_options(COMMAND& command, const std::shared_ptr<LINT_OPTIONS>& shared_options, TOOL& tool,
                 const std::string& file_description)
{
    LINT_OPTIONS& options = *shared_options;
    command.add_optional_argument("FILE", options.files, file_description);
    command.add_flag("--strict", options.strict, "Exit code 1 for warnings too");
    command.add_option("--ignore", "REASON", options.ignored,
                       "Leave out findings with this reason, which each shows in brackets; may be repeated");
    command.add_flag("--list-reasons", options.list_reasons, "List the reasons of findings, and check nothing");
    command.add_choice("--format", "FORMAT", options.format, {"text", "sarif"},
                       "text, or sarif for SARIF 2.1.0, which code review tools show");
    command.add_check(tool, [shared_options, &tool] { require_no_contradiction(*shared_options, tool); });
}
}

void add_lint_command(COMMAND app, TOOL& tool)
{
    auto options = std::make_shared<LINT_OPTIONS>();
    COMMAND command = app.add_command(
        tool, "lint",
        "Show the lines that are ignored or do not do what they seem to do, with what to write instead. Without "
        "FILE, check every file that the library would read now, preferences included, and VELMAR_INI_VARS. Exit code "
        "1 when there is an error.",
        "velmar-cfg lint --strict designs/cpu/velmar.ini\n      check one file; warnings too make the exit code 1",
        [options, &tool] { return lint(*options, tool); });
    add_state_option(command, options->state, tool);
    add_what_if_options(command, options->state.what_if);
    add_options(command, options, tool, "A settings file, or a preference file when it is called velmar2.ini");
    command.add_flag("--fix", options->fix,
                     "Write the suggestions into the settings files, and show the remaining findings");
    add_edit_options(command, *options, options->permissions,
                     "With --fix: change nothing, show the difference instead of findings");
    for (const char* const option : {"--dry-run", "--wait", "--break-hard-links", "--replace-read-only"})
        command.require_with(option, "--fix");
}

void add_prefs_lint_command(COMMAND prefs, TOOL& tool)
{
    auto options = std::make_shared<LINT_OPTIONS>();
    options->of_states = false;
    COMMAND command = prefs.add_command(
        tool, "lint",
        "Show the lines of a preference file that are ignored, that do not do what they seem to do, or that the "
        "next save drops, with what to write instead. Without FILE, check the file in use. Exit code 1 when there is "
        "an error.",
        "velmar-cfg prefs lint --strict\n      check your own preferences; warnings too make the exit code 1",
        [options, &tool] { return lint_only_preferences(*options, tool); });
    add_options(command, options, tool, "A preference file");
}
