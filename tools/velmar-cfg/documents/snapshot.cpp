#include "tools/velmar-cfg/documents/snapshot.h"

std::vector<std::string> all_file_roles()
{
    return {layer_code(LAYER_KIND::MAIN_FILE), layer_code(LAYER_KIND::APPENDED_FILE),
            layer_code(LAYER_KIND::REGTEST_FILE), preference_file_role};
}

SNAPSHOT_VARIABLES::SNAPSHOT_VARIABLES(SETTINGS of_layers)
    : settings(std::move(of_layers)), order(settings->order_by_name())
{
}

std::size_t SNAPSHOT_VARIABLES::size() const
{
    return settings ? order.size() : rows.size();
}

SNAPSHOT_VARIABLE SNAPSHOT_VARIABLES::operator[](std::size_t index) const
{
    if (!settings)
        return rows[index];
    settings->fetch_ahead(order, index); // most walk over them all
    const VARIABLE& variable = settings->variables()[order[index]];
    const std::string_view value = settings->value_of(variable);
    return {settings->name_of(variable),     value,           variable.layers.mark_external(),
            settings->location_of(variable), variable.layers, read_typed(value)};
}

std::string_view SNAPSHOT_VARIABLES::lasting(std::string_view text)
{
    return texts.emplace_back(text);
}

void SNAPSHOT_VARIABLES::add(const SNAPSHOT_VARIABLE& row)
{
    SNAPSHOT_VARIABLE& kept = rows.emplace_back(row);
    kept.name = lasting(row.name);
    kept.value = lasting(row.value);
    // Most rows have the source of the one before.
    const bool same_source = rows.size() > 1 && rows[rows.size() - 2].location.source == row.location.source;
    kept.location.source = same_source ? rows[rows.size() - 2].location.source : lasting(row.location.source);
}
