// Reads a state by the kind of its name. The present state and that of a project are read as they are. A
// process and an executable are read while their perspective is in effect, with files of their own: the same path may
// lead to another file there. A document is read by document_state.cpp.
#include "tools/velmar-cfg/states/read_state.h"

#include "platform/fio/fio.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/take_snapshot.h"
#include "tools/velmar-cfg/lint/environment_rules.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/what_if.h"
#include "tools/velmar-cfg/states/document_state.h"
#include "tools/velmar-cfg/states/other_program.h"
#include "tools/velmar-cfg/states/perspective.h"

namespace
{
// Reads what is here, or what is where the perspective in effect is.
void read_parts(STATE& state, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    if (parts.settings || parts.checks)
        state.layers = load_layers(scope, files);
    if (parts.search)
    {
        state.candidates = all_file_candidates(scope);
        state.environment = environment_that_matters(*scope.secrets);
    }
    if (parts.checks)
    {
        state.findings = findings_beside_lines(state.layers, *scope.secrets);
        state.preference_file = preference_file_in_use(files);
    }
    if (parts.preferences)
    {
        state.preference_file = preference_file_in_use(files);
        state.preferences.emplace(preferences_in(state.preference_file.get(), *scope.secrets));
    }
    if (parts.snapshot)
        state.snapshot = take_snapshot(scope, files, parts.basis);
}

// "with the present files and the product and release of this tool, velmar 23.4"
std::string basis_in_words()
{
    return "with the present files and the product and release of this tool, " +
           std::string(ver_get_kestrin_product_filename()) + " " + ver_get_version();
}

std::string view_of_process(pid_t number, const OTHER_PROGRAM& program)
{
    std::string view = "as process " + std::to_string(number) + " (" + program.executable + ", in " +
                       program.directory + ") started, " + basis_in_words();
    for (const ENVIRONMENT_VARIABLE& variable : *program.perspective.environment)
    {
        if (variable.name == "HOME" && variable.value.value_or("").empty())
            view += "; it has no HOME, so that preferences are those of its user's entry in the password database";
    }
    return view;
}

// What is called by the names of the environment, and not by those of files that were read.
void make_paths_absolute(STATE& state, const std::string& directory)
{
    const auto make_absolute = [&directory](std::vector<FILE_CANDIDATE>& candidates)
    {
        for (FILE_CANDIDATE& candidate : candidates)
            candidate.path = absolute_path(candidate.path, directory);
    };
    if (state.candidates)
        make_absolute(*state.candidates);
    if (!state.snapshot)
        return;
    for (SNAPSHOT_FILE& file : state.snapshot->files)
    {
        if (file.path)
            file.path = absolute_path(*file.path, directory);
    }
    if (state.snapshot->basis)
        make_absolute(state.snapshot->basis->search);
}

// Paths mean something else to the other program: its files are read apart from all others. They are shown from the
// root on, since whoever reads of them is elsewhere.
void read_as(const OTHER_PROGRAM& program, std::optional<std::uint64_t> its_number, STATE& state,
             const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    const std::string directory =
        program.directory.empty() ? FIO_FILE_SYSTEM::get_current_directory() : program.directory;
    INPUT_FILES its_files(directory);
    {
        const PERSPECTIVE_IN_EFFECT in_effect(program.perspective);
        read_parts(state, parts, scope, its_files);
    }
    make_paths_absolute(state, directory);
    if (state.snapshot && state.snapshot->basis)
        state.snapshot->basis->as = {its_number, program.executable};
    for (const std::string& problem : its_files.problems())
        files.add_problem(problem);
}

}

STATE read_state(const STATE_NAME& name, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    STATE state;
    SETTINGS_SCOPE own_scope = scope;
    if (name.kind != STATE_NAME::KIND::NOW)
        own_scope.project.clear();
    switch (name.kind)
    {
    case STATE_NAME::KIND::NOW:
        read_parts(state, parts, own_scope, files);
        break;
    case STATE_NAME::KIND::PROJECT:
        check_input_directory(name.path, "name ");
        own_scope.project = name.path;
        read_parts(state, parts, own_scope, files);
        break;
    case STATE_NAME::KIND::DOCUMENT:
        state = document_state(name.path, parts, own_scope, files);
        break;
    case STATE_NAME::KIND::PROCESS:
    {
        const OTHER_PROGRAM program = RUNNING_PROCESS(name.process).look();
        read_as(program, static_cast<std::uint64_t>(name.process), state, parts, own_scope, files);
        state.view = view_of_process(name.process, program);
        break;
    }
    case STATE_NAME::KIND::EXECUTABLE:
    {
        const OTHER_PROGRAM program = program_started_here(name.path);
        read_as(program, std::nullopt, state, parts, own_scope, files);
        state.view = "as " + program.executable + " would read, started here, " + basis_in_words();
        break;
    }
    }
    state.changes = changes_as_text(scope.what_if, *scope.secrets);
    state.name = name.kind == STATE_NAME::KIND::NOW ? "now" : title_of_named_file(name.text);
    return state;
}

SETTINGS_SCOPE scope_to_compare_with(const STATE_NAME& name, const STATE& state, const SETTINGS_SCOPE& scope)
{
    SETTINGS_SCOPE compared = scope;
    if (name.kind == STATE_NAME::KIND::PROJECT && compared.project.empty())
        compared.project = name.path;
    if (!state.is_document || !state.snapshot)
        return compared;
    compared.regtest = state.snapshot->regtest;
    if (!compared.project.empty() || state.snapshot->project.empty())
        return compared;
    compared.project = state.snapshot->project;
    check_input_directory(compared.project, "name what to compare with, or give --project ");
    return compared;
}
