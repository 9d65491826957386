#include "tools/velmar-cfg/base/json_reader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"

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

ordered_json parsed(const std::string& path, const DOCUMENT_KIND& kind)
{
    const std::string bytes = read_named_input_file(path);
    const std::string file = title_of_named_file(path);
    try
    {
        return ordered_json::parse(bytes);
    }
    catch (const ordered_json::parse_error& error)
    {
        throw_bad_input(file, "no well-formed JSON, from " + line_and_column(bytes, error.byte) + " on; give a " +
                                  kind.title + " as " + kind.maker + " writes it");
    }
    catch (const ordered_json::out_of_range&)
    {
        throw_bad_input(file, std::string("a number in it is too large; give a ") + kind.title + " as " + kind.maker +
                                  " writes it");
    }
}

void check_kind(const std::string& file, const ordered_json& document, const DOCUMENT_KIND& kind)
{
    const auto schema = document.find("schema");
    const auto version = document.find("schema_version");
    if (schema == document.end() || *schema != kind.schema || version == document.end() ||
        !version->is_number_unsigned() || *version == 0)
        throw_bad_input(file, std::string("is no ") + kind.title + "; give one that " + kind.maker + " has written");
    if (version->get<std::uint64_t>() > static_cast<std::uint64_t>(kind.newest_version))
        throw_bad_input(file, std::string("is a ") + kind.title + " of version " + version->dump() +
                                  ", and this velmar-cfg knows them up to version " +
                                  std::to_string(kind.newest_version) + "; use a newer velmar-cfg");
}
}

JSON_NODE::JSON_NODE(const ordered_json& the_value, const std::string& the_file, std::string the_path)
    : value(the_value), file(the_file), path(std::move(the_path))
{
}

JSON_NODE JSON_NODE::member(const char* name) const
{
    const std::string location = path + "." + name;
    const auto found = value.find(name);
    if (found == value.end())
        throw_bad_input(file, location + " is missing; have the file written again");
    return {*found, file, location};
}

std::vector<JSON_NODE> JSON_NODE::elements() const
{
    if (!value.is_array())
        throw_bad_input(file, path + " is no list; have the file written again");
    std::vector<JSON_NODE> positions;
    for (std::size_t i = 0; i < value.size(); ++i)
        positions.emplace_back(value[i], file, path + "[" + std::to_string(i) + "]");
    return positions;
}

void JSON_NODE::refuse(const char* wanted) const
{
    throw_bad_input(file, path + " is no " + wanted + "; have the file written again");
}

template <typename T>
T JSON_NODE::as(bool fits, const char* wanted) const
{
    if (!fits)
        refuse(wanted);
    return value.get<T>();
}

template <typename READ>
auto JSON_NODE::unless_null(READ read) const -> std::optional<decltype(read())>
{
    return value.is_null() ? std::nullopt : std::optional(read());
}

std::string JSON_NODE::text() const
{
    if (!value.is_object())
        return as<std::string>(value.is_string(), "text");
    if (value.size() == 1 && value.contains("masked"))
    {
        std::string text;
        for (const JSON_NODE& part : member("masked").elements())
            text += part.value.is_null() || part.value.contains("hmac")
                        ? mark_of(part.hidden_part_or_null().value_or(HIDDEN_PART{{}, {}, false}))
                        : part.text();
        return text;
    }
    const auto hex = value.find("hex");
    if (value.size() != 1 || hex == value.end() || !hex->is_string())
        refuse("text");
    std::optional<std::string> bytes = from_hexadecimal(hex->get_ref<const std::string&>());
    if (!bytes)
        refuse("text");
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
    return as<std::uint64_t>(value.is_number_unsigned(), "natural number");
}

std::optional<std::uint64_t> JSON_NODE::natural_number_or_null() const
{
    return unless_null([this] { return natural_number(); });
}

std::optional<int> JSON_NODE::int_or_null() const
{
    const bool fits = value.is_number_unsigned()
                          ? std::in_range<int>(value.get<std::uint64_t>())
                          : value.is_number_integer() && std::in_range<int>(value.get<std::int64_t>());
    return unless_null([&] { return as<int>(fits, "signed 32-bit number"); });
}

std::optional<unsigned int> JSON_NODE::uint_or_null() const
{
    const bool fits = value.is_number_unsigned() && std::in_range<unsigned int>(value.get<std::uint64_t>());
    return unless_null([&] { return as<unsigned int>(fits, "unsigned 32-bit number"); });
}

std::optional<double> JSON_NODE::double_or_null() const
{
    if (!value.is_string())
        return unless_null([this] { return as<double>(value.is_number(), "number"); });
    for (const double number : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()})
    {
        if (number_as_text(number) == value.get_ref<const std::string&>())
            return number;
    }
    refuse("number");
}

bool JSON_NODE::truth() const
{
    return as<bool>(value.is_boolean(), "truth value");
}

std::optional<bool> JSON_NODE::truth_or_null() const
{
    return unless_null([this] { return truth(); });
}

JSON_DOCUMENT::JSON_DOCUMENT(const std::string& path, const DOCUMENT_KIND& kind)
    : file(title_of_named_file(path)), document(parsed(path, kind))
{
    check_kind(file, document, kind);
}
