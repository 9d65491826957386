// Takes a snapshot of what holds now. Every text comes out of INPUT_FILES, so that hashes, sizes, values and
// preferences are about the same bytes. The changes of --with and --without are applied to the variables alone.
#include "tools/velmar-cfg/documents/take_snapshot.h"

#include <algorithm>
#include <unistd.h>

#include "cfg_ini/cfg_user_ini_enums.h"
#include "cfg_run_report/run_circumstances.h"
#include "platform/ver/ver.h"
#include "tools/velmar-cfg/base/content_hash.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/lint/environment_rules.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/settings.h"
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

std::vector<SNAPSHOT_FILE> files_of(const LAYERS& layers, const INPUT_FILE* preference_file, bool secret_preferences,
                                    SECRETS& secrets)
{
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

// The file with its secrets hidden.
std::shared_ptr<const INPUT_FILE> with_secrets_hidden(std::shared_ptr<const INPUT_FILE> file, SECRETS& secrets)
{
    std::optional<std::string> hidden =
        file == nullptr ? std::nullopt : hide_in_preference_text(file->whole_lines(), secrets);
    if (!hidden)
        return file;
    return std::make_shared<const INPUT_FILE>(INPUT_FILE{file->path, *std::move(hidden), file->problem});
}

std::vector<SNAPSHOT_PREFERENCE> preferences_of(const INPUT_FILE* file)
{
    const PREFERENCES answers(file == nullptr ? std::string_view() : file->whole_lines());
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

std::vector<SNAPSHOT_SOURCE> sources_of(const LAYERS& layers, std::shared_ptr<const INPUT_FILE> preference_file)
{
    std::vector<SNAPSHOT_SOURCE> sources;
    for (const LAYER& layer : layers)
        sources.push_back({layer_code(layer.kind), layer.source});
    if (preference_file != nullptr)
        sources.push_back({preference_file_role, std::move(preference_file)});
    return sources;
}

SNAPSHOT_BASIS basis_of(const SETTINGS_SCOPE& scope, const LAYERS& layers,
                        std::shared_ptr<const INPUT_FILE> preference_file)
{
    RUN_CIRCUMSTANCES own = circumstances_of_this_run();
    SNAPSHOT_BASIS basis;
    basis.user = name_of_user(geteuid()).value_or(std::to_string(geteuid()));
    basis.host = std::move(own.host);
    basis.directory = std::move(own.directory);
    basis.taken = std::move(own.ended);
    basis.tool = "velmar-cfg " VELMAR_CFG_VERSION;
    basis.search = all_file_candidates(scope);
    basis.findings = findings_beside_lines(layers, *scope.secrets);
    basis.sources = sources_of(layers, std::move(preference_file));
    return basis;
}
}

SNAPSHOT take_snapshot(const SETTINGS_SCOPE& scope, INPUT_FILES& files, bool with_basis)
{
    SETTINGS_SCOPE as_read = scope; // no change that is only made to be seen changes a file
    as_read.what_if.clear();
    LAYERS layers = load_layers(as_read, files);
    const std::size_t problems_of_settings = files.problems().size();
    const std::shared_ptr<const INPUT_FILE> preference_file = preference_file_in_use(files);
    const std::shared_ptr<const INPUT_FILE> hidden_file = with_secrets_hidden(preference_file, *scope.secrets);
    SNAPSHOT snapshot;
    snapshot.product = ver_get_kestrin_product_filename();
    snapshot.release = ver_get_version();
    snapshot.project = scope.project;
    snapshot.regtest = scope.regtest;
    snapshot.files = files_of(layers, preference_file.get(), hidden_file != preference_file, *scope.secrets);
    snapshot.environment = environment_that_matters(*scope.secrets);
    if (with_basis)
    {
        snapshot.basis = basis_of(as_read, layers, hidden_file);
        for (const std::string& problem : files.problems())
            snapshot.basis->problems.push_back({snapshot.basis->problems.size() >= problems_of_settings, problem});
    }
    snapshot.variables = SNAPSHOT_VARIABLES(SETTINGS(changed_layers(std::move(layers), scope.what_if, *scope.secrets)));
    snapshot.preferences = preferences_of(hidden_file.get());
    return snapshot;
}
