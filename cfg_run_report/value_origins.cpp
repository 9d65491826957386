// The assignments of all sources that could be read again are listed by name, in the order of the sources and of their
// lines. When a variable's origin is asked for, each of its assignments overrides the earlier ones of its own source
// and those of the sources that ended before its source began. The assignments that are left may have been the last.
// Those of them with the variable's value are its possible origins. If there is exactly one, it is the origin; if there
// is none, the program is. Neither is certain if a source that could not be read, or one that is missing from the list,
// may have been applied later: then the origin is unknown, and all possible origins are listed.
//
// Only the end of one source and the beginning of the other, which the store counts, decide whether one came before the
// other. Nothing is read after construction.
//
// Cost of a question: O((k + s) s) time for k assignments to the variable and s sources. The header states the cost of
// construction.
#include "cfg_run_report/value_origins.h"

#include <algorithm>
#include <utility>

#include "cfg_ini/cfg_ini_reader/ini_text.h"

using namespace zon_cfg;

VALUE_ORIGINS::VALUE_ORIGINS(CFG_SETTINGS_SOURCES applied) : list(std::move(applied))
{
    std::string bytes;
    for (std::size_t source = 0; source < list.applied.size(); ++source)
    {
        states.push_back(read_source(list.applied[source], bytes));
        if (states.back() != SOURCE_STATE::SAME)
            continue;
        if (list.applied[source].path.empty())
            add_items(source, bytes);
        else
            add_lines(source, bytes);
    }
}

void VALUE_ORIGINS::add_lines(std::size_t source, std::string_view bytes)
{
    LINE_ASSIGNMENT assignment;
    for (std::size_t line_number = 1; !bytes.empty(); ++line_number)
    {
        const std::string_view line = bytes.substr(0, bytes.find('\n'));
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        if (parse_settings_line(line, assignment) == SETTINGS_LINE::ASSIGNMENT)
            by_name[std::string(assignment.name)].push_back({{source, line_number}, std::string(assignment.value)});
    }
}

void VALUE_ORIGINS::add_items(std::size_t source, const std::string& text)
{
    INLINE_TEXT items(text);
    INLINE_ITEM kind{};
    std::string name;
    std::string value;
    for (std::size_t item_number = 1; items.next(kind, name, value); ++item_number)
    {
        if (kind == INLINE_ITEM::ASSIGNMENT)
            by_name[name].push_back({{source, item_number}, value});
    }
}

const VALUE_ORIGINS::ASSIGNMENTS& VALUE_ORIGINS::assignments_to(const std::string& name) const
{
    static const ASSIGNMENTS none;
    const auto found = by_name.find(name);
    return found == by_name.end() ? none : found->second;
}

// Whether the other source overrides everything that the source assigned.
bool VALUE_ORIGINS::is_before(std::size_t source, std::size_t other) const
{
    const std::uint64_t end = list.applied[source].end;
    return end != 0 && end < list.applied[other].beginning;
}

// The last assignment of each source, without those that another source overrides.
std::vector<const VALUE_ORIGINS::ASSIGNED*> VALUE_ORIGINS::not_overridden(const ASSIGNMENTS& all) const
{
    std::vector<const ASSIGNED*> kept;
    for (const ASSIGNED& assigned : all)
    {
        std::erase_if(kept,
                      [&](const ASSIGNED* earlier) {
                          return earlier->place.source == assigned.place.source ||
                                 is_before(earlier->place.source, assigned.place.source);
                      });
        kept.push_back(&assigned);
    }
    return kept;
}

// The sources whose assignments are not known, and which none of these assignments overrides.
std::vector<ORIGIN_PLACE> VALUE_ORIGINS::unread_sources_behind(const std::vector<const ASSIGNED*>& assigned,
                                                               bool external) const
{
    std::vector<ORIGIN_PLACE> unread;
    for (std::size_t source = 0; source < states.size(); ++source)
    {
        // The external mark is never cleared: a source that sets it has not assigned to a variable without it.
        if (is_known(states[source]) || (list.applied[source].external && !external))
            continue;
        if (std::none_of(assigned.begin(), assigned.end(),
                         [&](const ASSIGNED* one) { return is_before(source, one->place.source); }))
            unread.push_back({source, 0});
    }
    return unread;
}

// Whether one of these assignments overrides everything that is missing from the list.
bool VALUE_ORIGINS::lost_ones_are_before(const std::vector<const ASSIGNED*>& assigned) const
{
    return list.lost_until == 0 || std::any_of(assigned.begin(), assigned.end(),
                                               [this](const ASSIGNED* one)
                                               { return list.lost_until < list.applied[one->place.source].beginning; });
}

VALUE_ORIGIN VALUE_ORIGINS::origin_of(const std::string& name, const std::optional<std::string>& value,
                                      bool external) const
{
    const ASSIGNMENTS& all = assignments_to(name);
    VALUE_ORIGIN origin;
    std::vector<const ASSIGNED*> last = not_overridden(all);
    if (value && value->empty() && last.empty())
        origin.kind = VALUE_ORIGIN::KIND::UNSET;
    else if (value)
    {
        const std::vector<const ASSIGNED*> possible = last;
        std::erase_if(last, [&value](const ASSIGNED* assigned) { return assigned->value != *value; });
        // If one of them assigned the value, it came from there. Any other value came after all of them.
        origin.perhaps = unread_sources_behind(last.empty() ? possible : last, external);
        if (last.size() > 1 || !origin.perhaps.empty() || !lost_ones_are_before(last.empty() ? possible : last))
        {
            for (const ASSIGNED* assigned : last)
                origin.perhaps.push_back(assigned->place);
        }
        else if (last.empty())
            origin.kind = VALUE_ORIGIN::KIND::PROGRAM;
        else
        {
            origin.place = last.front()->place;
            const bool by_program = list.applied[origin.place->source].role == CFG_SETTINGS_ROLE::PROGRAM_TEXT;
            origin.kind = by_program ? VALUE_ORIGIN::KIND::PROGRAM : VALUE_ORIGIN::KIND::SOURCE;
        }
    }
    for (const ASSIGNED& assigned : all)
    {
        const auto is_here = [&assigned](const ORIGIN_PLACE& place)
        { return place.source == assigned.place.source && place.position == assigned.place.position; };
        if (!(origin.place && is_here(*origin.place)) &&
            std::none_of(origin.perhaps.begin(), origin.perhaps.end(), is_here))
            origin.overridden.push_back({assigned.place, assigned.value});
    }
    return origin;
}
