// The options of edits, and the colours of a difference by the first characters of its lines.
#include "tools/velmar-cfg/commands/edit_options.h"

#include "tools/velmar-cfg/base/text.h"

namespace
{
STYLE style_of(std::string_view line)
{
    return line.starts_with("@@")  ? STYLE::FAINT
           : line.starts_with('-') ? STYLE::BAD
           : line.starts_with('+') ? STYLE::GOOD
                                   : STYLE::PLAIN;
}
}

void add_edit_options(COMMAND& command, EDIT_OPTIONS& options, FILE_EDIT_PERMISSIONS& permissions,
                      const std::string& dry_run)
{
    command.add_flag("--dry-run", options.dry_run, dry_run);
    command.add_option(
        "--wait", "SECONDS", options.seconds_to_wait,
        "How long to wait for another velmar-cfg, or a program that writes the file (10 by default); with 0, "
        "wait only until the last write to the file is 50 ms ago");
    command.add_flag("--break-hard-links", permissions.break_hard_links,
                     "Change the file even if it has other names (hard links), which keep the old content");
    command.add_flag("--replace-read-only", permissions.replace_read_only,
                     "Change the file even if its mode forbids that");
}

void write_difference(std::string_view difference, OUTPUT& out)
{
    while (!difference.empty())
    {
        const std::string_view line = difference.substr(0, difference.find('\n'));
        // What begins with a backslash is a remark to patch(1), and no line of the file.
        out << out.painted(style_of(line), line.starts_with('\\') ? std::string(line) : printable(line)) << "\n";
        difference.remove_prefix(line.size() + 1);
    }
}
