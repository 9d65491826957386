#include "tools/velmar-cfg/documents/snapshot_json.h"

#include <algorithm>
#include <functional>
#include <set>

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
using nlohmann::ordered_json;

constexpr DOCUMENT_KIND snapshot_kind = {"velmar-snapshot", 1, "snapshot", "velmar-cfg snapshot"};

// The rows of a list, in order, each read by `read`. Refuses a second row with the same name, which `name_of` gives.
template <typename NAMES, typename READ, typename NAME_OF>
auto read_rows(const JSON_NODE& list, READ read, NAME_OF name_of)
{
    std::vector<decltype(read(list))> rows;
    NAMES names;
    for (const JSON_NODE& row : list.elements())
    {
        rows.push_back(read(row));
        if (!names.insert(std::invoke(name_of, rows.back())).second)
            row.refuse("row of its own: there is another of that name");
    }
    return rows;
}

SNAPSHOT_FILE read_file(const JSON_NODE& row)
{
    SNAPSHOT_FILE file{row.member("role").text(), row.member("path").text_or_null(),
                       row.member("size").natural_number_or_null(), row.member("sha256").text_or_null()};
    if (std::ranges::count(all_file_roles(), file.role) == 0)
        row.member("role").refuse("role of a file");
    return file;
}

ENVIRONMENT_VARIABLE read_environment_variable(const JSON_NODE& row)
{
    return {row.member("name").text(), row.member("value").text_or_null()};
}

LAYER_KIND read_layer(const JSON_NODE& code)
{
    const std::optional<LAYER_KIND> kind = layer_of_code(code.text());
    if (!kind)
        code.refuse("layer");
    return *kind;
}

LOCATION read_location(const JSON_NODE& row)
{
    const LAYER_KIND kind = read_layer(row.member("layer"));
    const std::optional<std::string> file = row.member("file").text_or_null();
    const std::optional<std::uint64_t> line = row.member("line").natural_number_or_null();
    const std::optional<std::uint64_t> item = row.member("item").natural_number_or_null();
    LOCATION location{{kind, file.value_or(inline_source)}, line.value_or(item.value_or(0))};
    if (file.has_value() != location.layer.is_file() || line.has_value() != location.layer.is_file() ||
        item.has_value() == location.layer.is_file())
        row.refuse("row with file and line, or else an item, as its layer has");
    return location;
}

TYPED_READINGS read_readings(const JSON_NODE& readings)
{
    return {readings.member("bool").truth_or_null(), readings.member("int").int_or_null(),
            readings.member("uint").uint_or_null(), readings.member("double").double_or_null(),
            readings.member("double_whole").truth()};
}

SNAPSHOT_VARIABLE read_variable(const JSON_NODE& row)
{
    SNAPSHOT_VARIABLE variable{row.member("name").text(),
                               row.member("value").text(),
                               row.member("external").truth(),
                               read_location(row),
                               {},
                               {}};
    for (const JSON_NODE& code : row.member("layers").elements())
        variable.layers.push_back(read_layer(code));
    variable.readings = read_readings(row.member("readings"));
    return variable;
}

SNAPSHOT_PREFERENCE read_preference(const JSON_NODE& row)
{
    const std::optional<PREFERENCE_SOURCE> source = source_of_word(row.member("source").text());
    if (!source)
        row.member("source").refuse("source of a preference");
    return {row.member("key").text(),
            row.member("value").text(),
            row.member("default").text(),
            {*source, row.member("section").text_or_null().value_or("")},
            row.member("release").text_or_null().value_or("")};
}
}

std::vector<std::string> all_file_roles()
{
    return {layer_code(LAYER_KIND::MAIN_FILE), layer_code(LAYER_KIND::APPENDED_FILE),
            layer_code(LAYER_KIND::REGTEST_FILE), preference_file_role};
}

ordered_json file_as_json(const SNAPSHOT_FILE& file)
{
    return {{"role", file.role},
            {"path", value_or_null(file.path)},
            {"size", value_or_null(file.size)},
            {"sha256", value_or_null(file.sha256)}};
}

ordered_json variable_as_json(const SNAPSHOT_VARIABLE& variable)
{
    ordered_json row = {{"name", variable.name}, {"value", variable.value}, {"external", variable.external}};
    row.update(location_as_json(&variable.location));
    row["layers"] = rows_as_json(variable.layers, layer_code);
    row["readings"] = readings_as_json(variable.readings);
    return row;
}

ordered_json snapshot_preference_as_json(const SNAPSHOT_PREFERENCE& preference)
{
    return {{"key", preference.key},
            {"value", preference.value},
            {"default", preference.default_value},
            {"source", source_word(preference.origin.source)},
            {"section", text_or_null(preference.origin.section)},
            {"release", text_or_null(preference.release)}};
}

ordered_json snapshot_as_json(const SNAPSHOT& snapshot)
{
    return {{"schema", snapshot_kind.schema},
            {"schema_version", snapshot_kind.newest_version},
            {"product", snapshot.product},
            {"release", snapshot.release},
            {"project", text_or_null(snapshot.project)},
            {"regtest", snapshot.regtest},
            {"files", rows_as_json(snapshot.files, file_as_json)},
            {"environment", environment_as_json(snapshot.environment)},
            {"variables", rows_as_json(snapshot.variables, variable_as_json)},
            {"preferences", rows_as_json(snapshot.preferences, snapshot_preference_as_json)}};
}

SNAPSHOT read_snapshot(const std::string& path)
{
    const JSON_DOCUMENT document(path, snapshot_kind);
    const JSON_NODE root = document.root();
    SNAPSHOT snapshot;
    snapshot.product = root.member("product").text();
    snapshot.release = root.member("release").text();
    snapshot.project = root.member("project").text_or_null().value_or("");
    snapshot.regtest = root.member("regtest").truth();
    snapshot.files = read_rows<std::set<std::string>>(root.member("files"), read_file, &SNAPSHOT_FILE::role);
    if (snapshot.files.size() != all_file_roles().size())
        root.member("files").refuse("list of a file of each role");
    snapshot.environment = read_rows<std::set<std::string>>(root.member("environment"), read_environment_variable,
                                                            &ENVIRONMENT_VARIABLE::name);
    snapshot.variables = read_rows<VARIABLE_NAMES>(root.member("variables"), read_variable, &SNAPSHOT_VARIABLE::name);
    snapshot.preferences =
        read_rows<std::set<std::string>>(root.member("preferences"), read_preference, &SNAPSHOT_PREFERENCE::key);
    return snapshot;
}
