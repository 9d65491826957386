// The bytes of a preference file: read, saved, and read and saved again, against the store written out plainly; and the
// records before and after, which are equal but for what the format loses.
#include <map>
#include <set>
#include <tuple>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"
#include "cfg_ini/cfg_user_ini_reader/preference_records.h"
#include "cfg_ini/cfg_user_ini_reader/preference_writing.h"
#include "fuzz/fuzz_support.h"
#include "platform/ver/ver.h"
#include "tests/cfg_user_ini_reader/plain_preferences.h"

using fuzz::expect_equal;

namespace
{
// Section, name, value.
using RECORDS = std::set<std::tuple<std::string, std::string, std::string>>;

RECORDS loaded_records()
{
    RECORDS records;
    for (const auto& [key, record] : *cfg_user_ini_records)
    {
        if (!record->value.empty())
            records.emplace(record->section, record->name, record->value);
    }
    return records;
}

// Two sections that differ only in letter case are saved as one.
bool has_sections_to_merge(const RECORDS& records)
{
    std::map<std::string, std::string> spellings;
    for (const auto& [section, name, value] : records)
    {
        std::string folded = section;
        for (char& c : folded)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
        if (spellings.try_emplace(folded, section).first->second != section)
            return true;
    }
    return false;
}

// One pair of quotes goes with each reading.
bool has_quoted_value(const RECORDS& records)
{
    for (const auto& [section, name, value] : records)
    {
        if (value.size() >= 3 && value.front() == '"' && value.back() == '"')
            return true;
    }
    return false;
}

// A section without values is not saved. Where it is the running release's own, the next reading finds it missing, and
// carries the search paths of an older release over.
bool has_section_to_lose(const RECORDS& records)
{
    const std::string section = "General " + ver_get_version() + "_pro";
    for (const auto& [record_section, name, value] : records)
    {
        if (record_section == section)
            return false;
    }
    return cfg_user_ini_sections_read->contains(section);
}

PLAIN_PREFERENCES plain_preferences(const std::string& bytes)
{
    return {bytes, ver_get_version(), ver_get_all_versions()};
}

void read_afresh()
{
    cfg_close_user_ini_file();
    cfg_read_user_ini_file();
}

std::string saved(const std::string& path)
{
    fuzz::expect(cfg_write_user_ini_file(), "not saved");
    return fuzz::read_file(path);
}

void expect_same_lookups(PLAIN_PREFERENCES& plain)
{
    for (const char* name : {"SHOW_MESSAGE_ID", "USER_LIBRARIES", "PROXY_SETTINGS", "proxy_settings", "HDL_PREFERENCE",
                             "DISPLAY_WARNING_MESSAGES", "UNKNOWN_PREFERENCE"})
        expect_equal(cfg_get_user_ini_value(name), plain.value(name, true), name);
}

// A free text, which may hold anything up to its first zero byte.
void expect_same_after_assignment(PLAIN_PREFERENCES& plain, const std::string& text, const std::string& path)
{
    for (const char* name : {"PROXY_SETTINGS", "SHOW_MESSAGE_ID"})
        expect_equal(cfg_set_user_ini_value(name, text.c_str()), plain.assign(name, text.c_str()), name);
    const std::string bytes = saved(path);
    expect_equal(bytes, plain.saved(), "saved after the assignment");

    read_afresh();
    PLAIN_PREFERENCES again = plain_preferences(bytes);
    expect_same_lookups(again);
    expect_equal(saved(path), again.saved(), "saved after the assignment and a reading");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = fuzz::directory() + "/velmar2.ini";
    setenv("VELMAR2_INI", fuzz::directory().c_str(), 1);
    const std::string bytes(data, data + size);
    fuzz::write_file(path, bytes);

    read_afresh();
    PLAIN_PREFERENCES plain = plain_preferences(bytes);
    const RECORDS before = loaded_records();
    const bool comes_back = !has_sections_to_merge(before) && !has_quoted_value(before) && !has_section_to_lose(before);
    const std::string first = saved(path);
    expect_equal(first, plain.saved(), "saved");
    expect_equal(saved(path), first, "saved twice");

    read_afresh();
    const RECORDS after = loaded_records();
    if (comes_back)
    {
        fuzz::expect(after == before, "records changed by saving " + fuzz::quoted(first));
        expect_equal(saved(path), first, "saved, read and saved");
    }

    PLAIN_PREFERENCES again = plain_preferences(first);
    expect_same_lookups(again);
    expect_same_after_assignment(again, bytes.substr(0, 40), path);
    cfg_close_user_ini_file();
    return 0;
}
