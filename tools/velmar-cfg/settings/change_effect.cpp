// Tells which assignment decides on a variable after an edit. The layers are loaded anew, with secrets shown, since
// values are compared. Of an edit that was only planned, the new bytes take the place of the file's, and a new file
// becomes a layer where the search would find it. Then the settings of this one variable are made
// (SETTINGS::of_one_variable).
//
// A path leads to the edited file if both have the same device and number; where one of them does not exist, if it is
// the same path once links are followed.
#include "tools/velmar-cfg/settings/change_effect.h"

#include <algorithm>
#include <memory>
#include <sys/stat.h>
#include <utility>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/settings.h"

using namespace zon_cfg;

namespace
{
// `target` is as FILE_PLACE names a file; neither need exist.
bool leads_to(const std::string& path, const std::string& target)
{
    struct stat named;
    struct stat wanted;
    if (stat(path.c_str(), &named) == 0 && stat(target.c_str(), &wanted) == 0)
        return named.st_dev == wanted.st_dev && named.st_ino == wanted.st_ino;
    try
    {
        return FILE_PLACE(path).path() == target;
    }
    catch (const TOOL_ERROR&)
    {
        return false; // a directory on the way is missing, or is not for us
    }
}

// Whether the search would find a new file there.
bool would_be_found(const SETTINGS_SCOPE& scope, bool regtest, const std::string& path)
{
    bool searched = scope.project.empty(); // the project's own file comes before the search
    for (const FILE_CANDIDATE& candidate : settings_candidates(scope, regtest))
    {
        if (candidate.state == FILE_STATE::READ)
            return false;
        if (!candidate.path.empty() && leads_to(candidate.path, path))
            return !searched || !settings_search_is_disabled();
        searched = true;
    }
    return false;
}

// Has the new file in its place among the layers, if it has one.
void add_new_file(const SETTINGS_SCOPE& scope, const FILE_EDIT& edit, LAYERS& layers)
{
    const std::string appended = named_appended_file();
    for (const LAYER_KIND kind : {LAYER_KIND::MAIN_FILE, LAYER_KIND::APPENDED_FILE, LAYER_KIND::REGTEST_FILE})
    {
        const bool regtest = kind == LAYER_KIND::REGTEST_FILE;
        const bool is_read = kind == LAYER_KIND::APPENDED_FILE
                                 ? !appended.empty() && leads_to(appended, edit.path)
                                 : (!regtest || scope.regtest) && would_be_found(scope, regtest, edit.path);
        if (!is_read)
            continue;
        std::erase_if(layers, [kind](const LAYER& layer) { return layer.kind == kind; });
        const auto behind = std::ranges::find_if(layers, [kind](const LAYER& layer) { return layer.kind > kind; });
        layers.insert(behind, {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{edit.path, {}, {}})});
    }
}
}

CHANGE_EFFECT effect_of_change(const SETTINGS_SCOPE& scope, const std::string& name, const FILE_EDIT& edit,
                               bool only_planned, INPUT_FILES& files)
{
    SECRETS open; // values are compared
    open.show_all();
    LAYERS layers = load_layers(scope, open, files);
    if (only_planned && edit.is_new && edit.before != edit.after)
        add_new_file(scope, edit, layers);
    CHANGE_EFFECT effect{false, {}};
    for (LAYER& layer : layers)
    {
        if (!is_file(layer.kind) || !leads_to(layer.source->path, edit.path))
            continue;
        effect.file_is_read = true;
        if (only_planned)
            layer.source = std::make_shared<const INPUT_FILE>(INPUT_FILE{layer.source->path, edit.after, {}});
    }
    const SETTINGS settings = SETTINGS::of_one_variable(std::move(layers), name);
    if (const VARIABLE* const variable = settings.find(name); variable != nullptr)
    {
        const LOCATION at = settings.location_of(*variable);
        const std::string source(at.source);
        effect.deciding = {at.layer, source, at.position, std::string(settings.value_of(*variable)),
                           is_file(at.layer) && leads_to(source, edit.path)};
    }
    return effect;
}

std::string file_in_whose_place(const SETTINGS_SCOPE& scope, const std::string& path)
{
    return would_be_found(scope, false, path) ? settings_file_of(scope.project, false) : "";
}
