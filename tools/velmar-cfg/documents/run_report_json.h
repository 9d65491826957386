// Run reports, and what several of them say together, as JSON.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORT_JSON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORT_JSON_H

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/velmar-cfg/documents/run_reports.h"

// {"run", "file", "release", "files", "read", "external_never_read", "uncounted"}.
nlohmann::ordered_json report_as_json(const RUN_REPORT& report);

// {"runs", "never_read"}: of how many runs, and the variables that none of them read.
nlohmann::ordered_json never_read_as_json(const std::vector<NEVER_READ_VARIABLE>& variables, std::size_t runs);

// {"switch", "runs"}: how each of the reports, in order, stands to that variable.
nlohmann::ordered_json dependences_as_json(const std::string& name, const std::vector<RUN_REPORT>& reports,
                                           const std::vector<DEPENDENCE>& dependences);

#endif
