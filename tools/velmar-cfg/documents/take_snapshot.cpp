#include "tools/velmar-cfg/documents/take_snapshot.h"

#include <algorithm>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/content_hash.h"

namespace
{
SNAPSHOT_FILE file_of_role(const std::string& role, const std::string& path, const INPUT_FILE* file)
{
    SNAPSHOT_FILE row{role, path, {}, {}};
    if (file != nullptr && file->problem.empty())
    {
        row.size = file->bytes.size();
        row.sha256 = sha256_of(file->bytes);
    }
    return row;
}

std::vector<SNAPSHOT_FILE> files_of(const LAYERS& layers, const INPUT_FILE* preference_file)
{
    std::vector<SNAPSHOT_FILE> files;
    for (const std::string& role : all_file_roles())
    {
        const auto layer = std::ranges::find_if(layers, [&role](const LAYER& candidate)
                                                { return role == layer_code(candidate.kind); });
        if (role == preference_file_role)
            files.push_back(file_of_role(role, preference_file_location().path, preference_file));
        else if (layer != layers.end())
            files.push_back(file_of_role(role, layer->source->path, layer->source.get()));
        else
            files.push_back({role, {}, {}, {}});
    }
    return files;
}

std::vector<SNAPSHOT_PREFERENCE> preferences_of(const INPUT_FILE* file)
{
    const PREFERENCES answers(file == nullptr ? "" : file->whole_lines());
    std::vector<SNAPSHOT_PREFERENCE> preferences;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        PREFERENCE preference = answers.look_up(number);
        preferences.push_back({std::move(preference.key), std::move(preference.value),
                               std::move(preference.default_value), std::move(preference.origin),
                               std::move(preference.release)});
    }
    return preferences;
}
}

SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    LAYERS layers = load_layers(scope, files);
    const std::shared_ptr<const INPUT_FILE> preference_file = preference_file_in_use(files);
    SNAPSHOT snapshot;
    snapshot.product = ver_get_kestrin_product_filename();
    snapshot.release = ver_get_version();
    snapshot.project = scope.project;
    snapshot.regtest = scope.regtest;
    snapshot.files = files_of(layers, preference_file.get());
    snapshot.environment = environment_that_matters();
    snapshot.variables = SNAPSHOT_VARIABLES(SETTINGS(std::move(layers)));
    snapshot.preferences = preferences_of(preference_file.get());
    return snapshot;
}
