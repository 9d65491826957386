// The broken preconditions that the preference store reports.
//
// A report of this store names a directory as its source, so a line number would mean nothing. In its place, the report
// carries the number of the precondition. This is a fixed identifier and does not change with the source.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_REPORTS_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_REPORTS_H

#include "platform/err/err.h"

namespace zon_cfg
{
enum class PREFERENCE_REPORT : int
{
    NULL_NAME_OF_SECTION = 1, // cfg_get_section_for_name
    NULL_NAME_OF_LOOKUP = 2,
    NULL_NAME_OF_ASSIGNMENT = 3,
    NULL_VALUE_OF_ASSIGNMENT = 4,
    NULL_RECORD_AT_UNLOADING = 5,
};

inline void report_preference_error(const char* condition, PREFERENCE_REPORT report)
{
    err_report_internal_error(condition, "CFG_INI", "cfg_ini/cfg_user_ini_reader", static_cast<int>(report));
}
}

#endif
