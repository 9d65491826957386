#include "tools/velmar-cfg/documents/named_snapshot.h"

#include <sys/stat.h>

#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/documents/take_snapshot.h"

namespace
{
bool is_directory(const std::string& path)
{
    struct stat found;
    return stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}
}

COMPARED_SNAPSHOT named_snapshot(const std::string& path, const SETTINGS_SCOPE& scope, INPUT_FILES& files)
{
    if (path == "-" || !is_directory(path))
        return {title_of_named_file(path), read_snapshot(path, *scope.secrets)};
    check_input_directory(path, "name ");
    SETTINGS_SCOPE of_project = scope;
    of_project.project = path;
    return {path, take_snapshot(of_project, files)};
}
