// Reads JSON documents. Messages about errors name the file, the position in it, and what to do.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_READER_H
#define TOOLS_VELMAR_CFG_BASE_JSON_READER_H

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_tokens.h"
#include "tools/velmar-cfg/base/json_tree.h"

// A kind of document: what its fields "schema" and "schema_version" must say, and what it is called.
struct DOCUMENT_KIND
{
    const char* schema;
    int newest_version;
    const char* title; // "run report"
    const char* maker; // what writes one; for the message about a file that is no such document
};

// Where the value of a tree stands.
struct JSON_PLACE
{
    std::string file;
    const char* list = nullptr; // the list that the value is a row of; null for a whole document
    std::size_t row = 0;
};

// One value of a document. Every reader throws TOOL_ERROR(BAD_INPUT) if the value is missing or of another type. The
// document must outlive the node. A node of a row is valid only while the row is taken.
class JSON_NODE
{
public:
    // `of_tree` says where in which document the tree's value stands.
    JSON_NODE(const JSON_TREE& of_values, JSON_TREE::INDEX its_index, const JSON_PLACE& of_tree)
        : tree(&of_values), index(its_index), place(&of_tree)
    {
    }

    JSON_NODE member(const char* name) const;
    std::optional<JSON_NODE> member_if_any(const char* name) const; // nothing for one that is missing or null
    std::vector<JSON_NODE> elements() const;

    // A text in one of the three forms in which JSON_WRITER writes it: as a text, {"hex": ...} or {"masked": ...}.
    std::string text() const;
    std::optional<std::string> text_or_null() const;
    std::optional<HIDDEN_PART> hidden_part_or_null() const;
    std::uint64_t natural_number() const;
    std::optional<std::uint64_t> natural_number_or_null() const;
    std::optional<int> int_or_null() const;
    std::optional<unsigned int> uint_or_null() const;
    std::optional<double> double_or_null() const; // reads infinities and not-a-number as JSON_WRITER writes them
    bool is_text() const
    {
        return kind() == JSON_TOKEN::TEXT;
    }
    bool truth() const;
    std::optional<bool> truth_or_null() const;

    // Throws TOOL_ERROR(BAD_INPUT): the value is no `wanted`.
    [[noreturn]] void refuse(const char* wanted) const;

    // The same for a row that has the name of another row.
    [[noreturn]] void refuse_namesake() const;

private:
    std::string hash_of_64_bits() const;
    std::string masked_text() const;
    bool has_no_member_but(const char* name) const;
    void require(bool fits, const char* wanted) const;
    double number() const;
    std::string path() const; // ".read[3].count"
    JSON_TOKEN kind() const
    {
        return tree->kind(index);
    }

    // Nothing for null, else what `read` returns.
    template <typename READ>
    auto unless_null(READ read) const -> std::optional<decltype(read())>;

    const JSON_TREE* tree;
    JSON_TREE::INDEX index;
    const JSON_PLACE* place;
};

// A list of a document whose rows are handed over one at a time and not kept, so a million rows need no memory.
struct JSON_ROWS
{
    const char* list; // the key of a member of the document
    std::function<void(const JSON_NODE& row)> take;

    // Rows are taken only from documents of these versions. In documents of other versions the list may be missing, and
    // is skipped if it is there.
    std::uint64_t first_version = 1;
    std::uint64_t last_version = std::numeric_limits<std::uint64_t>::max();
};

// A kind of document that a file may contain, and those of its lists that are taken row by row.
struct DOCUMENT_FORMAT
{
    const DOCUMENT_KIND& kind;
    std::vector<JSON_ROWS> lists;
};

// A document read from a file.
class JSON_DOCUMENT
{
public:
    // Reads the document. Throws TOOL_ERROR(BAD_INPUT) for a file that cannot be read, is no JSON, is of none of these
    // kinds, or has a newer version than its kind. There must be at least one format.
    //
    // Rows of the lists of its kind are taken in order while the document is read. Lists that are not wanted are
    // skipped, and all other members are kept. A list that comes before "schema" and "schema_version" is kept as well,
    // and its rows are taken at the end.
    JSON_DOCUMENT(const std::string& path, std::vector<DOCUMENT_FORMAT> possible_formats);

    // The same for one kind.
    explicit JSON_DOCUMENT(const std::string& path, const DOCUMENT_KIND& of_kind,
                           const std::vector<JSON_ROWS>& lists = {});

    const DOCUMENT_KIND& kind() const
    {
        return format().kind;
    }

    // At least 1.
    std::uint64_t version() const;

    JSON_NODE root() const
    {
        return {document, 0, place};
    }

private:
    void read(JSON_TOKENS& tokens);
    void read_member(JSON_TOKENS& tokens);
    void read_rows(JSON_TOKENS& tokens, const JSON_ROWS& rows);
    void take_kept_rows(const JSON_ROWS& rows);
    bool is_taken(const JSON_ROWS& rows) const;
    void require_kind() const;
    const DOCUMENT_FORMAT& format() const;
    void choose_format();

    std::vector<DOCUMENT_FORMAT> formats;
    std::size_t chosen_format = 0; // the first until the document has named its kind
    JSON_PLACE place;
    JSON_TREE document;
    std::vector<std::string> lists_read;
};

#endif
