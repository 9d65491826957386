// The line numbers under which the internal variable store reports broken preconditions.
//
// They are the fixed identifiers of these reports, which hosts collect and compare over releases. They do not follow
// the source: no number here is the line of anything.
#ifndef CFG_INI_CFG_INI_READER_REPORT_LINES_H
#define CFG_INI_CFG_INI_READER_REPORT_LINES_H

#include "platform/err/err.h"

namespace zon_cfg
{
enum REPORT_LINE : int
{
    NULL_TEXT_TO_TRIM = 228,           // cfg_trim_string
    APPENDED_WITHOUT_STORE = 1172,     // cfg_read_and_append_environment_ini_file
    NULL_PROJECT_DIRECTORY = 1309,     // cfg_read_project_ini_file
    DEFAULT_OF_UNKNOWN_VARIABLE = 2349 // cfg_get_default_value; other checks of enumerators report their own line
};

// Reports that `condition` does not hold. Returns if the host's reporter does.
inline void report_broken_precondition(const char* condition, int line)
{
    err_report_internal_error(condition, "CFG_INI", "cfg_ini/cfg_ini_reader", line);
}
}

#endif
