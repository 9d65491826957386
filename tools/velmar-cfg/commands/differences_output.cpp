// Shows each list of differences under a heading, an entry with one line for either side. Nothing is compared here.
#include "tools/velmar-cfg/commands/differences_output.h"

#include "cfg_ini/cfg_user_ini_reader/preference_lookup.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
std::string shown(std::string_view text)
{
    return text.empty() ? "\\(empty)" : printable(text); // no value looks so: its backslashes are doubled
}

// "A  text" or "B  text", indented, in the colour of its side.
void write_side(const char* side, const std::string& text, OUTPUT& out)
{
    out << "    " << out.painted(*side == 'A' ? STYLE::BAD : STYLE::GOOD, std::string(side) + "  " + text) << "\n";
}

void write_heading(const char* heading, OUTPUT& out)
{
    out << "\n" << out.painted(STYLE::STRONG, heading) << "\n";
}

void write_entry(const std::string& name, const std::string& made_by, const std::string& a, const std::string& b,
                 OUTPUT& out)
{
    out << "  " << out.painted(STYLE::STRONG, printable(name));
    if (!made_by.empty())
        out << ", by " << out.painted(STYLE::WARNING, made_by);
    out << "\n";
    write_side("A", a, out);
    write_side("B", b, out);
}

std::string side_as_text(const ENVIRONMENT_VARIABLE* variable)
{
    return variable == nullptr || !variable->value ? "not set" : shown(*variable->value);
}

std::string side_as_text(const SNAPSHOT_FILE* file)
{
    if (file == nullptr || !file->path)
        return "none";
    if (!file->sha256)
        return printable(*file->path) + ", which did not exist or could not be read";
    constexpr std::size_t telling_digits = 12;
    return printable(*file->path) + ", " + std::to_string(file->size.value_or(0)) + " bytes, SHA-256 " +
           (has_hidden_parts(*file->sha256) ? printable(*file->sha256)
                                            : printable(file->sha256->substr(0, telling_digits)) + "...");
}

std::string side_as_text(const std::optional<SNAPSHOT_VARIABLE>& variable)
{
    if (!variable)
        return "not set";
    if (!variable->recorded)
        return "set, value not recorded";
    if (variable->location.layer == LAYER_KIND::UNKNOWN)
        return shown(variable->value);
    return shown(variable->value) +
           (is_located(variable->location) ? "  at " + printable(location_as_text(variable->location)) : " ") + " (" +
           layer_title(variable->location.layer) + (variable->external ? ", external)" : ")");
}

std::string side_as_text(const SNAPSHOT_PREFERENCE* preference)
{
    if (preference == nullptr)
        return "no such preference";
    return shown(preference->value) + "  " + printable(origin_as_text(preference->origin));
}

std::string maker_as_text(const VARIABLE_DIFFERENCE& difference)
{
    std::string maker =
        difference.made_by ? layer_title(*difference.made_by) : "the release, which reads it differently";
    if (difference.same_in_every_type)
        maker += "; reads the same in every type but text";
    if (difference.dependence == DEPENDENCE::KIND::ASKED_ONCE)
        return maker + "; asked for once, while unset";
    return difference.dependence == DEPENDENCE::KIND::PERHAPS ? maker + "; perhaps asked for once, while unset" : maker;
}

const char* maker_as_text(PREFERENCE_SOURCE source)
{
    switch (source)
    {
    case PREFERENCE_SOURCE::RUNNING_RELEASE:
        return "the running release's section";
    case PREFERENCE_SOURCE::OLDER_RELEASE:
        return "an older release's section";
    case PREFERENCE_SOURCE::UNVERSIONED_SECTION:
        return "the section without a release";
    case PREFERENCE_SOURCE::DEFAULT:
        return "the catalogue's default";
    case PREFERENCE_SOURCE::NOWHERE:
        break;
    }
    return "the catalogue";
}

std::string role_as_text(const std::string& role)
{
    const std::optional<LAYER_KIND> layer = layer_of_code(role);
    return layer ? layer_title(*layer) : "preference file";
}

// A path with its middle left out where it is long: its ends tell most.
std::string path_in_short(const std::string& path)
{
    constexpr std::size_t longest = 45;
    constexpr std::size_t longest_beginning = 12;
    if (path.size() <= longest)
        return path;
    std::size_t end = path.size() - (longest - longest_beginning - 3);
    while (end < path.size() && (static_cast<unsigned char>(path[end]) & 0xc0U) == 0x80U)
        ++end; // no character is cut in two
    return shortened(path, longest_beginning) + path.substr(end);
}

std::string side_in_words(const COMPARED_SNAPSHOT& side, std::string (*path)(const std::string&))
{
    const SNAPSHOT& snapshot = side.snapshot;
    if (snapshot.of_run)
        return side.view; // which names the file
    return path(side.title) + " (" + snapshot.product + " " + snapshot.release +
           (snapshot.project.empty() || snapshot.project == side.title ? "" : ", project " + path(snapshot.project)) +
           (snapshot.regtest ? ", regression test" : "") + (side.view.empty() ? ")" : "; " + side.view + ")");
}

// As one line, with short paths if it does not fit a wide terminal. Whose view it is stays whole, unless a name in it
// is beyond measure. JSON has all of it.
std::string head_of(const COMPARED_SNAPSHOT& side)
{
    constexpr std::size_t longest = 117; // beside the letter of the side
    constexpr std::size_t beyond_measure = 400;
    std::string head = side_in_words(side, [](const std::string& path) { return path; });
    if (length_by_shown_length(head, longest) < head.size())
        head = side_in_words(side, path_in_short);
    return printable(shortened(head, length_by_shown_length(head, beyond_measure)));
}
}

void write_differences(const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b, const SNAPSHOT_DIFFERENCES& differences,
                       const std::optional<RUN_REPORT>& run, OUTPUT& out)
{
    if (differences.none() && differences.undecided.empty())
        return;
    out << out.painted(STYLE::BAD, "A  " + head_of(a)) << "\n";
    out << out.painted(STYLE::GOOD, "B  " + head_of(b)) << "\n";
    if (!differences.installation.empty())
        write_heading("Installation", out);
    for (const INSTALLATION_DIFFERENCE& difference : differences.installation)
        write_entry(difference.what, "", shown(difference.a), shown(difference.b), out);
    if (!differences.environment.empty())
        write_heading("Environment", out);
    for (const ENVIRONMENT_DIFFERENCE& difference : differences.environment)
        write_entry(difference.name, "", side_as_text(difference.a), side_as_text(difference.b), out);
    if (!differences.files.empty())
        write_heading("Files", out);
    for (const FILE_DIFFERENCE& difference : differences.files)
        write_entry(role_as_text(difference.role), "", side_as_text(difference.a), side_as_text(difference.b), out);
    if (!differences.variables.empty())
        write_heading(run ? ("Variables that " + printable(run->run) + " read").c_str() : "Variables", out);
    for (const VARIABLE_DIFFERENCE& difference : differences.variables)
        write_entry(difference.name, maker_as_text(difference), side_as_text(difference.a), side_as_text(difference.b),
                    out);
    if (!differences.preferences.empty())
        write_heading("Preferences", out);
    for (const PREFERENCE_DIFFERENCE& difference : differences.preferences)
        write_entry(difference.key, maker_as_text(difference.made_by), side_as_text(difference.a),
                    side_as_text(difference.b), out);
    if (!differences.undecided.empty())
        write_heading("Masked, cannot be compared", out);
    for (const UNDECIDED_ROW& row : differences.undecided)
        out << "  " << printable(row.name) << "  (" << row.list << ")\n";
}
