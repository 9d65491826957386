// Where the values of the internal variables came from: the settings files and inline texts that the library has
// applied, each as it was at that moment.
//
// The path getters of the public header do not replace this list. Their paths are never cleared, there is only one for
// each role, and it may be relative to a directory that is no longer the current one.
//
// With this list a program can work out the file and line of each value. A source overrides those that were applied
// before it. A file that is unchanged since then (the same device, inode, size and modification time) can be read
// again. The run report does so (cfg_run_report/cfg_run_report.h). A text for cfg_process_ini_string is a source. What
// the program assigns by the other setters is none.
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
    // The role in which the source was applied.
    CFG_SETTINGS_ROLE role = CFG_SETTINGS_ROLE::MAIN_FILE;

    // Whether its assignments mark their variables as external.
    bool external = false;

    // Whether all of it was applied to the present store. False while it is being applied. It stays false if an
    // exception ended the load, reads failed, or another thread emptied or reloaded the store meanwhile.
    bool whole = false;

    // When the application of the source began and ended. One count, from 1, numbers all such beginnings and ends in
    // this process. A source overrides those whose end comes before its beginning. Two sources overlap if two threads
    // applied them at the same time, or if a callback applied one during the other. Then each may override the other.
    // The end is 0 as long as the application has not ended; it stays 0 if an exception ended it.
    std::uint64_t beginning = 0;
    std::uint64_t end = 0;

    // Of a file: its path as it was opened, made absolute with the current directory of that moment but not otherwise
    // changed. It stays relative if the current directory was not known. Empty for a text.
    std::string path;

    // Of a file: the result of fstat once it was open; all 0 if fstat failed. The size is in bytes. The time is in
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
    // In the order of their beginnings. A source that was applied several times without a change is listed once, at its
    // last application, which overrode the earlier ones. A file that had changed in between is another source.
    std::vector<CFG_SETTINGS_SOURCE> applied;

    // 0 if the list has every file and every application of VELMAR_INI_VARS. Otherwise a number in the count of
    // beginnings and ends: files and texts that were applied up to then may be missing. They are missing if there was
    // no memory for them. Besides, the list keeps only the last 256 appended and regression-test files.
    //
    // Of the program's texts the list keeps the last 64, and at most 256 KiB. This number does not cover missing
    // program texts, just as the list does not cover cfg_set_value.
    std::uint64_t lost_until = 0;

    // The variables that exist and have an empty text, as first spelt, in no particular order. Either they were asked
    // for and never set, or they are set to the empty text. The usage reports do not distinguish these from variables
    // whose text they leave out.
    std::vector<std::string> empty_variables;
};

// The sources of the present store. The call loads nothing: if there is no store, the result is empty. Emptying the
// store clears the list, and so does a load, which empties the store first. The result is the caller's.
//
// A file that was opened is listed even if it has no lines, or is a directory, a pipe or a device: see `mode`. A file
// that is missing or cannot be opened is not listed.
//
// Any thread may call, and a notification may. If there is a store, the call waits for its lock, as every lookup does.
// There is none while another thread reloads and is still resetting the callback objects. While another thread applies
// sources, the list has those that it has begun. Throws std::bad_alloc only.
//
// Example, which prints the files and texts in the order in which they were applied:
//
//     const CFG_SETTINGS_SOURCES sources = cfg_get_settings_sources();
//     for (const CFG_SETTINGS_SOURCE& source : sources.applied)
//         print(source.path.empty() ? source.text : source.path);
//     if (sources.lost_until != 0)
//         warn("Some sources are missing");
CFG_INI_API CFG_SETTINGS_SOURCES cfg_get_settings_sources();

#endif
