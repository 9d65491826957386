// Saves and unloads the preferences: the functions that are not in the public header.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H

#include <iosfwd>
#include <vector>

#include "cfg_ini/cfg_user_ini_reader/preference_records.h"

namespace zon_cfg
{
// The records under one header, in the order of the file; at least one. The header is the section of the first record.
using SECTION_GROUP = std::vector<CFG_USER_VALUE_STRUCT*>;

// The records that a save writes, in groups, in the order of the file. Marks these records as pending.
std::vector<SECTION_GROUP> groups_to_write(const CFG_USER_VALUE_MAP& records);

// Writes the group as a save does, and clears the marks of its records.
void write_group(std::ostream& file, const SECTION_GROUP& group);
}

// Frees every record and both maps. Afterwards nothing is loaded, and assignments that were not saved are lost. A null
// record is reported and skipped; the store itself never makes one.
void cfg_close_user_ini_file();

#endif
