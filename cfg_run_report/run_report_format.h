// What names the run report's document, for its writer and its readers.
#ifndef CFG_RUN_REPORT_RUN_REPORT_FORMAT_H
#define CFG_RUN_REPORT_RUN_REPORT_FORMAT_H

inline constexpr const char* run_report_schema = "velmar-run-report";
inline constexpr int run_report_schema_version = 2;

#endif
