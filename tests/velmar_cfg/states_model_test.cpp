// What states are made of.
#include <fcntl.h>
#include <map>

#include "platform/gen/gen.h"
#include "tests/velmar_cfg/running_program.h"
#include "tests/velmar_cfg/tool_test.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/states/layer_lines.h"
#include "tools/velmar-cfg/states/listed_variables.h"
#include "tools/velmar-cfg/states/other_program.h"
#include "tools/velmar-cfg/states/perspective.h"
#include "tools/velmar-cfg/states/state_name.h"

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class STATES_MODEL : public ISOLATED_TEST
{
};

// --- Names ---

TEST_F(STATES_MODEL, a_name_says_what_it_names)
{
    write_file("directory/file", "");
    struct ROW
    {
        const char* text;
        STATE_NAME::KIND kind;
        const char* path;
        pid_t process;
    };
    const ROW rows[] = {
        {"directory", STATE_NAME::KIND::PROJECT, "directory", 0},
        {"directory/file", STATE_NAME::KIND::DOCUMENT, "directory/file", 0},
        {"missing", STATE_NAME::KIND::DOCUMENT, "missing", 0},
        {"-", STATE_NAME::KIND::DOCUMENT, "-", 0},
        {"pid:4711", STATE_NAME::KIND::PROCESS, "", 4711},
        {"./pid:4711", STATE_NAME::KIND::DOCUMENT, "./pid:4711", 0},
        {"exe:directory", STATE_NAME::KIND::EXECUTABLE, "directory", 0},
        {"PID:4711", STATE_NAME::KIND::DOCUMENT, "PID:4711", 0},
    };
    for (const ROW& row : rows)
    {
        const STATE_NAME name = state_name(row.text);
        EXPECT_EQ(name.kind, row.kind) << row.text;
        EXPECT_EQ(name.text, row.text);
        EXPECT_EQ(name.path, row.path) << row.text;
        EXPECT_EQ(name.process, row.process) << row.text;
    }
    for (const char* const text : {"", "pid:", "pid:0", "pid:-5", "pid: 5", "pid:5 ", "pid:5.0", "pid:2147483648"})
        EXPECT_THROW(state_name(text), TOOL_ERROR) << text;
}

// --- Perspectives ---

std::map<std::string, std::string> variables_now()
{
    SECRETS none;
    none.show_all();
    std::map<std::string, std::string> variables;
    for (const auto& [name, value] : environment_that_matters(none))
        variables[name] = value.value_or("(not set)");
    return variables;
}

TEST_F(STATES_MODEL, a_perspective_holds_until_it_ends)
{
    write_file("other/velmar.ini", "");
    environment.set("VELMAR_INI", "own");
    environment.set("VELMAR_INI_VARS", "");
    const std::map<std::string, std::string> before = variables_now();
    const std::string programs_before = gen_get_module_path();
    PERSPECTIVE other;
    other.environment =
        std::vector<ENVIRONMENT_VARIABLE>{{"VELMAR_INI", std::nullopt}, {"HOME", "its home"}, {"VELMAR2_INI", ""}};
    other.directory = OPEN_FILE(open("other", O_PATH | O_DIRECTORY | O_CLOEXEC));
    other.installation = installation_of_programs("/opt/velmar/bin");
    try
    {
        const PERSPECTIVE_IN_EFFECT in_effect(other);
        EXPECT_EQ(variables_now().at("VELMAR_INI"), "(not set)");
        EXPECT_EQ(variables_now().at("HOME"), "its home");
        EXPECT_EQ(variables_now().at("VELMAR2_INI"), "");
        EXPECT_EQ(access("velmar.ini", F_OK), 0);
        EXPECT_EQ(gen_get_module_path(), "/opt/velmar/bin/");
        EXPECT_EQ(gen_get_velmar_path(), "/opt/velmar/");
        throw std::runtime_error("reading fails");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(variables_now(), before);
    EXPECT_EQ(access("other/velmar.ini", F_OK), 0);
    EXPECT_EQ(gen_get_module_path(), programs_before);
    {
        const PERSPECTIVE own;
        const PERSPECTIVE_IN_EFFECT in_effect(own);
        EXPECT_EQ(variables_now(), before);
    }
    EXPECT_EQ(variables_now(), before);
}

TEST_F(STATES_MODEL, a_directory_that_is_gone_is_come_back_to)
{
    made_directory("other");
    PERSPECTIVE other;
    other.directory = OPEN_FILE(open("other", O_PATH | O_DIRECTORY | O_CLOEXEC));
    made_directory("gone");
    ASSERT_EQ(chdir("gone"), 0);
    ASSERT_EQ(rmdir("../gone"), 0);
    {
        const PERSPECTIVE_IN_EFFECT in_effect(other);
        EXPECT_EQ(access(".", F_OK), 0);
        EXPECT_NE(access("../gone", F_OK), 0);
    }
    EXPECT_EQ(access(".", F_OK), 0);
    char path[16];
    EXPECT_EQ(getcwd(path, sizeof path), nullptr); // it is in the removed directory again
    ASSERT_EQ(chdir(temporary.path("cwd").c_str()), 0);
}

TEST_F(STATES_MODEL, an_installation_is_the_directory_of_its_programs_or_that_above_bin)
{
    for (const auto& [programs, root] :
         {std::pair("/opt/bin", "/opt/"), std::pair("/opt/bin/", "/opt/"), std::pair("/bin", "/"),
          std::pair("/opt/robin", "/opt/robin/"), std::pair("/opt/bin/x", "/opt/bin/x/"), std::pair("/", "/")})
        EXPECT_EQ(installation_of_programs(programs).root, root) << programs;
    EXPECT_EQ(installation_of_root("/opt").programs, "/opt/bin/");
    EXPECT_EQ(installation_of_root("/opt/").root, "/opt/");
}

// --- Processes ---

TEST_F(STATES_MODEL, a_process_stays_the_one_that_was_opened)
{
    RUNNING_PROGRAM program(make_waiting_executable("program"), ".", {"HOME=/x"});
    const RUNNING_PROCESS opened(program.number());
    const OTHER_PROGRAM seen = opened.look();
    EXPECT_EQ(seen.executable, temporary.path("cwd/program"));
    EXPECT_EQ(seen.directory, temporary.path("cwd"));
    EXPECT_EQ(seen.perspective.installation->root, temporary.path("cwd/"));
    ASSERT_EQ(seen.perspective.environment->size(), 6U);
    for (const auto& [name, value] : *seen.perspective.environment)
        EXPECT_EQ(value, name == "HOME" ? std::optional<std::string>("/x") : std::nullopt) << name;
    program.end();
    try
    {
        opened.look();
        FAIL() << "it has ended";
    }
    catch (const TOOL_ERROR& error)
    {
        EXPECT_EQ(error.exit_code, EXIT_CODE::BAD_INPUT);
        EXPECT_THAT(error.what(), HasSubstr(" has ended; name one that runs"));
    }
}

// --- Lines ---

LAYER layer_of(LAYER_KIND kind, const std::string& text)
{
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{layer_code(kind), text, {}})};
}

TEST_F(STATES_MODEL, each_line_has_an_effect)
{
    const SETTINGS settings(
        {layer_of(LAYER_KIND::MAIN_FILE, "a=1\n# note\n\nA=2\nno\nname only # x\n  // all\nb=1\n=5\n"),
         layer_of(LAYER_KIND::INLINE_TEXT, "b=2;;x; ;=3;c=")});
    std::vector<std::string> lines;
    for_each_layer_line(settings,
                        [&](const LAYER_LINE& line)
                        {
                            lines.push_back(location_as_text(location_of(settings.layers(), line.statement)) + " " +
                                            effect_word(line.effect) +
                                            (line.winner ? " to " + location_as_text(*line.winner) : ""));
                        });
    EXPECT_THAT(lines, ElementsAre("main:1 lost to main:4", "main:4 counts", "main:5 ignored", "main:6 ignored",
                                   "main:8 lost to inline:1", "main:9 counts", "inline:1 counts", "inline:3 ignored",
                                   "inline:5 ignored", "inline:6 ignored"));
}

// --- Lists ---

std::vector<std::string> listed(const STATE& state, const LISTED_KINDS& kinds)
{
    const SETTINGS settings(state.layers);
    std::vector<std::string> names;
    for_each_listed(state, settings, kinds,
                    [&names](const LISTED_VARIABLE& variable)
                    {
                        names.push_back(
                            std::string(variable.name) + (variable.value ? "=" + std::string(*variable.value) : "") +
                            (variable.default_text.empty() ? "" : " [" + std::string(variable.default_text) + "]") +
                            (variable.reads > 0 ? " " + std::to_string(variable.reads) : ""));
                    });
    return names;
}

TEST_F(STATES_MODEL, the_lines_of_a_source_of_a_document_are_in_order)
{
    const auto layer = [](LAYER_KIND kind, const char* path, std::vector<LITERAL> literals)
    {
        LAYER made{kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, {}, {}})};
        made.literals = std::make_shared<const std::vector<LITERAL>>(std::move(literals));
        return made;
    };
    const SETTINGS settings(LAYERS{layer(LAYER_KIND::MAIN_FILE, "m.ini", {{"a", "1", 5}, {"b", "1", 9}}),
                                   layer(LAYER_KIND::MAIN_FILE, "m.ini", {{"c", "1", 3}, {"b", "2", 7}}),
                                   layer(LAYER_KIND::APPENDED_FILE, "a.ini", {{"a", "2", 1}})});
    std::vector<std::string> lines;
    for_each_layer_line(settings,
                        [&lines](const LAYER_LINE& line)
                        {
                            lines.push_back(std::to_string(line.statement.position) + " " +
                                            std::string(line.statement.text) + " " + effect_word(line.effect));
                        });
    EXPECT_EQ(lines,
              (std::vector<std::string>{"3 c=1 counts", "5 a=1 lost", "7 b=2 counts", "9 b=1 lost", "1 a=2 counts"}));
}

TEST_F(STATES_MODEL, lists_what_is_changed)
{
    STATE state;
    // The catalogue's default of msg_sqlite is on.
    for (const auto& [value, changed] :
         {std::pair("on", false), std::pair("1", false), std::pair("TRUE", false), std::pair("off", true),
          std::pair("0", true), std::pair("maybe", true), std::pair("", true)})
    {
        state.layers = {layer_of(LAYER_KIND::MAIN_FILE, "MSG_sqlite=" + std::string(value) + "\nother=1\n")};
        EXPECT_EQ(listed(state, {.only_changed = true}).size(), changed ? 1U : 0U) << value;
    }
    state.layers = {layer_of(LAYER_KIND::APPENDED_FILE, "msg_sqlite=off\n")};
    EXPECT_THAT(listed(state, {.only_changed = true}), ElementsAre("msg_sqlite=off [on]"));
    EXPECT_THAT(listed(state, {.only_external = true, .only_changed = true}), IsEmpty());
}

TEST_F(STATES_MODEL, what_has_no_default_is_changed_once_it_is_set)
{
    STATE state;
    for (const auto& [name, value, changed] :
         {std::tuple("debug_msg", "on", true), std::tuple("DEBUG_msg", "off", true),
          std::tuple("cfg_max_to_report", "7", true), std::tuple("debug_msg", "", false),
          std::tuple("debug_msgs", "on", false)})
    {
        state.layers = {layer_of(LAYER_KIND::MAIN_FILE, std::string(name) + "=" + value + "\n")};
        EXPECT_EQ(listed(state, {.only_changed = true}).size(), changed ? 1U : 0U) << name << "=" << value;
    }
}

TEST_F(STATES_MODEL, lists_what_is_known_and_not_set)
{
    STATE state;
    state.layers = {layer_of(LAYER_KIND::MAIN_FILE, "MSG_sqlite=off\nzz=1\nZ=2\n")};
    const std::vector<std::string> all = listed(state, {.unset_too = true});
    EXPECT_EQ(all.size(), 41U + 2U); // 30 of the catalogue, 11 of the library's own, two others
    EXPECT_THAT(all, testing::Contains("MSG_sqlite=off [on]"));
    EXPECT_THAT(all, testing::Contains("debug_msg"));
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    state.knows_unset = false;
    state.limits = "it holds little";
    EXPECT_THROW(require_listed(state, {.unset_too = true}), TOOL_ERROR);
    EXPECT_NO_THROW(require_listed(state, {}));
}

TEST_F(STATES_MODEL, lists_by_reads)
{
    STATE state;
    EXPECT_THROW(require_listed(state, {.by_reads = true}), TOOL_ERROR);
    state.layers = {layer_of(LAYER_KIND::MAIN_FILE, "b=1\na=2\nnever=3\nc=4\n")};
    state.reads = {{"asked", 9}, {"C", 5}, {"a", 3}, {"b", 3}};
    EXPECT_THAT(listed(state, {.by_reads = true}), ElementsAre("asked 9", "c=4 5", "a=2 3", "b=1 3", "never=3"));
}

TEST_F(STATES_MODEL, lists_each_variable_once)
{
    STATE state;
    state.reads = {{"asked", 9}, {"MSG_SQLITE", 3}, {"debug_msg", 2}};
    state.snapshot.emplace().not_recorded = {"DEBUG_MSG"};
    const std::vector<std::string> all = listed(state, {.unset_too = true, .by_reads = true});
    EXPECT_EQ(all.size(), 41U + 1U); // what is known, and "asked"
    for (const char* const name : {"asked", "msg_sqlite", "debug_msg"})
    {
        const auto is_of_name = [name](const std::string& row)
        { return gen_stricmp(row.substr(0, row.find(' ')).c_str(), name) == 0; };
        EXPECT_EQ(std::ranges::count_if(all, is_of_name), 1) << name;
    }
}

// --- Differences ---

SNAPSHOT snapshot_of(const std::vector<std::pair<std::string, std::string>>& rows, bool of_run = false)
{
    SNAPSHOT snapshot;
    snapshot.product = of_run ? "" : "velmar";
    snapshot.of_run = of_run;
    snapshot.lossy = of_run;
    snapshot.knows_unset = !of_run; // as of version 1
    const LAYER_KIND kind = of_run ? LAYER_KIND::UNKNOWN : LAYER_KIND::MAIN_FILE;
    for (const auto& [name, value] : rows)
    {
        LAYER_SET layers;
        layers.insert(kind);
        snapshot.variables.add(
            {name, value, layers.mark_external(), {kind, "velmar.ini", 1}, layers, read_typed(value)});
    }
    return snapshot;
}

// "name: 1 | 2" of each variable that differs, with a "*" where every type reads the same.
std::vector<std::string> differences_of(const SNAPSHOT& a, const SNAPSHOT& b)
{
    const auto text = [](const std::optional<SNAPSHOT_VARIABLE>& row)
    { return row ? std::string(row->value) : std::string("-"); };
    std::vector<std::string> all;
    for (const VARIABLE_DIFFERENCE& row : compare_snapshots(a, b).variables)
        all.push_back(row.name + ": " + text(row.a) + " | " + text(row.b) + (row.same_in_every_type ? " *" : ""));
    return all;
}

TEST_F(STATES_MODEL, values_are_compared_as_texts)
{
    const SNAPSHOT a = snapshot_of({{"bits", "0x10"}, {"Name", "1"}, {"number", "12"}, {"on", "on"}, {"text", "abc"}});
    const SNAPSHOT b =
        snapshot_of({{"bits", "0x11"}, {"nAME", "1"}, {"number", "012"}, {"on", "TRUE"}, {"text", "xyz"}});
    EXPECT_THAT(differences_of(a, b),
                ElementsAre("bits: 0x10 | 0x11", "number: 12 | 012 *", "on: on | TRUE *", "text: abc | xyz"));
}

TEST_F(STATES_MODEL, what_a_run_cannot_know_is_no_difference)
{
    SNAPSHOT run = snapshot_of({{"a", "1"}, {"b", "2"}, {"extra", "3"}}, true);
    SNAPSHOT whole = snapshot_of({{"A", "1"}, {"b", "4"}, {"c", "5"}});
    whole.environment.push_back({"HOME", "x"});
    whole.files.push_back({"main", "velmar.ini", 5, "hash"});
    whole.preferences.push_back({"K", "v", "d", {}, ""});
    EXPECT_THAT(differences_of(run, whole), ElementsAre("b: 2 | 4", "extra: 3 | -"));
    EXPECT_THAT(differences_of(whole, run), ElementsAre("b: 4 | 2", "extra: - | 3"));
    const SNAPSHOT other_run = snapshot_of({{"b", "2"}, {"c", "9"}}, true);
    EXPECT_THAT(differences_of(run, other_run), IsEmpty());
    const SNAPSHOT_DIFFERENCES differences = compare_snapshots(run, whole);
    EXPECT_TRUE(differences.environment.empty() && differences.files.empty() && differences.preferences.empty() &&
                differences.installation.empty());
    EXPECT_EQ(differences.variables.front().made_by, LAYER_KIND::UNKNOWN);
    run.release = "23.3";
    whole.release = "23.4";
    EXPECT_EQ(compare_snapshots(run, whole).installation.size(), 1U);
}

TEST_F(STATES_MODEL, bytes_that_a_run_report_lost_are_no_difference)
{
    const SNAPSHOT run = snapshot_of({{"n\xef\xbf\xbd", "v\xef\xbf\xbd"}, {"m", "w\xef\xbf\xbd"}}, true);
    const SNAPSHOT whole = snapshot_of({{"n\xff", "v\xfe"}, {"m", "x\xff"}});
    EXPECT_THAT(differences_of(run, whole), ElementsAre("m: w\xef\xbf\xbd | x\xff"));
    EXPECT_THAT(differences_of(whole, run), ElementsAre("m: x\xff | w\xef\xbf\xbd"));
}

TEST_F(STATES_MODEL, marks_are_compared_with_what_stands_in_their_place)
{
    const auto mark_under = [](char key, std::string_view text) {
        return mark_of({std::string(16, key), std::string(16, text.front()), true});
    };
    const auto own = [&mark_under](std::string_view text) { return mark_under('1', text); };
    const std::string a = own("a");
    const std::string other = mark_under('2', "a");
    struct ROW
    {
        std::string masked;
        const char* plain;
        SAMENESS sameness;
        SAMENESS without_key;
    };
    constexpr SAMENESS same = SAMENESS::SAME;
    constexpr SAMENESS different = SAMENESS::DIFFERENT;
    constexpr SAMENESS unknown = SAMENESS::UNKNOWN;
    for (const ROW& row :
         {ROW{a, "a", same, unknown}, ROW{a, "b", different, unknown}, ROW{a, "1", different, different},
          ROW{a, "", different, different}, ROW{other, "a", unknown, unknown}, ROW{"x=" + a, "x=a", same, unknown},
          ROW{"x=" + a, "y=a", different, different}, ROW{"x=" + a, "x=", different, different},
          ROW{a + ";y", "a;y", same, unknown}, ROW{a + ";y", "a;z", different, different},
          ROW{a + ";y", "a;y;y", same, unknown}, ROW{a + ";" + own("b"), "a;b", same, unknown},
          ROW{a + ";" + own("b"), "a;c", unknown, unknown}, ROW{a + ";" + own("b"), "ab", different, different},
          ROW{a + own("b"), "ab", unknown, unknown}})
    {
        EXPECT_EQ(compare_masked(row.masked, row.plain, own), row.sameness) << row.masked << " and " << row.plain;
        EXPECT_EQ(compare_masked(row.plain, row.masked, own), row.sameness) << row.masked << " and " << row.plain;
        EXPECT_EQ(compare_masked(row.masked, row.plain, nullptr), row.without_key) << row.masked << " " << row.plain;
    }
    EXPECT_EQ(compare_masked(a, a, nullptr), same);
    EXPECT_EQ(compare_masked("x", "x", nullptr), same);
}

TEST_F(STATES_MODEL, what_a_run_left_unset_can_differ)
{
    SNAPSHOT run = snapshot_of({{"a", "1"}}, true);
    run.lossy = false;
    run.known_unset = {"B"};
    const SNAPSHOT whole = snapshot_of({{"a", "1"}, {"b", "2"}, {"c", "3"}});
    EXPECT_THAT(differences_of(run, whole), ElementsAre("b: - | 2"));
    EXPECT_THAT(differences_of(whole, run), ElementsAre("b: 2 | -"));
    const SNAPSHOT other_run = snapshot_of({{"b", "5"}, {"c", "6"}}, true);
    EXPECT_THAT(differences_of(run, other_run), ElementsAre("b: - | 5"));
    EXPECT_THAT(differences_of(other_run, run), ElementsAre("b: 5 | -"));
    run.known_unset.clear();
    run.knows_unset = true;
    run.not_recorded = {"C"};
    EXPECT_THAT(differences_of(run, whole), ElementsAre("b: - | 2")); // what c was is not known
    EXPECT_THAT(differences_of(other_run, run), ElementsAre("b: 5 | -"));
}

TEST_F(STATES_MODEL, bytes_that_a_later_run_report_has_are_compared)
{
    SNAPSHOT run = snapshot_of({{"a", "\xef\xbf\xbd"}, {"n\xef\xbf\xbd", "1"}}, true);
    run.lossy = false;
    const SNAPSHOT whole = snapshot_of({{"a", "\xff"}, {"n\xff", "2"}});
    EXPECT_THAT(differences_of(run, whole), ElementsAre("a: \xef\xbf\xbd | \xff", "n\xef\xbf\xbd: 1 | -"));
    SNAPSHOT lossy_run = snapshot_of({{"a", "\xef\xbf\xbd"}}, true);
    SNAPSHOT later_run = snapshot_of({{"a", "\xff"}}, true);
    later_run.lossy = false;
    EXPECT_THAT(differences_of(lossy_run, later_run), IsEmpty());
    EXPECT_THAT(differences_of(later_run, lossy_run), IsEmpty());
}

TEST_F(STATES_MODEL, differences_are_narrowed)
{
    SNAPSHOT a = snapshot_of({{"Debug_a", "1"}, {"b", "1"}});
    SNAPSHOT b = snapshot_of({{"debug_a", "2"}, {"b", "2"}});
    a.release = "23.3";
    b.release = "23.4";
    a.environment.push_back({"HOME", "x"});
    b.environment.push_back({"HOME", "y"});
    a.files.push_back({"main", "velmar.ini", 5, "hash"});
    b.files.push_back({"main", "velmar.ini", 5, "other"});
    a.preferences.push_back({"K", "v", "d", {}, ""});
    b.preferences.push_back({"K", "w", "d", {}, ""});
    const auto sizes = [](const SNAPSHOT_DIFFERENCES& differences)
    {
        return std::vector<std::size_t>{differences.installation.size(), differences.environment.size(),
                                        differences.files.size(), differences.variables.size(),
                                        differences.preferences.size()};
    };
    EXPECT_THAT(sizes(compare_snapshots(a, b)), ElementsAre(1, 1, 1, 2, 1));
    for (std::size_t kept = 0; kept < std::size(difference_sections); ++kept)
    {
        SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
        const std::vector<std::size_t> before = sizes(differences);
        keep_sections(differences, {difference_sections[kept]});
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(sizes(differences)[i], i == kept ? before[i] : 0U) << difference_sections[kept];
    }
    struct ROW
    {
        const char* pattern;
        std::vector<std::size_t> left;
    };
    for (const ROW& row : {ROW{"debug_*", {1, 1, 1, 1, 1}}, ROW{"b", {1, 1, 1, 1, 1}}, ROW{"home", {1, 0, 1, 2, 1}},
                           ROW{"main", {1, 1, 0, 2, 1}}, ROW{"k", {1, 1, 1, 2, 0}}, ROW{"release", {0, 1, 1, 2, 1}},
                           ROW{"*", {0, 0, 0, 0, 0}}, ROW{"", {1, 1, 1, 2, 1}}})
    {
        SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
        ignore_names(differences, {"nothing", row.pattern});
        EXPECT_EQ(sizes(differences), row.left) << row.pattern;
    }
}
}
