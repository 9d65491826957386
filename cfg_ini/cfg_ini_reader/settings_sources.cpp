// The search is a loop over places. The directory of a place is determined only when the search gets there: that of the
// module or of the installation may be expensive to find, and most searches end at an earlier place. Nothing is kept
// between searches, since the current directory, the environment and the files may change at any time. A search costs
// one question to the file system for each place that it visits.
//
// VELMAR_INI_DISABLED takes effect only after a file was found: the search runs as usual, and then its result becomes
// empty. A project's own file is not searched for, so the variable has no effect on it.
#include "cfg_ini/cfg_ini_reader/settings_sources.h"

#include <cstdlib>
#include <cstring>

#include "cfg_ini/cfg_ini.h"
#include "platform/gen/gen.h"
#include "platform/ver/ver.h"

namespace zon_cfg
{
namespace
{
constexpr const char* regtest_base = "regtest";
constexpr const char* extension = "ini";

// The value of an environment variable, or null when it is not set or empty.
const char* environment_value(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

std::string with_slash(std::string directory)
{
    if (directory.back() != '/')
        directory += '/';
    return directory;
}

// HOME with a final "/"; empty when it is no candidate.
std::string home_directory()
{
    const char* const home = environment_value("HOME");
    return home != nullptr && std::strlen(home) <= longest_path ? with_slash(home) : std::string();
}

// The directory of one place of the search; empty when there is none.
std::string directory_of(SEARCH_PLACE place)
{
    switch (place)
    {
    case SEARCH_PLACE::CURRENT_DIRECTORY:
    {
        const std::string current = FIO_FILE_SYSTEM::get_current_directory();
        return current.empty() ? current : with_slash(current);
    }
    case SEARCH_PLACE::VELMAR_INI:
    {
        const char* const named = environment_value("VELMAR_INI");
        return named != nullptr ? named : "";
    }
    case SEARCH_PLACE::HOME:
        return home_directory();
    case SEARCH_PLACE::HOME_SUBDIRECTORY:
    {
        const std::string home = home_directory();
        return home.empty() ? home : home + ".kestrin.velmar/";
    }
    case SEARCH_PLACE::MODULE_DIRECTORY:
        return gen_get_module_path();
    case SEARCH_PLACE::INSTALLATION:
        return gen_get_velmar_path() + "bin/";
    case SEARCH_PLACE::END:
        break;
    }
    return {};
}
}

SETTINGS_SEARCH::SETTINGS_SEARCH(const std::string& file_name)
{
    candidate.filename(file_name);
}

bool SETTINGS_SEARCH::next(SEARCH_PLACE& place)
{
    while (next_place != SEARCH_PLACE::END)
    {
        place = next_place;
        next_place = static_cast<SEARCH_PLACE>(static_cast<int>(next_place) + 1);
        const std::string directory = directory_of(place);
        // The module's directory is tried even if it is empty because it is not known.
        if (directory.empty() && place != SEARCH_PLACE::MODULE_DIRECTORY)
            continue;
        candidate.directory(directory);
        return true;
    }
    return false;
}

std::string settings_file_name(bool regtest)
{
    const std::string base = regtest ? regtest_base : ver_get_kestrin_product_filename();
    return base + "." + extension;
}

bool settings_search_is_disabled()
{
    // Exactly "1" and nothing else, intended: farms rely on "true" and "yes" disabling nothing.
    const char* const disabled = std::getenv("VELMAR_INI_DISABLED");
    return disabled != nullptr && std::strcmp(disabled, "1") == 0;
}

FIO_PATH project_settings_path(const char* proj_dirpath, bool regtest)
{
    FIO_PATH path;
    path.directory(proj_dirpath);
    // Sets the name as a whole. If the extension were set on its own, it would replace the last part of a product name
    // with a ".".
    path.filename(settings_file_name(regtest));
    return path;
}

std::string find_project_settings(const char* proj_dirpath, bool regtest)
{
    const FIO_PATH path = project_settings_path(proj_dirpath, regtest);
    // VELMAR_INI_DISABLED is about the search, not about a project's own file.
    return FIO_FILE_SYSTEM::exists(path) ? path.fullpath() : cfg_get_default_ini_file(regtest);
}

std::string appended_settings_path()
{
    const char* const value = environment_value("APPENDED_VELMAR_INI");
    if (value == nullptr)
        return {};
    const FIO_PATH appended(value);
    return FIO_FILE_SYSTEM::exists(appended) ? appended.fullpath() : std::string();
}

const char* inline_settings()
{
    return environment_value("VELMAR_INI_VARS");
}
}

std::string cfg_get_default_ini_file(bool regtest)
{
    using namespace zon_cfg;
    SETTINGS_SEARCH search(settings_file_name(regtest));
    for (SEARCH_PLACE place{}; search.next(place);)
    {
        if (FIO_FILE_SYSTEM::exists(search.path()))
            return settings_search_is_disabled() ? std::string() : search.path().fullpath();
    }
    return {};
}
