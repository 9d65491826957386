// The preference file velmar2.ini: where it is, how a line of it reads, and the maps that hold what was read.
//
// No lock anywhere in the preference store: one thread uses it at a time.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_FILE_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_FILE_H

#include <functional>
#include <map>
#include <string>
#include <string_view>

// What internal errors of the preference store name as their source.
inline constexpr const char* preference_store_source = "cfg_ini/cfg_user_ini_reader";

// One key line of the file, or one assigned preference.
struct CFG_USER_VALUE_STRUCT
{
    std::string section; // as it stands between the brackets, the release included
    std::string name;    // current, not old; in the spelling of the file or of the assignment
    std::string value;
    bool pending_write = false; // the writer's mark; false outside a save
};

using CFG_USER_VALUE_MAP = std::map<std::string, CFG_USER_VALUE_STRUCT*, std::less<>>;

// Both are null while nothing is loaded, and both exist while something is.
//
// The records by section and name, with nothing in between: two pairs of section and name may share a key, which then
// belongs to the pair that came first. The map owns its records. Its order is the order of the written file.
extern constinit CFG_USER_VALUE_MAP* cfg_user_ini_records;

// A set: the section headers that the file holds, with null values. Assignments do not add to it, so that the other
// preferences of an assigned one's section are still carried over from older releases until the file is read again.
extern constinit CFG_USER_VALUE_MAP* cfg_user_ini_sections_read;

// ---------------------------------------------------------------------------------------------------------------------
// Names and sections
// ---------------------------------------------------------------------------------------------------------------------

// The current name of a preference, given that name or one of its old ones; any other text comes back as it is. Old
// names match without regard to letter case.
std::string cfg_convert_from_old_to_new(const std::string& name);

// The section of a preference: the catalogue's, or with `with_version` the running release's, such as
// "General 23.4_pro". Empty for a name that the catalogue does not know and for a value that it does not allow, both
// compared without regard to letter case; a null `value` fits always. A null name is reported and answers the empty
// text.
std::string cfg_get_section_for_name(const char* name, const char* value, bool with_version);

// The section of one release, such as "General 23.4_pro".
std::string released_section(const std::string& section, const std::string& version);

// ---------------------------------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------------------------------

enum class PREFERENCE_LINE_KIND
{
    TOO_SHORT,        // fewer than three characters before the line's end or its first NUL: ignored
    HEADER,           // starts a section
    MALFORMED_HEADER, // "[" without "]" behind it: ignored, the section goes on
    KEY,              // gives a name a value, if it stands in a section whose name is not empty; else it is ignored
    OTHER             // no "[" and no "=": ignored
};

// What the reader takes from one line. Texts that the kind does not have are empty.
struct PREFERENCE_LINE
{
    PREFERENCE_LINE_KIND kind = PREFERENCE_LINE_KIND::OTHER;
    std::string section;               // HEADER: the text between the brackets, untrimmed, possibly empty
    bool bracket_after_equals = false; // HEADER, MALFORMED_HEADER: looks like a key line whose value holds "["
    std::string name;                  // KEY: trimmed, an old name converted; possibly empty
    std::string value;                 // KEY: trimmed, without enclosing quotes
    bool quotes_removed = false;       // KEY
    bool old_name_converted = false;   // KEY
};

// Reads one line, given without its line feed. The file has no comments: a line that begins with ";" or "#" is read as
// any other. A carriage return at the end counts towards the length.
PREFERENCE_LINE classify_preference_line(std::string_view text);

// ---------------------------------------------------------------------------------------------------------------------
// The file
// ---------------------------------------------------------------------------------------------------------------------

// The full path of velmar2.ini: in the directory that the environment variable VELMAR2_INI names, else in the user's
// profile directory.
std::string cfg_generate_user_ini_file_path();

// Loads the file into new maps, then hands the user's library and IP search paths, where not empty, to the general
// service. A missing file leaves the maps empty, an unreadable one too. To be called only while nothing is loaded: maps
// that are there are forgotten, not freed.
void cfg_read_user_ini_file();

#endif
