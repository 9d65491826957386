#include "tools/velmar-cfg/differences_output.h"

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/environment.h"
#include "tools/velmar-cfg/json_values.h"
#include "tools/velmar-cfg/layers.h"
#include "tools/velmar-cfg/preferences.h"
#include "tools/velmar-cfg/snapshot_document.h"

namespace
{
using nlohmann::ordered_json;

// --- For people ---

std::string shown(const std::string& text)
{
    return text.empty() ? "(empty)" : printable(text);
}

// "A  text" or "B  text", indented, in the colour of its side.
void write_side(const char* side, const std::string& text, OUTPUT& out)
{
    out << "    " << out.painted(*side == 'A' ? STYLE::BAD : STYLE::GOOD, std::string(side) + "  " + text) << "\n";
}

void write_heading(const char* heading, OUTPUT& out)
{
    out << "\n" << out.painted(STYLE::STRONG, heading) << "\n";
}

void write_entry(const std::string& name, const std::string& made_by, const std::string& a, const std::string& b,
                 OUTPUT& out)
{
    out << "  " << out.painted(STYLE::STRONG, printable(name));
    if (!made_by.empty())
        out << ", by " << out.painted(STYLE::WARNING, made_by);
    out << "\n";
    write_side("A", a, out);
    write_side("B", b, out);
}

std::string side_as_text(const ENVIRONMENT_VARIABLE* variable)
{
    return variable == nullptr || !variable->value ? "not set" : shown(*variable->value);
}

std::string side_as_text(const SNAPSHOT_FILE* file)
{
    if (file == nullptr || !file->path)
        return "none";
    if (!file->sha256)
        return printable(*file->path) + ", which does not exist";
    constexpr std::size_t telling_digits = 12;
    return printable(*file->path) + ", " + std::to_string(file->size.value_or(0)) + " bytes, SHA-256 " +
           printable(file->sha256->substr(0, telling_digits)) + "...";
}

std::string side_as_text(const SNAPSHOT_VARIABLE* variable)
{
    if (variable == nullptr)
        return "not set";
    return shown(variable->value) + "  at " + printable(place_as_text(variable->place)) + " (" +
           layer_title(variable->place.layer.kind) + (variable->external ? ", external)" : ")");
}

std::string side_as_text(const SNAPSHOT_PREFERENCE* preference)
{
    if (preference == nullptr)
        return "no such preference";
    return shown(preference->value) + "  " + printable(origin_as_text(preference->origin));
}

std::string maker_as_text(const VARIABLE_DIFFERENCE& difference)
{
    const std::string maker =
        difference.made_by ? layer_title(*difference.made_by) : "the release, which reads it otherwise";
    return difference.dependence == DEPENDENCE::KIND::PERHAPS ? maker + "; perhaps read, once, while unset" : maker;
}

const char* maker_as_text(PREFERENCE_SOURCE source)
{
    switch (source)
    {
    case PREFERENCE_SOURCE::RUNNING_RELEASE:
        return "the running release's section";
    case PREFERENCE_SOURCE::OLDER_RELEASE:
        return "an older release's section";
    case PREFERENCE_SOURCE::UNVERSIONED_SECTION:
        return "the section without a release";
    case PREFERENCE_SOURCE::DEFAULT:
        return "the catalogue's default";
    case PREFERENCE_SOURCE::NOWHERE:
        break;
    }
    return "the catalogue";
}

std::string role_as_text(const std::string& role)
{
    const std::optional<LAYER_KIND> layer = layer_of_code(role);
    return layer ? layer_title(*layer) : "preference file";
}

std::string side_in_words(const COMPARED_SNAPSHOT& side)
{
    const SNAPSHOT& snapshot = side.snapshot;
    return printable(side.title) + " (" + printable(snapshot.product) + " " + printable(snapshot.release) +
           (snapshot.project.empty() || snapshot.project == side.title ? ""
                                                                       : ", project " + printable(snapshot.project)) +
           (snapshot.regtest ? ", regression test)" : ")");
}

// --- JSON ---

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

void write_differences(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b, const SNAPSHOT_DIFFERENCES& differences,
                       const std::optional<RUN_REPORT>& run, OUTPUT& out)
{
    if (differences.none())
        return;
    out << out.painted(STYLE::BAD, "A  " + side_in_words(a)) << "\n";
    out << out.painted(STYLE::GOOD, "B  " + side_in_words(b)) << "\n";
    if (!differences.installation.empty())
        write_heading("Installation", out);
    for (const INSTALLATION_DIFFERENCE& difference : differences.installation)
        write_entry(difference.what, "", shown(difference.a), shown(difference.b), out);
    if (!differences.environment.empty())
        write_heading("Environment", out);
    for (const ENVIRONMENT_DIFFERENCE& difference : differences.environment)
        write_entry(difference.name, "", side_as_text(difference.a), side_as_text(difference.b), out);
    if (!differences.files.empty())
        write_heading("Files", out);
    for (const FILE_DIFFERENCE& difference : differences.files)
        write_entry(role_as_text(difference.role), "", side_as_text(difference.a), side_as_text(difference.b), out);
    if (!differences.variables.empty())
        write_heading(run ? ("Variables that " + printable(run->run) + " read").c_str() : "Variables", out);
    for (const VARIABLE_DIFFERENCE& difference : differences.variables)
        write_entry(difference.name, maker_as_text(difference), side_as_text(difference.a), side_as_text(difference.b),
                    out);
    if (!differences.preferences.empty())
        write_heading("Preferences", out);
    for (const PREFERENCE_DIFFERENCE& difference : differences.preferences)
        write_entry(difference.key, maker_as_text(difference.made_by), side_as_text(difference.a),
                    side_as_text(difference.b), out);
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
