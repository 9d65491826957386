// Writes JSON as a stream. No document is built, so a million rows take no memory.
//
// The output is indented by two blanks; a row of a row list takes one line. Characters that steer a terminal are
// escaped in values, so newlines are the only ones in the output. A text that is not UTF-8 becomes {"hex": "<two digits
// a byte>"}. A text with hidden parts becomes {"masked": [...]} (hidden_text.h). JSON_NODE::text reads both back.
// Infinities and not-a-number, which JSON lacks, become texts.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_WRITER_H
#define TOOLS_VELMAR_CFG_BASE_JSON_WRITER_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/byte_sink.h"
#include "tools/velmar-cfg/base/hidden_text.h"

class JSON_WRITER
{
public:
    // Writes to `where`, which must outlive it, through a buffer.
    explicit JSON_WRITER(BYTE_SINK& where) : sink(where) {}

    // A value stands by itself, in a list, or after a key.
    void begin_object();
    void end_object();
    void begin_list();
    void end_list();

    // A list in which each value takes one line, whatever it contains.
    void begin_row_list();

    void key(std::string_view name);

    void value(std::string_view text);
    void value(const char* text)
    {
        value(std::string_view(text));
    }
    void value(const std::string& text)
    {
        value(std::string_view(text));
    }
    void value(bool truth);
    void value(double number);
    void value(std::nullopt_t);
    void value(const HIDDEN_PART& part); // null for one whose key is not lasting
    void value(std::integral auto number)
    {
        const std::string digits = std::to_string(number);
        plain(digits);
    }
    template <typename T>
    void value(const std::optional<T>& maybe)
    {
        if (maybe)
            value(*maybe);
        else
            value(std::nullopt);
    }
    template <typename T>
    void value(const std::vector<T>& list)
    {
        begin_list();
        for (const T& one : list)
            value(one);
        end_list();
    }

    template <typename T>
    void field(std::string_view name, const T& its_value)
    {
        key(name);
        value(its_value);
    }

    // The text, or null for the empty one.
    void field_or_null(std::string_view name, std::string_view text);

    // Writes a list. Calls write(writer, row) for each row.
    template <typename ROWS, typename WRITE>
    void list(const ROWS& rows, WRITE write)
    {
        begin_list();
        for (const auto& row : rows)
            write(*this, row);
        end_list();
    }

    // The same as a row list.
    template <typename ROWS, typename WRITE>
    void row_list(const ROWS& rows, WRITE write)
    {
        begin_row_list();
        for (const auto& row : rows)
            write(*this, row);
        end_list();
    }

    // Ends the document with a newline and writes the rest of it to the sink. Must be called once, after every list and
    // object has ended; otherwise the rest is lost.
    void finish();

private:
    void before_value();
    void plain(std::string_view text);
    void masked(std::string_view text);
    void quoted(std::string_view text);
    void begin(char bracket);
    void end(char bracket);
    void new_line();
    bool is_in_row() const
    {
        return depth > depth_of_rows;
    }

    static constexpr std::size_t no_rows = SIZE_MAX;

    BYTE_SINK& sink;
    std::string buffer;
    std::size_t depth = 0;
    std::size_t depth_of_rows = no_rows; // in a row list: its depth
    bool first = true;                   // nothing stands in the innermost list or object yet
    bool behind_key = false;
};

#endif
