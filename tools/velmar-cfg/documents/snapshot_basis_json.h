// What a snapshot is based on, as members of its document (snapshot_json.h).
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_BASIS_JSON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_BASIS_JSON_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Writes "user", "host", "directory", "taken", "tool", "as", "search", "findings", "problems", "sources" and "lines",
// one line at a time.
void write_fields(JSON_WRITER& out, const SNAPSHOT_BASIS& basis);

// Reads the basis from a document. The lines of each source must come together, and the sources in their order.
class SNAPSHOT_BASIS_READER
{
public:
    // Hides the secrets that the document shows. A line with hidden parts stays as it is.
    explicit SNAPSHOT_BASIS_READER(SECRETS& of_document) : secrets(of_document) {}

    // The next row of "lines".
    void take_line(const JSON_NODE& row);

    // For lines that are not wanted: if the row of "lines" contains a secret, the role of its source; else nothing.
    std::optional<std::string> role_of_secret_line(const JSON_NODE& row);

    // Must be called once, after all lines were taken. `files` are those of the document.
    SNAPSHOT_BASIS finish(const JSON_NODE& root, const std::vector<SNAPSHOT_FILE>& files);

    // The same if no line was taken. The basis then has no sources.
    static SNAPSHOT_BASIS finish_without_lines(const JSON_NODE& root);

private:
    struct TEXT
    {
        std::size_t role;  // its index among the roles
        std::string bytes; // each line with a newline
    };

    std::shared_ptr<const INPUT_FILE> file_of(const JSON_NODE& row, std::size_t role);
    std::vector<SNAPSHOT_SOURCE> sources_of(const JSON_NODE& list);

    SECRETS& secrets;
    std::vector<std::string> roles = all_source_roles();
    std::vector<TEXT> texts; // in the order of their roles
};

#endif
