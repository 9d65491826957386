// Texts of which parts are hidden.
//
// In the text, a mark stands for a hidden part. A mark is a run of letters and digits. It begins with a number that
// this process draws at random, so no text from outside can contain a mark. A text with marks passes through lines,
// items, findings and comparisons like any other text. Output for people shows a mark as \(masked). JSON_WRITER writes
//
//     {"masked": ["api_token=", {"key": "<16 digits>", "hmac": "<16 digits>"}, ":b=1"]}
//
// with the parts of the text in order: texts for shown parts, objects for hidden ones. A hidden part is null if its
// mark means nothing outside this process.
//
// A mark contains a keyed hash of the hidden text and the name of the key. Two marks under the same key tell whether
// they stand for the same text.
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
    std::string hmac;       // the keyed hash of the part; empty if the key is
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

// What is known of the part that this mark stands for. The mark must be a hidden part from TEXT_PARTS.
HIDDEN_PART hidden_part(std::string_view mark);

// The text for people. Each hidden part becomes \(masked); if its hash is lasting, its first digits follow the word.
std::string with_hidden_parts_named(std::string_view text);

// The offset that the byte at `offset` had before parts were hidden. Nothing if a part of unknown size stands before
// it.
std::optional<std::size_t> offset_before_hiding(std::string_view text, std::size_t offset);

// The length of the beginning of the text that is shown in `shown_length` bytes, with each mark counted as \(masked).
// It does not end within a mark: a mark that begins before the end is included.
std::size_t length_by_shown_length(std::string_view text, std::size_t shown_length);

enum class SAMENESS
{
    SAME,
    DIFFERENT,
    UNKNOWN, // shown parts are the same, but hidden ones have different or unknown keys
};

// Whether two texts were the same before parts of them were hidden.
SAMENESS compare_texts(std::string_view a, std::string_view b);

#endif
