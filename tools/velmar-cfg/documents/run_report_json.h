// Writes run reports, and what several of them tell together, as JSON.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORT_JSON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_RUN_REPORT_JSON_H

#include <cstddef>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/run_reports.h"

// {"run", "file", "release", "files", "outcome", "host", "process", "directory", "executable", "started", "ended",
// "environment", "sources_complete", "sources", "read", "external_never_read", "uncounted", "asked_once",
// "set_never_read"}. Null stands for what the host left out and for what version 1 lacks.
void write_json(JSON_WRITER& out, const RUN_REPORT& report);

// Its fields, for an object that has others too.
void write_fields(JSON_WRITER& out, const RUN_REPORT& report);

// {"runs", "never_read"}: the number of runs, and the variables that none of them read.
void write_never_read_json(JSON_WRITER& out, const std::vector<NEVER_READ_VARIABLE>& variables, std::size_t runs);

// {"switch", "runs"}: the variable, and how each of the reports, in order, depends on it.
void write_dependences_json(JSON_WRITER& out, const std::string& name, const std::vector<RUN_REPORT>& reports,
                            const std::vector<DEPENDENCE>& dependences);

#endif
