// The catalogue is written once, as rows. What lookups need of it is derived at compile time: the pairs of texts and
// the entries by position, and a perfect hash from names to positions.
//
// The hash takes the length of a name and three of its characters, times a factor. The compiler searches for a factor
// that gives every catalogued name a slot of its own. So a search costs one multiplication, and one comparison with the
// only name that can match. Nothing is built at run time, and nothing is destroyed before exit handlers ask for it. The
// exception is the map that hosts can get, which is built for them alone.
#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cfg_ini/cfg_ini_reader/name_matching.h"
#include "cfg_ini/cfg_ini_reader/report_lines.h"

namespace zon_cfg
{
namespace
{
struct CATALOGUE_ROW
{
    CFG_INI_VAR_ENUM position;
    std::string_view identifier; // the enumerator, without its prefix
    const char* name;
    const char* default_text;
};

#define VARIABLE_ROW(IDENTIFIER, NAME, DEFAULT_TEXT)                                                                   \
    CATALOGUE_ROW                                                                                                      \
    {                                                                                                                  \
        CFG_INI_VAR_##IDENTIFIER, #IDENTIFIER, NAME, DEFAULT_TEXT                                                      \
    }

// The one place where the catalogue is written down; everything else is derived from it.
constexpr std::array catalogue = {
    VARIABLE_ROW(VTAN_STA_MODE, "vtan_sta_mode", "off"),
    VARIABLE_ROW(HDB_ENABLE_INTERNAL_VSF, "hdb_enable_internal_vsf", "off"),
    VARIABLE_ROW(HCNU_REVERSIBLE_NAMES, "hcnu_reversible_names", "off"),
    VARIABLE_ROW(HCNU_FORCE_DISABLE_REVERSIBLE_NAMES, "hcnu_force_disable_reversible_names", "off"),
    VARIABLE_ROW(CUT_CREATE_ANCIENT_ABO_DUMPS, "cut_create_ancient_abo_dumps", "on"),
    VARIABLE_ROW(TAWV_ENABLE_LOCATION, "tawv_enable_location", "on"),
    VARIABLE_ROW(TAWV_OPEN_FILE_IN_QT, "tawv_open_file_in_qt", "on"),
    VARIABLE_ROW(VGV_ENABLE_RPWV, "vgv_enable_rpwv", "on"),
    VARIABLE_ROW(ENHANCED_HTML_REPORTS, "enhanced_html_reports", "off"),
    VARIABLE_ROW(VUI_SHOW_CLASSIC_NLVIEW, "vui_show_classic_nlview", "off"),
    VARIABLE_ROW(IPMAN_SHOW_ENTITY_ONLY, "ipman_show_entity_only", "on"),
    VARIABLE_ROW(VUI_SHOW_NEW_SM_VIEWER, "vui_show_new_sm_viewer", "off"),
    VARIABLE_ROW(MSG_DISABLE_CRASH_REPORTER, "msg_disable_crash_reporter", "off"),
    VARIABLE_ROW(ENABLE_PLATFORM_AWARE, "enable_platform_aware", "on"),
    VARIABLE_ROW(GUI_USES_HDB_POINTERS, "gui_uses_hdb_pointers", "on"),
    VARIABLE_ROW(GUI_USES_DOCKABLE_FIND, "gui_uses_dockable_find", "on"),
    VARIABLE_ROW(GUI_USES_DOCKABLE_OPTIONS, "gui_uses_dockable_options", "on"),
    VARIABLE_ROW(GUI_USES_HELP_ICON, "gui_uses_help_icon", "on"),
    VARIABLE_ROW(MSG_SQLITE, "msg_sqlite", "on"),
    VARIABLE_ROW(NEW_DOCK_WIDGET_LAYOUT, "new_dock_widget_layout", "off"),
    VARIABLE_ROW(ZANTH_FLOW, "zanth_flow", "on"),
    VARIABLE_ROW(TMWV_COMBOBOX_COLUMN, "tmwv_combobox_column", "on"),
    VARIABLE_ROW(OAWV_USE_QML, "oawv_use_qml", "on"),
    VARIABLE_ROW(EPEV_USE_DETAILED_POWER_SUMMARY, "epev_use_detailed_power_summary", "off"),
    VARIABLE_ROW(VELMAR_ENABLE_BOARD, "velmar_enable_board", "on"),
    VARIABLE_ROW(VELMAR_ENABLE_BOARD_FOR_ZP, "velmar_enable_board_for_zp", "on"),
    VARIABLE_ROW(ENABLE_BSG_SGATE_DIRECT, "enable_bsg_sgate_direct", "on"),
    VARIABLE_ROW(DNI_INCLUDE_ASSEMBLER_IN_FLOW, "dni_include_assembler_in_flow", "on"),
    VARIABLE_ROW(GUI_ENABLE_TCL_COMMAND_MODE, "gui_enable_tcl_command_mode", "on"),
    VARIABLE_ROW(GUI_ENABLE_LOGGING_USER_ACTION, "gui_enable_logging_user_action", "on"),
};

#undef VARIABLE_ROW

constexpr char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

constexpr bool rows_agree()
{
    for (std::size_t i = 0; i < catalogue.size(); ++i)
    {
        const auto& [position, identifier, name, default_text] = catalogue[i];
        const std::string_view text = default_text;
        if (position != static_cast<int>(i) || (text != "on" && text != "off"))
            return false;
        if (!std::ranges::equal(identifier, std::string_view(name), {}, {}, upper))
            return false;
    }
    return true;
}

static_assert(catalogue.size() == CFG_INI_VAR_END);
static_assert(rows_agree(), "a row's position, identifier and name must agree, and its default must be on or off");

constexpr auto names_and_defaults()
{
    std::array<std::pair<const char*, const char*>, CFG_INI_VAR_END> pairs{};
    std::ranges::transform(catalogue, pairs.begin(),
                           [](const CATALOGUE_ROW& row) { return std::pair(row.name, row.default_text); });
    return pairs;
}

constexpr auto entries_of_rows()
{
    std::array<CATALOGUE_ENTRY, CFG_INI_VAR_END> entries{};
    std::ranges::transform(catalogue, entries.begin(),
                           [](const CATALOGUE_ROW& row)
                           {
                               const std::string_view default_text = row.default_text;
                               return CATALOGUE_ENTRY{row.name, default_text, default_text == "on"};
                           });
    return entries;
}

// --- From a name to its position ---

constexpr unsigned int slot_bits = 7;

// The slot of a name. The name must not be empty.
constexpr std::size_t slot_of(std::string_view name, std::uint64_t factor)
{
    const auto character = [&](std::size_t at) { return std::uint64_t{static_cast<unsigned char>(name[at])}; };
    const std::uint64_t key = std::uint64_t{name.size()} << 24 | character(0) << 16 | character(name.size() / 2) << 8 |
                              character(name.size() - 1);
    return static_cast<std::size_t>((key * factor) >> (64 - slot_bits));
}

struct NAME_INDEX
{
    std::uint64_t factor;
    std::array<std::int8_t, std::size_t{1} << slot_bits> positions; // negative where no name is
};

constexpr NAME_INDEX index_of_names()
{
    for (std::uint64_t factor = 0x9E3779B97F4A7C15U;; factor += 0x9E3779B97F4A7C16U) // different odd numbers
    {
        NAME_INDEX index{factor, {}};
        index.positions.fill(-1);
        if (std::ranges::all_of(catalogue,
                                [&index](const CATALOGUE_ROW& row)
                                {
                                    std::int8_t& position = index.positions[slot_of(row.name, index.factor)];
                                    const bool is_free = position < 0;
                                    position = static_cast<std::int8_t>(row.position);
                                    return is_free;
                                }))
            return index; // if two names agree in all that is hashed, the search has no end, which the compiler reports
    }
}

constexpr NAME_INDEX name_index = index_of_names();
}
}

constinit const std::array<std::pair<const char*, const char*>, CFG_INI_VAR_END> cfg_enum_based_defaults =
    zon_cfg::names_and_defaults();

namespace zon_cfg
{
constinit const std::array<CATALOGUE_ENTRY, CFG_INI_VAR_END> catalogue_entries = entries_of_rows();

void refuse_unknown_variable(int line)
{
    report_broken_precondition("ini_enum >= CFG_INI_VAR_BEGIN && ini_enum < CFG_INI_VAR_END", line);
    std::abort();
}

namespace
{
using POSITIONS = std::unordered_map<std::string, CFG_INI_VAR_ENUM>;

// The map that the first call builds, kept until the process ends. Racing first callers each build one, and all get the
// one that is finished first. No caller waits for another, as at the guard of a local static: the child of a fork lacks
// the threads of its parent, and would wait for ever for one that was building.
class POSITIONS_BY_NAME
{
public:
    constexpr POSITIONS_BY_NAME() = default;
    ~POSITIONS_BY_NAME()
    {
        delete map.load(std::memory_order_acquire);
    }
    POSITIONS_BY_NAME(const POSITIONS_BY_NAME&) = delete;
    POSITIONS_BY_NAME& operator=(const POSITIONS_BY_NAME&) = delete;

    const POSITIONS& get()
    {
        const POSITIONS* found = map.load(std::memory_order_acquire);
        if (found != nullptr)
            return *found;

        auto made = std::make_unique<POSITIONS>();
        for (const CATALOGUE_ROW& row : catalogue)
            made->emplace(row.name, row.position);
        if (map.compare_exchange_strong(found, made.get(), std::memory_order_acq_rel, std::memory_order_acquire))
            found = made.release();
        return *found;
    }

private:
    std::atomic<const POSITIONS*> map = nullptr;
};

constinit POSITIONS_BY_NAME positions_by_name;
}

std::optional<CFG_INI_VAR_ENUM> catalogue_position(std::string_view name)
{
    if (name.empty())
        return std::nullopt;
    const std::ptrdiff_t position{name_index.positions[slot_of(name, name_index.factor)]};
    if (position < 0 || catalogue_entries[static_cast<std::size_t>(position)].name != name)
        return std::nullopt;
    return static_cast<CFG_INI_VAR_ENUM>(position);
}
}

using namespace zon_cfg;

std::string cfg_get_default_value(CFG_INI_VAR_ENUM ini_enum)
{
    return std::string(catalogue_entry(ini_enum, DEFAULT_OF_UNKNOWN_VARIABLE).default_text);
}

const std::unordered_map<std::string, CFG_INI_VAR_ENUM>& cfg_ini_get_string_to_id_map()
{
    return positions_by_name.get();
}

std::optional<CFG_INI_VAR_ENUM> cfg_get_ini_var_enum_from_string(const char* name)
{
    return catalogue_position(not_null(cfg_ini_name_view(name)));
}
