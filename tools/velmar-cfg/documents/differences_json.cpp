#include "tools/velmar-cfg/documents/differences_json.h"

#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
using nlohmann::ordered_json;

template <typename ROW, typename AS_JSON>
ordered_json row_or_null(const ROW* row, AS_JSON as_json)
{
    return row == nullptr ? ordered_json() : ordered_json(as_json(*row));
}

ordered_json side_as_json(const COMPARED_SNAPSHOT& side)
{
    return {{"title", side.title},
            {"product", side.snapshot.product},
            {"release", side.snapshot.release},
            {"project", text_or_null(side.snapshot.project)},
            {"regtest", side.snapshot.regtest}};
}

ordered_json row_of(const INSTALLATION_DIFFERENCE& difference)
{
    return {{"what", difference.what}, {"a", difference.a}, {"b", difference.b}};
}

ordered_json row_of(const ENVIRONMENT_DIFFERENCE& difference)
{
    const auto value_of = [](const ENVIRONMENT_VARIABLE* variable)
    { return variable == nullptr ? ordered_json() : value_or_null(variable->value); };
    return {{"name", difference.name}, {"a", value_of(difference.a)}, {"b", value_of(difference.b)}};
}

ordered_json row_of(const FILE_DIFFERENCE& difference)
{
    return {{"role", difference.role},
            {"a", row_or_null(difference.a, file_as_json)},
            {"b", row_or_null(difference.b, file_as_json)}};
}

ordered_json row_of(const VARIABLE_DIFFERENCE& difference, bool run_given)
{
    return {{"name", difference.name},
            {"a", row_or_null(difference.a, variable_as_json)},
            {"b", row_or_null(difference.b, variable_as_json)},
            {"made_by", difference.made_by ? ordered_json(layer_code(*difference.made_by)) : ordered_json()},
            {"dependence", run_given ? ordered_json(dependence_word(difference.dependence)) : ordered_json()}};
}

ordered_json row_of(const PREFERENCE_DIFFERENCE& difference)
{
    return {{"key", difference.key},
            {"a", row_or_null(difference.a, snapshot_preference_as_json)},
            {"b", row_or_null(difference.b, snapshot_preference_as_json)},
            {"made_by", source_word(difference.made_by)}};
}
}

ordered_json differences_as_json(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b,
                                 const SNAPSHOT_DIFFERENCES& differences, const std::optional<RUN_REPORT>& run)
{
    const auto row_as_json = [](const auto& difference) { return row_of(difference); };
    const auto variable_row = [&run](const VARIABLE_DIFFERENCE& difference)
    { return row_of(difference, run.has_value()); };
    return {{"a", side_as_json(a)},
            {"b", side_as_json(b)},
            {"used", run ? ordered_json{{"file", run->file}, {"run", run->run}} : ordered_json()},
            {"same", differences.none()},
            {"installation", rows_as_json(differences.installation, row_as_json)},
            {"environment", rows_as_json(differences.environment, row_as_json)},
            {"files", rows_as_json(differences.files, row_as_json)},
            {"variables", rows_as_json(differences.variables, variable_row)},
            {"preferences", rows_as_json(differences.preferences, row_as_json)}};
}
