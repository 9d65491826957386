#include "tools/velmar-cfg/documents/snapshot.h"

#include <algorithm>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"
#include "platform/fio/fio.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/content_hash.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
void add_content(SNAPSHOT_FILE& file, const std::string& path)
{
    file.path = path;
    if (!FIO_FILE_SYSTEM::exists(path.c_str()))
        return;
    const std::string bytes = read_input_file(path);
    file.size = bytes.size();
    file.sha256 = sha256_of(bytes);
}

std::vector<SNAPSHOT_FILE> files_as_they_are(const SETTINGS_LAYERS& layers)
{
    std::vector<SNAPSHOT_FILE> files;
    for (const std::string& role : all_file_roles())
    {
        SNAPSHOT_FILE file{role, {}, {}, {}};
        const auto layer = std::ranges::find_if(layers.layers, [&role](const LAYER& candidate)
                                                { return role == layer_code(candidate.kind); });
        if (role == preference_file_role)
            add_content(file, preference_file_location().path);
        else if (layer != layers.layers.end())
            add_content(file, layer->source);
        files.push_back(std::move(file));
    }
    return files;
}

std::vector<LAYER_KIND> layers_that_assign(const SETTINGS_LAYERS& layers, const std::string& name)
{
    std::vector<LAYER_KIND> kinds;
    for (const STATEMENT* const statement : layers.assignments_of(name))
    {
        const LAYER_KIND kind = layers.layer_of(*statement).kind;
        if (kinds.empty() || kinds.back() != kind)
            kinds.push_back(kind);
    }
    return kinds;
}

std::vector<SNAPSHOT_VARIABLE> variables_as_they_are(const SETTINGS& settings)
{
    // From here on every variable has an assignment that won.
    if (const std::vector<std::string> differences = differences_from_library(settings); !differences.empty())
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, differences.front() + "; no snapshot was taken");
    std::vector<SNAPSHOT_VARIABLE> variables;
    for (const VARIABLE& variable : settings.variables)
        variables.push_back({variable.name, variable.value, variable.external,
                             location(settings.layers, *settings.layers.winner_of(variable.name)),
                             layers_that_assign(settings.layers, variable.name), read_typed(variable.name)});
    return variables;
}

std::vector<SNAPSHOT_PREFERENCE> preferences_as_they_are()
{
    check_preference_file();
    cfg_close_user_ini_file(); // an earlier snapshot may have loaded another file
    std::vector<SNAPSHOT_PREFERENCE> preferences;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        PREFERENCE preference = look_up_preference(number);
        preferences.push_back({std::move(preference.key), std::move(preference.value),
                               std::move(preference.default_value), std::move(preference.origin),
                               std::move(preference.release)});
    }
    return preferences;
}
}

SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope)
{
    const std::vector<SNAPSHOT_FILE> files_before = files_as_they_are(read_layers(scope));
    const SETTINGS settings = load_settings(scope);
    SNAPSHOT snapshot;
    snapshot.product = ver_get_kestrin_product_filename();
    snapshot.release = ver_get_version();
    snapshot.project = scope.project;
    snapshot.regtest = scope.regtest;
    snapshot.environment = environment_that_matters();
    snapshot.variables = variables_as_they_are(settings);
    snapshot.preferences = preferences_as_they_are();
    snapshot.files = files_as_they_are(settings.layers);
    for (std::size_t i = 0; i < snapshot.files.size(); ++i)
    {
        if (snapshot.files[i] != files_before[i])
            throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, snapshot.files[i].path.value_or(snapshot.files[i].role) +
                                                       ": changed while it was read; run the command again");
    }
    return snapshot;
}
