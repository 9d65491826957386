// Writes SARIF as a stream. The rules stand at the beginning, since findings refer to them by number: all reasons are
// listed, whether they occur or not, and a finding's number is found by a binary search.
//
// SARIF counts columns in characters, findings count bytes. The line of a finding is therefore searched for, from the
// line that was looked for last: in the file as it was read, or in the text that a document has of it. Findings come in
// the order of their lines, so that a file is walked through once; one that goes back begins at the start.
//
// Cost: O(n) time for a file of n bytes, and the lines with findings once more. Only the place of the last line is
// kept.
#include "tools/velmar-cfg/commands/sarif_output.h"

#include <algorithm>
#include <utility>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/reasons.h"

namespace
{
constexpr const char* schema = "https://json.schemastore.org/sarif-2.1.0.json";

// A message's text: braces would be taken for what arguments replace.
std::string message_text(const std::string& text)
{
    std::string message;
    for (const char c : printable(text))
        message += c == '{' ? std::string("{{") : c == '}' ? std::string("}}") : std::string(1, c);
    return message;
}

void write_message(JSON_WRITER& out, const char* key, const std::string& text)
{
    out.key(key);
    out.begin_object();
    out.field("text", message_text(text));
    out.end_object();
}

std::size_t characters_in(std::string_view bytes)
{
    std::size_t count = 0;
    for (; !bytes.empty(); ++count)
        bytes.remove_prefix(std::max<std::size_t>(1, first_character(bytes).length));
    return count;
}

// The characters before the offset of a line, in which parts may be hidden. The offset is that before they were; of a
// hidden part each byte is one.
std::size_t characters_before(std::size_t offset, std::string_view line)
{
    std::size_t count = 0;
    TEXT_PARTS parts(line);
    for (TEXT_PART part{}; offset > 0 && parts.next(part);)
    {
        const std::size_t size = std::min(part.hidden ? hidden_part(part.text).size : part.text.size(), offset);
        count += part.hidden ? size : characters_in(part.text.substr(0, size));
        offset -= size;
    }
    return count;
}
}

std::string path_as_uri(const std::string& path)
{
    constexpr std::string_view as_they_are = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF"; // the normal form of a URI has capitals
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path)
    {
        if (as_they_are.find(c) != std::string_view::npos)
            uri += c;
        else
        {
            const auto byte = static_cast<unsigned char>(c);
            uri.append("%").append(1, digits[byte / 16]).append(1, digits[byte % 16]);
        }
    }
    return uri;
}

SARIF_OUTPUT::SARIF_OUTPUT(CHECKED_TEXTS checked_texts, TOOL& the_tool)
    : texts(std::move(checked_texts)), tool(the_tool), out(the_tool.out)
{
    out.begin_object();
    out.field("$schema", schema);
    out.field("version", "2.1.0");
    out.key("runs");
    out.begin_list();
    out.begin_object();
    out.key("tool");
    out.begin_object();
    out.key("driver");
    out.begin_object();
    out.field("name", "velmar-cfg");
    out.field("version", VELMAR_CFG_VERSION);
    write_rules();
    out.end_object();
    out.end_object();
    out.field("columnKind", "unicodeCodePoints");
    out.key("results");
    out.begin_list();
}

void SARIF_OUTPUT::write_rules()
{
    out.key("rules");
    out.list(reason_names(),
             [](JSON_WRITER& rule, const std::string& name)
             {
                 rule.begin_object();
                 rule.field("id", name);
                 write_message(rule, "shortDescription", meaning_of_reason(name));
                 rule.end_object();
             });
}

void SARIF_OUTPUT::write(const FINDING& finding)
{
    const std::vector<std::string>& names = reason_names();
    out.begin_object();
    out.field("ruleId", finding.reason);
    out.field("ruleIndex", std::ranges::lower_bound(names, finding.reason) - names.begin());
    out.field("level", severity_word(finding.severity));
    write_message(out, "message", finding.message + "; " + finding.instead);
    out.key("locations");
    out.begin_list();
    write_location(finding);
    out.end_list();
    write_fix(finding);
    out.end_object();
}

void SARIF_OUTPUT::finish()
{
    out.end_list();
    if (names_standard_input)
        write_standard_input();
    out.end_object();
    out.end_list();
    out.end_object();
    out.finish();
}

void SARIF_OUTPUT::write_artifact_location(const std::string& path)
{
    out.key("artifactLocation");
    out.begin_object();
    if (path == title_of_named_file("-"))
    {
        names_standard_input = true;
        out.field("index", 0); // it has no URI
    }
    else
        out.field("uri", path_as_uri(path));
    out.end_object();
}

// What results refer to that are in no file.
void SARIF_OUTPUT::write_standard_input()
{
    out.key("artifacts");
    out.begin_list();
    out.begin_object();
    write_message(out, "description", title_of_named_file("-"));
    out.end_object();
    out.end_list();
}

// An item is in no file, but in a variable of the environment.
void SARIF_OUTPUT::write_location(const FINDING& finding)
{
    out.begin_object();
    if (finding.item)
    {
        out.key("logicalLocations");
        out.begin_list();
        out.begin_object();
        out.field("name", finding.file);
        out.field("fullyQualifiedName", finding.file + ":" + std::to_string(*finding.item));
        out.field("kind", "variable");
        out.end_object();
        out.end_list();
    }
    else
    {
        out.key("physicalLocation");
        out.begin_object();
        write_artifact_location(finding.file);
        if (finding.line)
        {
            out.key("region");
            out.begin_object();
            out.field("startLine", *finding.line);
            const std::optional<std::string_view> line = line_of(finding);
            if (line && finding.column)
                out.field("startColumn", characters_before(*finding.column - 1, *line) + 1);
            out.end_object();
        }
        out.end_object();
    }
    out.end_object();
}

void SARIF_OUTPUT::write_fix(const FINDING& finding)
{
    if (finding.file == title_of_named_file("-"))
        return; // there is nothing to change
    if (!finding.replacement || !finding.line || has_hidden_parts(*finding.replacement) ||
        !is_utf_8(*finding.replacement))
        return;
    std::optional<std::string_view> line = line_of(finding);
    if (!line || has_hidden_parts(*line))
        return;
    std::string_view text = *finding.replacement;
    if (ends_with_carriage_return_and_newline(*line) && text.ends_with('\r'))
    {
        line->remove_suffix(1);
        text.remove_suffix(1);
    }
    out.key("fixes");
    out.begin_list();
    out.begin_object();
    write_message(out, "description", finding.instead);
    out.key("artifactChanges");
    out.begin_list();
    out.begin_object();
    write_artifact_location(finding.file);
    out.key("replacements");
    out.begin_list();
    out.begin_object();
    out.key("deletedRegion");
    out.begin_object();
    out.field("startLine", *finding.line);
    out.field("startColumn", 1);
    out.field("endColumn", characters_in(*line) + 1);
    out.end_object();
    out.key("insertedContent");
    out.begin_object();
    out.field("text", text);
    out.end_object();
    out.end_object();
    out.end_list();
    out.end_object();
    out.end_list();
    out.end_object();
    out.end_list();
}

// Both are the end of the line then, and no column of it. The line is the one that was looked for last.
bool SARIF_OUTPUT::ends_with_carriage_return_and_newline(std::string_view line) const
{
    return line.ends_with('\r') && offset + line.size() < file->bytes.size();
}

std::shared_ptr<const INPUT_FILE> SARIF_OUTPUT::file_of(const FINDING& finding) const
{
    if (std::shared_ptr<const INPUT_FILE> read = tool.files.find(finding.file); read != nullptr)
        return read;
    const auto checked = std::ranges::find(texts, finding.file, [](const auto& text) { return text->path; });
    return checked == texts.end() ? nullptr : *checked;
}

// The line as it stands in the text, without the newline; nothing when the file does not have it.
std::optional<std::string_view> SARIF_OUTPUT::line_of(const FINDING& finding)
{
    if (file == nullptr || file->path != finding.file || *finding.line < number)
    {
        file = file_of(finding);
        number = 1;
        offset = 0;
    }
    if (file == nullptr)
        return std::nullopt;
    const std::string_view text = file->bytes;
    for (; number < *finding.line && offset < text.size(); ++number)
        offset = std::min(text.find('\n', offset), text.size() - 1) + 1;
    if (number < *finding.line || offset > text.size())
        return std::nullopt;
    return text.substr(offset, text.find('\n', offset) - offset);
}
