// The preference file velmar2.ini: finds it, parses its lines, and reads it into maps. No state.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_FILE_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_FILE_H

#include <string>
#include <string_view>

#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

// ---------------------------------------------------------------------------------------------------------------------
// Names and sections
// ---------------------------------------------------------------------------------------------------------------------

// The current name of a preference, for that name or one of its old ones; any other text is returned as it is. Old
// names match in any letter case.
std::string cfg_convert_from_old_to_new(const std::string& name);

// The section of a preference: the catalogue's, or with `with_version` the running release's, such as "General
// 23.4_pro". Empty for a name that the catalogue does not know, and for a value that it does not allow. Both are
// compared without regard to letter case. A null `value` counts as allowed. A null name is reported and gives the empty
// text.
std::string cfg_get_section_for_name(const char* name, const char* value, bool with_version);

namespace zon_cfg
{
// The section of one release, such as "General 23.4_pro".
std::string released_section(const std::string& section, const std::string& version);
}

// ---------------------------------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------------------------------

namespace zon_cfg
{
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
}

// ---------------------------------------------------------------------------------------------------------------------
// The file
// ---------------------------------------------------------------------------------------------------------------------

// The full path of velmar2.ini: in the directory that the environment variable VELMAR2_INI names, else in the user's
// profile directory.
std::string cfg_generate_user_ini_file_path();

namespace zon_cfg
{
// What the file holds. A file that cannot be opened has no lines. One that fails has the lines before the failure.
PREFERENCE_MAPS read_preferences(const std::string& path);
}

#endif
