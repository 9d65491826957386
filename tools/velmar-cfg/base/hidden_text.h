// Texts of which parts are hidden.
//
// A hidden part is a mark in the text that stands for it: a run of letters and digits that begins with a number which
// this process draws at random, so that no text from outside can hold one. Such a text passes through lines, items,
// findings and comparisons like any other. What writes texts for people shows a mark as \(masked); JSON_WRITER writes
//
//     {"masked": ["api_token=", {"key": "<16 digits>", "hmac": "<16 digits>"}, ":b=1"]}
//
// the parts of the text in order, of which texts are shown and others are hidden. A hidden part is null when its mark
// means nothing outside this process.
//
// A mark bears a keyed hash of what it stands for and the name of the key: of two marks under one key it can be told
// whether they stand for the same text.
#ifndef TOOLS_VELMAR_CFG_BASE_HIDDEN_TEXT_H
#define TOOLS_VELMAR_CFG_BASE_HIDDEN_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What is known of a hidden part. Both hashes are 64 bits as 16 lower-case hexadecimal digits.
struct HIDDEN_PART
{
    std::string key;        // names the key; empty for a part of which nothing is known
    std::string hmac;       // of the part, under the key; empty as well
    bool lasting;           // the key is kept, so that the hash means something to other processes
    std::uint32_t size = 0; // of the part in bytes; 0 when it is not known

    bool operator==(const HIDDEN_PART&) const = default;
};

// The mark of a hidden part, to be put in its place.
std::string mark_of(const HIDDEN_PART& part);

// Whether anything in the text is hidden.
bool has_hidden_parts(std::string_view text);

// One part of a text, shown or hidden.
struct TEXT_PART
{
    std::string_view text; // as it is, or the mark
    bool hidden;
};

// Walks the parts of a text, which must outlive the walk. Shown parts are not empty.
class TEXT_PARTS
{
public:
    explicit TEXT_PARTS(std::string_view text) : rest(text) {}

    // Whether there is a further part; if so, `part` is set to it.
    bool next(TEXT_PART& part);

private:
    std::string_view rest;
};

// What the mark, a hidden part of TEXT_PARTS, tells.
HIDDEN_PART hidden_part(std::string_view mark);

// The text for people: each hidden part as \(masked), with the first digits of its hash where that is lasting.
std::string with_hidden_parts_named(std::string_view text);

// Where the byte at `offset` of the text stood before parts were hidden; nothing behind a part whose size is not known.
std::optional<std::size_t> offset_before_hiding(std::string_view text, std::size_t offset);

// The length of the beginning of the text that has at most `shown_length` bytes once hidden parts are named. It ends in
// no mark; one that begins before that end belongs to it.
std::size_t length_by_shown_length(std::string_view text, std::size_t shown_length);

enum class SAMENESS
{
    SAME,
    DIFFERENT,
    UNKNOWN, // what is shown is the same, and what is hidden is so under different keys
};

// Whether two texts were the same before parts of them were hidden.
SAMENESS compare_texts(std::string_view a, std::string_view b);

#endif
