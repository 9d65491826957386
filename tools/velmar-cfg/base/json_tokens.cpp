// Splits a JSON document into tokens while it is read through one buffer.
//
// A state says which tokens may come next, and a string holds the brackets that are open. Nothing calls itself, so a
// document that nests deeply takes one byte a bracket, and no stack.
//
// Texts and indentation are nearly all of a document's bytes. Both are looked at eight bytes at a time; the blanks of
// indentation on little-endian machines only. A text that lies in the buffer whole and without escapes is returned as a
// view into the buffer. Any other text is put together in `scratch`.
//
// Invariants:
// - A text that is returned is UTF-8, and a number that is returned is finite.
// - Newlines are no part of any token, so lines are counted where blanks are skipped.
//
// Cost: O(n) time for n bytes. Memory: the buffer, the longest text in `scratch`, and the open brackets.
#include "tools/velmar-cfg/base/json_tokens.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

#include "tools/velmar-cfg/base/text.h"

namespace
{
constexpr std::size_t buffer_size = std::size_t{256} * 1024;

constexpr std::uint64_t in_each_byte(unsigned char byte)
{
    return 0x0101010101010101U * byte;
}

constexpr std::uint64_t high_bits = in_each_byte(0x80);

std::uint64_t eight_bytes(const char* from)
{
    std::uint64_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// Not zero if and only if a byte of the word is below `limit`, which is at most 0x80.
constexpr std::uint64_t has_byte_below(std::uint64_t word, unsigned char limit)
{
    return (word - in_each_byte(limit)) & ~word & high_bits;
}

// The same for a byte that is `byte`.
constexpr std::uint64_t has_byte(std::uint64_t word, unsigned char byte)
{
    return has_byte_below(word ^ in_each_byte(byte), 1);
}

// The same for a byte that JSON escapes: a control character, a quote or a backslash.
constexpr std::uint64_t has_escaped_byte(std::uint64_t word)
{
    return has_byte_below(word, 0x20) | has_byte(word, '"') | has_byte(word, '\\');
}

constexpr bool ends_plain_text(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

// The first byte that ends a run of plain text, or `end`. Sets `beyond_ascii` if there is a byte of 0x80 and above
// before it.
const char* end_of_plain_text(const char* from, const char* end, bool& beyond_ascii)
{
    std::uint64_t seen = 0;
    for (; end - from >= 8 && has_escaped_byte(eight_bytes(from)) == 0; from += 8)
        seen |= eight_bytes(from);
    for (; from != end && !ends_plain_text(*from); ++from)
        seen |= static_cast<std::uint64_t>(static_cast<unsigned char>(*from));
    beyond_ascii = beyond_ascii || (seen & high_bits) != 0;
    return from;
}

constexpr bool is_digit(int c)
{
    return c >= '0' && c <= '9';
}

void append_utf_8(std::string& to, std::uint32_t character)
{
    const auto append = [&to](std::uint32_t byte) { to += static_cast<char>(byte); };
    if (character < 0x80)
        append(character);
    else if (character < 0x800)
        append(0xc0U | character >> 6);
    else if (character < 0x10000)
    {
        append(0xe0U | character >> 12);
        append(0x80U | (character >> 6 & 0x3fU));
    }
    else
    {
        append(0xf0U | character >> 18);
        append(0x80U | (character >> 12 & 0x3fU));
        append(0x80U | (character >> 6 & 0x3fU));
    }
    if (character >= 0x80)
        append(0x80U | (character & 0x3fU));
}
}

JSON_TOKENS::JSON_TOKENS(BYTE_SOURCE& of_bytes)
    : source(of_bytes), buffer(buffer_size), at(buffer.data()), end_of_buffer(buffer.data())
{
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    if (peek() != static_cast<unsigned char>(byte_order_mark.front()))
        return;
    for (const char c : byte_order_mark)
    {
        if (take() != static_cast<unsigned char>(c))
            refuse();
    }
}

// --- Bytes ---

bool JSON_TOKENS::refill()
{
    const std::size_t read_before = offset_of_buffer + static_cast<std::size_t>(end_of_buffer - buffer.data());
    const std::size_t got = source.read(buffer.data(), buffer.size());
    offset_of_buffer = read_before;
    at = buffer.data();
    end_of_buffer = at + got;
    return got > 0;
}

// The next byte, which is not taken.
int JSON_TOKENS::peek()
{
    return at != end_of_buffer || refill() ? static_cast<unsigned char>(*at) : end_of_bytes;
}

int JSON_TOKENS::take()
{
    const int c = peek();
    if (c != end_of_bytes)
        ++at;
    return c;
}

void JSON_TOKENS::skip_blanks()
{
    for (;;)
    {
        if constexpr (std::endian::native == std::endian::little)
        {
            while (end_of_buffer - at >= 8)
            {
                const int blanks = std::countr_zero(eight_bytes(at) ^ in_each_byte(' ')) / 8;
                at += blanks;
                if (blanks < 8)
                    break;
            }
        }
        const int c = peek();
        if (c != ' ' && c != '\n' && c != '\r' && c != '\t')
            return;
        ++at;
        if (c == '\n')
        {
            ++lines;
            begin_of_line = offset_of_buffer + static_cast<std::size_t>(at - buffer.data());
        }
    }
}

// The next byte, or the end, is not what may stand there.
void JSON_TOKENS::refuse() const
{
    const std::size_t offset = offset_of_buffer + static_cast<std::size_t>(at - buffer.data());
    throw JSON_ERROR(false, lines + 1, offset - begin_of_line + 1);
}

void JSON_TOKENS::refuse_number() const
{
    const std::size_t offset = offset_of_buffer + static_cast<std::size_t>(at - buffer.data());
    throw JSON_ERROR(true, lines + 1, offset - begin_of_line + 1);
}

// --- Tokens ---

JSON_TOKEN JSON_TOKENS::next()
{
    skip_blanks();
    switch (expected)
    {
    case EXPECTED::VALUE:
        return read_value();
    case EXPECTED::FIRST_VALUE_OR_END:
        return peek() == ']' ? end(JSON_TOKEN::END_LIST) : read_value();
    case EXPECTED::FIRST_KEY_OR_END:
        return peek() == '}' ? end(JSON_TOKEN::END_OBJECT) : read_key();
    case EXPECTED::COMMA_OR_END:
        break;
    }
    return next_in_container();
}

JSON_TOKEN JSON_TOKENS::next_in_container()
{
    const int c = peek();
    if (open.empty())
    {
        if (c != end_of_bytes)
            refuse();
        return JSON_TOKEN::END_OF_DOCUMENT;
    }
    const bool in_object = open.back() == '{';
    if (c == (in_object ? '}' : ']'))
        return end(in_object ? JSON_TOKEN::END_OBJECT : JSON_TOKEN::END_LIST);
    if (c != ',')
        refuse();
    ++at;
    skip_blanks();
    return in_object ? read_key() : read_value();
}

JSON_TOKEN JSON_TOKENS::begin(char bracket, JSON_TOKEN token, EXPECTED first)
{
    ++at;
    open += bracket;
    expected = first;
    return token;
}

JSON_TOKEN JSON_TOKENS::end(JSON_TOKEN token)
{
    ++at;
    open.pop_back();
    expected = EXPECTED::COMMA_OR_END;
    return token;
}

JSON_TOKEN JSON_TOKENS::read_key()
{
    if (peek() != '"')
        refuse();
    read_text();
    // The colon may lie in the next buffer, into which the text is no view.
    if (at == end_of_buffer || *at != ':')
    {
        if (last_text.data() != scratch.data())
            scratch = last_text;
        last_text = scratch;
        skip_blanks();
        if (peek() != ':')
            refuse();
    }
    ++at;
    expected = EXPECTED::VALUE;
    return JSON_TOKEN::KEY;
}

JSON_TOKEN JSON_TOKENS::read_value()
{
    const int c = peek();
    expected = EXPECTED::COMMA_OR_END;
    switch (c)
    {
    case '{':
        return begin('{', JSON_TOKEN::BEGIN_OBJECT, EXPECTED::FIRST_KEY_OR_END);
    case '[':
        return begin('[', JSON_TOKEN::BEGIN_LIST, EXPECTED::FIRST_VALUE_OR_END);
    case '"':
        read_text();
        return JSON_TOKEN::TEXT;
    case 't':
        last_truth = true;
        return read_word("true", JSON_TOKEN::TRUTH);
    case 'f':
        last_truth = false;
        return read_word("false", JSON_TOKEN::TRUTH);
    case 'n':
        return read_word("null", JSON_TOKEN::NOTHING);
    default:
        return read_number(); // which refuses what begins none
    }
}

JSON_TOKEN JSON_TOKENS::read_word(std::string_view word, JSON_TOKEN token)
{
    for (const char c : word)
    {
        if (peek() != c)
            refuse();
        ++at;
    }
    return token;
}

// --- Numbers ---

// One digit at least.
void JSON_TOKENS::append_digits(std::string& number)
{
    if (!is_digit(peek()))
        refuse();
    while (is_digit(peek()))
        number += *at++;
}

JSON_TOKEN JSON_TOKENS::read_number()
{
    std::string& number = scratch;
    number.clear();
    const bool is_negative = peek() == '-';
    if (is_negative)
        number += *at++;
    if (peek() == '0')
        number += *at++; // no digit may follow
    else
        append_digits(number);
    bool is_integer = true;
    if (peek() == '.')
    {
        is_integer = false;
        number += *at++;
        append_digits(number);
    }
    if (const int c = peek(); c == 'e' || c == 'E')
    {
        is_integer = false;
        number += *at++;
        if (const int sign = peek(); sign == '+' || sign == '-')
            number += *at++;
        append_digits(number);
    }

    const char* const begin_of_number = number.data();
    const char* const end_of_number = begin_of_number + number.size();
    if (is_integer && !is_negative && std::from_chars(begin_of_number, end_of_number, last_natural).ec == std::errc())
        return JSON_TOKEN::NATURAL;
    if (is_integer && is_negative && std::from_chars(begin_of_number, end_of_number, last_negative).ec == std::errc())
        return JSON_TOKEN::NEGATIVE;
    last_floating = number_from_text(number).value_or(0); // one that is too near to zero counts as zero or nearly so
    if (!std::isfinite(last_floating))
        refuse_number();
    return JSON_TOKEN::FLOATING;
}

// --- Texts ---

void JSON_TOKENS::read_text()
{
    ++at; // the quote
    bool beyond_ascii = false;
    const char* const end_of_run = end_of_plain_text(at, end_of_buffer, beyond_ascii);
    if (end_of_run == end_of_buffer || *end_of_run != '"')
    {
        read_text_in_parts();
        return;
    }
    last_text = std::string_view(at, static_cast<std::size_t>(end_of_run - at));
    if (beyond_ascii && !is_utf_8(last_text))
        refuse();
    at = end_of_run + 1;
}

void JSON_TOKENS::read_text_in_parts()
{
    scratch.clear();
    bool beyond_ascii = false;
    for (int c = peek(); c != '"'; c = peek())
    {
        if (c == end_of_bytes)
            refuse();
        const char* const end_of_run = end_of_plain_text(at, end_of_buffer, beyond_ascii);
        scratch.append(at, end_of_run);
        at = end_of_run;
        if (at == end_of_buffer || *at == '"')
            continue;
        if (*at != '\\')
            refuse();
        ++at;
        read_escape();
    }
    if (beyond_ascii && !is_utf_8(scratch))
        refuse();
    ++at;
    last_text = scratch;
}

// What stands behind a backslash.
void JSON_TOKENS::read_escape()
{
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meant = "\"\\/\b\f\n\r\t";
    const int c = peek();
    if (c == 'u')
    {
        ++at;
        std::uint32_t character = read_four_digits();
        if (character >= 0xd800 && character < 0xdc00)
        {
            read_word("\\u", JSON_TOKEN::TEXT);
            const std::uint32_t second = read_four_digits();
            if (second < 0xdc00 || second > 0xdfff)
                refuse();
            character = 0x10000U + ((character - 0xd800U) << 10) + (second - 0xdc00U);
        }
        else if (character >= 0xdc00 && character <= 0xdfff)
            refuse();
        append_utf_8(scratch, character);
        return;
    }
    constexpr std::size_t none = std::string_view::npos;
    const std::size_t letter = c == end_of_bytes ? none : letters.find(static_cast<char>(c));
    if (letter == none)
        refuse();
    ++at;
    scratch += meant[letter];
}

std::uint32_t JSON_TOKENS::read_four_digits()
{
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i)
    {
        const int c = peek();
        const int digit = is_digit(c)            ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : -1;
        if (digit < 0)
            refuse();
        ++at;
        number = number << 4 | static_cast<std::uint32_t>(digit);
    }
    return number;
}
