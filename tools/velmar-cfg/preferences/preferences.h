// The user preferences as the library would answer them, each with what the catalogue says of it. The file's bytes are
// read by the library's rules for lines; nothing is loaded.
#ifndef TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCES_H
#define TOOLS_VELMAR_CFG_PREFERENCES_PREFERENCES_H

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/preferences/library_preferences.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"

using zon_cfg::PREFERENCE_ORIGIN;
using zon_cfg::PREFERENCE_SOURCE;

struct PREFERENCE
{
    CFG_USER_INI_ENUMS number;
    std::string key;
    std::string section; // the catalogue's, without a release
    std::string value;   // default applied
    std::string default_value;
    std::vector<std::string> allowed; // empty for free text
    PREFERENCE_ORIGIN origin;
    std::string release;  // of the origin's section; empty for none
    std::size_t line = 0; // of the file, counted from 1, that gives the value; 0 for none

    // Whether the value is another than the default; letter case does not count.
    bool differs_from_default() const;
};

// Where the library finds the preference file.
struct PREFERENCE_FILE_LOCATION
{
    std::string path;
    bool from_variable; // VELMAR2_INI names the directory; else it is the user's profile directory
    std::string remark; // why VELMAR2_INI, which is set, is ignored
};
PREFERENCE_FILE_LOCATION preference_file_location();

// The same, as a candidate of the search.
FILE_CANDIDATE preference_file_candidate();

// Every place where a file is looked for: the main settings file, the appended one, the regression-test file, the
// preference file; each in the order of its search.
std::vector<FILE_CANDIDATE> all_file_candidates(const SETTINGS_SCOPE& scope);

// The preference file in use. Nothing when there is none.
std::shared_ptr<const INPUT_FILE> preference_file_in_use(INPUT_FILES& files);

// What a preference file holds.
class PREFERENCES
{
public:
    explicit PREFERENCES(std::string_view bytes);

    // The preference as the library answers it once it has loaded the file.
    PREFERENCE look_up(CFG_USER_INI_ENUMS number) const;

private:
    struct RECORD
    {
        std::string section;
        std::string value;
        std::size_t line;
    };

    struct FOUND
    {
        std::string value;
        PREFERENCE_ORIGIN origin;
        std::size_t line = 0;
    };

    const RECORD* find(const std::string& section, const std::string& key) const;
    const RECORD* find_in_releases(const std::string& section, const std::string& key,
                                   const std::vector<std::string>& releases) const;
    FOUND find_carried_over(const std::string& section, const std::string& key) const;
    FOUND find_in_file(const std::string& section, const std::string& key) const;

    // By section immediately followed by the key, as in the store: two pairs may share an entry, which then belongs to
    // the one that came first.
    std::map<std::string, RECORD> records;
    std::set<std::string> sections;
};

// The preferences of the file in use, with secrets hidden. If there is none, or it cannot be read, those of an empty
// file.
PREFERENCES load_preferences(INPUT_FILES& files, SECRETS& secrets);

// The same for a file that was read; null means no file.
PREFERENCES preferences_in(const INPUT_FILE* file, SECRETS& secrets);

// The numbers of all preferences of the catalogue, in its order.
std::vector<CFG_USER_INI_ENUMS> all_preference_numbers();

// Whether lookups of any release search the section.
bool is_looked_into(std::string_view section);

// Whether it is a preference file and no settings file: by its name, or by the section of a release in its text.
bool is_preference_file(const std::string& path, std::string_view bytes = {});

// The keys of all preferences of the catalogue, in its order.
std::vector<std::string> all_preference_keys();

// The values that the catalogue allows; none for free text.
std::vector<std::string> allowed_preference_values(CFG_USER_INI_ENUMS number);

// The catalogue's default; empty for none.
std::string default_preference_value(CFG_USER_INI_ENUMS number);

// The preference of that key, in any letter case. Throws TOOL_ERROR(REFUSED), with a suggestion, for any other name.
CFG_USER_INI_ENUMS preference_number(const std::string& key);

// Writes the fields "key", "value", "default", "allowed", "source", "section" and "release". "source" is "running
// release", "older release", "unversioned section", "default" or "none". "section" is that of the file, or null.
// "release" is that of the section, or null. "allowed" is null for free text.
void write_preference_fields(JSON_WRITER& out, const PREFERENCE& preference);

// "off, on" or "any text".
std::string allowed_as_text(const std::vector<std::string>& allowed);

// "running release", ...: for JSON. And back, if it is one.
const char* source_word(PREFERENCE_SOURCE source);
std::optional<PREFERENCE_SOURCE> source_of_word(std::string_view word);

// Where the value comes from, in words.
std::string origin_as_text(const PREFERENCE_ORIGIN& origin);

#endif
