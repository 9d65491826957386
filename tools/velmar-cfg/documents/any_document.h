// A document of any kind. Its first fields tell which kind it is.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_ANY_DOCUMENT_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_ANY_DOCUMENT_H

#include <string>
#include <string_view>
#include <variant>

#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/settings/secrets.h"

using ANY_DOCUMENT = std::variant<SNAPSHOT, RUN_REPORT>;

// Whether the bytes begin as those of a document do.
bool begins_like_a_document(std::string_view bytes);

// Reads the document of the file ("-" for standard input) once from beginning to end, and hides the secrets that it
// shows. Of a snapshot, reads only the wanted lists. Throws TOOL_ERROR(BAD_INPUT) for a file that is no document, or of
// a newer version.
ANY_DOCUMENT read_any_document(const std::string& path, const SNAPSHOT_LISTS& wanted, SECRETS& secrets);

#endif
