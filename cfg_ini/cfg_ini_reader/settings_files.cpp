// Loads the settings, layer by layer.
//
// A load of the main file replaces the store under one hold of the lock, so that other threads see the old store or the
// whole main file. The layers on top of it (appended file, inline assignments, regression-test file) are applied one
// assignment at a time, each under a hold of its own, and their files are opened and read without the lock: a file may
// be a pipe whose writer asks for variables itself. Only the first load, which a lookup triggers, holds the lock over
// all layers, so that racing first users see all of them.
//
// Another thread may empty the store between two assignments. A layer that the library applies by itself then ends
// without a report: the next use of a variable loads everything anew. A layer that the host applies itself goes on, and
// its next assignment loads the settings first.
//
// Each assignment runs the callbacks of its name. These may change what the host passed or relies on: the text of a
// path, the current directory, the environment. So every text is copied before the first callback can run. A relative
// path stays relative: it is resolved whenever a file is tested or opened. An exception ends the load where it is; the
// assignments made so far stay.
//
// A line costs one search of the table, or one insertion into it. The table gets room for the names of a file in
// advance, estimated from the file's size.
#include "cfg_ini/cfg_ini_reader/settings_files.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/applied_sources.h"
#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/fork_recovery.h"
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/report_lines.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "cfg_ini/cfg_ini_reader/settings_sources.h"
#include "cfg_ini/cfg_ini_reader/value_storing.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "platform/fio/fio.h"
#include "platform/mem/mem.h"

constinit char cfg_current_velmar_ini_path_name[zon_cfg::longest_path + 1] = {};
constinit char cfg_current_regtest_ini_path_name[zon_cfg::longest_path + 1] = {};
constinit char cfg_current_appended_environment_ini_path_name[zon_cfg::longest_path + 1] = {};

namespace zon_cfg
{
namespace
{
// Constructed before cfg_ini_initializer, and so destroyed after it: when that empties the store, callbacks may emit
// messages.
const MEM_INITIALIZER mem_initializer("CFG_INI");
}
}

CFG_INI_INITIALIZER cfg_ini_initializer;

namespace zon_cfg
{
namespace
{
// The file size in bytes for which room is made for one name. At 40 characters a line, the table gets twice the room
// that it needs. So most new names find their bucket empty and need not be compared with others.
constexpr std::size_t line_length_to_reserve_by = 20;
constexpr std::size_t most_reserved = std::size_t{1} << 22;

using PATH_BUFFER = char[longest_path + 1];

// What happens when an assignment of a layer finds no store.
enum class IF_NO_STORE
{
    END_LAYER,    // for a layer that the library applies
    LOAD_SETTINGS // for a layer that the host applies
};

// The stores that this process has made, which gives each its number.
constinit std::uint64_t stores_made ZON_GUARDED = 0;

// What a layer is made of, and where its assignments go.
struct LAYER
{
    CFG_SETTINGS_SOURCE source;
    IF_NO_STORE if_no_store;
    std::uint64_t first_store = 0; // the number of the first store that it was applied to; 0 before that
};

LAYER layer_of(CFG_SETTINGS_ROLE role, bool external, IF_NO_STORE if_no_store)
{
    LAYER layer{.source = {}, .if_no_store = if_no_store, .first_store = 0};
    layer.source.role = role;
    layer.source.external = external;
    return layer;
}

// Records that the layer begins, if there is a store to which it can be applied.
void note_beginning(LAYER& layer) ZON_LOCK_HELD
{
    layer.source.beginning = next_moment();
    if (store_table() == nullptr)
        return;
    if (layer.first_store == 0)
        layer.first_store = stores_made;
    store_table()->sources.begin(layer.source);
}

// `whole` tells whether all of the layer has been applied. If another thread has made the store anew meanwhile, only
// the rest of the layer is in the present one.
void note_end(LAYER& layer, bool whole)
{
    const STORE_LOCK lock;
    layer.source.end = next_moment();
    layer.source.whole = whole && layer.first_store == stores_made;
    if (store_table() != nullptr)
        store_table()->sources.end(layer.source);
}

// Stores the assignment if there is a store. Returns whether it was stored. The names of files and inline texts bypass
// the name cache: they are mostly new, and would evict names in use.
bool store_if_possible(std::string_view name, std::string_view value, bool external)
{
    NOTIFYING_STORE_LOCK lock;
    const bool possible = store_table() != nullptr;
    if (possible)
        store_in_record(find_or_insert_record_in_table(name), name, value, external);
    lock.unlock();
    return possible;
}

// Stores one assignment of the layer. Returns whether the layer goes on.
bool store_in_layer(std::string_view name, std::string_view value, LAYER& layer)
{
    while (!store_if_possible(name, value, layer.source.external))
    {
        if (layer.if_no_store == IF_NO_STORE::END_LAYER)
            return false;
        load_settings_if_no_store();
        // Nothing of the layer is in the new store yet, but what was applied to an older one never will be.
        const STORE_LOCK lock;
        note_beginning(layer);
    }
    return true;
}

// Stores every assignment of the file `path`. If the file opens, keeps its path in the buffer.
void apply_file(const std::string& path, PATH_BUFFER& path_buffer, LAYER layer)
{
    SETTINGS_LINES lines(path);
    if (!lines.opened())
        return;
    const struct stat status = lines.status();
    const auto size_hint = static_cast<std::size_t>(status.st_size);
    describe_file(layer.source, path, status);
    {
        // Not held while the file is read: two threads may apply files at the same time, and one may wait for the
        // other.
        const STORE_LOCK lock;
        std::strncpy(path_buffer, path.c_str(), longest_path); // the byte behind stays zero
        note_beginning(layer);
        if (store_table() != nullptr)
            reserve_records(std::min(size_hint / line_length_to_reserve_by, most_reserved));
    }
    std::string_view line;
    LINE_ASSIGNMENT assignment;
    while (lines.next(line))
    {
        if (parse_settings_line(line, assignment) == SETTINGS_LINE::ASSIGNMENT &&
            !store_in_layer(assignment.name, assignment.value, layer))
            return;
    }
    note_end(layer, !lines.cut_short());
}

void apply_inline_text(std::string text, LAYER layer)
{
    layer.source.text = std::move(text);
    {
        const STORE_LOCK lock;
        note_beginning(layer);
    }
    INLINE_TEXT items(layer.source.text);
    INLINE_ITEM kind{};
    std::string name;
    std::string value;
    while (items.next(kind, name, value))
    {
        if (kind == INLINE_ITEM::ASSIGNMENT && !store_in_layer(name, value, layer))
            return;
    }
    note_end(layer, true);
}

void apply_file_if_exists(const std::string& path, PATH_BUFFER& path_buffer, LAYER layer)
{
    if (FIO_FILE_SYSTEM::exists(path.c_str()))
        apply_file(path, path_buffer, std::move(layer));
}

void apply_regtest_file(const std::string& path, IF_NO_STORE if_no_store) ZON_UNCHECKED
{
    apply_file_if_exists(path, cfg_current_regtest_ini_path_name,
                         layer_of(CFG_SETTINGS_ROLE::REGTEST_FILE, false, if_no_store));
}

void apply_appended_file(const std::string& path, IF_NO_STORE if_no_store) ZON_UNCHECKED
{
    apply_file_if_exists(path, cfg_current_appended_environment_ini_path_name,
                         layer_of(CFG_SETTINGS_ROLE::APPENDED_FILE, false, if_no_store));
}

// Replaces the store by a new one, with the assignments of the main settings file.
void replace_store(const std::string& path)
{
    NOTIFYING_STORE_LOCK lock;
    cfg_close_ini_file();
    discard_store(); // a callback that was notified may have read a variable, and so have made a store
    start_fork_recovery();
    cfg_ini_file.store(new CFG_INI_TABLE, std::memory_order_release);
    ++stores_made;
    apply_file_if_exists(path, cfg_current_velmar_ini_path_name,
                         layer_of(CFG_SETTINGS_ROLE::MAIN_FILE, true, IF_NO_STORE::END_LAYER));
    lock.unlock();
}
}

void load_settings_if_no_store()
{
    if (store_exists())
        return;
    const std::string path = cfg_get_default_ini_file(false);

    // Held until all layers are applied, so that no layer overrides a value that a racing thread stores.
    const STORE_LOCK lock;
    if (store_table() == nullptr)
        cfg_read_ini_file(path);
}
}

using namespace zon_cfg;

CFG_INI_INITIALIZER::~CFG_INI_INITIALIZER()
{
    cfg_close_ini_file();
    const STORE_LOCK lock;
    discard_store(); // one that a callback made by reading a variable while it was notified of the emptying
    stop_fork_recovery();
}

void cfg_process_ini_string(const std::string& text, bool internal)
{
    // A copy: callbacks may change the caller's.
    apply_inline_text(text, layer_of(CFG_SETTINGS_ROLE::PROGRAM_TEXT, !internal, IF_NO_STORE::LOAD_SETTINGS));
}

void cfg_read_ini_file(const std::string& path)
{
    const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT no_debug_messages;
    replace_store(std::string(path)); // a copy: callbacks may change the caller's

    // The layers on top are applied even if the main file is missing or disabled.
    if (const std::string appended = appended_settings_path(); !appended.empty())
        apply_appended_file(appended, IF_NO_STORE::END_LAYER);
    if (const char* const assignments = inline_settings(); assignments != nullptr)
        apply_inline_text(assignments, layer_of(CFG_SETTINGS_ROLE::INLINE_TEXT, true, IF_NO_STORE::END_LAYER));
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
    apply_regtest_file(std::string(path), IF_NO_STORE::LOAD_SETTINGS);
}

void cfg_read_and_append_environment_ini_file(const std::string& path)
{
    if (!store_exists())
        report_broken_precondition("cfg_ini_file", APPENDED_WITHOUT_STORE);
    else
        apply_appended_file(std::string(path), IF_NO_STORE::LOAD_SETTINGS);
}

void cfg_read_project_ini_file(const char* proj_dirpath, bool regtest)
{
    if (proj_dirpath == nullptr)
    {
        report_broken_precondition("proj_dirpath != NULL", NULL_PROJECT_DIRECTORY);
        return;
    }
    const std::string directory(proj_dirpath); // callbacks may change the caller's
    cfg_read_ini_file(find_project_settings(directory.c_str(), false));
    if (regtest)
        apply_regtest_file(find_project_settings(directory.c_str(), true), IF_NO_STORE::END_LAYER);
}

void cfg_close_ini_file()
{
    NOTIFYING_STORE_LOCK lock;
    if (callbacks_knew_store_left_behind() || store_table() != nullptr)
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
