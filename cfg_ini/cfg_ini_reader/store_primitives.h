// The store's primitives under their fixed names. Each is a thin wrapper of what the lookups use. Tests and programs
// that link the library's objects call them; the library itself does not.
#ifndef CFG_INI_CFG_INI_READER_STORE_PRIMITIVES_H
#define CFG_INI_CFG_INI_READER_STORE_PRIMITIVES_H

#include <optional>
#include <string>

#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "cfg_ini/cfg_ini_reader/usage_report.h"

// --- The caller holds the lock and there is a store ---

// The record of that name, or null. Counts nothing, creates nothing.
CFG_INI_RECORD* cfg_ini_get_record(const std::string& name) ZON_LOCK_HELD;

// Gives `record`, which was made with new, to the table. If the name is already present, it keeps its record, and
// `record` still belongs to the caller.
void cfg_ini_insert_record(const std::string& name, CFG_INI_RECORD* record) ZON_LOCK_HELD;

// The record of that name, one access counted; or a new empty record, with no access counted. Never null.
CFG_INI_RECORD* cfg_ini_get_record_or_insert_empty(const std::string& name) ZON_LOCK_HELD;

// --- These take the lock ---

// Marks the record of that name as validly read. Returns whether there is such a record. Without a store, returns false
// at once and loads nothing.
bool cfg_mark_record_had_valid_read(const std::string& name);

// The core readers. Each loads the settings first if there is no store. Each counts the access, or else creates an
// empty record. The result is meaningful only if *found becomes true; the variable is then marked as validly read.
// `found` must not be null.
bool cfg_ini_read_boolean(const std::string& name, bool* found);
int cfg_ini_read_int(const std::string& name, bool* found);
unsigned int cfg_ini_read_uint(const std::string& name, bool* found);

// A copy of the text. The variable is marked as validly read when `mark_valid` is true, whatever the text.
std::string cfg_ini_read_string(const std::string& name, bool mark_valid);

// Assign the text as the setters do; callbacks run with the lock held. The first function leaves the external mark of
// the record alone, and the second sets it.
void cfg_ini_insert_element(const std::string& name, const std::string& value);
void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value);

// --- No store needed ---

// Whether `a` goes before `b` in the ranked usage report.
bool cfg_ini_usage_compare(zon_cfg::USAGE a, zon_cfg::USAGE b);

// The number, if the whole text is a decimal number that fits; else empty. T is int (with an optional "-", no "+") or
// unsigned int (no sign at all). A text with any other character, such as a blank, is no number.
template <typename T>
std::optional<T> cfg_ini_convert_to(const char* text);
template <>
std::optional<int> cfg_ini_convert_to<int>(const char* text);
template <>
std::optional<unsigned int> cfg_ini_convert_to<unsigned int>(const char* text);

#endif
