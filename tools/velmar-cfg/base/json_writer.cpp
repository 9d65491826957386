// Writes JSON through a buffer, which is handed to the sink before a value when it holds 64 KiB or more.
//
// All that the writer remembers is its depth, the depth of the row list that it is in, whether anything stands in the
// innermost container yet, and whether a key has just been written. before_value() decides by these where a comma, a
// newline or indentation goes. There is no stack of open containers: a container that ends is always an element of the
// one around it, so the latter is not empty. Whether brackets fit is for the caller to see to.
//
// In texts, a table by byte tells which bytes an escaped character may begin with. What stands between those is copied
// at once.
//
// Cost: O(n) time for n bytes. Memory: the buffer and the longest value.
#include "tools/velmar-cfg/base/json_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::size_t buffer_size = std::size_t{64} * 1024;
constexpr std::size_t indentation = 2;

// By byte: whether what is escaped may begin with it. Beyond ASCII, what steers a terminal begins with one of three.
constexpr std::array<bool, 256> make_escapable()
{
    std::array<bool, 256> escapable{};
    std::fill_n(escapable.begin(), 0x20, true);
    for (const unsigned int byte : {0x22U, 0x5cU, 0x7fU, 0xc2U, 0xd8U, 0xe2U})
        escapable[byte] = true;
    return escapable;
}

// The length of the text's beginning that stands in JSON as it is. The text is UTF-8.
std::size_t plain_length(std::string_view text)
{
    static constexpr std::array<bool, 256> escapable = make_escapable();
    for (std::size_t length = 0; length < text.size(); ++length)
    {
        const auto byte = static_cast<unsigned char>(text[length]);
        if (!escapable[byte])
            continue;
        if (byte < 0x80 || steers_a_terminal(first_character(text.substr(length)).character))
            return length;
    }
    return text.size();
}

// A character of 16 bits.
void append_escaped(std::string& to, char32_t character)
{
    constexpr std::string_view escaped = "\"\\\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\bfnrt";
    to += '\\';
    if (const std::size_t at = escaped.find(static_cast<char>(character));
        character < 0x80 && at != std::string_view::npos)
        to += letters[at];
    else
    {
        const char bytes[] = {static_cast<char>(character >> 8), static_cast<char>(character)};
        to.append("u").append(as_hexadecimal({bytes, sizeof bytes}));
    }
}
}

void JSON_WRITER::new_line()
{
    buffer += '\n';
    buffer.append(depth * indentation, ' ');
}

void JSON_WRITER::before_value()
{
    if (behind_key)
        behind_key = false;
    else if (depth > 0)
    {
        if (!first)
            buffer += ',';
        if (!is_in_row())
            new_line();
        else if (!first)
            buffer += ' ';
    }
    first = false;
    if (buffer.size() >= buffer_size)
    {
        sink.write(buffer);
        buffer.clear();
    }
}

void JSON_WRITER::plain(std::string_view text)
{
    before_value();
    buffer += text;
}

void JSON_WRITER::quoted(std::string_view text)
{
    buffer += '"';
    while (!text.empty())
    {
        const std::size_t length = plain_length(text);
        buffer += text.substr(0, length);
        text.remove_prefix(length);
        if (text.empty())
            break;
        const UTF_8_CHARACTER next = first_character(text);
        append_escaped(buffer, next.character);
        text.remove_prefix(next.length);
    }
    buffer += '"';
}

void JSON_WRITER::begin(char bracket)
{
    before_value();
    buffer += bracket;
    ++depth;
    first = true;
}

void JSON_WRITER::end(char bracket)
{
    const bool on_own_line = !first && !is_in_row();
    if (depth == depth_of_rows)
        depth_of_rows = no_rows;
    --depth;
    if (on_own_line)
        new_line();
    buffer += bracket;
    first = false;
}

void JSON_WRITER::begin_object()
{
    begin('{');
}

void JSON_WRITER::end_object()
{
    end('}');
}

void JSON_WRITER::begin_list()
{
    begin('[');
}

void JSON_WRITER::end_list()
{
    end(']');
}

void JSON_WRITER::begin_row_list()
{
    begin_list();
    depth_of_rows = std::min(depth_of_rows, depth);
}

void JSON_WRITER::key(std::string_view name)
{
    before_value();
    quoted(name);
    buffer += ": ";
    behind_key = true;
}

void JSON_WRITER::value(const HIDDEN_PART& part)
{
    if (!part.lasting)
    {
        value(std::nullopt);
        return;
    }
    begin_object();
    field("key", part.key);
    field("hmac", part.hmac);
    end_object();
}

void JSON_WRITER::masked(std::string_view text)
{
    begin_object();
    key("masked");
    begin_list();
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
    {
        if (part.hidden)
            value(hidden_part(part.text));
        else
            value(part.text);
    }
    end_list();
    end_object();
}

void JSON_WRITER::value(std::string_view text)
{
    if (has_hidden_parts(text))
    {
        masked(text);
        return;
    }
    if (!is_utf_8(text))
    {
        begin_object();
        field("hex", as_hexadecimal(text));
        end_object();
        return;
    }
    before_value();
    quoted(text);
}

void JSON_WRITER::value(bool truth)
{
    plain(truth ? "true" : "false");
}

void JSON_WRITER::value(double number)
{
    if (!std::isfinite(number))
        value(number_as_text(number));
    else if (number == 0 && !std::signbit(number))
        plain("0.0"); // what most texts are
    else
        plain(nlohmann::json(number).dump());
}

void JSON_WRITER::value(std::nullopt_t)
{
    plain("null");
}

void JSON_WRITER::field_or_null(std::string_view name, std::string_view text)
{
    key(name);
    if (text.empty())
        value(std::nullopt);
    else
        value(text);
}

void JSON_WRITER::finish()
{
    buffer += '\n';
    sink.write(buffer);
    buffer.clear();
}
