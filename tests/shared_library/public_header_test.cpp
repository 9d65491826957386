// First and alone: the header needs no other before it.
#include "cfg_ini/cfg_ini.h"

#include <typeinfo>

#include "tests/support/isolated_test.h"

static_assert(__cplusplus == 201703L, "compiled as C++17");

namespace
{
// Through the shared library alone, each exported function of the internal variable store at least once.
class PUBLIC_HEADER_TEST : public ISOLATED_TEST
{
protected:
    ~PUBLIC_HEADER_TEST() override
    {
        cfg_close_ini_file();
    }
};

class LISTENER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        value = cfg_get_int_value("max_fanout", -1);
    }
    void reset_to_default() override
    {
        value = 0;
    }
    int value = -2;
};

TEST_F(PUBLIC_HEADER_TEST, layers_settings_files)
{
    const SCOPED_POINT_LOCALE locale;
    write_file(temporary.path("project/velmar.ini"), "max_fanout = 12 # twelve\nmode = main\n");
    write_file(temporary.path("project/regtest.ini"), "mode = regtest\n");
    write_file(temporary.path("appended.ini"), "mode = appended\nratio = 2.5\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("appended.ini"));
    environment.set("VELMAR_INI_VARS", "inline=on");

    cfg_read_project_ini_file(temporary.path("project").c_str(), true);
    EXPECT_EQ(cfg_get_int_value("max_fanout", 0), 12);
    EXPECT_EQ(cfg_get_value("mode"), "regtest");
    EXPECT_EQ(cfg_get_double_value("ratio", 0), 2.5);
    EXPECT_TRUE(cfg_is_on("inline"));
    EXPECT_TRUE(cfg_ini_is_external("inline"));
    EXPECT_FALSE(cfg_ini_is_external("ratio"));
    EXPECT_EQ(cfg_get_ini_file_path_name(), temporary.path("project/velmar.ini"));
    EXPECT_EQ(cfg_get_regtest_ini_file_path_name(), temporary.path("project/regtest.ini"));
    EXPECT_EQ(cfg_get_appended_envrionment_ini_file_path_name(), temporary.path("appended.ini"));

    cfg_read_ini_file(temporary.path("project/velmar.ini"));
    EXPECT_EQ(cfg_get_value("mode"), "appended");
    cfg_read_regtest_ini_file(temporary.path("project/regtest.ini"));
    EXPECT_EQ(cfg_get_value("mode"), "regtest");
    cfg_read_and_append_environment_ini_file(temporary.path("appended.ini"));
    EXPECT_EQ(cfg_get_value("mode"), "appended");

    EXPECT_EQ(cfg_get_default_ini_file(false), "");
    cfg_read_default_ini_file();
    EXPECT_EQ(cfg_get_int_value("max_fanout", 0), 0);
    cfg_read_ini_file();
    EXPECT_EQ(cfg_get_value("mode"), "appended");
}

TEST_F(PUBLIC_HEADER_TEST, answers_every_type_by_every_form_of_address)
{
    const std::string name = "number";
    const char* const characters = "number";
    cfg_set_int_value(name, 12);
    cfg_set_int_value(characters, 1);
    EXPECT_TRUE(cfg_is_on(name, false) && cfg_is_on(characters, false) && cfg_is_on(name) && cfg_is_on(characters));
    EXPECT_EQ(cfg_get_int_value(name, 0) + cfg_get_int_value(characters, 0), 2);
    EXPECT_EQ(cfg_get_uint_value(name, 0) + cfg_get_uint_value(characters, 0), 2U);
    EXPECT_EQ(cfg_get_double_value(name, 0) + cfg_get_double_value(characters, 0), 2.0);
    EXPECT_EQ(cfg_get_value(name) + cfg_get_value(characters), "11");
    EXPECT_EQ(cfg_get_value_as<bool>(name), cfg_get_value_as<bool>(characters));
    EXPECT_EQ(cfg_get_value_as<int>(name), cfg_get_value_as<int>(characters));
    EXPECT_EQ(cfg_get_value_as<std::string>(name), cfg_get_value_as<std::string>(characters));
    EXPECT_EQ(cfg_get_value_as<double>(name), cfg_get_value_as<double>(characters));
    EXPECT_EQ(cfg_get_value_as<float>(name), cfg_get_value_as<float>(characters));
    EXPECT_EQ(cfg_get_value_as<float>(name), 1.0F);

    cfg_set_on(name);
    EXPECT_EQ(cfg_get_value_as<bool>(name), true);
    cfg_set_off(name);
    EXPECT_EQ(cfg_get_value_as<bool>(name), false);
    cfg_process_ini_string("a=1;b=2", true);
    EXPECT_EQ(cfg_get_value("b"), "2");
    EXPECT_THROW(cfg_get_value(static_cast<const char*>(nullptr)), std::logic_error);
}

TEST_F(PUBLIC_HEADER_TEST, answers_by_catalogue)
{
    EXPECT_TRUE(cfg_is_on(CFG_INI_VAR_MSG_SQLITE));
    EXPECT_EQ(cfg_get_default_value(CFG_INI_VAR_MSG_SQLITE), "on");
    EXPECT_EQ(cfg_ini_get_string_to_id_map().size(), 30U);
    EXPECT_EQ(cfg_get_ini_var_enum_from_string("msg_sqlite"), CFG_INI_VAR_MSG_SQLITE);
    cfg_set_off(CFG_INI_VAR_MSG_SQLITE);
    EXPECT_EQ(cfg_get_value(CFG_INI_VAR_MSG_SQLITE), "off");
    cfg_set_on(CFG_INI_VAR_MSG_SQLITE);
    cfg_set_int_value(CFG_INI_VAR_MSG_SQLITE, 7);
    EXPECT_EQ(cfg_get_int_value(CFG_INI_VAR_MSG_SQLITE), 7);
    cfg_set_value(CFG_INI_VAR_MSG_SQLITE, "text");
    EXPECT_EQ(cfg_get_value(CFG_INI_VAR_MSG_SQLITE), "text");
}

TEST_F(PUBLIC_HEADER_TEST, tells_host_objects_of_changes)
{
    cfg_read_ini_file("");
    LISTENER listener("max_fanout");
    CFG_INI_CALLBACK& base = listener;
    EXPECT_EQ(dynamic_cast<LISTENER*>(&base), &listener);
    EXPECT_EQ(typeid(base), typeid(LISTENER));
    cfg_set_int_value("max_fanout", 12);
    EXPECT_EQ(listener.value, 12);
    cfg_close_ini_file();
    EXPECT_EQ(listener.value, 0);

    const CFG_INI_CALLBACK plain("max_fanout");
    cfg_set_int_value("max_fanout", 13);
    EXPECT_EQ(listener.value, 13);
}

TEST_F(PUBLIC_HEADER_TEST, answers_the_hosts_questions)
{
    EXPECT_IN_FRESH_PROCESS(
        cfg_set_on("jtag_auto_config"); EXPECT_TRUE(cfg_jtag_auto_config()); EXPECT_FALSE(cfg_is_jtag_server_mode());
        EXPECT_FALSE(cfg_is_benchmarking_mode()); EXPECT_TRUE(cfg_is_vexe_mode()); EXPECT_TRUE(cfg_is_vexe_cmd_mode());
        EXPECT_TRUE(cfg_is_vexe_rpt_mode()); cfg_force_vexe_mode_off(); EXPECT_FALSE(cfg_is_vexe_mode());
        EXPECT_FALSE(cfg_is_vexe_ini_applied()); cfg_vexe_ini_applied(); EXPECT_TRUE(cfg_is_vexe_ini_applied()));
    int level = 0;
    cfg_set_int_value("debug_msg_level", 5);
    cfg_check_debug_ini_values(nullptr, nullptr, &level);
    EXPECT_EQ(level, 5);
}

TEST_F(PUBLIC_HEADER_TEST, reports_usage)
{
    write_file(temporary.path("velmar.ini"), "outside = 1\n");
    cfg_read_ini_file(temporary.path("velmar.ini"));
    cfg_set_value("inside", "2");
    cfg_get_value("inside");

    std::vector<std::pair<std::string, std::string>> ranks;
    cfg_get_most_accessed(&ranks);
    ASSERT_EQ(ranks.size(), 4U);
    EXPECT_EQ(ranks.front(), std::pair(std::string("inside"), std::string("1")));
    std::string name;
    std::string value;
    EXPECT_EQ(cfg_get_single_most_accessed_ini(name, value), 1U);
    EXPECT_EQ(name + "=" + value, "inside=2");
    std::map<std::string, std::string> used;
    cfg_get_used_variable_value_map(&used);
    EXPECT_EQ(used, (std::map<std::string, std::string>{{"inside", "2"}}));
    std::map<std::string, std::string> external;
    cfg_get_external_variable_value_map(&external);
    EXPECT_EQ(external, (std::map<std::string, std::string>{{"outside", "1"}}));
}

TEST_F(PUBLIC_HEADER_TEST, answers_late_bound_callers)
{
    cfg_set_value("a", "12");
    EXPECT_TRUE(cfg_dyn_is_on("unknown", true));
    int number = 0;
    cfg_dyn_get_int_value("a", &number, 0);
    EXPECT_EQ(number, 12);
    std::string text;
    cfg_dyn_get_value("a", &text);
    EXPECT_EQ(text, "12");
    const char* const name = "a";
    char buffer[3];
    EXPECT_EQ(cfg_ini_get_value_for_zanth(nullptr, &name, buffer, 2), 0);
    EXPECT_STREQ(buffer, "12");
}

TEST_F(PUBLIC_HEADER_TEST, reports_broken_preconditions_to_the_platform)
{
    testing::internal::CaptureStderr();
    cfg_read_project_ini_file(nullptr, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Internal Error: CFG_INI: proj_dirpath != NULL, file cfg_ini/cfg_ini_reader, line 1309\n");
}
}
