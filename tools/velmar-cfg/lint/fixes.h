// Applies the suggestions of lint to a settings file.
#ifndef TOOLS_VELMAR_CFG_LINT_FIXES_H
#define TOOLS_VELMAR_CFG_LINT_FIXES_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

struct FIXED_TEXT
{
    std::string text;
    std::size_t fixes;   // how many replacements of lines were made
    std::string refusal; // why the text must not be written; empty when it may be
};

// The text of the file layers[index], with each line replaced by what lint suggests for it among these layers. This is
// repeated until lint suggests nothing more, not even in notes. Secrets stay hidden. A line stays if the replacement
// would remove a finding whose reason is `ignored`.
//
// A replacement changes only variables that the old line or the new lines set. A line stays if the new lines would set
// a variable that the old line does not set and that is set elsewhere: a person must decide which value was meant. If
// several lines set one variable afterwards, the last one wins as always, and the others have the finding 'overridden'.
FIXED_TEXT fix_findings(LAYERS layers, std::size_t index, const REASONS& ignored);

// The first variable that the two do not both set to the same value, apart from those in `named`; nothing if there is
// none.
std::optional<std::string> other_change(const SETTINGS& before, const SETTINGS& after, const VARIABLE_NAMES& named);

// `text` with its secrets shown again. `hidden` is `original` with its secrets hidden; the marks in `text` come from
// there.
std::string with_secrets_shown(std::string_view text, std::string_view hidden, std::string_view original);

#endif
