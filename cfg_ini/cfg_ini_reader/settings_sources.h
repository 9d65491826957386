// Finds the sources of the settings: the search for a file, a project's own files, and the sources that the environment
// applies on top of them. Reads no file and takes no lock.
#ifndef CFG_INI_CFG_INI_READER_SETTINGS_SOURCES_H
#define CFG_INI_CFG_INI_READER_SETTINGS_SOURCES_H

#include <cstddef>
#include <string>

#include "platform/fio/fio.h"

namespace zon_cfg
{
// The longest path in bytes that the path buffers hold; longer ones are cut. The search skips a HOME that is longer.
inline constexpr std::size_t longest_path = 1024;

// The directories of the search, in its order.
enum class SEARCH_PLACE
{
    CURRENT_DIRECTORY,
    VELMAR_INI,
    HOME,
    HOME_SUBDIRECTORY,
    MODULE_DIRECTORY,
    INSTALLATION,
    END
};

// The search for a file, one directory at a time.
class SETTINGS_SEARCH
{
public:
    explicit SETTINGS_SEARCH(const std::string& file_name);

    // Returns whether there is a further directory to search. If there is, `place` names it, and path() is the path of
    // the file in it. Skips a place that has no directory, such as an environment variable that is not set.
    bool next(SEARCH_PLACE& place);

    const FIO_PATH& path() const
    {
        return candidate;
    }

private:
    FIO_PATH candidate;
    SEARCH_PLACE next_place = SEARCH_PLACE::CURRENT_DIRECTORY;
};

// "velmar.ini", or "regtest.ini" with `regtest`.
std::string settings_file_name(bool regtest);

// Whether VELMAR_INI_DISABLED makes every search find nothing.
bool settings_search_is_disabled();

// The settings file that stands, or would stand, in a project's directory.
FIO_PATH project_settings_path(const char* proj_dirpath, bool regtest);

// The path of the project's settings file if that exists, else what the search finds; empty for nothing.
std::string find_project_settings(const char* proj_dirpath, bool regtest);

// The path of the file that APPENDED_VELMAR_INI names, if it exists; else empty.
std::string appended_settings_path();

// The text of VELMAR_INI_VARS, or null when it is not set or empty. Belongs to the environment.
const char* inline_settings();
}

#endif
