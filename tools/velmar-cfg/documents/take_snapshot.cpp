#include "tools/velmar-cfg/documents/take_snapshot.h"

#include <algorithm>

#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/content_hash.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/settings/what_if.h"

namespace
{
SNAPSHOT_FILE file_of_role(const std::string& role, const std::string& path, const INPUT_FILE* file, bool holds_secrets,
                           SECRETS& secrets)
{
    SNAPSHOT_FILE row{role, path, {}, {}};
    if (file != nullptr && file->problem.empty())
    {
        row.size = file->bytes.size();
        row.hash_behind_mask = sha256_of(file->bytes);
        row.sha256 = holds_secrets ? secrets.mark(row.hash_behind_mask) : row.hash_behind_mask;
    }
    return row;
}

std::vector<SNAPSHOT_FILE> files_of(const LAYERS& layers, const INPUT_FILE* preference_file, SECRETS& secrets)
{
    const bool secret_preferences =
        preference_file != nullptr && hide_in_preference_text(preference_file->whole_lines(), secrets).has_value();
    std::vector<SNAPSHOT_FILE> files;
    for (const std::string& role : all_file_roles())
    {
        const auto layer = std::ranges::find_if(layers, [&role](const LAYER& candidate)
                                                { return role == layer_code(candidate.kind); });
        if (role == preference_file_role)
            files.push_back(
                file_of_role(role, preference_file_location().path, preference_file, secret_preferences, secrets));
        else if (layer != layers.end())
        {
            const INPUT_FILE* const file = (layer->original ? layer->original : layer->source).get();
            files.push_back(file_of_role(role, file->path, file, layer->original != nullptr, secrets));
        }
        else
            files.push_back({role, {}, {}, {}});
    }
    return files;
}

std::vector<SNAPSHOT_PREFERENCE> preferences_of(const INPUT_FILE* file, SECRETS& secrets)
{
    const PREFERENCES answers = preferences_in(file, secrets);
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
    SETTINGS_SCOPE as_read = scope; // no change that is only made to be seen changes a file
    as_read.what_if.clear();
    LAYERS layers = load_layers(as_read, files);
    const std::shared_ptr<const INPUT_FILE> preference_file = preference_file_in_use(files);
    SNAPSHOT snapshot;
    snapshot.product = ver_get_kestrin_product_filename();
    snapshot.release = ver_get_version();
    snapshot.project = scope.project;
    snapshot.regtest = scope.regtest;
    snapshot.files = files_of(layers, preference_file.get(), *scope.secrets);
    snapshot.environment = environment_that_matters(*scope.secrets);
    snapshot.variables = SNAPSHOT_VARIABLES(SETTINGS(changed_layers(std::move(layers), scope.what_if, *scope.secrets)));
    snapshot.preferences = preferences_of(preference_file.get(), *scope.secrets);
    return snapshot;
}
