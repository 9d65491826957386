// Declares the options that name a state and what-if changes, and reads the state that they name.
#include "tools/velmar-cfg/commands/state_options.h"

#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/states/read_state.h"
#include "tools/velmar-cfg/states/state_name.h"

namespace
{
WHAT_IF assignment_of(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--with " + text + ": wants NAME=VALUE");
    return {text.substr(0, equals), text.substr(equals + 1)};
}

void require_no_contradiction(const STATE_OPTIONS& options, const TOOL& tool)
{
    if (!options.of)
        return;
    const STATE_NAME name = state_name(*options.of);
    if (!tool.options.scope.project.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--of and --project exclude each other: a project is --of DIR too");
    if (!tool.options.root.empty() && !name.is_read_here())
        throw TOOL_ERROR(EXIT_CODE::USAGE, "--root is for what is read here: " + name.text +
                                               " has its own installation; leave --root out");
}
}

void add_state_option(COMMAND& command, STATE_OPTIONS& options, TOOL& tool)
{
    command.add_option(
        state_option, "STATE", options.of,
        "Answer for this state instead of the present one: a project's directory, a snapshot or run report, - for "
        "one on standard input, pid:NUMBER for a process, or exe:PATH for an executable");
    command.add_check(tool, [&options, &tool] { require_no_contradiction(options, tool); });
}

void add_what_if_options(COMMAND& command, std::vector<WHAT_IF>& what_if, const std::string& whose)
{
    command.add_repeated_option(
        with_option, "NAME=VALUE", [&what_if](const std::string& text) { what_if.push_back(assignment_of(text)); },
        "Answer as if this were set on top of everything" + whose +
            ", name and value taken literally; may be repeated");
    command.add_repeated_option(
        without_option, "NAME",
        [&what_if](const std::string& name) {
            what_if.push_back({name, std::nullopt});
        },
        "Answer as if nothing set this variable; --with and --without apply in their order");
}

STATE state_of(const STATE_OPTIONS& options, const STATE_PARTS& parts, TOOL& tool, std::shared_ptr<SECRETS> secrets)
{
    const STATE_NAME name = options.of ? state_name(*options.of) : STATE_NAME();
    SETTINGS_SCOPE scope = tool.options.scope;
    scope.what_if = options.what_if;
    scope.secrets = std::move(secrets);
    return read_state(name, parts, scope, tool.files);
}

STATE state_of(const STATE_OPTIONS& options, const STATE_PARTS& parts, TOOL& tool)
{
    return state_of(options, parts, tool, tool.options.scope.secrets);
}

void write_view(const STATE& state, OUTPUT& out)
{
    if (const std::string heading = state.heading(); !heading.empty())
        out << out.painted(STYLE::STRONG, printable(heading)) << "\n";
}

void write_view_field(JSON_WRITER& out, const STATE& state)
{
    if (const std::string heading = state.heading(); !heading.empty())
        out.field("view", heading);
}
