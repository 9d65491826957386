#include "cfg_ini/cfg_ini_reader/settings_files.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "cfg_ini/cfg_ini_reader/value_storing.h"
#include "platform/err/err.h"
#include "platform/fio/fio.h"
#include "platform/mem/mem.h"

constinit char cfg_current_velmar_ini_path_name[longest_path + 1] = {};
constinit char cfg_current_regtest_ini_path_name[longest_path + 1] = {};
constinit char cfg_current_appended_environment_ini_path_name[longest_path + 1] = {};

namespace
{
const MEM_INITIALIZER mem_initializer("CFG_INI");

// For making room ahead of a file: twice what it needs at 40 characters a line, so that most new names find their place
// empty and need not be told from others.
constexpr std::size_t line_length_to_reserve_by = 20;
constexpr std::size_t most_reserved = std::size_t{1} << 22;

// Stores every assignment of the file `path`, as external ones or not, and remembers the path, if the file opens.
void read_lines(const std::string& path, char (&path_buffer)[longest_path + 1], bool external)
{
    SETTINGS_LINES lines(path);
    if (!lines.opened())
        return;
    {
        // Only for this: two threads may lay files over the store at the same time.
        const STORE_LOCK lock;
        std::strncpy(path_buffer, path.c_str(), longest_path); // the byte behind stays zero
        if (cfg_ini_file.load(std::memory_order_relaxed) != nullptr)
            reserve_records(std::min(lines.size_hint() / line_length_to_reserve_by, most_reserved));
    }
    std::string_view line;
    LINE_ASSIGNMENT assignment;
    while (lines.next(line))
    {
        if (parse_settings_line(line, assignment) == SETTINGS_LINE::ASSIGNMENT)
            store_setting(assignment.name, assignment.value, external);
    }
}

// Makes a fresh store of the main settings file. The lock is held throughout, so that other threads see the old store
// or the whole file.
void replace_store(const std::string& path)
{
    NOTIFYING_STORE_LOCK lock;
    cfg_close_ini_file();
    discard_store(); // a callback told of the emptying may have read a variable, and so have made a store
    cfg_ini_file.store(new CFG_INI_TABLE, std::memory_order_release);
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        read_lines(path, cfg_current_velmar_ini_path_name, true);
    lock.unlock();
}
}

CFG_INI_INITIALIZER cfg_ini_initializer;

CFG_INI_INITIALIZER::~CFG_INI_INITIALIZER()
{
    cfg_close_ini_file();
    const STORE_LOCK lock;
    discard_store(); // one that a callback made by reading a variable while it was told of the emptying
}

void cfg_read_ini_file(const std::string& path)
{
    const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT no_debug_messages;
    replace_store(path);

    // Also when the main file is missing or disabled.
    if (const std::string appended = appended_settings_path(); !appended.empty())
        cfg_read_and_append_environment_ini_file(appended);
    if (const char* const assignments = inline_settings(); assignments != nullptr)
        cfg_process_ini_string(assignments, false);
}

void cfg_read_ini_file()
{
    cfg_read_ini_file(cfg_get_default_ini_file(false));
}

void cfg_read_default_ini_file()
{
    cfg_read_ini_file();
}

void cfg_read_regtest_ini_file(const std::string& path)
{
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        read_lines(path, cfg_current_regtest_ini_path_name, false);
}

void cfg_read_and_append_environment_ini_file(const std::string& path)
{
    if (cfg_ini_file.load(std::memory_order_acquire) == nullptr)
    {
        err_report_internal_error("cfg_ini_file", "CFG_INI", "cfg_ini/cfg_ini_reader", 1172);
        return;
    }
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        read_lines(path, cfg_current_appended_environment_ini_path_name, false);
}

void cfg_read_project_ini_file(const char* proj_dirpath, bool regtest)
{
    if (proj_dirpath == nullptr)
    {
        err_report_internal_error("proj_dirpath != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 1309);
        return;
    }
    cfg_read_ini_file(find_project_settings(proj_dirpath, false));
    if (regtest)
        cfg_read_regtest_ini_file(find_project_settings(proj_dirpath, true));
}

void cfg_close_ini_file()
{
    NOTIFYING_STORE_LOCK lock;
    if (cfg_ini_file.load(std::memory_order_relaxed) != nullptr)
    {
        discard_store();
        reset_callbacks();
    }
    cfg_ini_dirty = true;
    lock.unlock();
}

char* cfg_get_ini_file_path_name()
{
    return cfg_current_velmar_ini_path_name;
}

char* cfg_get_regtest_ini_file_path_name()
{
    return cfg_current_regtest_ini_path_name;
}

char* cfg_get_appended_envrionment_ini_file_path_name()
{
    return cfg_current_appended_environment_ini_path_name;
}
