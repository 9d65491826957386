// Snapshots as JSON documents, schema "velmar-snapshot", version 3:
//
//     schema, schema_version    the two above; a reader refuses a higher version
//     product, release          of the installation: "velmar", "23.4"
//     project, regtest          the project's directory as given, null for none; whether regtest.ini was asked for
//     user, host, directory     who took it, where, in which current directory; host and directory may be null
//     taken, tool               when, in UTC; by which tool: "velmar-cfg 1.0.0"
//     as                        whose view it is: process (null for an executable that would have been started) and
//                               executable; null, or missing, for that of a program started there and then
//     search                    each place where a file is looked for: file, place, path, state, remark
//     findings                  what lint finds beside those of the lines: file, line, item, column, severity, reason,
//                               message, instead, replacement
//     problems                  what kept files from being read: of ("settings" or "preferences"), text
//     sources                   of each text that was read: of (main, appended, inline, regtest, preferences, in this
//                               order), path, problem (null for none), newline_at_end
//     lines                     every line of the sources in their order: of, text
//     files                     of each role (main, appended, regtest, preferences): role, path, size, sha256; path is
//                               null if there is no such layer, size and sha256 if the file is missing or unreadable
//     environment               name and value of the environment variables that matter; value is null for none
//     variables                 name, value, external; layer, file, line, item of the assignment that won; layers, all
//                               that assign to it; readings: bool, int, uint, double, double_whole
//     preferences               key, value, default, source, section, release
//
// A text that is not UTF-8 is {"hex": "<two digits a byte>"}. A text with hidden parts is {"masked": [...]} with
// lasting marks (hidden_text.h). The readings of a hidden value are null. All rows of one kind have the same fields,
// and each row takes one line of the document.
//
// Version 2 lacks the members from user to lines. It is written for a snapshot without a basis. Version 1 lacks masked
// texts too. Commands take variables from the lines, and the values of preferences from their rows. The rows of files
// and variables are for comparisons and for other programs.
#ifndef TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_JSON_H
#define TOOLS_VELMAR_CFG_DOCUMENTS_SNAPSHOT_JSON_H

#include <string>

#include "tools/velmar-cfg/base/json_reader.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_basis_json.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Writes a variable at a time: no document is built.
void write_json(JSON_WRITER& out, const SNAPSHOT& snapshot);

// Its rows, which other documents contain too.
void write_json(JSON_WRITER& out, const SNAPSHOT_FILE& file);
void write_json(JSON_WRITER& out, const SNAPSHOT_VARIABLE& variable);
void write_json(JSON_WRITER& out, const SNAPSHOT_PREFERENCE& preference);

// Which of the long lists of a snapshot are read. The others are skipped.
struct SNAPSHOT_LISTS
{
    bool lines = true;     // without them it has no sources
    bool variables = true; // always read from a document before version 3
};

// Reads a snapshot from a document that may be one.
class SNAPSHOT_READER
{
public:
    // Hides the secrets that the document shows.
    explicit SNAPSHOT_READER(SECRETS& of_document, const SNAPSHOT_LISTS& wanted_lists = {})
        : secrets(of_document), wanted(wanted_lists), basis(of_document)
    {
    }

    // The format of snapshots. This object must outlive the reading, and must not be moved.
    DOCUMENT_FORMAT format();

    // To be called once, when the document has been read.
    SNAPSHOT finish(const JSON_DOCUMENT& document);

private:
    void take_line(const JSON_NODE& row);
    void note_secret_source(const std::string& role);

    SECRETS& secrets;
    const SNAPSHOT_LISTS wanted;
    SNAPSHOT snapshot;
    SNAPSHOT_BASIS_READER basis;
    LAYER_SET secret_layers;         // those that assign to a hidden variable, or have a secret on another line
    bool secret_preferences = false; // the same for the preference file
};

// Reads the snapshot of the file, and hides the secrets that it shows. Throws TOOL_ERROR(BAD_INPUT) for a file that is
// no snapshot, or of a newer version.
SNAPSHOT read_snapshot(const std::string& path, SECRETS& secrets);

#endif
