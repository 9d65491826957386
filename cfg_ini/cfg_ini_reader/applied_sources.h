// The sources that were applied to a store: the list that cfg_get_settings_sources hands out.
//
// An application is noted when it begins and when it ends. What matters of sources that are equal is the last
// application: it overrides all that they assigned before. So an equal entry moves to the end instead of being
// repeated, and applying the same sources again and again takes no memory. Different ones are limited in number and
// size. The oldest go first. Of files `lost_until` tells that some went; a text of the program may go untold, because
// its values then count as the program's, which they are.
//
// Noting never fails a load. An entry for which there is no memory counts as lost.
//
// The list is a linked one: an entry moves or goes without the others being touched. Each note searches it from its
// end, at most some 300 entries.
#ifndef CFG_INI_CFG_INI_READER_APPLIED_SOURCES_H
#define CFG_INI_CFG_INI_READER_APPLIED_SOURCES_H

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <sys/stat.h>

#include "cfg_ini/cfg_ini_reader/store_lock.h"
#include "cfg_ini/cfg_settings_sources.h"

namespace zon_cfg
{
// Enters what identifies the file that was opened under `path`. Takes no lock. Without memory for the path, the source
// has none and cannot be listed.
void describe_file(CFG_SETTINGS_SOURCE& source, const std::string& path, const struct stat& status) noexcept;

// The next moment in the count of beginnings and ends.
std::uint64_t next_moment() ZON_LOCK_HELD;

class APPLIED_SOURCES
{
public:
    // Lists the source, whose beginning is set and is later than all of the list.
    void begin(const CFG_SETTINGS_SOURCE& source) noexcept;

    // Enters end and wholeness of the source, which are set. It is listed once more if it is not there: another thread
    // may have emptied the store while the source was being applied, and what came later then went into this one.
    void end(const CFG_SETTINGS_SOURCE& source) noexcept;

    // By their beginnings.
    const std::list<CFG_SETTINGS_SOURCE>& in_order() const
    {
        return sources;
    }

    std::uint64_t lost_until() const
    {
        return lost;
    }

private:
    using POSITION = std::list<CFG_SETTINGS_SOURCE>::iterator;

    void insert(const CFG_SETTINGS_SOURCE& source) noexcept;
    void keep_within_limits();
    void erase(POSITION source);
    void count_as_lost(const CFG_SETTINGS_SOURCE& source);

    std::list<CFG_SETTINGS_SOURCE> sources;
    std::size_t extra_files = 0; // appended and regression-test files
    std::size_t program_texts = 0;
    std::size_t program_text_bytes = 0;
    std::uint64_t lost = 0;
};
}

#endif
