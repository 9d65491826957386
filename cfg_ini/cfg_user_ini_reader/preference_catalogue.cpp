// Everything here is constant data that the compiler makes from the rows of preference_rows.h: the columns, one array
// of all triples with the position of each number's first one, and an index of the keys. Nothing is initialised when a
// process starts, so the tables can be used before static objects are constructed and after they are destroyed. Static
// assertions further down check what the store relies on.
//
// The index is a hash table of 256 one-byte slots with open addressing: a key that finds its slot taken goes to the
// next free one. Its hash and its comparison fold the letters A to Z, as gen_stricmp does, since any letter case finds
// a key. The preference's number then leads to every column without a search.
//
// Cost: finding a key hashes the name once and compares it with one key, rarely two; a test of a value walks over the
// preference's allowed values, at most 32.
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cfg_ini/cfg_user_ini_reader/preference_rows.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"

using namespace zon_cfg;

namespace zon_cfg
{
namespace
{
const MEM_INITIALIZER mem_initializer("CFG_INI");

constexpr std::size_t row_count = std::size(preference_rows);

constexpr bool is_empty(const char* text)
{
    return *text == '\0';
}

consteval PREFERENCE_COLUMN column(const char* const PREFERENCE_ROW::*text)
{
    PREFERENCE_COLUMN texts{};
    std::ranges::transform(preference_rows, texts.begin(), [=](const PREFERENCE_ROW& row) { return row.*text; });
    return texts;
}

// No preference was ever kept in a sub-branch; the column exists because hosts ask for it.
consteval PREFERENCE_COLUMN empty_column()
{
    PREFERENCE_COLUMN texts{};
    texts.fill("");
    return texts;
}

consteval auto names_and_defaults()
{
    std::array<std::pair<const char*, const char*>, row_count> pairs{};
    std::ranges::transform(preference_rows, pairs.begin(),
                           [](const PREFERENCE_ROW& row) { return std::pair(row.key, row.default_value); });
    return pairs;
}

// The position of each number's first triple, and at the end the position behind all triples. A number's triples end
// where those of the next number begin.
consteval auto first_triples()
{
    std::array<std::size_t, row_count + 1> firsts{};
    for (std::size_t i = 0; i < row_count; ++i)
        // cppcheck-suppress containerOutOfBounds
        firsts[i + 1] = firsts[i] + preference_rows[i].allowed_values.size();
    return firsts;
}

constexpr auto first_triple = first_triples();

// The end marker has no triples, so the position of its first one is that of the empty triple behind all others.
constexpr std::size_t triple_count = first_triple[CFG_USER_INI_ENUMS_END];

consteval auto section_value_triples()
{
    std::array<PREFERENCE_TRIPLE, triple_count + 1> triples{};
    auto next = triples.begin();
    for (const PREFERENCE_ROW& row : preference_rows)
    {
        for (const char* const value : row.allowed_values)
            *next++ = {row.key, row.section, value};
    }
    *next = {"", "", ""};
    return triples;
}

// An object of its own beside the span that refers to it: the compiler then knows its address and indexes it directly.
constexpr auto triple_table = section_value_triples();

constexpr const char* key_of(CFG_USER_INI_ENUMS preference)
{
    return preference_rows[preference].key;
}

// --- Finding a key without regard to letter case ---

constexpr char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// What gen_stricmp decides, but at compile time, when no service can be called.
constexpr bool equal_folded(const char* a, const char* b)
{
    return std::ranges::equal(std::string_view(a), std::string_view(b), {}, folded, folded);
}

// FNV-1a over the folded characters. The lower bits choose the slot, so the last step mixes the upper half into them.
constexpr std::uint32_t folded_hash(const char* text)
{
    std::uint32_t hash = 2166136261U;
    for (; *text != '\0'; ++text)
        hash = (hash ^ static_cast<unsigned char>(folded(*text))) * 16777619U;
    return hash ^ (hash >> 16U);
}

// The end marker, which is no key, marks a free slot.
constexpr std::size_t slot_count = 256;
constexpr std::uint8_t free_slot = CFG_USER_INI_ENUMS_END;
static_assert(slot_count > row_count, "a search for an unknown key ends at a free slot");

consteval auto numbers_by_key()
{
    std::array<std::uint8_t, slot_count> slots{};
    slots.fill(free_slot);
    for (const PREFERENCE_ROW& row : preference_rows)
    {
        if (is_empty(row.key))
            continue;
        std::size_t slot = folded_hash(row.key) % slot_count;
        while (slots[slot] != free_slot)
            slot = (slot + 1) % slot_count;
        slots[slot] = static_cast<std::uint8_t>(row.number);
    }
    return slots;
}

constexpr auto key_slots = numbers_by_key();

template <typename EQUAL>
constexpr CFG_USER_INI_ENUMS find_in_slots(const char* name, EQUAL equal)
{
    for (std::size_t slot = folded_hash(name) % slot_count; key_slots[slot] != free_slot;
         slot = (slot + 1) % slot_count)
    {
        if (equal(preference_rows[key_slots[slot]].key, name))
            return preference_rows[key_slots[slot]].number;
    }
    return CFG_USER_INI_ENUMS_END;
}

constexpr CFG_USER_INI_ENUMS find_at_compile_time(const char* name)
{
    return find_in_slots(name, equal_folded);
}
}
}

// ---------------------------------------------------------------------------------------------------------------------
// The tables
// ---------------------------------------------------------------------------------------------------------------------

constinit const PREFERENCE_COLUMN cfg_user_ini_ini_names = column(&PREFERENCE_ROW::key);
constinit const PREFERENCE_COLUMN cfg_user_ini_ini_desc = column(&PREFERENCE_ROW::description);
constinit const PREFERENCE_COLUMN cfg_user_ini_registry_names = column(&PREFERENCE_ROW::registry_name);
constinit const PREFERENCE_COLUMN cfg_user_ini_registry_branches = column(&PREFERENCE_ROW::registry_branch);
constinit const PREFERENCE_COLUMN cfg_user_ini_registry_sub_branches = empty_column();

constinit const PREFERENCE_COLUMN zon_cfg::preference_sections = column(&PREFERENCE_ROW::section);

constinit const std::array<std::pair<const char*, const char*>, CFG_USER_INI_ENUMS_END + 1>
    cfg_user_ini_name_default_values = names_and_defaults();

constinit const std::span<const PREFERENCE_TRIPLE> cfg_user_ini_enum_section_value_table = triple_table;

// An old name is either a key of an earlier release or the label that the preference had in the Windows registry. Two
// old names may lead to one key, since there are files with either.
constexpr std::array<std::pair<const char*, const char*>, old_preference_name_count + 1>
    cfg_user_ini_name_old_name_table = {{
        {key_of(DISPLAY_WARNING_MESSAGES), "Post warning messages"},
        {key_of(DISPLAY_INFORMATION_MESSAGES), "Post information messages"},
        {key_of(RUN_PROCESS_AT_LOWER_PRIORITY), "Run processes at lower priority"},
        {key_of(GENERATE_HTML_REPORT_FILES), "GENERATE_HTML_REPORT_FILE"},
        {key_of(GENERATE_HTML_REPORT_FILES), "Generate HTML report file"},
        {key_of(GENERATE_JSON_REPORT_FILES), "GENERATE_JSON_REPORT_FILE"},
        {key_of(GENERATE_JSON_REPORT_FILES), "Generate JSON report file"},
        {key_of(GENERATE_SINGLE_REPORT_FILE), "GENERATE_SINGLE_TEXT_REPORT_FILE"},
        {key_of(SOUND_WHEN_PROCESS_DONE), "Beep when process done"},
        {key_of(DISPLAY_MESSAGE_WHEN_PROCESS_DONE), "Show message box when process done"},
        {key_of(VANTREL_ENABLED), "Velmar Vantrel Enabled"},
        {key_of(VANTREL_IE_ENABLED), "Velmar Vantrel IE"},
        {key_of(VANTREL_COMPANY_NAME), "Company Name"},
        {key_of(VANTREL_FAE_NAME), "FAE Name"},
        {key_of(VANTREL_SAVE_XML_FILES), "Keep XML Files"},
        {key_of(VANTREL_SAVE_XML_FILES_LOCATION), "Keep XML Files In"},
        {key_of(READ_WRITE_HEX_FILES_TO_WORD_BOUNDARY), "Read/Write HEX files to word boundary"},
        {key_of(AUTO_RECOMPILE_BEFORE_SIM), "Auto Recompile"},
        {"", ""},
    }};

// ---------------------------------------------------------------------------------------------------------------------
// What the tables rely on
// ---------------------------------------------------------------------------------------------------------------------

namespace zon_cfg
{
namespace
{
consteval bool numbers_are_positions()
{
    for (std::size_t i = 0; i < row_count; ++i)
    {
        if (preference_rows[i].number != static_cast<int>(i))
            return false;
    }
    return true;
}

consteval bool rows_are_whole_or_empty()
{
    return std::ranges::all_of(preference_rows,
                               [](const PREFERENCE_ROW& row)
                               {
                                   const bool empty = is_empty(row.key);
                                   return is_empty(row.section) == empty && is_empty(row.description) == empty &&
                                          row.allowed_values.empty() == empty &&
                                          is_empty(row.registry_name) == is_empty(row.registry_branch);
                               });
}

consteval bool defaults_are_allowed()
{
    return std::ranges::all_of(
        preference_rows,
        [](const PREFERENCE_ROW& row)
        {
            return is_empty(row.default_value) ||
                   std::ranges::any_of(row.allowed_values, [&](const char* value)
                                       { return is_empty(value) || std::string_view(value) == row.default_value; });
        });
}

consteval bool empty_values_stand_alone()
{
    return std::ranges::all_of(
        preference_rows, [](const PREFERENCE_ROW& row)
        { return row.allowed_values.size() <= 1 || std::ranges::none_of(row.allowed_values, is_empty); });
}

consteval bool every_key_finds_its_row()
{
    return std::ranges::all_of(preference_rows, [](const PREFERENCE_ROW& row)
                               { return is_empty(row.key) || find_at_compile_time(row.key) == row.number; });
}

consteval bool old_names_lead_to_keys()
{
    const auto pairs = std::span(cfg_user_ini_name_old_name_table).first(old_preference_name_count);
    return std::ranges::all_of(pairs,
                               [](const auto& pair)
                               {
                                   const auto& [current_name, old_name] = pair;
                                   return !is_empty(current_name) && !is_empty(old_name) &&
                                          find_at_compile_time(old_name) == CFG_USER_INI_ENUMS_END;
                               });
}

static_assert(row_count == CFG_USER_INI_ENUMS_END + 1);
static_assert(numbers_are_positions());
static_assert(rows_are_whole_or_empty(), "a preference has key, section, allowed values and description, or nothing");
static_assert(is_empty(key_of(CFG_USER_INI_ENUMS_END)), "the end marker's row is empty");
static_assert(defaults_are_allowed());
static_assert(empty_values_stand_alone(), "a key takes free text or one of a list");
static_assert(every_key_finds_its_row(), "keys that differ only in letter case would hide each other");
static_assert(old_names_lead_to_keys(), "a key that is also an old name would be renamed when it is read");
static_assert(is_empty(cfg_user_ini_name_old_name_table.back().second));
}
}

// ---------------------------------------------------------------------------------------------------------------------
// Access
// ---------------------------------------------------------------------------------------------------------------------

namespace zon_cfg
{
CFG_USER_INI_ENUMS find_preference(const char* name)
{
    // Mostly a key is spelled as the catalogue spells it, and strcmp is quicker than folding.
    return find_in_slots(name, [](const char* key, const char* text)
                         { return std::strcmp(key, text) == 0 || gen_stricmp(key, text) == 0; });
}

bool is_secret_preference(CFG_USER_INI_ENUMS preference)
{
    return preference_rows[preference_position(preference)].secret;
}

std::span<const PREFERENCE_TRIPLE> preference_triples(CFG_USER_INI_ENUMS preference)
{
    const std::size_t position = preference_position(preference);
    return {triple_table.data() + first_triple[position], triple_table.data() + first_triple[position + 1]};
}

const PREFERENCE_TRIPLE* find_fitting_triple(CFG_USER_INI_ENUMS preference, const char* value)
{
    // In the order of the table, which makes the first fitting triple the answer. An empty allowed value stands for
    // free text, so that the empty value itself is refused by a preference with a list.
    for (const PREFERENCE_TRIPLE& triple : preference_triples(preference))
    {
        if (value == nullptr || is_empty(triple.value) || gen_stricmp(triple.value, value) == 0)
            return &triple;
    }
    return nullptr;
}
}

std::string cfg_get_name_from_enum(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_ini_names[preference_position(preference)];
}

std::string cfg_get_user_ini_ini_string(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_ini_names[preference_position(preference)];
}

std::string cfg_get_user_ini_ini_desc(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_ini_desc[preference_position(preference)];
}

std::string cfg_get_user_ini_registry_string(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_registry_names[preference_position(preference)];
}

std::string cfg_get_user_ini_registry_branch_string(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_registry_branches[preference_position(preference)];
}

std::string cfg_get_user_ini_registry_sub_branch_string(CFG_USER_INI_ENUMS preference)
{
    return cfg_user_ini_registry_sub_branches[preference_position(preference)];
}
