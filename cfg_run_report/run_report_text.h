// The run report as a JSON text.
#ifndef CFG_RUN_REPORT_RUN_REPORT_TEXT_H
#define CFG_RUN_REPORT_RUN_REPORT_TEXT_H

#include <string>

#include "cfg_run_report/cfg_run_report.h"

// The report of this process so far, one row a line. See cfg_run_report.h for its fields and for what it does to the
// store.
std::string run_report_text(const CFG_RUN_REPORT_OPTIONS& options);

#endif
