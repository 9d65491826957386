// The order of the ranked usage report; the reports themselves are public (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_USAGE_REPORT_H
#define CFG_INI_CFG_INI_READER_USAGE_REPORT_H

#include <cstdint>
#include <string>
#include <utility>

namespace zon_cfg
{
// A variable's name and access count.
using USAGE = std::pair<std::string, std::uint64_t>;

// Whether `a` goes before `b`: the higher count first; of equal counts the name that is greater byte by byte first.
bool goes_before(const USAGE& a, const USAGE& b);
}

#endif
