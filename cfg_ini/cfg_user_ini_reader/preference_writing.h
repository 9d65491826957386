// Saving and unloading the preferences. What the public header leaves out.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H

#include <iosfwd>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

namespace zon_cfg
{
// The records that stand under one header, in the order of the file; at least one. The header is the section of the
// first.
using SECTION_GROUP = std::vector<CFG_USER_VALUE_STRUCT*>;

// What a save writes of these records, in the order of the file. Marks those as pending.
std::vector<SECTION_GROUP> groups_to_write(const CFG_USER_VALUE_MAP& records);

// Writes the group as a save does, and takes its marks away.
void write_group(std::ostream& file, const SECTION_GROUP& group);
}

// Frees every record and both maps: nothing is loaded afterwards, and assignments that were not saved are lost. A null
// record, which the store itself never makes, is reported and passed over.
void cfg_close_user_ini_file();

#endif
