// The bytes of a source of the settings, as long as they still are those that were applied.
#ifndef CFG_RUN_REPORT_SOURCE_TEXT_H
#define CFG_RUN_REPORT_SOURCE_TEXT_H

#include <string>

#include "cfg_ini/cfg_settings_sources.h"

enum class SOURCE_STATE
{
    SAME,
    CHANGED,
    GONE,
    UNREADABLE,
    NO_FILE,
    DIRECTORY,
    PARTLY_APPLIED,
};

// "same", "changed", ...: as the report says it.
const char* source_state_name(SOURCE_STATE state);

// Whether all assignments of the source are known: its lines could be read again, or it has none (a directory).
inline bool is_known(SOURCE_STATE state)
{
    return state == SOURCE_STATE::SAME || state == SOURCE_STATE::DIRECTORY;
}

// The state of the source now. For SAME, `bytes` become what was applied. Opens a file only if it is a regular one and
// was so when it was applied; so it never waits for a writer.
SOURCE_STATE read_source(const CFG_SETTINGS_SOURCE& source, std::string& bytes);

#endif
