#include "tools/velmar-cfg/json_document.h"

#include <algorithm>

#include "tools/velmar-cfg/input_file.h"
#include "tools/velmar-cfg/tool.h"

using nlohmann::ordered_json;

namespace
{
[[noreturn]] void throw_bad_input(const std::string& file, const std::string& what)
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, file + ": " + what);
}

// "line 3, column 14" of the byte at which parsing stopped, counted from 1.
std::string line_and_column(const std::string& bytes, std::size_t byte)
{
    const std::string before = bytes.substr(0, byte == 0 ? 0 : byte - 1);
    const std::size_t last_newline = before.rfind('\n');
    const std::size_t column = last_newline == std::string::npos ? before.size() + 1 : before.size() - last_newline;
    return "line " + std::to_string(1 + std::count(before.begin(), before.end(), '\n')) + ", column " +
           std::to_string(column);
}

ordered_json parsed(const std::string& file, const DOCUMENT_KIND& kind)
{
    const std::string bytes = read_input_file(file);
    try
    {
        return ordered_json::parse(bytes);
    }
    catch (const ordered_json::parse_error& error)
    {
        throw_bad_input(file, "no well-formed JSON, from " + line_and_column(bytes, error.byte) + " on; give a " +
                                  kind.title + " as " + kind.maker + " writes it");
    }
}

void check_kind(const std::string& file, const ordered_json& document, const DOCUMENT_KIND& kind)
{
    const auto schema = document.find("schema");
    const auto version = document.find("schema_version");
    if (schema == document.end() || *schema != kind.schema || version == document.end() ||
        !version->is_number_unsigned())
        throw_bad_input(file, std::string("is no ") + kind.title + "; give one that " + kind.maker + " has written");
    if (*version > kind.newest_version)
        throw_bad_input(file, std::string("is a ") + kind.title + " of version " + version->dump() +
                                  ", and this velmar-cfg knows them up to version " +
                                  std::to_string(kind.newest_version) + "; use a newer velmar-cfg");
}
}

JSON_PLACE::JSON_PLACE(const ordered_json& the_value, const std::string& the_file, std::string the_path)
    : value(the_value), file(the_file), path(std::move(the_path))
{
}

JSON_PLACE JSON_PLACE::member(const char* name) const
{
    const std::string place = path + "." + name;
    const auto found = value.find(name);
    if (found == value.end())
        throw_bad_input(file, place + " is missing; have the file written again");
    return {*found, file, place};
}

std::vector<JSON_PLACE> JSON_PLACE::elements() const
{
    if (!value.is_array())
        throw_bad_input(file, path + " is no list; have the file written again");
    std::vector<JSON_PLACE> places;
    for (std::size_t i = 0; i < value.size(); ++i)
        places.emplace_back(value[i], file, path + "[" + std::to_string(i) + "]");
    return places;
}

template <typename T>
T JSON_PLACE::as(bool fits, const char* wanted) const
{
    if (!fits)
        throw_bad_input(file, path + " is no " + wanted + "; have the file written again");
    return value.get<T>();
}

std::string JSON_PLACE::text() const
{
    return as<std::string>(value.is_string(), "text");
}

std::optional<std::string> JSON_PLACE::text_or_null() const
{
    return value.is_null() ? std::nullopt : std::optional(text());
}

std::uint64_t JSON_PLACE::natural_number() const
{
    return as<std::uint64_t>(value.is_number_unsigned(), "natural number");
}

bool JSON_PLACE::truth() const
{
    return as<bool>(value.is_boolean(), "truth value");
}

JSON_DOCUMENT::JSON_DOCUMENT(const std::string& path, const DOCUMENT_KIND& kind)
    : file(path), document(parsed(path, kind))
{
    check_kind(file, document, kind);
}
