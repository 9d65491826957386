// JSON documents that the tool reads: taken apart with complaints that name the file, the place and what to do.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_READER_H
#define TOOLS_VELMAR_CFG_BASE_JSON_READER_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/hidden_text.h"

// A kind of document: what its fields "schema" and "schema_version" must say, and what it is called.
struct DOCUMENT_KIND
{
    const char* schema;
    int newest_version;
    const char* title; // "run report"
    const char* maker; // what writes one, for the complaint about a file that is none
};

// One value of a document. Every reader throws TOOL_ERROR(BAD_INPUT) when the value is not there or of another type.
// The document must outlive it.
class JSON_NODE
{
public:
    JSON_NODE(const nlohmann::ordered_json& value, const std::string& file, std::string path);

    JSON_NODE member(const char* name) const;
    std::vector<JSON_NODE> elements() const;

    // A text, the bytes of one that is no UTF-8, or one of which a part is hidden (see JSON_WRITER).
    std::string text() const;
    std::optional<std::string> text_or_null() const;
    std::optional<HIDDEN_PART> hidden_part_or_null() const;
    std::uint64_t natural_number() const;
    std::optional<std::uint64_t> natural_number_or_null() const;
    std::optional<int> int_or_null() const;
    std::optional<unsigned int> uint_or_null() const;
    std::optional<double> double_or_null() const; // infinities and not-a-number as JSON_WRITER has them
    bool truth() const;
    std::optional<bool> truth_or_null() const;

    // Throws TOOL_ERROR(BAD_INPUT): the value is no `wanted`.
    [[noreturn]] void refuse(const char* wanted) const;

private:
    std::string hash_of_64_bits() const;

    template <typename T>
    T as(bool fits, const char* wanted) const;

    // null for null, else what `read` makes of the value.
    template <typename READ>
    auto unless_null(READ read) const -> std::optional<decltype(read())>;

    const nlohmann::ordered_json& value;
    const std::string& file;
    const std::string path; // ".read[3].count"
};

// A document of a file.
class JSON_DOCUMENT
{
public:
    // Throws TOOL_ERROR(BAD_INPUT) for a file that cannot be read, is no JSON, is of another kind, or of a version that
    // is newer than the kind's.
    JSON_DOCUMENT(const std::string& path, const DOCUMENT_KIND& kind);

    JSON_NODE root() const
    {
        return {document, file, ""};
    }

private:
    const std::string file;
    nlohmann::ordered_json document;
};

#endif
