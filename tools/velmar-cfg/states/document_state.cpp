// A document that knows no lines is made of layers that hold its rows as they are, a layer for each source that they
// name. Each variable is in one row, so that the order of the rows means nothing; the layers are in the order in which
// they apply.
#include "tools/velmar-cfg/states/document_state.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>
#include <variant>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/any_document.h"
#include "tools/velmar-cfg/settings/what_if.h"

namespace
{
LAYERS layers_of(const SNAPSHOT_VARIABLES& variables)
{
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

// What a run report says, as far as it can be compared.
SNAPSHOT snapshot_of(const RUN_REPORT& report)
{
    SNAPSHOT snapshot;
    snapshot.of_run = true;
    snapshot.release = report.release;
    snapshot.regtest = report.regtest_file.has_value();
    const auto add = [&snapshot](const std::string& name, const std::string& value, bool external)
    {
        LAYER_SET layers;
        layers.insert(LAYER_KIND::UNKNOWN, external);
        snapshot.variables.add({name, value, external, {LAYER_KIND::UNKNOWN, "", 0}, layers, read_typed(value)});
    };
    for (const READ_VARIABLE& variable : report.read)
    {
        if (variable.value)
            add(variable.name, *variable.value, variable.external);
    }
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
        add(variable.name, variable.value, true);
    return snapshot;
}

std::vector<READ_COUNT> reads_of(const RUN_REPORT& report)
{
    std::vector<READ_COUNT> reads;
    for (const READ_VARIABLE& variable : report.read)
        reads.push_back({variable.name, variable.count});
    return reads;
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

STATE state_of(SNAPSHOT snapshot, const std::string& path, const STATE_PARTS& parts)
{
    STATE state;
    state.limits = "a snapshot holds only the values that won and where they stand: neither other lines nor the search";
    state.knows_lines = false;
    state.view = "as snapshot " + title_of_named_file(path) + " has it (" + snapshot.product + " " + snapshot.release +
                 project_in_words(snapshot) + ")";
    state.environment = snapshot.environment;
    if (parts.preferences)
        state.preferences.emplace(snapshot.preferences);
    state.snapshot = std::move(snapshot);
    return state;
}

STATE state_of(const RUN_REPORT& report, const std::string& path)
{
    STATE state;
    state.limits = "a run report holds only variables that were set or asked for";
    state.knows_unset = false;
    state.knows_lines = false;
    state.view = "as run " + report.run + " had it (" +
                 (report.run == report.file ? "" : title_of_named_file(path) + ", ") + "release " + report.release +
                 ")";
    state.reads = reads_of(report);
    state.snapshot = snapshot_of(report);
    return state;
}
}

STATE document_state(const std::string& path, const STATE_PARTS& parts, const SETTINGS_SCOPE& scope)
{
    ANY_DOCUMENT document = read_any_document(path, *scope.secrets);
    STATE state;
    if (auto* const snapshot = std::get_if<SNAPSHOT>(&document); snapshot != nullptr)
        state = state_of(std::move(*snapshot), path, parts);
    else
        state = state_of(std::get<RUN_REPORT>(document), path);
    state.is_document = true;
    if (scope.regtest)
        require_regtest(path, state.snapshot->regtest, state.knows_unset ? "the snapshot was taken" : "the run read");
    if (parts.settings || !scope.what_if.empty())
        state.layers = changed_layers(layers_of(state.snapshot->variables), scope.what_if, *scope.secrets);
    if (parts.snapshot && !scope.what_if.empty())
        state.snapshot->variables = SNAPSHOT_VARIABLES(SETTINGS(state.layers));
    if (!parts.snapshot && state.knows_unset)
        state.snapshot.reset();
    return state;
}
