// What a save makes of a preference file: the new text, and the lines of the old one that are not in it. Text in, text
// out; no file is touched and nothing is loaded.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SAVE_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SAVE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/velmar-cfg/preferences/library_preferences.h"

// Why a line is not in the saved file, or not with the same meaning.
enum class LOSS
{
    NO_PREFERENCE,      // a comment, or another line that sets nothing
    TOO_SHORT,          // the reader passes over it
    MALFORMED_HEADER,   // "[" without "]"
    BRACKET_IN_VALUE,   // a key line that reads as a header
    EMPTY_HEADER,       // "[]"
    EMPTY_SECTION,      // a header with no key below that has a value
    BESIDE_HEADER,      // the text in the line of a header
    BEFORE_SECTION,     // a key line before any header
    BELOW_EMPTY_HEADER, // a key line below "[]"
    SECOND_LINE,        // a key line behind another one of the same section and key
    EMPTY_VALUE,        // a key line without a value
    MERGED_SECTION,     // saved below a header that differs in letter case
    ZERO_BYTE,          // the text behind it
    CHANGED_VALUE,      // quotes within quotes: the next load removes one pair more
};

// A word for each, the one by which "prefs lint" calls such a line: "not-kept", "duplicate", ...
const char* loss_word(LOSS reason);

struct LOST_LINE
{
    std::size_t number; // of the old file, counted from 1
    std::string text;   // without its line feed
    LOSS reason;
    bool value_lost;                  // the user wrote a value there that is gone, or other, in the new file
    std::size_t other_line;           // SECOND_LINE: the first one; else 0
    std::string section;              // the line's section, where it has one
    std::string section_in_its_place; // MERGED_SECTION; SECOND_LINE when the first one is in another section
};

// What happens to the line and why, as a sentence without its end.
std::string loss_as_text(const LOST_LINE& line);

// The records of a file, as the store holds them after a load, with the lines that they came from.
//
// Cost: a hash table of the keys; n log n for the text, which is ordered.
class PREFERENCE_RECORDS
{
public:
    // `bytes` stay as they are while the object lives.
    explicit PREFERENCE_RECORDS(std::string_view bytes);

    // As an assignment does it: in the running release's section. The lines of that key count as changed, not as lost.
    void assign(CFG_USER_INI_ENUMS number, const std::string& value);

    // Gives the running release's record, if there is one, an empty value: a save leaves it out.
    void clear(CFG_USER_INI_ENUMS number);

    // What a save writes.
    std::string saved() const;

    // The lines of the file that are not in saved(), in their order. Blank lines do not count, nor do blanks, quotes
    // and old names that a save writes otherwise.
    std::vector<LOST_LINE> lost_lines() const;

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    struct RECORD
    {
        std::size_t section; // its position
        std::string name;
        std::string value;
        std::size_t line;                        // 0 for one that was assigned
        std::optional<std::string> value_before; // of one that was changed
    };

    // A line that is not blank.
    struct LINE
    {
        std::size_t number;
        std::string_view text;
        std::optional<LOSS> lost;   // for certain; else it depends on the records
        bool has_value = false;     // that would be lost
        std::size_t section = none; // its position
        std::size_t record = none;  // position of the one that the line made, or that kept it from making one
    };

    // What becomes of each section, by position.
    struct SECTION_FATE
    {
        bool written = false;
        bool emptied = false; // it had a record that was cleared
        std::size_t header = none;
    };

    std::size_t position_of_section(const std::string& name);
    LINE line_of_header(std::size_t number, std::string_view text, const zon_cfg::PREFERENCE_LINE& line);
    LINE line_of_key(std::size_t number, std::string_view text, const zon_cfg::PREFERENCE_LINE& line,
                     const std::string& section);
    std::vector<SECTION_FATE> fates_of_sections() const;
    std::optional<LOSS> fate_of(const LINE& line, const std::vector<SECTION_FATE>& fates) const;
    bool loses_value(const LINE& line, LOSS reason) const;
    RECORD* current_record(CFG_USER_INI_ENUMS number);

    std::vector<LINE> lines;
    std::vector<std::string> sections;
    std::vector<RECORD> records;
    std::unordered_map<std::string, std::size_t> section_positions;
    std::unordered_map<std::string, std::size_t> record_positions; // by section immediately followed by the name
    bool below_empty_header = false;
};

#endif
