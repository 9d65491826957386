// The sources that were applied to a store: the list that cfg_get_settings_sources returns.
//
// An entry is made when the application of a source begins, and completed when it ends. If an equal source is applied
// again, its entry moves to the end of the list: only the last application matters, since it overrides all that the
// earlier ones assigned. So applying the same sources again and again takes no more memory.
//
// The list is limited in the number and size of different sources, and drops the oldest ones. `lost_until` tells that
// files or VELMAR_INI_VARS are missing. It does not tell that texts of the program are: without an entry, their values
// count as the program's, which they are.
//
// Recording never fails a load. If there is no memory for an entry, the source counts as lost.
//
// The list is a linked list, so an entry moves or goes without touching the others. Each change searches it from its
// end, over some 300 entries at most.
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
// Enters what identifies the file that was opened under `path`. Takes no lock. If there is no memory for the path, the
// path stays empty, and the source cannot be listed.
void describe_file(CFG_SETTINGS_SOURCE& source, const std::string& path, const struct stat& status) noexcept;

// The next number in the count of beginnings and ends.
std::uint64_t next_moment() ZON_LOCK_HELD;

class APPLIED_SOURCES
{
public:
    // Lists the source. Its beginning must be set, to a later moment than any in the list.
    void begin(const CFG_SETTINGS_SOURCE& source) noexcept;

    // Records the end of the source, whose `end` and `whole` are set. Lists the source once more if it is not in the
    // list: another thread may have emptied the store meanwhile, and the rest of the source then went into this one.
    void end(const CFG_SETTINGS_SOURCE& source) noexcept;

    // The sources in the order of their beginnings.
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
