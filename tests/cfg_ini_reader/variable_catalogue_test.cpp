#include "cfg_ini/cfg_ini_reader/variable_catalogue.h"

#include <csignal>

#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using VARIABLE_CATALOGUE_TEST = STORE_TEST;

struct ENTRY
{
    CFG_INI_VAR_ENUM position;
    int number;
    const char* name;
    const char* default_text;
};

void PrintTo(const ENTRY& row, std::ostream* out)
{
    *out << row.name;
}

// The whole catalogue once more: a slip on one side shows as a difference.
const ENTRY entries[] = {
    {CFG_INI_VAR_VTAN_STA_MODE, 0, "vtan_sta_mode", "off"},
    {CFG_INI_VAR_HDB_ENABLE_INTERNAL_VSF, 1, "hdb_enable_internal_vsf", "off"},
    {CFG_INI_VAR_HCNU_REVERSIBLE_NAMES, 2, "hcnu_reversible_names", "off"},
    {CFG_INI_VAR_HCNU_FORCE_DISABLE_REVERSIBLE_NAMES, 3, "hcnu_force_disable_reversible_names", "off"},
    {CFG_INI_VAR_CUT_CREATE_ANCIENT_ABO_DUMPS, 4, "cut_create_ancient_abo_dumps", "on"},
    {CFG_INI_VAR_TAWV_ENABLE_LOCATION, 5, "tawv_enable_location", "on"},
    {CFG_INI_VAR_TAWV_OPEN_FILE_IN_QT, 6, "tawv_open_file_in_qt", "on"},
    {CFG_INI_VAR_VGV_ENABLE_RPWV, 7, "vgv_enable_rpwv", "on"},
    {CFG_INI_VAR_ENHANCED_HTML_REPORTS, 8, "enhanced_html_reports", "off"},
    {CFG_INI_VAR_VUI_SHOW_CLASSIC_NLVIEW, 9, "vui_show_classic_nlview", "off"},
    {CFG_INI_VAR_IPMAN_SHOW_ENTITY_ONLY, 10, "ipman_show_entity_only", "on"},
    {CFG_INI_VAR_VUI_SHOW_NEW_SM_VIEWER, 11, "vui_show_new_sm_viewer", "off"},
    {CFG_INI_VAR_MSG_DISABLE_CRASH_REPORTER, 12, "msg_disable_crash_reporter", "off"},
    {CFG_INI_VAR_ENABLE_PLATFORM_AWARE, 13, "enable_platform_aware", "on"},
    {CFG_INI_VAR_GUI_USES_HDB_POINTERS, 14, "gui_uses_hdb_pointers", "on"},
    {CFG_INI_VAR_GUI_USES_DOCKABLE_FIND, 15, "gui_uses_dockable_find", "on"},
    {CFG_INI_VAR_GUI_USES_DOCKABLE_OPTIONS, 16, "gui_uses_dockable_options", "on"},
    {CFG_INI_VAR_GUI_USES_HELP_ICON, 17, "gui_uses_help_icon", "on"},
    {CFG_INI_VAR_MSG_SQLITE, 18, "msg_sqlite", "on"},
    {CFG_INI_VAR_NEW_DOCK_WIDGET_LAYOUT, 19, "new_dock_widget_layout", "off"},
    {CFG_INI_VAR_ZANTH_FLOW, 20, "zanth_flow", "on"},
    {CFG_INI_VAR_TMWV_COMBOBOX_COLUMN, 21, "tmwv_combobox_column", "on"},
    {CFG_INI_VAR_OAWV_USE_QML, 22, "oawv_use_qml", "on"},
    {CFG_INI_VAR_EPEV_USE_DETAILED_POWER_SUMMARY, 23, "epev_use_detailed_power_summary", "off"},
    {CFG_INI_VAR_VELMAR_ENABLE_BOARD, 24, "velmar_enable_board", "on"},
    {CFG_INI_VAR_VELMAR_ENABLE_BOARD_FOR_ZP, 25, "velmar_enable_board_for_zp", "on"},
    {CFG_INI_VAR_ENABLE_BSG_SGATE_DIRECT, 26, "enable_bsg_sgate_direct", "on"},
    {CFG_INI_VAR_DNI_INCLUDE_ASSEMBLER_IN_FLOW, 27, "dni_include_assembler_in_flow", "on"},
    {CFG_INI_VAR_GUI_ENABLE_TCL_COMMAND_MODE, 28, "gui_enable_tcl_command_mode", "on"},
    {CFG_INI_VAR_GUI_ENABLE_LOGGING_USER_ACTION, 29, "gui_enable_logging_user_action", "on"},
};

class CATALOGUE_ENTRY_TEST : public STORE_TEST, public testing::WithParamInterface<ENTRY>
{
};

TEST_P(CATALOGUE_ENTRY_TEST, has_its_position_name_and_default)
{
    const auto& [position, number, name, default_text] = GetParam();
    EXPECT_EQ(position, number);
    EXPECT_STREQ(cfg_enum_based_defaults[static_cast<std::size_t>(position)].first, name);
    EXPECT_STREQ(cfg_enum_based_defaults[static_cast<std::size_t>(position)].second, default_text);
    EXPECT_EQ(cfg_get_default_value(position), default_text);
    EXPECT_EQ(cfg_get_ini_var_enum_from_string(name), position);
    EXPECT_EQ(cfg_ini_get_string_to_id_map().at(name), position);
}

TEST_P(CATALOGUE_ENTRY_TEST, is_read_with_its_default_by_position_and_by_name)
{
    const auto& [position, number, name, default_text] = GetParam();
    make_empty_store();
    const bool on = std::string(default_text) == "on";
    EXPECT_EQ(cfg_is_on(position), on);
    EXPECT_EQ(cfg_is_on(name), on);
    EXPECT_EQ(cfg_is_on(std::string(name)), on);
    EXPECT_EQ(cfg_get_value(position), default_text);
    EXPECT_EQ(cfg_get_value(name), "");
    EXPECT_EQ(cfg_get_int_value(position), 0);

    cfg_set_value(position, on ? "off" : "on");
    EXPECT_EQ(cfg_is_on(position), !on);
    EXPECT_EQ(cfg_is_on(name), !on);
    EXPECT_EQ(cfg_get_value(position), on ? "off" : "on");
}

INSTANTIATE_TEST_SUITE_P(, CATALOGUE_ENTRY_TEST, testing::ValuesIn(entries));

TEST_F(VARIABLE_CATALOGUE_TEST, holds_thirty_variables)
{
    EXPECT_EQ(CFG_INI_VAR_BEGIN, 0);
    EXPECT_EQ(CFG_INI_VAR_END, 30);
    EXPECT_EQ(std::size(entries), 30U);
    EXPECT_EQ(cfg_enum_based_defaults.size(), 30U);
    EXPECT_EQ(cfg_ini_get_string_to_id_map().size(), 30U);
}

TEST_F(VARIABLE_CATALOGUE_TEST, finds_names_by_their_exact_spelling)
{
    make_empty_store();
    EXPECT_EQ(cfg_get_ini_var_enum_from_string("msg_sqlite"), std::optional(CFG_INI_VAR_MSG_SQLITE));
    EXPECT_EQ(static_cast<int>(*cfg_get_ini_var_enum_from_string("msg_sqlite")), 18);
    EXPECT_EQ(cfg_get_ini_var_enum_from_string("MSG_SQLITE"), std::nullopt);
    cfg_set_value("msg_sqlite", "a text");
    EXPECT_EQ(cfg_get_value("MSG_SQLITE"), "a text"); // the record table does not mind
}

TEST_F(VARIABLE_CATALOGUE_TEST, knows_no_other_names)
{
    for (const char* const name : {"", "a", "zzz", "msg_sqlit", "msg_sqlite_", " msg_sqlite", "msg_sqlite ", "on"})
        EXPECT_EQ(cfg_get_ini_var_enum_from_string(name), std::nullopt) << name;
}

TEST_F(VARIABLE_CATALOGUE_TEST, refuses_a_null_name)
{
    try
    {
        cfg_get_ini_var_enum_from_string(nullptr);
        FAIL() << "no exception";
    }
    catch (const std::logic_error& error)
    {
        EXPECT_EQ(error.what(), message_of_null_text);
    }
}

TEST_F(VARIABLE_CATALOGUE_TEST, needs_no_store_and_no_lock)
{
    cfg_get_default_value(CFG_INI_VAR_MSG_SQLITE);
    cfg_get_ini_var_enum_from_string("msg_sqlite");
    cfg_ini_get_string_to_id_map();
    EXPECT_FALSE(store_exists());
    EXPECT_EQ(fake::thr::locks(), 0);
}

TEST_F(VARIABLE_CATALOGUE_TEST, gives_the_same_map_each_time)
{
    EXPECT_EQ(&cfg_ini_get_string_to_id_map(), &cfg_ini_get_string_to_id_map());
}

TEST_F(VARIABLE_CATALOGUE_TEST, the_last_default_is_on_and_the_one_behind_it_is_reported)
{
    EXPECT_EQ(cfg_get_default_value(static_cast<CFG_INI_VAR_ENUM>(29)), "on");
    fake::err::throw_from_now_on();
    EXPECT_THROW(cfg_get_default_value(static_cast<CFG_INI_VAR_ENUM>(30)), fake::err::REPORTED);
    EXPECT_EQ(fake::err::reports(),
              (std::vector<fake::err::REPORT>{{"ini_enum >= CFG_INI_VAR_BEGIN && ini_enum < CFG_INI_VAR_END", "CFG_INI",
                                               "cfg_ini/cfg_ini_reader", 2349}}));
}

// --- Positions that are none ---

struct CALL_BY_POSITION
{
    const char* name;
    void (*call)(CFG_INI_VAR_ENUM);
};

void PrintTo(const CALL_BY_POSITION& row, std::ostream* out)
{
    *out << row.name;
}

class POSITION_CHECK_TEST : public STORE_TEST, public testing::WithParamInterface<CALL_BY_POSITION>
{
};

const CFG_INI_VAR_ENUM outside[] = {static_cast<CFG_INI_VAR_ENUM>(-1), static_cast<CFG_INI_VAR_ENUM>(30),
                                    static_cast<CFG_INI_VAR_ENUM>(31), static_cast<CFG_INI_VAR_ENUM>(2147483647),
                                    static_cast<CFG_INI_VAR_ENUM>(-2147483647 - 1)};

TEST_P(POSITION_CHECK_TEST, reports_and_lets_the_reporter_throw)
{
    fake::err::throw_from_now_on();
    for (const CFG_INI_VAR_ENUM position : outside)
    {
        fake::err::throw_from_now_on();
        EXPECT_THROW(GetParam().call(position), fake::err::REPORTED);
        ASSERT_EQ(fake::err::reports().size(), 1U);
        const fake::err::REPORT report = fake::err::reports().front();
        EXPECT_EQ(report.condition, "ini_enum >= CFG_INI_VAR_BEGIN && ini_enum < CFG_INI_VAR_END");
        EXPECT_EQ(report.module, "CFG_INI");
        EXPECT_EQ(report.source_file, "cfg_ini/cfg_ini_reader");
        // The number by which hosts know the report of the default's reader.
        EXPECT_EQ(report.line == 2349, std::string(GetParam().name) == "cfg_get_default_value") << report.line;
        EXPECT_GT(report.line, 0);
        fake::reset();
    }
    EXPECT_FALSE(store_exists()); // the check comes before any reading
}

TEST_P(POSITION_CHECK_TEST, ends_the_process_should_the_reporter_return)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(GetParam().call(CFG_INI_VAR_END), testing::KilledBySignal(SIGABRT),
                "CFG_INI: ini_enum >= CFG_INI_VAR_BEGIN && ini_enum < CFG_INI_VAR_END");
}

INSTANTIATE_TEST_SUITE_P(
    , POSITION_CHECK_TEST,
    testing::Values(CALL_BY_POSITION{"cfg_get_default_value", [](CFG_INI_VAR_ENUM var) { cfg_get_default_value(var); }},
                    CALL_BY_POSITION{"cfg_is_on", [](CFG_INI_VAR_ENUM var) { cfg_is_on(var); }},
                    CALL_BY_POSITION{"cfg_get_int_value", [](CFG_INI_VAR_ENUM var) { cfg_get_int_value(var); }},
                    CALL_BY_POSITION{"cfg_get_value", [](CFG_INI_VAR_ENUM var) { cfg_get_value(var); }},
                    CALL_BY_POSITION{"cfg_set_value", [](CFG_INI_VAR_ENUM var) { cfg_set_value(var, "1"); }},
                    CALL_BY_POSITION{"cfg_set_value, the value null",
                                     [](CFG_INI_VAR_ENUM var) { cfg_set_value(var, nullptr); }},
                    CALL_BY_POSITION{"cfg_set_int_value", [](CFG_INI_VAR_ENUM var) { cfg_set_int_value(var, 1); }},
                    CALL_BY_POSITION{"cfg_set_on", [](CFG_INI_VAR_ENUM var) { cfg_set_on(var); }},
                    CALL_BY_POSITION{"cfg_set_off", [](CFG_INI_VAR_ENUM var) { cfg_set_off(var); }}));
}
