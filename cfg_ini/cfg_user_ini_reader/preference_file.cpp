// The file is read line by line. Each line alone says what it is: its first bracket decides, or else its first "=". The
// only state from line to line is the current section.
//
// Invariants:
// - The maps that a load fills belong to it alone until it is complete. An exception on the way, such as a failed
//   allocation, frees them, and the loaded preferences do not change.
// - The first line of a key wins. A key is a section and a name run together, so two different pairs may share one.
// - The tool that checks preference files parses lines with the same function as the reader.
//
// Cost: one pass over the bytes; a search of the map for each key line, and a walk over the few old names.
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"

#include <cstdlib>
#include <fstream>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <utility>

#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_reports.h"
#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/ver/ver.h"

using namespace zon_cfg;

// ---------------------------------------------------------------------------------------------------------------------
// Names and sections
// ---------------------------------------------------------------------------------------------------------------------

std::string cfg_convert_from_old_to_new(const std::string& name)
{
    for (const auto& [current_name, old_name] :
         std::span(cfg_user_ini_name_old_name_table).first(old_preference_name_count))
    {
        if (gen_stricmp(old_name, name.c_str()) == 0)
            return current_name;
    }
    return name;
}

std::string cfg_get_section_for_name(const char* name, const char* value, bool with_version)
{
    if (name == nullptr)
    {
        report_preference_error("name != NULL", PREFERENCE_REPORT::NULL_NAME_OF_SECTION);
        return {};
    }
    const PREFERENCE_TRIPLE* const triple = find_fitting_triple(find_preference(name), value);
    if (triple == nullptr)
        return {};
    return with_version ? released_section(triple->section, ver_get_version()) : triple->section;
}

namespace zon_cfg
{
std::string released_section(const std::string& section, const std::string& version)
{
    std::string text;
    text.reserve(96); // a lookup appends the preference's name
    text.append(section).append(1, ' ').append(version).append("_pro");
    return text;
}

// ---------------------------------------------------------------------------------------------------------------------
// Lines
// ---------------------------------------------------------------------------------------------------------------------

namespace
{
PREFERENCE_LINE header_line(std::string_view text, std::size_t bracket)
{
    PREFERENCE_LINE line;
    // For tools that check files: the line looks like a key line whose value holds a bracket, but is none.
    line.bracket_after_equals = text.find('=') < bracket;
    const std::size_t end = text.find(']', bracket);
    if (end == std::string_view::npos)
    {
        line.kind = PREFERENCE_LINE_KIND::MALFORMED_HEADER;
        return line;
    }
    line.kind = PREFERENCE_LINE_KIND::HEADER;
    line.section = text.substr(bracket + 1, end - bracket - 1);
    return line;
}

PREFERENCE_LINE key_line(std::string_view text, std::size_t equals)
{
    PREFERENCE_LINE line;
    line.kind = PREFERENCE_LINE_KIND::KEY;

    // From here on there is only the current name: it is looked up, assigned and saved.
    const std::string written_name = gen_remove_leading_and_trailing_white_spaces(std::string(text.substr(0, equals)));
    line.name = cfg_convert_from_old_to_new(written_name);
    line.old_name_converted = line.name != written_name;

    line.value = gen_remove_leading_and_trailing_white_spaces(std::string(text.substr(equals + 1)));
    // Two quotes alone stay: users have them in their files and the tool takes them as they are.
    line.quotes_removed = line.value.size() >= 3 && line.value.front() == '"' && line.value.back() == '"';
    if (line.quotes_removed)
        line.value = gen_remove_leading_and_trailing_white_spaces(line.value.substr(1, line.value.size() - 2));
    return line;
}
}

PREFERENCE_LINE classify_preference_line(std::string_view text)
{
    PREFERENCE_LINE line;
    // A zero byte ends the line, also for its length.
    text = text.substr(0, text.find('\0'));
    if (text.size() < 3)
    {
        line.kind = PREFERENCE_LINE_KIND::TOO_SHORT;
        return line;
    }
    // A bracket anywhere makes a header, even in the value of a key line. Existing files are read so. A saved value
    // that holds a bracket is therefore lost at the next load.
    if (const std::size_t bracket = text.find('['); bracket != std::string_view::npos)
        return header_line(text, bracket);
    if (const std::size_t equals = text.find('='); equals != std::string_view::npos)
        return key_line(text, equals);
    return line;
}
}

// ---------------------------------------------------------------------------------------------------------------------
// The file
// ---------------------------------------------------------------------------------------------------------------------

std::string cfg_generate_user_ini_file_path()
{
    // The variable names a directory. One that names a file, or nothing that exists, is ignored without a message.
    const char* const directory = std::getenv("VELMAR2_INI");
    struct stat status;
    // The type is tested as one bit, not as a value; sockets and block devices share the bit and pass for directories.
    const bool is_directory = directory != nullptr && FIO_FILE_SYSTEM::status(directory, &status) &&
                              (status.st_mode & static_cast<mode_t>(S_IFDIR)) != 0;
    FIO_PATH path;
    path.directory(is_directory ? directory : gen_get_user_profile_directory());
    path.filename("velmar2.ini");
    return path.fullpath();
}

namespace zon_cfg
{
namespace
{
void insert_record(CFG_USER_VALUE_MAP& records, const std::string& section, PREFERENCE_LINE&& line)
{
    auto record = std::make_unique<CFG_USER_VALUE_STRUCT>(
        CFG_USER_VALUE_STRUCT{section, std::move(line.name), std::move(line.value)});
    const auto [position, inserted] = records.try_emplace(section + record->name, nullptr);
    if (inserted)
        position->second = record.release();
}

void read_lines(std::istream& file, PREFERENCE_MAPS& maps)
{
    std::string current_section;
    for (std::string text; std::getline(file, text);)
    {
        PREFERENCE_LINE line = classify_preference_line(text);
        if (line.kind == PREFERENCE_LINE_KIND::HEADER)
        {
            current_section = std::move(line.section);
            maps.sections->try_emplace(current_section, nullptr);
        }
        else if (line.kind == PREFERENCE_LINE_KIND::KEY && !current_section.empty())
            insert_record(*maps.records, current_section, std::move(line));
    }
}
}

PREFERENCE_MAPS read_preferences(const std::string& path)
{
    PREFERENCE_MAPS maps = make_preference_maps();
    std::ifstream file(path);
    // Left to itself, the stream would turn a failed allocation into an early end of the file.
    file.exceptions(std::ios::badbit);
    try
    {
        read_lines(file, maps);
    }
    catch (const std::ios_base::failure&) // NOLINT(bugprone-empty-catch)
    {
        // A directory, or a device that fails: there are no more lines.
    }
    return maps;
}
}
