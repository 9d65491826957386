#include "cfg_ini/cfg_ini_reader/settings_files.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_ini_reader/value_storing.h"
#include "platform/err/err.h"
#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "platform/ver/ver.h"

constinit char cfg_current_velmar_ini_path_name[longest_path + 1] = {};
constinit char cfg_current_regtest_ini_path_name[longest_path + 1] = {};
constinit char cfg_current_appended_environment_ini_path_name[longest_path + 1] = {};

namespace
{
const MEM_INITIALIZER mem_initializer("CFG_INI");

constexpr const char* regtest_base = "regtest";
constexpr const char* extension = "ini";

// The value of an environment variable, or null when it is not set or empty.
const char* environment_value(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

// The path of file `name` in the first directory of the search that has it; empty when none has.
std::string find_settings_file(const std::string& name)
{
    FIO_PATH path;
    path.filename(name);
    const auto stands_in = [&path](const std::string& directory)
    {
        path.directory(directory);
        return FIO_FILE_SYSTEM::exists(path);
    };
    const auto with_slash = [](std::string directory)
    {
        if (directory.back() != '/')
            directory += '/';
        return directory;
    };

    const std::string current = FIO_FILE_SYSTEM::get_current_directory();
    if (!current.empty() && stands_in(with_slash(current)))
        return path.fullpath();

    const char* const named = environment_value("VELMAR_INI");
    if (named != nullptr && stands_in(named))
        return path.fullpath();

    const char* const home = environment_value("HOME");
    if (home != nullptr && std::strlen(home) <= longest_path)
    {
        const std::string home_directory = with_slash(home);
        if (stands_in(home_directory) || stands_in(home_directory + ".kestrin.velmar/"))
            return path.fullpath();
    }

    if (stands_in(gen_get_module_path()) || stands_in(gen_get_velmar_path() + "bin/"))
        return path.fullpath();
    return {};
}

using INSERT = void(const std::string& name, const std::string& value);

// Stores every assignment of the file `path` and remembers the path, if the file opens.
void read_lines(const std::string& path, char (&path_buffer)[longest_path + 1], INSERT* insert)
{
    SETTINGS_LINES lines(path);
    if (!lines.opened())
        return;
    {
        // Only for the buffer: two threads may lay files over the store at the same time.
        const STORE_LOCK lock;
        std::strncpy(path_buffer, path.c_str(), longest_path); // the byte behind stays zero
    }
    std::string line;
    std::string name;
    std::string value;
    while (lines.next(line))
    {
        if (parse_settings_line(line, name, value) == SETTINGS_LINE::ASSIGNMENT)
            insert(name, value);
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
        read_lines(path, cfg_current_velmar_ini_path_name, cfg_ini_insert_element_external_ini);
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

std::string cfg_get_default_ini_file(bool regtest)
{
    const std::string base = regtest ? regtest_base : ver_get_kestrin_product_filename();
    std::string path = find_settings_file(base + "." + extension);

    // Exactly "1" and nothing else, intended: farms rely on "true" and "yes" disabling nothing.
    const char* const disabled = std::getenv("VELMAR_INI_DISABLED");
    if (disabled != nullptr && std::strcmp(disabled, "1") == 0)
        path.clear();
    return path;
}

void cfg_read_ini_file(const std::string& path)
{
    const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT no_debug_messages;
    replace_store(path);

    // Also when the main file is missing or disabled.
    if (const char* const value = environment_value("APPENDED_VELMAR_INI"); value != nullptr)
    {
        if (const FIO_PATH appended(value); FIO_FILE_SYSTEM::exists(appended))
            cfg_read_and_append_environment_ini_file(appended);
    }
    if (const char* const assignments = environment_value("VELMAR_INI_VARS"); assignments != nullptr)
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
        read_lines(path, cfg_current_regtest_ini_path_name, cfg_ini_insert_element);
}

void cfg_read_and_append_environment_ini_file(const std::string& path)
{
    if (cfg_ini_file.load(std::memory_order_acquire) == nullptr)
    {
        err_report_internal_error("cfg_ini_file", "CFG_INI", "cfg_ini/cfg_ini_reader", 1172);
        return;
    }
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        read_lines(path, cfg_current_appended_environment_ini_path_name, cfg_ini_insert_element);
}

void cfg_read_project_ini_file(const char* proj_dirpath, bool regtest)
{
    if (proj_dirpath == nullptr)
    {
        err_report_internal_error("proj_dirpath != NULL", "CFG_INI", "cfg_ini/cfg_ini_reader", 1309);
        return;
    }
    FIO_PATH path;
    path.directory(proj_dirpath);
    path.base(ver_get_kestrin_product_filename());
    path.extension(extension, "");
    if (FIO_FILE_SYSTEM::exists(path))
        cfg_read_ini_file(path); // VELMAR_INI_DISABLED is about the search, not about a project's own file
    else
        cfg_read_default_ini_file();

    if (!regtest)
        return;
    path.base(regtest_base);
    if (!FIO_FILE_SYSTEM::exists(path))
        path = cfg_get_default_ini_file(true);
    if (FIO_FILE_SYSTEM::exists(path))
        cfg_read_regtest_ini_file(path);
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
