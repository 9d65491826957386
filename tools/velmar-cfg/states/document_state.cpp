// Makes layers of documents, so that commands ask a document as they ask a machine.
//
// A snapshot with the lines of its sources has the layers that the machine had. Any other document becomes layers of
// assignments that are known by name and value alone, one layer or more for each source that the rows name: what counts
// as external is apart from the rest. An older snapshot has one row for each variable, so the layers stand in the order
// of their kinds, and the assignments of each in that of their positions. A run report of version 2 has the assignments
// that lost as well. Its layers are ordered so that the last assignment to a variable is always the one that won (see
// RUN_LAYERS).
//
// Changes are made to the layers, and a changed snapshot gets its variables from them. Long lists that no wanted part
// needs are passed over as the document is read (wanted_lists).
//
// Cost: O(n log n) time and O(n) memory for n rows; the lines of a snapshot are neither copied nor sorted.
#include "tools/velmar-cfg/states/document_state.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>
#include <variant>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/any_document.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/variable_name.h"
#include "tools/velmar-cfg/settings/what_if.h"

namespace
{
LAYERS layers_of(const std::vector<SNAPSHOT_SOURCE>& sources)
{
    LAYERS layers;
    for (const SNAPSHOT_SOURCE& source : sources)
    {
        if (const std::optional<LAYER_KIND> kind = layer_of_code(source.role))
            layers.push_back({*kind, source.file});
    }
    return layers;
}

LAYERS layers_of(const SNAPSHOT& snapshot)
{
    if (snapshot.basis)
        return layers_of(snapshot.basis->sources);
    const SNAPSHOT_VARIABLES& variables = snapshot.variables;
    using SOURCE = std::tuple<LAYER_KIND, std::string_view, bool>;
    std::map<SOURCE, std::vector<LITERAL>> rows;
    for (std::size_t i = 0; i < variables.size(); ++i)
    {
        const SNAPSHOT_VARIABLE variable = variables[i];
        rows[{variable.location.layer, variable.location.source, variable.external}].emplace_back(
            variable.name, variable.value, variable.location.position);
    }
    LAYERS layers;
    for (auto& [source, literals] : rows)
    {
        const auto& [kind, path, external] = source;
        std::ranges::stable_sort(literals, {}, &LITERAL::position);
        LAYER layer{kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{std::string(path), {}, {}})};
        layer.literals = std::make_shared<const std::vector<LITERAL>>(std::move(literals));
        layer.external = external;
        layers.push_back(std::move(layer));
    }
    return layers;
}

// The assignments that a run report knows of. The layers are its sources in the order in which they were applied, then
// what has no place in one. What lost to an assignment of an earlier source, as loads that overlap in time can make it,
// is in layers before all of them: the last assignment to a variable is always the one that won.
class RUN_LAYERS
{
public:
    explicit RUN_LAYERS(const RUN_REPORT& of_run) : report(of_run) {}

    void add(const std::string& name, const std::string& value, bool external, const RUN_ORIGIN& origin)
    {
        const std::size_t program = report.sources.size();
        const std::size_t unknown = program + 1;
        std::size_t winner = origin.kind == RUN_ORIGIN::KIND::PROGRAM ? program : unknown;
        if (origin.place)
            winner = origin.place->source;
        for (const RUN_ASSIGNMENT& lost : origin.overridden)
            rows[{lost.place.source <= winner, lost.place.source, LOST, ""}].emplace_back(name, lost.value,
                                                                                          lost.place.position);
        const std::string perhaps = origin.perhaps.empty() ? "" : "perhaps " + first_few_places(origin.perhaps, report);
        rows[{true, winner, external ? WON_EXTERNAL : WON, perhaps}].emplace_back(
            name, value, origin.place ? origin.place->position : 0);
    }

    LAYERS layers()
    {
        LAYERS all;
        for (auto& [group, literals] : rows)
        {
            const auto& [in_order, source, part, perhaps] = group;
            std::ranges::stable_sort(literals, {}, &LITERAL::position);
            LAYER layer = layer_of(source, perhaps);
            layer.literals = std::make_shared<const std::vector<LITERAL>>(std::move(literals));
            layer.external = part == WON_EXTERNAL;
            all.push_back(std::move(layer));
        }
        return all;
    }

private:
    // Of the rows of one source, in this order.
    enum PART
    {
        LOST,
        WON,
        WON_EXTERNAL,
    };

    LAYER layer_of(std::size_t source, const std::string& perhaps) const
    {
        const bool by_program = source == report.sources.size();
        LAYER_KIND kind = by_program ? LAYER_KIND::PROGRAM : LAYER_KIND::UNKNOWN;
        std::string path = by_program ? "the program" : perhaps;
        if (source < report.sources.size())
        {
            const RUN_SOURCE& applied = report.sources[source];
            kind = applied.layer.value_or(LAYER_KIND::PROGRAM);
            path = source_as_text(applied);
        }
        return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{std::move(path), {}, {}})};
    }

    const RUN_REPORT& report;
    std::map<std::tuple<bool, std::size_t, PART, std::string>, std::vector<LITERAL>> rows; // the text: where perhaps
};

LAYERS layers_of(const RUN_REPORT& report)
{
    RUN_LAYERS rows(report);
    for (const READ_VARIABLE& variable : report.read)
    {
        if (variable.value)
            rows.add(variable.name, *variable.value, variable.external, variable.origin);
    }
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
        rows.add(variable.name, variable.value, true, variable.origin);
    return rows.layers();
}

// What the run set to a value that is not in the report: nobody read it, or nobody could use it.
VARIABLE_NAMES not_recorded_in(const RUN_REPORT& report)
{
    VARIABLE_NAMES names(report.set_never_read.begin(), report.set_never_read.end());
    for (const READ_VARIABLE& variable : report.read)
    {
        // Version 1 does not tell such a variable from one that is unset.
        if (!variable.value && report.version != 1 && variable.origin.kind != RUN_ORIGIN::KIND::UNSET)
            names.insert(variable.name);
    }
    return names;
}

// What a run report says beside its variables, as far as it can be compared.
SNAPSHOT snapshot_of(const RUN_REPORT& report)
{
    SNAPSHOT snapshot;
    snapshot.of_run = true;
    snapshot.lossy = report.version == 1;
    snapshot.release = report.release;
    snapshot.regtest = report.regtest_file.has_value();
    snapshot.environment = report.environment;
    // Version 1 does not tell what is unset from what was set and never read.
    snapshot.knows_unset = report.version != 1;
    snapshot.not_recorded = not_recorded_in(report);
    return snapshot;
}

bool knows_all_sources(const RUN_REPORT& report)
{
    return report.version != 1 && report.sources_complete &&
           std::ranges::all_of(report.sources, [](const RUN_SOURCE& source) { return source.state == "same"; });
}

// ", process 4711 on farm7, in /proj/cpu, started 2026-11-22T08:00:00Z", as far as that is known.
std::string circumstances_in_words(const RUN_REPORT& report)
{
    return (report.process ? ", process " + std::to_string(*report.process) : "") +
           (report.host ? " on " + *report.host : "") + (report.directory ? ", in " + *report.directory : "") +
           (report.started ? ", started " + *report.started : "");
}

std::vector<READ_COUNT> reads_of(const RUN_REPORT& report)
{
    std::vector<READ_COUNT> reads;
    for (const READ_VARIABLE& variable : report.read)
        reads.push_back({variable.name, variable.count});
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
        reads.push_back({variable.name, 0});
    for (const std::string& name : report.asked_once)
        reads.push_back({name, 1});
    for (const std::string& name : report.set_never_read)
        reads.push_back({name, 0});
    return reads;
}

// ", taken 2026-11-22T08:00:00Z by ana on farm7 in /proj/cpu", as far as that is known. The directory of another
// program belongs to its view.
std::string circumstances_in_words(const SNAPSHOT_BASIS& basis)
{
    return ", taken " + basis.taken + " by " + basis.user + (basis.host ? " on " + *basis.host : "") +
           (basis.directory && !basis.as ? " in " + *basis.directory : "");
}

std::string project_in_words(const SNAPSHOT& snapshot)
{
    return (snapshot.project.empty() ? "" : ", project " + snapshot.project) +
           (snapshot.regtest ? ", regression test" : "");
}

void require_regtest(const std::string& path, bool regtest, const char* otherwise)
{
    if (!regtest)
        throw TOOL_ERROR(EXIT_CODE::USAGE,
                         title_of_named_file(path) + ": " + otherwise + " without regtest.ini; leave --regtest out");
}

// What a snapshot knows by its basis.
void add_basis(STATE& state, const SNAPSHOT_BASIS& basis)
{
    state.candidates = basis.search;
    state.findings = basis.findings;
    const auto preferences = std::ranges::find(basis.sources, preference_file_role, &SNAPSHOT_SOURCE::role);
    if (preferences != basis.sources.end())
        state.preference_file = preferences->file;
}

void add_problems(const SNAPSHOT_BASIS& basis, const std::string& path, const STATE_PARTS& parts, INPUT_FILES& files)
{
    for (const SNAPSHOT_PROBLEM& problem : basis.problems)
    {
        if (parts.checks || parts.basis || parts.snapshot ||
            (problem.of_preferences ? parts.preferences : parts.settings))
            files.add_problem(title_of_named_file(path) + ": " + problem.text);
    }
}

STATE state_of(SNAPSHOT snapshot, const std::string& path, const STATE_PARTS& parts)
{
    STATE state;
    if (snapshot.basis)
        add_basis(state, *snapshot.basis);
    else
    {
        state.limits =
            "a snapshot of version 1 or 2 holds only the values that won and where they stand: neither other "
            "lines nor the search";
        state.known_lines = KNOWN_LINES::WINNERS;
    }
    const std::string of_program = snapshot.basis ? snapshot.basis->view_in_words() : "";
    state.view = of_program + (of_program.empty() ? "" : ", ") + "as snapshot " + title_of_named_file(path) +
                 " has it (" + snapshot.product + " " + snapshot.release + project_in_words(snapshot) +
                 (snapshot.basis ? circumstances_in_words(*snapshot.basis) : "") + ")";
    state.environment = snapshot.environment;
    state.release = snapshot.release;
    if (parts.preferences)
        state.preferences.emplace(snapshot.preferences);
    state.snapshot = std::move(snapshot);
    return state;
}

STATE state_of(const RUN_REPORT& report, const std::string& path)
{
    STATE state;
    state.limits = "a run report holds only variables that were set or asked for";
    state.knows_unset = report.version != 1;
    state.known_lines = knows_all_sources(report) ? KNOWN_LINES::ASSIGNMENTS : KNOWN_LINES::WINNERS;
    state.view = "as run " + report.run + " had it (" +
                 (report.run == report.file ? "" : title_of_named_file(path) + ", ") + "release " + report.release +
                 circumstances_in_words(report) + ")";
    state.reads = reads_of(report);
    state.undecided.insert(report.uncounted.begin(), report.uncounted.end());
    for (const READ_VARIABLE& variable : report.read)
        state.undecided.insert(variable.name); // those that have a value do not come to this question
    state.snapshot = snapshot_of(report);
    return state;
}

// What of the run's variables is known otherwise once they are changed.
void note_changes(SNAPSHOT& snapshot, const std::vector<WHAT_IF>& changes)
{
    for (const WHAT_IF& change : changes)
    {
        snapshot.not_recorded.erase(change.name);
        if (!change.value)
            snapshot.known_unset.insert(change.name);
    }
}

// What a change changes is made of the lines anew.
SNAPSHOT_LISTS wanted_lists(const STATE_PARTS& parts, const SETTINGS_SCOPE& scope)
{
    const bool changed = !scope.what_if.empty();
    return {parts.settings || parts.checks || parts.preferences || parts.basis || changed, parts.snapshot && !changed};
}
}

STATE document_state(const std::string& path, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    ANY_DOCUMENT document = read_any_document(path, wanted_lists(parts, scope), *scope.secrets);
    const auto* const report = std::get_if<RUN_REPORT>(&document);
    STATE state =
        report != nullptr ? state_of(*report, path) : state_of(std::move(std::get<SNAPSHOT>(document)), path, parts);
    state.is_document = true;
    if (scope.regtest)
        require_regtest(path, state.snapshot->regtest, report != nullptr ? "the run read" : "the snapshot was taken");
    if (state.snapshot->basis)
        add_problems(*state.snapshot->basis, path, parts, files);
    if (report != nullptr || parts.settings || parts.checks || !scope.what_if.empty())
        state.layers = changed_layers(report != nullptr ? layers_of(*report) : layers_of(*state.snapshot),
                                      scope.what_if, *scope.secrets);
    if (report != nullptr)
        note_changes(*state.snapshot, scope.what_if);
    if (parts.snapshot && (report != nullptr || !scope.what_if.empty()))
        state.snapshot->variables = SNAPSHOT_VARIABLES(SETTINGS(state.layers));
    if (!parts.snapshot && report == nullptr)
        state.snapshot.reset();
    return state;
}
