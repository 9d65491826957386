#include "tools/velmar-cfg/states/layer_lines.h"

#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
// Whether somebody meant to write something there.
bool is_meant(const LAYER& layer, const STATEMENT& statement)
{
    if (statement.outcome == OUTCOME::STORED)
        return true;
    const std::string_view text =
        is_file(layer.kind) ? statement.text.substr(0, length_without_comment(statement.text)) : statement.text;
    return !trimmed(text).empty();
}
}

const char* effect_word(LINE_EFFECT effect)
{
    switch (effect)
    {
    case LINE_EFFECT::COUNTS:
        return "counts";
    case LINE_EFFECT::LOST:
        return "lost";
    case LINE_EFFECT::IGNORED:
        break;
    }
    return "ignored";
}

void for_each_layer_line(const SETTINGS& settings, const std::function<void(const LAYER_LINE&)>& take)
{
    STATEMENTS statements(settings.layers());
    ASSIGNMENT_INDEX assignment = 0; // of the next statement that is one
    for (STATEMENT statement{}; statements.next(statement);)
    {
        LAYER_LINE line{statement, LINE_EFFECT::IGNORED, std::nullopt};
        if (statement.outcome == OUTCOME::STORED)
        {
            const VARIABLE& variable = *settings.find(statement.name);
            line.effect = variable.winner == assignment ? LINE_EFFECT::COUNTS : LINE_EFFECT::LOST;
            if (line.effect == LINE_EFFECT::LOST)
                line.winner = settings.location_of(variable);
            ++assignment;
        }
        if (is_meant(settings.layers()[statement.layer], statement))
            take(line);
    }
}
