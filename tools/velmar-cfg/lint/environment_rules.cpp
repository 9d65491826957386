// Looks at the environment variables that choose settings files. Each check adds one finding at most. What is there is
// asked of the system and of the library's search; the values are read anew at each call.
#include "tools/velmar-cfg/lint/environment_rules.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/written_form.h"
#include "tools/velmar-cfg/settings/library_rules.h"

using namespace zon_cfg;

namespace
{
std::string value_of(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

FINDING finding_of(const char* variable, SEVERITY severity, const char* reason, const std::string& message,
                   const std::string& instead)
{
    return {variable, {}, 1, 1, severity, reason, message, instead, {}};
}

// Whether the value says yes in other words than the one that the library knows.
bool only_looks_enabled(const std::string& value)
{
    const std::string_view visible = without_outer_white(value);
    if (value == "1" || visible.empty())
        return false;
    const std::string text(visible);
    const std::string meant = boolean_meant_by(text).value_or(text);
    return as_boolean(meant).value_or(as_integer(meant) != 0);
}

void check_disabled(std::vector<FINDING>& found)
{
    const std::string value = value_of("VELMAR_INI_DISABLED");
    if (!only_looks_enabled(value))
        return;
    found.push_back(finding_of("VELMAR_INI_DISABLED", SEVERITY::WARNING, "disables-nothing",
                               in_single_quotes(value) + " disables nothing: only '1' does", "write '1'"));
    found.back().replacement = "1";
}

void check_directory(std::vector<FINDING>& found)
{
    const std::string value = value_of("VELMAR_INI");
    struct stat status = {};
    if (value.empty())
        return;
    if (stat(value.c_str(), &status) != 0)
    {
        if (errno == ENOENT || errno == ENOTDIR)
            found.push_back(finding_of("VELMAR_INI", SEVERITY::WARNING, "missing-directory",
                                       "there is no directory " + in_single_quotes(value), "check the path"));
        return;
    }
    if (S_ISDIR(status.st_mode))
        return;
    found.push_back(finding_of("VELMAR_INI", SEVERITY::ERROR, "no-directory",
                               in_single_quotes(value) + " is a file: no settings are looked for in it",
                               "name the directory of a file " + settings_file_name(false)));
    const std::size_t slash = value.rfind('/');
    if (value.substr(slash + 1) != settings_file_name(false))
        return;
    const std::string directory = slash == std::string::npos ? "." : slash == 0 ? "/" : value.substr(0, slash);
    found.back().instead = "write " + in_single_quotes(directory);
    found.back().replacement = directory;
}

void check_appended(std::vector<FINDING>& found)
{
    const std::string value = value_of("APPENDED_VELMAR_INI");
    if (!value.empty() && appended_file().empty())
        found.push_back(finding_of("APPENDED_VELMAR_INI", SEVERITY::ERROR, "missing-file",
                                   "there is no file " + in_single_quotes(value) + ", so nothing is appended",
                                   "check the path, or remove the variable"));
}
}

std::vector<FINDING> lint_environment(SECRETS& secrets)
{
    std::vector<FINDING> found;
    check_directory(found);
    check_disabled(found);
    check_appended(found);
    for (FINDING& finding : found)
    {
        for (std::string* const text : {&finding.message, &finding.instead})
            *text = hide_in_value("", *text, secrets);
        if (finding.replacement)
            finding.replacement = hide_in_value("", *finding.replacement, secrets);
    }
    return found;
}

FINDING no_settings_file()
{
    return {settings_file_name(false),
            {},
            {},
            {},
            SEVERITY::WARNING,
            "no-settings-file",
            settings_search_is_disabled() ? "no settings file found, since VELMAR_INI_DISABLED is 1"
                                          : "no settings file found",
            "'velmar-cfg paths' shows where it is looked for",
            {}};
}

FINDING no_preference_file()
{
    return {"velmar2.ini",
            {},
            {},
            {},
            SEVERITY::WARNING,
            "no-preference-file",
            "no preference file found",
            "'velmar-cfg prefs path' shows where it is looked for",
            {}};
}

std::vector<FINDING> findings_beside_lines(const LAYERS& layers, SECRETS& secrets)
{
    std::vector<FINDING> found = lint_environment(secrets);
    if (std::ranges::none_of(layers, [](const LAYER& layer) { return is_library_source(layer.kind); }))
        found.push_back(no_settings_file());
    return found;
}
