// Computes what a save makes of a preference file: the new text, and the lines of the old one that are not in it. Works
// on texts; touches no file and loads nothing.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SAVE_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCE_SAVE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/hash_index.h"
#include "tools/velmar-cfg/base/text_store.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"

// Why a line is not in the saved file, or not with the same meaning.
enum class LOSS : std::uint8_t
{
    NO_PREFERENCE,      // a comment, or another line that sets nothing
    TOO_SHORT,          // the reader passes over it
    MALFORMED_HEADER,   // "[" without "]"
    BRACKET_IN_VALUE,   // a key line that reads as a header
    EMPTY_HEADER,       // "[]"
    EMPTY_SECTION,      // a header with no key below that has a value
    BESIDE_HEADER,      // text beside a header, in its line
    BEFORE_SECTION,     // a key line before any header
    BELOW_EMPTY_HEADER, // a key line below "[]"
    SECOND_LINE,        // a key line behind another one of the same section and key
    EMPTY_VALUE,        // a key line without a value
    MERGED_SECTION,     // saved below a header that differs in letter case
    ZERO_BYTE,          // the text behind it
    CHANGED_VALUE,      // quotes within quotes: the next load removes one pair more
};

// A word for each reason, the same that "prefs lint" has for such a line: "not-kept", "duplicate", ...
const char* loss_word(LOSS reason);

struct LOST_LINE
{
    std::size_t number; // of the old file, counted from 1
    std::string text;   // without its line feed
    LOSS reason;
    bool value_lost;                  // the user wrote a value there that the new file lacks or changes
    std::size_t other_line;           // SECOND_LINE: the first one; else 0
    std::string section;              // the line's section, where it has one
    std::string section_in_its_place; // MERGED_SECTION; SECOND_LINE when the first one is in another section
};

// What happens to the line and why, as a sentence without its end.
std::string loss_as_text(const LOST_LINE& line);

// A line of the file that is not blank: what the reader takes from it, and what a save makes of it. The texts are parts
// of the file or of the records.
struct EXAMINED_LINE
{
    std::size_t number = 0; // counted from 1
    std::string_view text;  // without its line feed
    bool is_header = false;
    bool makes_record = false;       // it is the first line of its key in its section
    std::string_view section;        // the one that a header names, or that the key's line stands in
    std::string_view name;           // of the record, an old one converted
    std::string_view value;          // of the record
    bool old_name_converted = false; // of the record
    std::optional<LOST_LINE> loss;   // unless a save keeps it
};

// The records of a file, as the store holds them after a load, with the lines that they came from.
//
// Memory: up to 100 bytes for each line, beside the file's bytes.
class PREFERENCE_RECORDS
{
public:
    // `bytes` must outlive the object, and have fewer than UINT32_MAX lines.
    explicit PREFERENCE_RECORDS(std::string_view bytes);

    PREFERENCE_RECORDS(const PREFERENCE_RECORDS&) = delete;
    PREFERENCE_RECORDS& operator=(const PREFERENCE_RECORDS&) = delete;

    // Assigns in the running release's section, as the library does. The lines of that key then count as changed, not
    // as lost.
    void assign(CFG_USER_INI_ENUMS number, const std::string& value);

    // Gives the running release's record, if there is one, an empty value: a save leaves it out.
    void clear(CFG_USER_INI_ENUMS number);

    // The text that a save writes.
    std::string saved() const;

    // The lines of the file that are not in saved(), in their order. Blank lines do not count, nor do changes of
    // blanks, quotes and old names.
    std::vector<LOST_LINE> lost_lines() const;

    // Calls visit(EXAMINED_LINE&&) for each line that is not blank, in their order.
    template <typename VISIT>
    void for_each_line(VISIT visit) const
    {
        const std::vector<SECTION_FATE> fates = fates_of_sections();
        for (const LINE& line : lines)
            visit(examined(line, fates));
    }

private:
    using INDEX = std::uint32_t;
    static constexpr INDEX none = UINT32_MAX;

    struct SECTION
    {
        std::string_view name;
        std::uint64_t hash; // of the name; the hash of a record continues it
    };

    struct RECORD
    {
        std::string_view name;
        std::string_view value;
        INDEX section;
        INDEX line;          // its number; 0 for one that was assigned
        INDEX change = none; // if it was changed: its index in values_before
    };

    // A line that is not blank.
    struct LINE
    {
        std::string_view text;
        INDEX number = 0;
        INDEX section = none;
        INDEX record = none;             // the one that the line made, or that kept it from making one
        std::optional<LOSS> lost;        // nothing: the records decide
        bool has_value = false;          // that would be lost
        bool old_name_converted = false; // of a key line
    };

    // What becomes of a section.
    struct SECTION_FATE
    {
        bool written = false;
        bool emptied = false; // it had a record that was cleared
        INDEX group = none;   // the first one written that has its name, letter case ignored
        INDEX header = none;  // in the group's first one: the one that gives the header
    };

    void add_header(LINE line, const zon_cfg::PREFERENCE_LINE& read);
    void add_key(LINE line, const zon_cfg::PREFERENCE_LINE& read);
    std::string_view kept(std::string_view part, std::string_view read);
    INDEX section_named(std::string_view name);
    std::optional<INDEX> find_record(std::uint64_t hash, std::string_view section, std::string_view name) const;
    std::optional<INDEX> current_record(CFG_USER_INI_ENUMS number) const;

    std::optional<std::string_view> value_before(const RECORD& record) const;
    std::vector<SECTION_FATE> fates_of_sections() const;
    static INDEX header_of(INDEX section, const std::vector<SECTION_FATE>& fates);
    std::optional<LOSS> fate_of(const LINE& line, const std::vector<SECTION_FATE>& fates) const;
    bool loses_value(const LINE& line, LOSS reason) const;
    EXAMINED_LINE examined(const LINE& line, const std::vector<SECTION_FATE>& fates) const;

    std::vector<LINE> lines;
    std::vector<SECTION> sections;
    std::vector<RECORD> records;
    std::vector<std::string_view> values_before; // of the records that were changed
    HASH_INDEX section_positions;                // by name
    HASH_INDEX record_positions;                 // by section immediately followed by the name
    TEXT_STORE texts;                            // those that are no parts of the file
    INDEX current_section = none;                // while the file is read; none before the first header
};

#endif
