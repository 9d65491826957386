// Findings in the Static Analysis Results Interchange Format, SARIF 2.1.0, which code review tools and editors show.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_SARIF_OUTPUT_H
#define TOOLS_VELMAR_CFG_COMMANDS_SARIF_OUTPUT_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/lint/finding.h"

// The texts that findings are about, with secrets hidden.
using CHECKED_TEXTS = std::vector<std::shared_ptr<const INPUT_FILE>>;

// Writes one document with one run. Every reason of findings is a rule of the run. Findings are written as they come,
// and none is kept. Columns count characters of UTF-8; each byte that is no UTF-8 or that a document hides counts as
// one. A finding on a line of a file has a fix if its replacement is UTF-8 and neither of them contains a secret.
class SARIF_OUTPUT
{
public:
    SARIF_OUTPUT(CHECKED_TEXTS checked_texts, TOOL& the_tool);

    void write(const FINDING& finding);

    // Ends the document. To be called once.
    void finish();

private:
    void write_rules();
    void write_location(const FINDING& finding);
    void write_fix(const FINDING& finding);
    void write_artifact_location(const std::string& path);
    void write_standard_input();
    std::shared_ptr<const INPUT_FILE> file_of(const FINDING& finding) const;
    std::optional<std::string_view> line_of(const FINDING& finding);
    bool ends_with_carriage_return_and_newline(std::string_view line) const;

    const CHECKED_TEXTS texts;
    TOOL& tool;
    JSON_WRITER out;
    bool names_standard_input = false; // in a location

    // The line that was looked for last: the next one is searched from there.
    std::shared_ptr<const INPUT_FILE> file;
    std::size_t number = 0;
    std::size_t offset = 0;
};

// The path as a URI reference. Bytes that a URI does not allow become %XX.
std::string path_as_uri(const std::string& path);

#endif
