// Reads a JSON document of a known kind, and says what is wrong with any other.
//
// The top-level members are read in order. A list that its reader wants row by row is handed over so, with one tree
// that each row uses again. Every other member is kept in the document's tree. Rows can be handed over only once
// "schema" and "schema_version" are known: a list that comes before them is kept in the tree, and its rows are handed
// over at the end. A list that the version's reader does not want is passed over token by token.
//
// Invariants:
// - Kind and version are checked before the first row is handed over.
// - No list is handed over twice: a second one of the same name is refused.
// - The path of a value, such as ".read[3].count", is worked out only for a complaint.
//
// Cost: the file is read once, in time O(n) for n bytes, apart from the search for a member among its siblings. There
// is such a search for each top-level member, so these are meant to be few. Memory: the largest row and all that is
// kept.
#include "tools/velmar-cfg/base/json_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
[[noreturn]] void throw_bad_input(const std::string& file, const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, file + ": " + what);
}

constexpr const char* write_again = "; have the file written again";
}

std::string JSON_NODE::path() const
{
    const std::string of_tree =
        place->list == nullptr ? "" : "." + std::string(place->list) + "[" + std::to_string(place->row) + "]";
    return of_tree + tree->path(index);
}

JSON_NODE JSON_NODE::member(const char* name) const
{
    const std::optional<JSON_TREE::INDEX> found = tree->member(index, name);
    if (!found)
        throw_bad_input(place->file, path() + "." + name + " is missing" + write_again);
    return {*tree, *found, *place};
}

std::optional<JSON_NODE> JSON_NODE::member_if_any(const char* name) const
{
    const std::optional<JSON_TREE::INDEX> found = tree->member(index, name);
    return found && tree->kind(*found) != JSON_TOKEN::NOTHING ? std::optional(JSON_NODE(*tree, *found, *place))
                                                              : std::nullopt;
}

std::vector<JSON_NODE> JSON_NODE::elements() const
{
    if (kind() != JSON_TOKEN::BEGIN_LIST)
        refuse("list");
    std::vector<JSON_NODE> nodes;
    for (JSON_TREE::INDEX i = tree->begin(index); i != tree->end(index); i = tree->behind(i))
        nodes.emplace_back(*tree, i, *place);
    return nodes;
}

void JSON_NODE::refuse(const char* wanted) const
{
    throw_bad_input(place->file, path() + " is no " + wanted + write_again);
}

void JSON_NODE::refuse_namesake() const
{
    refuse("row of its own: there is another of that name");
}

void JSON_NODE::require(bool fits, const char* wanted) const
{
    if (!fits)
        refuse(wanted);
}

template <typename READ>
auto JSON_NODE::unless_null(READ read) const -> std::optional<decltype(read())>
{
    return kind() == JSON_TOKEN::NOTHING ? std::nullopt : std::optional(read());
}

// Whether it is an object with that member and no other.
bool JSON_NODE::has_no_member_but(const char* name) const
{
    const std::optional<JSON_TREE::INDEX> member = tree->member(index, name);
    return member && member == tree->begin(index) && tree->behind(*member) == tree->end(index);
}

// The parts of the text, of which those that are hidden become marks.
std::string JSON_NODE::masked_text() const
{
    std::string text;
    for (const JSON_NODE& part : member("masked").elements())
        text += part.kind() == JSON_TOKEN::NOTHING || tree->member(part.index, "hmac")
                    ? mark_of(part.hidden_part_or_null().value_or(HIDDEN_PART{{}, {}, false}))
                    : part.text();
    return text;
}

std::string JSON_NODE::text() const
{
    if (kind() == JSON_TOKEN::TEXT)
        return std::string(tree->text(index));
    if (has_no_member_but("masked"))
        return masked_text();
    require(has_no_member_but("hex") && tree->kind(tree->begin(index)) == JSON_TOKEN::TEXT, "text");
    std::optional<std::string> bytes = from_hexadecimal(tree->text(tree->begin(index)));
    require(bytes.has_value(), "text");
    return *std::move(bytes);
}

std::optional<std::string> JSON_NODE::text_or_null() const
{
    return unless_null([this] { return text(); });
}

std::string JSON_NODE::hash_of_64_bits() const
{
    std::string digits = text();
    if (digits.size() != 16 || digits.find_first_not_of("0123456789abcdef") != std::string::npos)
        refuse("hash of 16 lower-case hexadecimal digits");
    return digits;
}

std::optional<HIDDEN_PART> JSON_NODE::hidden_part_or_null() const
{
    return unless_null(
        [this] {
            return HIDDEN_PART{member("key").hash_of_64_bits(), member("hmac").hash_of_64_bits(), true};
        });
}

std::uint64_t JSON_NODE::natural_number() const
{
    require(kind() == JSON_TOKEN::NATURAL, "natural number");
    return tree->natural(index);
}

std::optional<std::uint64_t> JSON_NODE::natural_number_or_null() const
{
    return unless_null([this] { return natural_number(); });
}

std::optional<int> JSON_NODE::int_or_null() const
{
    const auto read = [this]
    {
        const bool is_natural = kind() == JSON_TOKEN::NATURAL;
        require(is_natural ? std::in_range<int>(tree->natural(index))
                           : kind() == JSON_TOKEN::NEGATIVE && std::in_range<int>(tree->negative(index)),
                "signed 32-bit number");
        return is_natural ? static_cast<int>(tree->natural(index)) : static_cast<int>(tree->negative(index));
    };
    return unless_null(read);
}

std::optional<unsigned int> JSON_NODE::uint_or_null() const
{
    const auto read = [this]
    {
        require(kind() == JSON_TOKEN::NATURAL && std::in_range<unsigned int>(tree->natural(index)),
                "unsigned 32-bit number");
        return static_cast<unsigned int>(tree->natural(index));
    };
    return unless_null(read);
}

double JSON_NODE::number() const
{
    switch (kind())
    {
    case JSON_TOKEN::NATURAL:
        return static_cast<double>(tree->natural(index));
    case JSON_TOKEN::NEGATIVE:
        return static_cast<double>(tree->negative(index));
    case JSON_TOKEN::FLOATING:
        return tree->floating(index);
    case JSON_TOKEN::TEXT:
        for (const double number :
             {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
              std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()})
        {
            if (number_as_text(number) == tree->text(index))
                return number;
        }
        break;
    default:
        break;
    }
    refuse("number");
}

std::optional<double> JSON_NODE::double_or_null() const
{
    return unless_null([this] { return number(); });
}

bool JSON_NODE::truth() const
{
    require(kind() == JSON_TOKEN::TRUTH, "truth value");
    return tree->truth(index);
}

std::optional<bool> JSON_NODE::truth_or_null() const
{
    return unless_null([this] { return truth(); });
}

// --- Documents ---

namespace
{
// "snapshot or run report", of a member of the kinds.
std::string either_of(const std::vector<DOCUMENT_FORMAT>& formats, const char* DOCUMENT_KIND::*member)
{
    std::string all;
    for (const DOCUMENT_FORMAT& format : formats)
        all += (all.empty() ? "" : " or ") + std::string(format.kind.*member);
    return all;
}

// Reads the rest of a list, of which the bracket has been read.
void pass_over(JSON_TOKENS& tokens)
{
    for (std::size_t open = 1; open > 0;)
    {
        const JSON_TOKEN token = tokens.next();
        if (token == JSON_TOKEN::BEGIN_OBJECT || token == JSON_TOKEN::BEGIN_LIST)
            ++open;
        else if (token == JSON_TOKEN::END_OBJECT || token == JSON_TOKEN::END_LIST)
            --open;
    }
}
}

JSON_DOCUMENT::JSON_DOCUMENT(const std::string& path, const DOCUMENT_KIND& of_kind, const std::vector<JSON_ROWS>& lists)
    : JSON_DOCUMENT(path, {DOCUMENT_FORMAT{of_kind, lists}})
{
}

JSON_DOCUMENT::JSON_DOCUMENT(const std::string& path, std::vector<DOCUMENT_FORMAT> possible_formats)
    : formats(std::move(possible_formats)), place{title_of_named_file(path)}
{
    NAMED_FILE file(path);
    const std::string as_written = "; give a " + either_of(formats, &DOCUMENT_KIND::title) + " as " +
                                   either_of(formats, &DOCUMENT_KIND::maker) + " writes it";
    try
    {
        JSON_TOKENS tokens(file);
        read(tokens);
    }
    catch (const JSON_ERROR& error)
    {
        if (error.number_too_large)
            throw_bad_input(place.file, "a number in it is too large" + as_written);
        throw_bad_input(place.file, "is not well-formed JSON from line " + std::to_string(error.line) + ", column " +
                                        std::to_string(error.column) + " on" + as_written);
    }
    require_kind();
    for (const JSON_ROWS& rows : format().lists)
    {
        if (std::ranges::count(lists_read, rows.list) == 0 && is_taken(rows))
            take_kept_rows(rows);
    }
}

void JSON_DOCUMENT::read(JSON_TOKENS& tokens)
{
    if (const JSON_TOKEN first = tokens.next(); first != JSON_TOKEN::BEGIN_OBJECT)
    {
        document.read(tokens, first);
        tokens.next(); // nothing may follow
        return;
    }
    document.begin_object();
    while (tokens.next() == JSON_TOKEN::KEY)
        read_member(tokens);
    tokens.next();
}

void JSON_DOCUMENT::read_member(JSON_TOKENS& tokens)
{
    const std::vector<JSON_ROWS>& lists = format().lists;
    const std::string key(tokens.text());
    const JSON_TOKEN first = tokens.next();
    const auto rows = std::ranges::find_if(lists, [&key](const JSON_ROWS& candidate) { return key == candidate.list; });
    if (rows != lists.end() && (document.member(0, key) || std::ranges::count(lists_read, key) > 0))
        throw_bad_input(place.file, "." + key + " is there twice" + write_again);
    if (rows == lists.end() || first != JSON_TOKEN::BEGIN_LIST || !document.member(0, "schema") ||
        !document.member(0, "schema_version"))
    {
        document.add_member(tokens, key, first);
        if (key == "schema")
            choose_format();
        return;
    }
    require_kind();
    lists_read.push_back(key);
    if (is_taken(*rows))
        read_rows(tokens, *rows);
    else
        pass_over(tokens);
}

void JSON_DOCUMENT::read_rows(JSON_TOKENS& tokens, const JSON_ROWS& rows)
{
    JSON_TREE row;
    JSON_PLACE row_place{place.file, rows.list, 0};
    for (JSON_TOKEN first = tokens.next(); first != JSON_TOKEN::END_LIST; first = tokens.next(), ++row_place.row)
    {
        row.read(tokens, first);
        rows.take(JSON_NODE(row, 0, row_place));
    }
}

void JSON_DOCUMENT::take_kept_rows(const JSON_ROWS& rows)
{
    for (const JSON_NODE& row : root().member(rows.list).elements())
        rows.take(row);
}

std::uint64_t JSON_DOCUMENT::version() const
{
    const std::optional<JSON_TREE::INDEX> said = document.member(0, "schema_version");
    return said && document.kind(*said) == JSON_TOKEN::NATURAL ? document.natural(*said) : 0;
}

bool JSON_DOCUMENT::is_taken(const JSON_ROWS& rows) const
{
    return version() >= rows.first_version && version() <= rows.last_version;
}

// The one that the document says it has; the first while it says none of them.
const DOCUMENT_FORMAT& JSON_DOCUMENT::format() const
{
    return formats[chosen_format];
}

// Only when a schema was read, not at each member: a hostile document may have a million of them.
void JSON_DOCUMENT::choose_format()
{
    const std::optional<JSON_TREE::INDEX> schema = document.member(0, "schema");
    const auto said = std::ranges::find_if(formats,
                                           [&](const DOCUMENT_FORMAT& candidate) {
                                               return schema && document.kind(*schema) == JSON_TOKEN::TEXT &&
                                                      document.text(*schema) == candidate.kind.schema;
                                           });
    chosen_format = said == formats.end() ? 0 : static_cast<std::size_t>(said - formats.begin());
}

void JSON_DOCUMENT::require_kind() const
{
    const DOCUMENT_KIND& kind = format().kind;
    const std::optional<JSON_TREE::INDEX> schema = document.member(0, "schema");
    const std::uint64_t number = version();
    if (!schema || document.kind(*schema) != JSON_TOKEN::TEXT || document.text(*schema) != kind.schema || number == 0)
        throw_bad_input(place.file, "is no " + either_of(formats, &DOCUMENT_KIND::title) + "; give one that " +
                                        either_of(formats, &DOCUMENT_KIND::maker) + " has written");
    if (number > static_cast<std::uint64_t>(kind.newest_version))
        throw_bad_input(place.file, std::string("is a ") + kind.title + " of version " + std::to_string(number) +
                                        ", and this velmar-cfg knows them up to version " +
                                        std::to_string(kind.newest_version) + "; use a newer velmar-cfg");
}
