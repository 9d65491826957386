// Makes changes to copies of the layers. To take a variable away, each line or item that assigns to it is left out of
// the layer's text, and its newline or separator stays: all others keep their number. Values that are set become a
// layer of assignments by name and value on top, and no text is parsed for them.
//
// Cost of each variable that is taken away: a walk over all layers and a copy of their texts.
#include "tools/velmar-cfg/settings/what_if.h"

#include <algorithm>
#include <utility>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
// Whether the statement that is next on the walk assigns to the variable.
bool assigns_to(const STATEMENT& statement, std::string_view name)
{
    return statement.outcome == OUTCOME::STORED && same_name(statement.name, name);
}

// The text of the layer without the statements that assign to the variable. What is left keeps its separators: a
// statement holds none, and the separator of items is the first of either sign, which none can stand before.
std::string text_without(const LAYER& layer, std::string_view name)
{
    const LAYERS only = {layer};
    const std::string_view text =
        is_file(layer.kind) ? layer.source->whole_lines() : std::string_view(layer.source->bytes);
    std::string kept;
    std::size_t end = 0; // of what is kept or left out
    STATEMENTS statements(only);
    for (STATEMENT statement{}; statements.next(statement);)
    {
        if (!assigns_to(statement, name))
            continue;
        const auto begin = static_cast<std::size_t>(statement.text.data() - text.data());
        kept.append(text, end, begin - end);
        end = begin + statement.text.size();
    }
    return kept.append(text, end);
}

LAYER layer_without(const LAYER& layer, std::string_view name)
{
    LAYER changed = layer;
    if (layer.literals != nullptr)
    {
        auto kept = std::make_shared<std::vector<LITERAL>>(*layer.literals);
        std::erase_if(*kept, [name](const LITERAL& literal) { return same_name(literal.name(), name); });
        changed.literals = std::move(kept);
        return changed;
    }
    auto source = std::make_shared<INPUT_FILE>(*layer.source);
    source->bytes = text_without(layer, name);
    changed.source = std::move(source);
    return changed;
}
}

LAYERS changed_layers(LAYERS layers, const std::vector<WHAT_IF>& changes, SECRETS& secrets)
{
    auto set = std::make_shared<std::vector<LITERAL>>();
    std::size_t values = 0; // that were set so far, those taken away again too
    for (const auto& [name, value] : changes)
    {
        if (value)
        {
            set->emplace_back(name, hide_in_value(name, *value, secrets, ""), ++values);
            continue;
        }
        for (LAYER& layer : layers)
            layer = layer_without(layer, name);
        std::erase_if(*set, [&variable = name](const LITERAL& literal) { return same_name(literal.name(), variable); });
    }
    if (values == 0)
        return layers;
    LAYER on_top{LAYER_KIND::WHAT_IF, std::make_shared<const INPUT_FILE>(INPUT_FILE{what_if_source, {}, {}})};
    on_top.literals = std::move(set);
    layers.push_back(std::move(on_top));
    return layers;
}

std::string changes_as_text(const std::vector<WHAT_IF>& changes, SECRETS& secrets)
{
    std::string text;
    for (const auto& [name, value] : changes)
    {
        text += (text.empty() ? "" : ", ") + std::string(value ? "with " : "without ");
        text += name.empty() ? "''" : hide_in_value("", name, secrets);
        if (value)
            text += "=" + hide_in_value(name, *value, secrets, "");
    }
    return text;
}
