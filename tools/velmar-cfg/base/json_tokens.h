// Splits JSON into tokens while it is read. A document of any size takes only the memory of one buffer.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_TOKENS_H
#define TOOLS_VELMAR_CFG_BASE_JSON_TOKENS_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/byte_source.h"

enum class JSON_TOKEN : std::uint8_t
{
    END_OF_DOCUMENT,
    BEGIN_OBJECT,
    END_OBJECT,
    BEGIN_LIST,
    END_LIST,
    KEY, // of a member, whose value is next
    TEXT,
    NATURAL,  // a number without sign, fraction and exponent of at most 64 bits
    NEGATIVE, // the same with a "-"
    FLOATING, // any other number
    TRUTH,
    NOTHING, // null
};

// The document is not well-formed JSON, or a number in it is too large for a double. JSON is that of RFC 8259 in UTF-8;
// a byte order mark may stand before it.
struct JSON_ERROR : std::runtime_error
{
    JSON_ERROR(bool is_number_too_large, std::size_t in_line, std::size_t in_column)
        : std::runtime_error("no well-formed JSON"), number_too_large(is_number_too_large), line(in_line),
          column(in_column)
    {
    }

    bool number_too_large;
    std::size_t line;   // counted from 1
    std::size_t column; // in bytes, counted from 1
};

// Yields tokens only in an order that the grammar of JSON allows, so callers need not check it.
class JSON_TOKENS
{
public:
    // The source must outlive the tokens.
    explicit JSON_TOKENS(BYTE_SOURCE& of_bytes);

    // Reads the next token. Throws JSON_ERROR, and what the source throws. Must not be called after END_OF_DOCUMENT.
    JSON_TOKEN next();

    // The value of the last token. Each function is only for the tokens named beside it. The text is valid until the
    // next token is read.
    std::string_view text() const // KEY, TEXT
    {
        return last_text;
    }
    std::uint64_t natural() const // NATURAL
    {
        return last_natural;
    }
    std::int64_t negative() const // NEGATIVE
    {
        return last_negative;
    }
    double floating() const // FLOATING
    {
        return last_floating;
    }
    bool truth() const // TRUTH
    {
        return last_truth;
    }

private:
    enum class EXPECTED : std::uint8_t
    {
        VALUE,
        FIRST_VALUE_OR_END, // of a list
        FIRST_KEY_OR_END,   // of an object
        COMMA_OR_END,       // of the innermost object or list; without one, the end of the document
    };

    static constexpr int end_of_bytes = -1;

    bool refill();
    int peek();
    int take();
    void skip_blanks();
    [[noreturn]] void refuse() const;
    [[noreturn]] void refuse_number() const;

    JSON_TOKEN begin(char bracket, JSON_TOKEN token, EXPECTED first);
    JSON_TOKEN end(JSON_TOKEN token);
    JSON_TOKEN next_in_container();
    JSON_TOKEN read_key();
    JSON_TOKEN read_value();
    JSON_TOKEN read_word(std::string_view word, JSON_TOKEN token);
    JSON_TOKEN read_number();
    void append_digits(std::string& number);
    void read_text();
    void read_text_in_parts();
    void read_escape();
    std::uint32_t read_four_digits();

    BYTE_SOURCE& source;
    std::vector<char> buffer;
    const char* at; // the next byte in the buffer
    const char* end_of_buffer;
    std::size_t offset_of_buffer = 0; // in the document
    std::size_t lines = 0;            // that have ended; newlines stand between tokens only
    std::size_t begin_of_line = 0;    // as an offset in the document

    std::string open; // the brackets of the objects and lists around the next token
    EXPECTED expected = EXPECTED::VALUE;

    std::string scratch; // a text that is not in the buffer as it is
    std::string_view last_text;
    std::uint64_t last_natural = 0;
    std::int64_t last_negative = 0;
    double last_floating = 0;
    bool last_truth = false;
};

#endif
