// The answers are remembered for the life of the process, so each test asks in a process of its own.
#include "tests/support/store_test.h"

namespace
{
using MODE_SWITCHES_TEST = STORE_TEST;

struct DEBUG_VALUES
{
    bool global = true;
    bool per_subsystem = true;
    int level = -99;

    bool operator==(const DEBUG_VALUES&) const = default;
};

void PrintTo(const DEBUG_VALUES& values, std::ostream* out)
{
    *out << values.global << ' ' << values.per_subsystem << ' ' << values.level;
}

DEBUG_VALUES debug_values()
{
    DEBUG_VALUES values;
    cfg_check_debug_ini_values(&values.global, &values.per_subsystem, &values.level);
    return values;
}

// --- Remembered questions ---

struct QUESTION
{
    const char* variable;
    bool (*ask)();
    bool answer_when_unset;
};

void PrintTo(const QUESTION& row, std::ostream* out)
{
    *out << row.variable;
}

class QUESTION_TEST : public STORE_TEST, public testing::WithParamInterface<QUESTION>
{
};

TEST_P(QUESTION_TEST, is_answered_by_default_when_nothing_is_set)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_EQ(GetParam().ask(), GetParam().answer_when_unset);
                            EXPECT_EQ(all_values(), (ASSIGNMENTS{{GetParam().variable, ""}})));
}

TEST_P(QUESTION_TEST, is_answered_the_other_way_when_its_variable_is_on)
{
    write_file(temporary.path("home/velmar.ini"), std::string(GetParam().variable) + " = on\n");
    environment.set("HOME", temporary.path("home"));
    EXPECT_IN_FRESH_PROCESS(EXPECT_EQ(GetParam().ask(), !GetParam().answer_when_unset));
}

TEST_P(QUESTION_TEST, is_answered_by_default_when_its_variable_is_no_boolean)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_value(GetParam().variable, "maybe");
                            EXPECT_EQ(GetParam().ask(), GetParam().answer_when_unset));
}

TEST_P(QUESTION_TEST, is_asked_of_the_variable_once)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_on(GetParam().variable); GetParam().ask(); GetParam().ask(); GetParam().ask();
                            EXPECT_EQ(record_of(GetParam().variable)->access_count, 1U));
}

TEST_P(QUESTION_TEST, keeps_its_answer_whatever_becomes_of_the_variable)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_on(GetParam().variable); EXPECT_EQ(GetParam().ask(), !GetParam().answer_when_unset);
                            cfg_set_off(GetParam().variable);
                            EXPECT_EQ(GetParam().ask(), !GetParam().answer_when_unset); cfg_close_ini_file();
                            EXPECT_EQ(GetParam().ask(), !GetParam().answer_when_unset); EXPECT_FALSE(store_exists()));
}

TEST_P(QUESTION_TEST, takes_no_lock_once_it_is_answered)
{
    EXPECT_IN_FRESH_PROCESS(GetParam().ask(); const long locks = fake::thr::locks(); GetParam().ask();
                            EXPECT_EQ(fake::thr::locks(), locks); EXPECT_EQ(fake::thr::depth(), 0));
}

TEST_P(QUESTION_TEST, is_asked_again_after_a_failure)
{
    EXPECT_IN_FRESH_PROCESS(fake::fio::before_current_directory(1, fake::out_of_memory);
                            EXPECT_THROW(GetParam().ask(), std::bad_alloc); EXPECT_EQ(fake::thr::depth(), 0);
                            cfg_set_on(GetParam().variable);
                            EXPECT_EQ(GetParam().ask(), !GetParam().answer_when_unset));
}

INSTANTIATE_TEST_SUITE_P(, QUESTION_TEST,
                         testing::Values(QUESTION{"jtag_auto_config", cfg_jtag_auto_config, false},
                                         QUESTION{"jtag_server_mode", cfg_is_jtag_server_mode, false},
                                         QUESTION{"enable_benchmarking_mode", cfg_is_benchmarking_mode, false},
                                         QUESTION{"disable_vexe_mode", cfg_is_vexe_mode, true},
                                         QUESTION{"disable_vexe_cmd_mode", cfg_is_vexe_cmd_mode, true},
                                         QUESTION{"disable_vexe_rpt_mode", cfg_is_vexe_rpt_mode, true}));

TEST_F(MODE_SWITCHES_TEST, benchmarking_says_so_on_its_first_call_only)
{
    EXPECT_IN_FRESH_PROCESS(
        cfg_set_on("enable_benchmarking_mode"); EXPECT_TRUE(cfg_is_benchmarking_mode());
        EXPECT_TRUE(cfg_is_benchmarking_mode()); EXPECT_EQ(
            fake::mem::messages(), (std::vector<fake::mem::MESSAGE>{{"CFG_INI", "Benchmarking Mode Enabled", false}})));
}

TEST_F(MODE_SWITCHES_TEST, benchmarking_is_remembered_only_once_it_was_said)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_on("enable_benchmarking_mode"); fake::mem::before_message(
                                1, [] { EXPECT_TRUE(cfg_is_benchmarking_mode()); }); // asks the variable as well
                            EXPECT_TRUE(cfg_is_benchmarking_mode()); EXPECT_EQ(fake::mem::messages().size(), 2U);
                            EXPECT_EQ(record_of("enable_benchmarking_mode")->access_count, 2U));
}

TEST_F(MODE_SWITCHES_TEST, no_benchmarking_says_nothing)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_FALSE(cfg_is_benchmarking_mode()); EXPECT_TRUE(fake::mem::messages().empty()));
}

TEST_F(MODE_SWITCHES_TEST, nothing_but_benchmarking_emits_messages)
{
    EXPECT_IN_FRESH_PROCESS(cfg_set_on("jtag_auto_config"); cfg_set_on("jtag_server_mode");
                            EXPECT_TRUE(cfg_jtag_auto_config()); EXPECT_TRUE(cfg_is_jtag_server_mode());
                            EXPECT_TRUE(fake::mem::messages().empty()));
}

TEST_F(MODE_SWITCHES_TEST, a_mode_may_be_asked_by_a_callback_of_the_reading_that_answers_it)
{
    class ASKER : public CFG_INI_CALLBACK
    {
    public:
        using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
        void refresh() override
        {
            answer = cfg_is_vexe_mode();
        }
        std::optional<bool> answer;
    };
    write_file(temporary.path("home/velmar.ini"), "disable_vexe_mode=on\nx=1\n");
    environment.set("HOME", temporary.path("home"));
    EXPECT_IN_FRESH_PROCESS(const ASKER asker("x"); EXPECT_FALSE(cfg_is_vexe_mode());
                            EXPECT_EQ(asker.answer, std::optional(false)); EXPECT_EQ(fake::thr::depth(), 0));
}

// --- Forcing the modes off ---

TEST_F(MODE_SWITCHES_TEST, a_mode_that_was_decided_while_the_lock_was_waited_for_is_not_decided_again)
{
    EXPECT_IN_FRESH_PROCESS(fake::thr::before_lock(1, [] { EXPECT_TRUE(cfg_is_vexe_mode()); });
                            EXPECT_TRUE(cfg_is_vexe_mode());
                            EXPECT_EQ(record_of("disable_vexe_mode")->access_count, 0U) << "read once");
}

TEST_F(MODE_SWITCHES_TEST, forcing_off_turns_all_three_modes_off_at_once)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_TRUE(cfg_is_vexe_mode()); EXPECT_FALSE(cfg_jtag_auto_config());
                            cfg_force_vexe_mode_off(); EXPECT_FALSE(cfg_is_vexe_mode());
                            EXPECT_FALSE(cfg_is_vexe_cmd_mode()); EXPECT_FALSE(cfg_is_vexe_rpt_mode());
                            EXPECT_FALSE(cfg_is_vexe_mode()));
}

TEST_F(MODE_SWITCHES_TEST, a_mode_first_asked_after_forcing_off_reads_its_variable)
{
    EXPECT_IN_FRESH_PROCESS(
        cfg_force_vexe_mode_off(); EXPECT_FALSE(cfg_is_vexe_mode());
        EXPECT_EQ(all_values(), (ASSIGNMENTS{{"disable_vexe_mode", ""}})); EXPECT_FALSE(cfg_is_vexe_cmd_mode());
        EXPECT_FALSE(cfg_is_vexe_rpt_mode()); EXPECT_EQ(
            all_values(),
            (ASSIGNMENTS{{"disable_vexe_cmd_mode", ""}, {"disable_vexe_mode", ""}, {"disable_vexe_rpt_mode", ""}})));
}

TEST_F(MODE_SWITCHES_TEST, forcing_off_reads_nothing_and_leaves_the_other_questions_alone)
{
    EXPECT_IN_FRESH_PROCESS(cfg_force_vexe_mode_off(); EXPECT_FALSE(store_exists()); cfg_set_on("jtag_auto_config");
                            EXPECT_TRUE(cfg_jtag_auto_config()); EXPECT_FALSE(cfg_is_vexe_ini_applied()));
}

TEST_F(MODE_SWITCHES_TEST, the_applied_mark_is_the_hosts_own)
{
    EXPECT_IN_FRESH_PROCESS(EXPECT_FALSE(cfg_is_vexe_ini_applied()); cfg_vexe_ini_applied();
                            EXPECT_TRUE(cfg_is_vexe_ini_applied()); EXPECT_TRUE(cfg_is_vexe_mode());
                            cfg_close_ini_file(); EXPECT_TRUE(cfg_is_vexe_ini_applied()));
}

// --- Debug-message settings ---

TEST_F(MODE_SWITCHES_TEST, debug_settings_with_nothing_set_are_off_off_and_two)
{
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 2}));
    EXPECT_EQ(all_values(), (ASSIGNMENTS{{"debug_msg", ""}, {"debug_msg_level", ""}, {"msg_debug_per_subsystem", ""}}));
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_come_from_the_settings_file)
{
    write_file(temporary.path("cwd/velmar.ini"), "debug_msg=on\nmsg_debug_per_subsystem=1\ndebug_msg_level=-4\n");
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{true, true, -4}));
}

TEST_F(MODE_SWITCHES_TEST, each_debug_setting_comes_from_its_own_variable)
{
    make_empty_store();
    cfg_set_on("debug_msg");
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{true, false, 2}));
    cfg_set_off("debug_msg");
    cfg_set_on("msg_debug_per_subsystem");
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, true, 2}));
}

TEST_F(MODE_SWITCHES_TEST, a_store_is_seen_at_the_next_call_which_clears_the_flag)
{
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 2}));
    EXPECT_FALSE(cfg_ini_dirty);
    cfg_set_value("debug_msg_level", "5");
    EXPECT_TRUE(cfg_ini_dirty);
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 5}));
    EXPECT_FALSE(cfg_ini_dirty);
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_are_not_read_again_while_nothing_changed)
{
    debug_values();
    const long locks = fake::thr::locks();
    debug_values();
    EXPECT_EQ(fake::thr::locks(), locks + 1);
    EXPECT_EQ(record_of("debug_msg")->access_count, 0U);
    cfg_set_on("anything");
    debug_values();
    EXPECT_EQ(record_of("debug_msg")->access_count, 1U);
    EXPECT_EQ(record_of("msg_debug_per_subsystem")->access_count, 1U);
    EXPECT_EQ(record_of("debug_msg_level")->access_count, 1U);
}

TEST_F(MODE_SWITCHES_TEST, null_places_still_refresh_the_settings)
{
    make_empty_store();
    cfg_set_value("debug_msg_level", "5");
    cfg_check_debug_ini_values(nullptr, nullptr, nullptr);
    EXPECT_FALSE(cfg_ini_dirty);
    EXPECT_EQ(record_of("debug_msg_level")->access_count, 1U);
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 5}));
    EXPECT_EQ(record_of("debug_msg_level")->access_count, 1U);
}

TEST_F(MODE_SWITCHES_TEST, each_place_may_be_null_by_itself)
{
    make_empty_store();
    cfg_process_ini_string("debug_msg=on;msg_debug_per_subsystem=on;debug_msg_level=7", true);
    bool global = false;
    bool per_subsystem = false;
    int level = 0;
    cfg_check_debug_ini_values(&global, nullptr, nullptr);
    EXPECT_TRUE(global);
    cfg_check_debug_ini_values(nullptr, &per_subsystem, nullptr);
    EXPECT_TRUE(per_subsystem);
    cfg_check_debug_ini_values(nullptr, nullptr, &level);
    EXPECT_EQ(level, 7);
}

TEST_F(MODE_SWITCHES_TEST, emptying_makes_the_settings_stale)
{
    make_empty_store();
    cfg_set_on("debug_msg");
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{true, false, 2}));
    cfg_close_ini_file();
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 2}));
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_read_under_one_held_lock)
{
    make_empty_store();
    std::vector<int> depths;
    fake::thr::before_lock(2, [&] { depths.push_back(fake::thr::depth()); });
    debug_values();
    EXPECT_EQ(depths, std::vector<int>{1});
    EXPECT_EQ(fake::thr::depth(), 0);
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_stay_stale_until_all_three_are_read)
{
    make_empty_store();
    cfg_process_ini_string("debug_msg=on;msg_debug_per_subsystem=on;debug_msg_level=7", true);
    // The first time that the lock is taken is for all, the next three are for one read each.
    for (int nth = 2; nth <= 4; ++nth)
    {
        fake::thr::before_lock(nth, fake::out_of_memory);
        EXPECT_THROW(debug_values(), std::bad_alloc);
        EXPECT_TRUE(cfg_ini_dirty) << nth;
        EXPECT_EQ(fake::thr::depth(), 0);
    }
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{true, true, 7}));
    EXPECT_FALSE(cfg_ini_dirty);
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_are_handed_out_after_the_lock_is_released)
{
    debug_values();
    DEBUG_VALUES values;
    DEBUG_VALUES at_release;
    fake::thr::before_unlock(1, [&] { at_release = values; });
    cfg_check_debug_ini_values(&values.global, &values.per_subsystem, &values.level);
    EXPECT_EQ(at_release, DEBUG_VALUES{}) << "as they were";
    EXPECT_EQ(values, (DEBUG_VALUES{false, false, 2}));
}

TEST_F(MODE_SWITCHES_TEST, debug_settings_survive_a_store_that_vanishes_before_the_lock_is_taken)
{
    make_empty_store();
    write_file(temporary.path("cwd/velmar.ini"), "debug_msg_level=6\n");
    fake::thr::before_lock(1, cfg_close_ini_file);
    EXPECT_EQ(debug_values(), (DEBUG_VALUES{false, false, 6}));
    EXPECT_EQ(fake::thr::depth(), 0);
}
}
