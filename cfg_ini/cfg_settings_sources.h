// Where the values of the internal variables came from: the settings files and inline texts that the library has
// applied, each as it was at that moment.
//
//     for (const CFG_SETTINGS_SOURCE& source : cfg_get_settings_sources().applied)
//         log(source.path.empty() ? source.text : source.path);
//
// The getters of paths in the public header serve another purpose: they are never cleared, know one file a role, and
// tell a path that may be relative to a directory that is no longer the current one.
//
// With this list a program can work out where each value stands. Sources override one another in the order in which
// they were applied, and a file that still is what it was then (device, inode, size and modification time) can be read
// again. The run report does so (cfg_run_report/cfg_run_report.h). What the program assigns itself is no source.
//
// Compiles as C++17.
#ifndef CFG_INI_CFG_SETTINGS_SOURCES_H
#define CFG_INI_CFG_SETTINGS_SOURCES_H

#include <cstdint>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"

// What a source was applied as.
enum class CFG_SETTINGS_ROLE : int
{
    MAIN_FILE = 0,     // the file that made the store; there is one at most
    APPENDED_FILE = 1, // the file that APPENDED_VELMAR_INI names, or one that the program applied as such
    INLINE_TEXT = 2,   // VELMAR_INI_VARS
    REGTEST_FILE = 3,  // regtest.ini, or a file that the program applied as such
    PROGRAM_TEXT = 4,  // a text that the program handed to cfg_process_ini_string
};

// One source, as it was when it was last applied.
struct CFG_SETTINGS_SOURCE
{
    // What the source was applied as.
    CFG_SETTINGS_ROLE role = CFG_SETTINGS_ROLE::MAIN_FILE;

    // Whether its assignments mark their variables as external.
    bool external = false;

    // Whether all of it was applied. Not yet, while it is being applied; never, if an exception ended the load or reads
    // failed.
    bool whole = false;

    // When it was applied, in one count of all such beginnings and ends in this process, from 1. A source overrides
    // those whose end comes before its beginning. Where two overlap, because two threads applied them at the same time
    // or a callback applied one during the other, each may override the other. An end of 0 has not come yet, or never
    // comes because of an exception.
    std::uint64_t beginning = 0;
    std::uint64_t end = 0;

    // Of a file: its path as it was opened, made absolute with the current directory of that moment but not otherwise
    // changed. It stays relative if the current directory was not known. Empty for a text.
    std::string path;

    // Of a file: what fstat said of it once it was open, all 0 if it said nothing. The size is in bytes. The time is in
    // seconds and nanoseconds since 1970-01-01 UTC.
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint32_t mode = 0; // type and permissions
    std::uint64_t size = 0;
    std::int64_t modified_seconds = 0;
    std::int32_t modified_nanoseconds = 0;

    // Of an inline text: the text, which may hold any byte.
    std::string text;
};

// The sources of the present store.
struct CFG_SETTINGS_SOURCES
{
    // In the order of their beginnings. A source that was applied again as it had been, equal in all that identifies
    // it, is listed once, where it was applied last: it then overrode all that it had assigned before. A file that had
    // changed in between is another source.
    std::vector<CFG_SETTINGS_SOURCE> applied;

    // 0, or a moment in the count above: up to then files or VELMAR_INI_VARS may have been applied that the list lacks,
    // for want of memory or because it keeps the last 256 appended and regression-test files. Of the program's texts it
    // keeps the last 64, and 256 KiB; what it lacks of these it does not tell, as it does not tell of cfg_set_value.
    std::uint64_t lost_until = 0;

    // The variables that exist and have an empty text, as first spelt, in no order: they were asked for and never set,
    // or are set to the empty text. The usage reports do not tell these from variables whose text they leave out.
    std::vector<std::string> empty_variables;
};

// The sources of the present store; nothing without one, since asking loads nothing. Emptying the store clears the
// list, and so does a load, which empties first. The result is the caller's.
//
// A file that was opened and has no lines is listed, also a directory, a pipe or a device: see `mode`. A file that is
// missing or cannot be opened is not.
//
// Any thread may call, and a notification may. Waits for the store's lock, as every lookup does; while another thread
// applies sources, the list has those that have begun. Throws std::bad_alloc only.
CFG_INI_API CFG_SETTINGS_SOURCES cfg_get_settings_sources();

#endif
