// The library's own rules for preferences: the catalogue, the file's lines, and what loads and saves. Only through this
// header does the tool use the internals of the preference store. So what the tool says is what the library does.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_LIBRARY_PREFERENCES_H
#define TOOLS_VELMAR_CFG_PREFERENCES_LIBRARY_PREFERENCES_H

// IWYU pragma: begin_exports
#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"
#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "cfg_ini/cfg_user_ini_reader/preference_records.h"
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"
// IWYU pragma: end_exports

#endif
