// Writes the basis of a snapshot row by row, and reads it again.
//
// The lines of the sources come as rows while the document is read, and are joined to one text for each source. What
// the document says of the sources themselves is read afterwards, and must fit: the same order, no lines without a
// source, and the files that the snapshot lists. Secrets that a line shows are hidden as it comes. Those of the inline
// text are hidden once it is whole, since a value may go on behind a separator.
//
// Each row is written and forgotten. Cost: O(n) time for n bytes; the texts of the sources are all that is kept of
// their lines.
#include "tools/velmar-cfg/documents/snapshot_basis_json.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
constexpr std::string_view of_settings = "settings";

// --- Writing ---

void write_json(JSON_WRITER& out, const SNAPSHOT_PROBLEM& problem)
{
    out.begin_object();
    out.field("of", problem.of_preferences ? preference_file_role : of_settings);
    out.field("text", problem.text);
    out.end_object();
}

void write_json(JSON_WRITER& out, const SNAPSHOT_PROGRAM& program)
{
    out.begin_object();
    out.field("process", program.process);
    out.field("executable", program.executable);
    out.end_object();
}

void write_json(JSON_WRITER& out, const SNAPSHOT_SOURCE& source)
{
    out.begin_object();
    out.field("of", source.role);
    out.field("path", source.file->path);
    out.field_or_null("problem", source.file->problem);
    out.field("newline_at_end", source.text().ends_with('\n'));
    out.end_object();
}

void write_lines(JSON_WRITER& out, const SNAPSHOT_SOURCE& source)
{
    for (std::string_view text = source.text(); !text.empty();)
    {
        const std::string_view line = text.substr(0, text.find('\n'));
        out.begin_object();
        out.field("of", source.role);
        out.field("text", line);
        out.end_object();
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
}

// --- Reading ---

FILE_CANDIDATE read_candidate(const JSON_NODE& row)
{
    const std::optional<FILE_STATE> state = state_of_word(row.member("state").text());
    if (!state)
        row.member("state").refuse("state of a file");
    return {row.member("file").text(), row.member("place").text(), row.member("path").text_or_null().value_or(""),
            *state, row.member("remark").text()};
}

FINDING read_finding(const JSON_NODE& row)
{
    const std::optional<SEVERITY> severity = severity_of_word(row.member("severity").text());
    if (!severity)
        row.member("severity").refuse("severity of a finding");
    return {row.member("file").text(),
            row.member("line").natural_number_or_null(),
            row.member("item").natural_number_or_null(),
            row.member("column").natural_number_or_null(),
            *severity,
            row.member("reason").text(),
            row.member("message").text(),
            row.member("instead").text(),
            row.member("replacement").text_or_null()};
}

SNAPSHOT_PROGRAM read_program(const JSON_NODE& row)
{
    const JSON_NODE process = row.member("process");
    SNAPSHOT_PROGRAM program{process.natural_number_or_null(), row.member("executable").text()};
    if (program.process == std::uint64_t{0})
        process.refuse("number of a process");
    return program;
}

SNAPSHOT_PROBLEM read_problem(const JSON_NODE& row)
{
    const std::string of = row.member("of").text();
    if (of != preference_file_role && of != of_settings)
        row.member("of").refuse("part of a snapshot that files are read for");
    return {of == preference_file_role, row.member("text").text()};
}

template <typename READ>
auto read_list(const JSON_NODE& list, READ read)
{
    std::vector<decltype(read(list))> rows;
    for (const JSON_NODE& row : list.elements())
        rows.push_back(read(row));
    return rows;
}

// What the line is to be kept as. No secret of settings or preferences goes beyond its line.
std::string hidden_line(const std::string& role, std::string line, SECRETS& secrets)
{
    if (role == layer_code(LAYER_KIND::INLINE_TEXT) || has_hidden_parts(line))
        return line;
    std::optional<std::string> hidden =
        role == preference_file_role ? hide_in_preference_text(line, secrets) : hide_in_settings_text(line, secrets);
    return hidden ? *std::move(hidden) : line;
}

// The files of a snapshot that are layers are its sources, and no others.
void require_same_files(const JSON_NODE& list, const std::vector<SNAPSHOT_SOURCE>& sources,
                        const std::vector<SNAPSHOT_FILE>& files)
{
    for (const SNAPSHOT_FILE& file : files)
    {
        const auto source = std::ranges::find(sources, file.role, &SNAPSHOT_SOURCE::role);
        const bool fits = source != sources.end()             ? source->file->path == file.path
                          : file.role == preference_file_role ? !file.size
                                                              : !file.path;
        if (!fits)
            list.refuse("list of what .files lists");
    }
}
}

void write_fields(JSON_WRITER& out, const SNAPSHOT_BASIS& basis)
{
    const auto write_row = [](JSON_WRITER& writer, const auto& row) { write_json(writer, row); };
    out.field("user", basis.user);
    out.field("host", basis.host);
    out.field("directory", basis.directory);
    out.field("taken", basis.taken);
    out.field("tool", basis.tool);
    out.key("as");
    if (basis.as)
        write_json(out, *basis.as);
    else
        out.value(std::nullopt);
    out.key("search");
    out.row_list(basis.search, write_row);
    out.key("findings");
    out.row_list(basis.findings, write_row);
    out.key("problems");
    out.row_list(basis.problems, write_row);
    out.key("sources");
    out.row_list(basis.sources, write_row);
    out.key("lines");
    out.begin_row_list();
    for (const SNAPSHOT_SOURCE& source : basis.sources)
        write_lines(out, source);
    out.end_list();
}

void SNAPSHOT_BASIS_READER::take_line(const JSON_NODE& row)
{
    const std::string of = row.member("of").text();
    // Most lines are of the source of the one before.
    if (texts.empty() || roles[texts.back().role] != of)
    {
        const auto role = static_cast<std::size_t>(std::ranges::find(roles, of) - roles.begin());
        if (role == roles.size())
            row.member("of").refuse("source of lines");
        if (!texts.empty() && role < texts.back().role)
            row.refuse("row in the order of the sources");
        texts.push_back({role, {}});
    }
    const JSON_NODE text = row.member("text");
    std::string line = text.text();
    if (line.find('\n') != std::string::npos)
        text.refuse("text of one line");
    const std::string hidden = hidden_line(of, std::move(line), secrets);
    texts.back().bytes.append(hidden).append(1, '\n');
}

std::optional<std::string> SNAPSHOT_BASIS_READER::role_of_secret_line(const JSON_NODE& row)
{
    std::string role = row.member("of").text();
    return has_hidden_parts(hidden_line(role, row.member("text").text(), secrets)) ? std::optional(std::move(role))
                                                                                   : std::nullopt;
}

std::shared_ptr<const INPUT_FILE> SNAPSHOT_BASIS_READER::file_of(const JSON_NODE& row, std::size_t role)
{
    auto file = std::make_shared<INPUT_FILE>();
    file->path = row.member("path").text();
    file->problem = row.member("problem").text_or_null().value_or("");
    const auto text = std::ranges::find(texts, role, &TEXT::role);
    const bool newline_at_end = row.member("newline_at_end").truth();
    if (text == texts.end())
    {
        if (newline_at_end)
            row.member("newline_at_end").refuse("false, as of a source without lines");
        return file;
    }
    file->bytes = std::move(text->bytes);
    texts.erase(text);
    if (!newline_at_end)
        file->bytes.pop_back();
    return file;
}

std::vector<SNAPSHOT_SOURCE> SNAPSHOT_BASIS_READER::sources_of(const JSON_NODE& list)
{
    std::vector<SNAPSHOT_SOURCE> sources;
    std::size_t next_role = 0;
    for (const JSON_NODE& row : list.elements())
    {
        const std::string of = row.member("of").text();
        const auto role = static_cast<std::size_t>(std::ranges::find(roles, of) - roles.begin());
        if (role == roles.size() || role < next_role)
            row.member("of").refuse("source in the order of the sources");
        next_role = role + 1;
        std::shared_ptr<const INPUT_FILE> file = file_of(row, role);
        if (of == layer_code(LAYER_KIND::INLINE_TEXT))
        {
            if (file->path != inline_source)
                row.member("path").refuse("name of the variable");
            // A value goes on behind a separator, so that the text is looked at as a whole.
            if (!has_hidden_parts(file->bytes))
            {
                if (std::optional<std::string> hidden = hide_in_inline_text(file->bytes, secrets))
                    file =
                        std::make_shared<const INPUT_FILE>(INPUT_FILE{file->path, *std::move(hidden), file->problem});
            }
        }
        sources.push_back({of, std::move(file)});
    }
    if (!texts.empty())
        list.refuse("list with the sources of all lines");
    return sources;
}

SNAPSHOT_BASIS SNAPSHOT_BASIS_READER::finish_without_lines(const JSON_NODE& root)
{
    const std::optional<JSON_NODE> as = root.member_if_any("as");
    return {root.member("user").text(),
            root.member("host").text_or_null(),
            root.member("directory").text_or_null(),
            root.member("taken").text(),
            root.member("tool").text(),
            as ? std::optional(read_program(*as)) : std::nullopt,
            read_list(root.member("search"), read_candidate),
            read_list(root.member("findings"), read_finding),
            read_list(root.member("problems"), read_problem),
            {}};
}

SNAPSHOT_BASIS SNAPSHOT_BASIS_READER::finish(const JSON_NODE& root, const std::vector<SNAPSHOT_FILE>& files)
{
    SNAPSHOT_BASIS basis = finish_without_lines(root);
    const JSON_NODE list = root.member("sources");
    basis.sources = sources_of(list);
    require_same_files(list, basis.sources, files);
    return basis;
}
