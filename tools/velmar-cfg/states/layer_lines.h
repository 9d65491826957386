// What each line of the layers does: the whole configuration, line by line.
#ifndef TOOLS_VELMAR_CFG_STATES_LAYER_LINES_H
#define TOOLS_VELMAR_CFG_STATES_LAYER_LINES_H

#include <functional>
#include <optional>

#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"

enum class LINE_EFFECT
{
    COUNTS,  // it gives its variable the value
    LOST,    // a later one gives it the value
    IGNORED, // it assigns nothing
};

// "counts", "lost" or "ignored": for JSON.
const char* effect_word(LINE_EFFECT effect);

// A line or an item that is neither empty nor all comment. The texts are valid until the walk goes on.
struct LAYER_LINE
{
    STATEMENT statement;
    LINE_EFFECT effect;
    std::optional<LOCATION> winner; // of a lost one: where the value comes from
};

// Hands over the lines in the order in which they are applied. If a document gives only assignments, those of one
// source come in the order of their positions.
void for_each_layer_line(const SETTINGS& settings, const std::function<void(const LAYER_LINE&)>& take);

#endif
