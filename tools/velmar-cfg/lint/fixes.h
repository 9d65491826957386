// What lint suggests, applied to a settings file.
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
    std::size_t fixes;   // how many lines were replaced, one by one
    std::string refusal; // why the text must not be written; empty when it may be
};

// The text of the file that is layers[index], with every line replaced by what lint suggests for it, as it stands among
// these layers; until nothing more is suggested, also by notes. Secrets stay hidden. Lines with a finding that would go
// with the replacement, and whose reason is `ignored`, stay.
//
// A replacement changes no variable but those that the line sets and that the lines in its place set. A line stays
// where the lines in its place would set a variable that it does not set and that something else sets already: which
// value was meant is for a person to decide. Where several lines come to set one variable, the last one decides, as
// always, and the others have the finding 'overridden'.
FIXED_TEXT fix_findings(LAYERS layers, std::size_t index, const REASONS& ignored);

// The first variable that is set in one of the two and differs in the other, but for those that are `named`.
std::optional<std::string> other_change(const SETTINGS& before, const SETTINGS& after, const VARIABLE_NAMES& named);

// `text` with each secret, as it is hidden in `hidden`, as it stands in `original`, which `hidden` was made of.
std::string with_secrets_shown(std::string_view text, std::string_view hidden, std::string_view original);

#endif
