#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"

#include <cstdarg>
#include <fstream>
#include <string>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/running_records.h"
#include "platform/err/err.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"

namespace
{
__attribute__((format(printf, 1, 2))) void mem_msg_vdebug(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("CFG_INI", format, args);
    va_end(args);
}

// An empty value counts as none and leaves the file.
void mark_records_to_write()
{
    for (const auto& [key, record] : *cfg_user_ini_records)
        record->pending_write = !record->value.empty();
}

// Writes the section of the first pending record, with all pending records of that section, letter case ignored.
// Whether pending records remain.
bool write_next_section(std::ostream& file)
{
    const std::string* section = nullptr;
    bool some_remain = false;
    for (const auto& [key, record] : *cfg_user_ini_records)
    {
        if (!record->pending_write)
            continue;
        if (section == nullptr)
        {
            section = &record->section;
            file << std::endl << '[' << *section << ']' << std::endl;
        }
        if (gen_stricmp(record->section.c_str(), section->c_str()) == 0)
        {
            file << record->name << " = " << record->value << std::endl;
            record->pending_write = false;
        }
        else
            some_remain = true;
    }
    return some_remain;
}
}

bool cfg_write_user_ini_file()
{
    if (cfg_user_ini_records == nullptr)
        return true;

    mark_records_to_write();
    const std::string path = cfg_generate_user_ini_file_path();
    std::ofstream file(path);
    mem_msg_vdebug("writing ini file: %s", path.c_str());
    if (!file)
        return false;
    // Each line is flushed, so that a process that ends here leaves whole lines; what a write fails to do is not told.
    while (write_next_section(file))
    {
    }
    return true;
}

bool cfg_write_and_close_user_ini_file()
{
    const bool opened = cfg_write_user_ini_file();
    cfg_close_user_ini_file();
    return opened;
}

void cfg_close_user_ini_file()
{
    forget_running_records();
    if (cfg_user_ini_records != nullptr)
    {
        for (auto& [key, record] : *cfg_user_ini_records)
        {
            if (record == nullptr)
                err_report_internal_error("(*i).second != 0", "CFG_INI", preference_store_source, __LINE__);
            delete record;
            record = nullptr;
        }
    }
    delete cfg_user_ini_records;
    cfg_user_ini_records = nullptr;
    delete cfg_user_ini_sections_read;
    cfg_user_ini_sections_read = nullptr;
}
