// Writes a snapshot row by row, and reads snapshots of all versions.
//
// While a document is read, the rows of its long lists (variables, lines) are taken one by one and become rows of the
// model. All other members are kept as a tree until finish(), which reads them and puts the snapshot together. What an
// older version lacks stays empty; a member or a field that the document's own version must have is refused when it is
// missing.
//
// Secrets are hidden as values are read. The hash of a file that holds one is hidden too, and kept beside the mark for
// comparisons only. Which files hold secrets is known from the variables, the preferences and the lines, which are
// looked at for that also where they are not wanted.
//
// Invariants:
// - No variable, preference or environment variable is there twice, and there is one file of each role.
// - The layers of a document are those that the library itself reads.
//
// Cost: O(n) expected time for n bytes. Memory: the variables and the texts of the sources, without a tree of either
// where kind and version come first.
#include "tools/velmar-cfg/documents/snapshot_json.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <set>

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

namespace
{
constexpr DOCUMENT_KIND snapshot_kind = {"velmar-snapshot", 3, "snapshot", "velmar-cfg snapshot"};

constexpr std::uint64_t version_with_basis = 3;

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
            row.refuse_namesake();
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

ENVIRONMENT_VARIABLE read_environment_variable(const JSON_NODE& row, SECRETS& secrets)
{
    ENVIRONMENT_VARIABLE variable{row.member("name").text(), row.member("value").text_or_null()};
    hide_in_environment(variable, secrets);
    return variable;
}

LAYER_KIND read_layer(const JSON_NODE& code)
{
    const std::optional<LAYER_KIND> kind = layer_of_code(code.text());
    if (!kind || !is_library_source(*kind))
        code.refuse("layer");
    return *kind;
}

// The source looks into `file`, which is set.
LOCATION read_location(const JSON_NODE& row, std::optional<std::string>& file)
{
    const LAYER_KIND kind = read_layer(row.member("layer"));
    file = row.member("file").text_or_null();
    const std::optional<std::uint64_t> line = row.member("line").natural_number_or_null();
    const std::optional<std::uint64_t> item = row.member("item").natural_number_or_null();
    const bool in_file = is_file(kind);
    if (file.has_value() != in_file || line.has_value() != in_file || item.has_value() == in_file)
        row.refuse("row with file and line, or else an item, as its layer has");
    const std::string_view elsewhere = kind == LAYER_KIND::UNKNOWN ? "" : inline_source;
    return {kind, in_file ? std::string_view(*file) : elsewhere,
            static_cast<std::size_t>(line.value_or(item.value_or(0)))};
}

TYPED_READINGS read_readings(const JSON_NODE& readings)
{
    return {readings.member("bool").truth_or_null(), readings.member("int").int_or_null(),
            readings.member("uint").uint_or_null(), readings.member("double").double_or_null(),
            readings.member("double_whole").truth()};
}

// Adds the row; the layers that assign to a hidden one are added to `secret_layers`.
void read_variable(const JSON_NODE& row, SNAPSHOT_VARIABLES& variables, LAYER_SET& secret_layers, SECRETS& secrets)
{
    const std::string name = row.member("name").text();
    const bool external = row.member("external").truth();
    std::optional<std::string> file;
    const LOCATION location = read_location(row, file);
    const std::string value = hide_in_value(name, row.member("value").text(), secrets,
                                            is_file(location.layer) ? kept_in_lines : kept_in_items);
    LAYER_SET layers;
    for (const JSON_NODE& code : row.member("layers").elements())
        layers.insert(read_layer(code));
    const TYPED_READINGS readings = read_readings(row.member("readings"));
    const bool hidden = has_hidden_parts(value);
    if (hidden)
        secret_layers.insert_all(layers);
    if (!variables.add({name, value, external, location, layers, hidden ? TYPED_READINGS() : readings}))
        row.refuse_namesake();
}

SNAPSHOT_PREFERENCE read_preference(const JSON_NODE& row, SECRETS& secrets)
{
    const std::optional<PREFERENCE_SOURCE> source = source_of_word(row.member("source").text());
    if (!source)
        row.member("source").refuse("source of a preference");
    const std::string key = row.member("key").text();
    return {key,
            hide_in_preference(key, row.member("value").text(), secrets),
            row.member("default").text(),
            {*source, row.member("section").text_or_null().value_or("")},
            row.member("release").text_or_null().value_or("")};
}

// Hides the hashes of files that hold secrets, where the document was written with everything shown: the secrets could
// be guessed until the hash fits. Such a document then compares like one that was written with secrets masked.
void hide_hashes(SNAPSHOT& snapshot, const LAYER_SET& secret_layers, bool secret_preferences, SECRETS& secrets)
{
    secret_preferences =
        secret_preferences || std::ranges::any_of(snapshot.preferences, [](const SNAPSHOT_PREFERENCE& row)
                                                  { return has_hidden_parts(row.value); });
    for (SNAPSHOT_FILE& file : snapshot.files)
    {
        const std::optional<LAYER_KIND> layer = layer_of_code(file.role);
        const bool holds_secrets = layer ? secret_layers.contains(*layer) : secret_preferences;
        if (!holds_secrets || !file.sha256 || has_hidden_parts(*file.sha256))
            continue;
        file.hash_behind_mask = *file.sha256;
        file.sha256 = secrets.mark(file.hash_behind_mask);
    }
}
}

void write_json(JSON_WRITER& out, const SNAPSHOT_FILE& file)
{
    out.begin_object();
    out.field("role", file.role);
    out.field("path", file.path);
    out.field("size", file.size);
    out.field("sha256", file.sha256);
    out.end_object();
}

void write_json(JSON_WRITER& out, const SNAPSHOT_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("value", variable.recorded ? std::optional(variable.value) : std::nullopt);
    out.field("external", variable.external);
    write_location_fields(out, &variable.location);
    out.key("layers");
    out.begin_list();
    for (const LAYER_KIND kind : all_layer_kinds)
    {
        if (variable.layers.contains(kind))
            out.value(layer_code(kind));
    }
    out.end_list();
    out.key("readings");
    write_json(out, variable.readings);
    out.end_object();
}

void write_json(JSON_WRITER& out, const SNAPSHOT_PREFERENCE& preference)
{
    out.begin_object();
    out.field("key", preference.key);
    out.field("value", preference.value);
    out.field("default", preference.default_value);
    out.field("source", source_word(preference.origin.source));
    out.field_or_null("section", preference.origin.section);
    out.field_or_null("release", preference.release);
    out.end_object();
}

void write_json(JSON_WRITER& out, const SNAPSHOT& snapshot)
{
    const auto write_row = [](JSON_WRITER& writer, const auto& row) { write_json(writer, row); };
    out.begin_object();
    out.field("schema", snapshot_kind.schema);
    out.field("schema_version", snapshot.basis ? version_with_basis : version_with_basis - 1);
    out.field("product", snapshot.product);
    out.field("release", snapshot.release);
    out.field_or_null("project", snapshot.project);
    out.field("regtest", snapshot.regtest);
    if (snapshot.basis)
        write_fields(out, *snapshot.basis);
    out.key("files");
    out.row_list(snapshot.files, write_row);
    out.key("environment");
    out.row_list(snapshot.environment, write_row);
    out.key("variables");
    out.begin_row_list();
    for (std::size_t i = 0; i < snapshot.variables.size(); ++i)
        write_json(out, snapshot.variables[i]);
    out.end_list();
    out.key("preferences");
    out.row_list(snapshot.preferences, write_row);
    out.end_object();
}

DOCUMENT_FORMAT SNAPSHOT_READER::format()
{
    constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    const JSON_ROWS variables = {
        "variables", [this](const JSON_NODE& row) { read_variable(row, snapshot.variables, secret_layers, secrets); },
        1, wanted.variables ? last : version_with_basis - 1};
    const bool lines_tell = wanted.lines || !secrets.shown();
    const JSON_ROWS lines = {"lines", [this](const JSON_NODE& row) { take_line(row); }, version_with_basis,
                             lines_tell ? last : version_with_basis - 1};
    return {snapshot_kind, {variables, lines}};
}

void SNAPSHOT_READER::take_line(const JSON_NODE& row)
{
    if (wanted.lines)
        basis.take_line(row);
    else if (const std::optional<std::string> role = basis.role_of_secret_line(row); role)
        note_secret_source(*role);
}

// A secret may stand on a line that lost, or in a comment.
void SNAPSHOT_READER::note_secret_source(const std::string& role)
{
    if (const std::optional<LAYER_KIND> layer = layer_of_code(role); layer)
        secret_layers.insert(*layer);
    secret_preferences = secret_preferences || role == preference_file_role;
}

SNAPSHOT SNAPSHOT_READER::finish(const JSON_DOCUMENT& document)
{
    const JSON_NODE root = document.root();
    snapshot.product = root.member("product").text();
    snapshot.release = root.member("release").text();
    snapshot.project = root.member("project").text_or_null().value_or("");
    snapshot.regtest = root.member("regtest").truth();
    snapshot.files = read_rows<std::set<std::string>>(root.member("files"), read_file, &SNAPSHOT_FILE::role);
    if (snapshot.files.size() != all_file_roles().size())
        root.member("files").refuse("list of a file of each role");
    snapshot.environment = read_rows<std::set<std::string>>(
        root.member("environment"), [this](const JSON_NODE& row) { return read_environment_variable(row, secrets); },
        &ENVIRONMENT_VARIABLE::name);
    snapshot.preferences = read_rows<std::set<std::string>>(
        root.member("preferences"), [this](const JSON_NODE& row) { return read_preference(row, secrets); },
        &SNAPSHOT_PREFERENCE::key);
    if (document.version() >= version_with_basis)
    {
        snapshot.basis =
            wanted.lines ? basis.finish(root, snapshot.files) : SNAPSHOT_BASIS_READER::finish_without_lines(root);
        for (const SNAPSHOT_SOURCE& source : snapshot.basis->sources)
        {
            if (has_hidden_parts(source.file->bytes))
                note_secret_source(source.role);
        }
    }
    hide_hashes(snapshot, secret_layers, secret_preferences, secrets);
    return std::move(snapshot);
}

SNAPSHOT read_snapshot(const std::string& path, SECRETS& secrets)
{
    SNAPSHOT_READER reader(secrets);
    const JSON_DOCUMENT document(path, {reader.format()});
    return reader.finish(document);
}
