// Tells of each line whether it gives its variable the value. The settings were made by the same walk over the same
// layers, so that counting the assignments gives the index of each: the line counts if this is the index of its
// variable's winner.
//
// Lines of texts are handed over as they come. Assignments that are known by name and value alone may be in several
// layers of one source: those of a source are collected and put in the order of their positions first.
//
// Cost: one search of the settings for each assignment, and no memory but for what is collected of one source.
#include "tools/velmar-cfg/states/layer_lines.h"

#include <algorithm>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
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

bool is_same_source(const LAYER& a, const LAYER& b)
{
    return a.kind == b.kind && a.source->path == b.source->path;
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
    // Assignments that are known by name and value alone may be in several layers of one source: they are put in order.
    std::vector<LAYER_LINE> of_source;
    const auto take_source = [&]
    {
        std::ranges::stable_sort(of_source, {}, [](const LAYER_LINE& line) { return line.statement.position; });
        std::ranges::for_each(of_source, take);
        of_source.clear();
    };
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
        const LAYER& layer = settings.layers()[statement.layer];
        if (!of_source.empty() && !is_same_source(settings.layers()[of_source.front().statement.layer], layer))
            take_source();
        if (layer.literals != nullptr)
            of_source.push_back(line);
        else if (is_meant(layer, statement))
            take(line);
    }
    take_source();
}
