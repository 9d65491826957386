// A document of whichever kind: a file says in its first fields what it is.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_ANY_DOCUMENT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_ANY_DOCUMENT_H

#include <string>
#include <variant>

#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/settings/secrets.h"

using ANY_DOCUMENT = std::variant<SNAPSHOT, RUN_REPORT>;

// The document of the file ("-" for standard input), read once from beginning to end, with secrets hidden that it
// shows, and a snapshot with the wanted lists. Throws TOOL_ERROR(BAD_INPUT) for a file that is none, or of a newer
// version.
ANY_DOCUMENT read_any_document(const std::string& path, const SNAPSHOT_LISTS& wanted, SECRETS& secrets);

#endif
