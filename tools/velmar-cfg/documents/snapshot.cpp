// The variables of a snapshot have one of two forms. Those of settings are made anew each time that one is asked for,
// and only their order is kept. Those of a document are kept as rows, with an index by name that refuses a second row
// of one name.
#include "tools/velmar-cfg/documents/snapshot.h"

#include "tools/velmar-cfg/settings/library_rules.h"

std::vector<std::string> all_file_roles()
{
    return {layer_code(LAYER_KIND::MAIN_FILE), layer_code(LAYER_KIND::APPENDED_FILE),
            layer_code(LAYER_KIND::REGTEST_FILE), preference_file_role};
}

std::vector<std::string> all_source_roles()
{
    std::vector<std::string> roles;
    for (const LAYER_KIND kind : all_layer_kinds)
    {
        if (is_library_source(kind))
            roles.emplace_back(layer_code(kind));
    }
    roles.emplace_back(preference_file_role);
    return roles;
}

std::string_view SNAPSHOT_SOURCE::text() const
{
    const bool is_inline = role == layer_code(LAYER_KIND::INLINE_TEXT);
    return is_inline ? std::string_view(file->bytes) : file->whole_lines();
}

std::string SNAPSHOT_BASIS::view_in_words() const
{
    if (!as)
        return {};
    const std::string where = directory ? "in " + *directory : "";
    if (as->process)
        return "as process " + std::to_string(*as->process) + " (" + as->executable + (directory ? ", " + where : "") +
               ") started";
    return "as " + as->executable + " would read" + (directory ? ", started " + where : "");
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

std::string_view SNAPSHOT_VARIABLES::name(std::size_t index) const
{
    return settings ? settings->name_of(settings->variables()[order[index]]) : rows[index].name;
}

bool SNAPSHOT_VARIABLES::add(const SNAPSHOT_VARIABLE& row)
{
    const std::size_t hash = hash_of_name(row.name);
    if (index_of_rows.find(hash, [&](std::uint32_t other) { return same_name(rows[other].name, row.name); }))
        return false;
    index_of_rows.add(hash, static_cast<std::uint32_t>(rows.size()));
    SNAPSHOT_VARIABLE& kept = rows.emplace_back(row);
    kept.name = texts.keep(row.name);
    kept.value = texts.keep(row.value);
    // Most rows have the source of the one before.
    const bool same_source = rows.size() > 1 && rows[rows.size() - 2].location.source == row.location.source;
    kept.location.source = same_source ? rows[rows.size() - 2].location.source : texts.keep(row.location.source);
    return true;
}
