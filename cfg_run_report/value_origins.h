// Works out where the values of variables came from, from the sources that were applied.
//
// The sources are parsed by the library's own rules. Of all assignments to a variable, the last one won. If it assigned
// the variable's value, the value came from there, otherwise from the program. That holds as long as everything is
// known that may have been assigned:
//   - A source overrides those that ended before it began. Of sources that overlap, any may have been the last. If
//     several of them assigned the value, it is not known which one won.
//   - A source that cannot be read again may have assigned anything, unless another one that assigned to the variable
//     came later. It does not count if it marks variables as external and the variable is not external.
// Any origin that does not follow from this is unknown: nothing is guessed.
//
// Cost: each source is read once. Each assignment takes an entry in a hash table, with a copy of its value.
#ifndef CFG_RUN_REPORT_VALUE_ORIGINS_H
#define CFG_RUN_REPORT_VALUE_ORIGINS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "cfg_run_report/source_text.h"

// A line or an item of a source.
struct ORIGIN_PLACE
{
    std::size_t source;   // its index in the list
    std::size_t position; // the line or the item, from 1; 0 when it is not known
};

struct OTHER_ASSIGNMENT
{
    ORIGIN_PLACE place;
    std::string value;
};

struct VALUE_ORIGIN
{
    enum class KIND
    {
        SOURCE,  // `place` says where
        PROGRAM, // `place` says where if it was a text that is in the list
        UNSET,
        UNKNOWN,
    };

    KIND kind = KIND::UNKNOWN;
    std::optional<ORIGIN_PLACE> place = {};
    std::vector<ORIGIN_PLACE> perhaps = {};        // of UNKNOWN
    std::vector<OTHER_ASSIGNMENT> overridden = {}; // in the order of the sources and their lines
};

class VALUE_ORIGINS
{
public:
    // Reads the files that are still what they were.
    explicit VALUE_ORIGINS(CFG_SETTINGS_SOURCES applied);

    const std::vector<CFG_SETTINGS_SOURCE>& sources() const
    {
        return list.applied;
    }

    SOURCE_STATE state(std::size_t source) const
    {
        return states[source];
    }

    // Whether no source is missing in the list.
    bool are_complete() const
    {
        return list.lost_until == 0;
    }

    // Whether a source that was read again assigns to the variable.
    bool is_assigned(const std::string& name) const
    {
        return by_name.find(name) != by_name.end();
    }

    // Where the variable's value came from. Without `value`, the value is not known.
    VALUE_ORIGIN origin_of(const std::string& name, const std::optional<std::string>& value, bool external) const;

private:
    struct ASSIGNED
    {
        ORIGIN_PLACE place;
        std::string value;
    };
    using ASSIGNMENTS = std::vector<ASSIGNED>;

    struct HASH
    {
        std::size_t operator()(const std::string& name) const
        {
            return zon_cfg::hash_name(name);
        }
    };
    struct EQUAL
    {
        bool operator()(const std::string& a, const std::string& b) const
        {
            return zon_cfg::equal_names(a, b);
        }
    };

    void add_lines(std::size_t source, std::string_view bytes);
    void add_items(std::size_t source, const std::string& text);
    const ASSIGNMENTS& assignments_to(const std::string& name) const;
    bool is_before(std::size_t source, std::size_t other) const;
    std::vector<const ASSIGNED*> not_overridden(const ASSIGNMENTS& all) const;
    std::vector<ORIGIN_PLACE> unread_sources_behind(const std::vector<const ASSIGNED*>& assigned, bool external) const;
    bool lost_ones_are_before(const std::vector<const ASSIGNED*>& assigned) const;

    CFG_SETTINGS_SOURCES list;
    std::vector<SOURCE_STATE> states;
    std::unordered_map<std::string, ASSIGNMENTS, HASH, EQUAL> by_name;
};

#endif
