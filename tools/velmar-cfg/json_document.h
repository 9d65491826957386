// JSON documents that the tool reads: taken apart with complaints that name the file, the place and what to do.
#ifndef TOOLS_VELMAR_CFG_JSON_DOCUMENT_H
#define TOOLS_VELMAR_CFG_JSON_DOCUMENT_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

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
class JSON_PLACE
{
public:
    JSON_PLACE(const nlohmann::ordered_json& value, const std::string& file, std::string path);

    JSON_PLACE member(const char* name) const;
    std::vector<JSON_PLACE> elements() const;

    std::string text() const;
    std::optional<std::string> text_or_null() const;
    std::uint64_t natural_number() const;
    bool truth() const;

private:
    template <typename T>
    T as(bool fits, const char* wanted) const;

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

    JSON_PLACE root() const
    {
        return {document, file, ""};
    }

private:
    const std::string file;
    nlohmann::ordered_json document;
};

#endif
