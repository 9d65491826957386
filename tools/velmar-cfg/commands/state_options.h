// The options of commands that show a state, and the state that they ask for.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_STATE_OPTIONS_H
#define TOOLS_VELMAR_CFG_COMMANDS_STATE_OPTIONS_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/output.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/tool.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/states/state.h"

struct STATE_OPTIONS
{
    std::optional<std::string> of;
    std::vector<WHAT_IF> what_if;
};

inline constexpr const char* state_option = "--of";
inline constexpr const char* with_option = "--with";
inline constexpr const char* without_option = "--without";

// The option --of, and the check that no global option contradicts it.
void add_state_option(COMMAND& command, STATE_OPTIONS& options, TOOL& tool);

// The options --with and --without, for commands about variables. `whose` is appended to the descriptions.
void add_what_if_options(COMMAND& command, std::vector<WHAT_IF>& what_if, const std::string& whose = "");

// Reads those parts of the state that the options name. `secrets` hides its secrets. Throws TOOL_ERROR.
STATE state_of(const STATE_OPTIONS& options, const STATE_PARTS& parts, TOOL& tool, std::shared_ptr<SECRETS> secrets);

// The same; hides the secrets that the command line asks to hide.
STATE state_of(const STATE_OPTIONS& options, const STATE_PARTS& parts, TOOL& tool);

// Begins an answer for people: writes the view and the changes of the state, unless it is the plain view.
void write_view(const STATE& state, OUTPUT& out);

// The same as the member "view" of a JSON object.
void write_view_field(JSON_WRITER& out, const STATE& state);

// Answers with a JSON object about a state: the members that `write_members` writes, and the view.
template <typename WRITE>
void answer_with_view(TOOL& tool, const STATE& state, WRITE write_members)
{
    answer_in_json(tool,
                   [&](JSON_WRITER& out)
                   {
                       out.begin_object();
                       write_members(out);
                       write_view_field(out, state);
                       out.end_object();
                   });
}

#endif
