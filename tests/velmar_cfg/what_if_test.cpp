// Changes that are made to a state only to see what they would do.
#include "tests/velmar_cfg/tool_test.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/what_if.h"

namespace
{
using testing::AllOf;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::Not;

LAYER layer_of(LAYER_KIND kind, const std::string& text)
{
    const char* const path = is_file(kind) ? layer_code(kind) : inline_source;
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

WHAT_IF with(const std::string& name, const std::string& value)
{
    return {name, value};
}

WHAT_IF without(const std::string& name)
{
    return {name, std::nullopt};
}

// "max_fanout=12 at main:3" of each variable, by name.
std::vector<std::string> variables_of(const LAYERS& layers)
{
    const SETTINGS settings(layers);
    std::vector<std::string> all;
    for (const std::uint32_t index : settings.order_by_name())
    {
        const VARIABLE& variable = settings.variables()[index];
        all.push_back(std::string(settings.name_of(variable)) + "=" + std::string(settings.value_of(variable)) +
                      " at " + location_as_text(settings.location_of(variable)) +
                      (variable.layers.mark_external() ? " external" : ""));
    }
    return all;
}

struct CHANGE_ROW
{
    const char* what;
    const char* main;
    const char* inline_text;
    std::vector<WHAT_IF> changes;
    std::vector<std::string> expected;
};

const CHANGE_ROW change_rows[] = {
    {"nothing", "a=1\n", "b=2", {}, {"a=1 at main:1 external", "b=2 at VELMAR_INI_VARS:1 external"}},
    {"a value on top of a line", "a=1\n", "", {with("A", "2")}, {"a=2 at --with:1 external"}},
    {"a value of a new variable", "", "", {with("a", "2")}, {"a=2 at --with:1"}},
    {"the last of two values", "", "", {with("a", "1"), with("a", "2")}, {"a=2 at --with:2"}},
    {"a name and a value as they are", "", "", {with(" a ", " \"1\" # x ; y ")}, {" a = \"1\" # x ; y  at --with:1"}},
    {"an empty name and an empty value", "", "", {with("", ""), with("b", "")}, {"= at --with:1", "b= at --with:2"}},
    {"a value with an equals sign", "", "", {with("a", "b=c")}, {"a=b=c at --with:1"}},
    {"no assignment of a name",
     "a=1\nb=2\nA = 3\r\nc=4",
     "c=5;a=6",
     {without("a")},
     {"b=2 at main:2 external", "c=5 at VELMAR_INI_VARS:1 external"}},
    {"the last line", "b=2\na=1", "", {without("a")}, {"b=2 at main:1 external"}},
    {"the first item, which ends before the separator",
     "",
     "a=1;b=2:3",
     {without("a")},
     {"b=2:3 at VELMAR_INI_VARS:2 external"}},
    {"an item between others",
     "",
     "a=1:b=2:c=3;4",
     {without("b")},
     {"a=1 at VELMAR_INI_VARS:1 external", "c=3;4 at VELMAR_INI_VARS:3 external"}},
    {"the only item", "", "a=1", {without("a")}, {}},
    {"a value set, and taken away", "a=1\n", "", {with("a", "2"), without("a")}, {}},
    {"lines taken away, then a value", "a=1\n", "", {without("a"), with("a", "2")}, {"a=2 at --with:1"}},
    {"one of two values taken away",
     "",
     "",
     {with("a", "1"), with("b", "2"), without("a"), with("c", "3")},
     {"b=2 at --with:2", "c=3 at --with:3"}},
    {"what nothing sets", "a=1\n", "", {without("b")}, {"a=1 at main:1 external"}},
};

TEST(WHAT_IF_MODEL, changes_layers)
{
    for (const CHANGE_ROW& row : change_rows)
    {
        SECRETS secrets;
        const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, row.main),
                               layer_of(LAYER_KIND::INLINE_TEXT, row.inline_text)};
        EXPECT_THAT(variables_of(changed_layers(layers, row.changes, secrets)), ElementsAreArray(row.expected))
            << row.what;
        EXPECT_EQ(layers[0].source->bytes, row.main) << "the layers that were given";
    }
}

TEST(WHAT_IF_MODEL, changes_what_is_known_by_name_and_value)
{
    SECRETS secrets;
    LAYER layer = layer_of(LAYER_KIND::REGTEST_FILE, "");
    layer.literals = std::make_shared<const std::vector<LITERAL>>(
        std::vector<LITERAL>{{"a", "1", 5}, {"b=c", "2;3", 7}, {"d", "", 9}});
    layer.external = true;
    EXPECT_THAT(variables_of({layer}), ElementsAreArray({"a=1 at regtest:5 external", "b=c=2;3 at regtest:7 external",
                                                         "d= at regtest:9 external"}));
    EXPECT_THAT(variables_of(changed_layers({layer}, {without("A"), with("D", "4")}, secrets)),
                ElementsAreArray({"b=c=2;3 at regtest:7 external", "d=4 at --with:1 external"}));
    layer.external = false;
    layer.kind = LAYER_KIND::MAIN_FILE;
    EXPECT_EQ(variables_of({layer}).front(), "a=1 at regtest:5");
    EXPECT_EQ(layer.literals->size(), 3U);
}

TEST(WHAT_IF_MODEL, is_told_in_words)
{
    SECRETS secrets;
    EXPECT_EQ(changes_as_text({}, secrets), "");
    EXPECT_EQ(changes_as_text({with("a", "1 2"), without("b"), with("c", "")}, secrets),
              "with a=1 2, without b, with c=");
    EXPECT_EQ(changes_as_text({with("", "1"), without("")}, secrets), "with ''=1, without ''");
}

// --- Commands ---

class WHAT_IF_COMMANDS : public TOOL_TEST
{
protected:
    WHAT_IF_COMMANDS()
    {
        write_file("velmar.ini", "max_fanout = 12\n# note\nmax_fanout = 14\ntrace = on\n");
    }
};

TEST_F(WHAT_IF_COMMANDS, change_what_each_command_shows)
{
    const std::string path = temporary.path("cwd/velmar.ini");
    EXPECT_EQ(run({"get", "max_fanout", "--with", "MAX_fanout=16"}), (TOOL_RUN{0, "16\n", ""}));
    EXPECT_EQ(run({"get", "max_fanout", "--without", "max_fanout", "--default", "x"}), (TOOL_RUN{0, "x\n", ""}));
    EXPECT_EQ(run({"list", "--show-origin", "--without", "trace", "--with", "new=1"}).out,
              "what if: without trace, with new=1\n" + path + ":3\tmax_fanout=14\n--with:1\tnew=1\n");
    EXPECT_THAT(run({"explain", "max_fanout", "--with=max_fanout=16"}).out,
                AllOf(HasSubstr("what if: with max_fanout=16\nmax_fanout = 16\n"), HasSubstr("\n  won   --with:1"),
                      HasSubstr("  max_fanout = 16  (what if)\n")));
    EXPECT_EQ(run({"layers", "--with", "max_fanout=16", "--without", "trace"}).out,
              "what if: with max_fanout=16, without trace\nmain settings file  " + path +
                  "\n     1  max_fanout = 12  lost to --with:1\n     3  max_fanout = 14  lost to --with:1\n"
                  "what if\n     1  max_fanout=16\n");
    EXPECT_EQ(
        run({"list", "--json", "trace", "--with", "trace=off"}).json(),
        R"([{"name": "trace", "set": true, "value": "off", "external": true, "layer": "what-if", "file": null, "line": null,
                   "item": 1}])"_json);
}

TEST_F(WHAT_IF_COMMANDS, change_side_b_of_a_diff)
{
    write_file("before.json", run({"snapshot"}).out);
    EXPECT_EQ(run({"diff", "before.json", "--with", "max_fanout=16", "--without", "trace"}).out,
              "A  before.json (velmar 23.4)\nB  now (velmar 23.4; what if: with max_fanout=16, without trace)\n\n"
              "Variables\n  max_fanout, by what if\n    A  14  at " +
                  temporary.path("cwd/velmar.ini") +
                  ":3 (main settings file, external)\n    B  16  at --with:1 (what if, external)\n"
                  "  trace, by main settings file\n    A  on  at " +
                  temporary.path("cwd/velmar.ini") + ":4 (main settings file, external)\n    B  not set\n");
    const TOOL_RUN documents = run({"diff", "before.json", "before.json", "--with", "max_fanout=16"});
    EXPECT_THAT(documents.out, AllOf(HasSubstr("B  before.json (velmar 23.4; what if: with max_fanout=16)\n"),
                                     HasSubstr("    B  16  at --with:1"), Not(HasSubstr("trace"))));
}

TEST_F(WHAT_IF_COMMANDS, hide_secrets)
{
    const TOOL_RUN listed = run({"list", "*token*", "--with", "api_token=S3CRET"});
    EXPECT_EQ(listed.out, "what if: with api_token=\\(masked)\napi_token=\\(masked)\n");
    EXPECT_EQ(run({"get", "api_token", "--with", "api_token=S3CRET"}).out, "S3CRET\n");
}

TEST_F(WHAT_IF_COMMANDS, refuse_what_is_no_assignment)
{
    EXPECT_EQ(run({"list", "--with", "a"}), (TOOL_RUN{2, "", "velmar-cfg: --with a: wants NAME=VALUE\n"}));
    for (const char* const command : {"set", "unset", "run-report"})
        EXPECT_EQ(run({command, "--without", "a"}),
                  (TOOL_RUN{2, "",
                            "velmar-cfg: only commands that show variables of a state take '--without'; see "
                            "velmar-cfg " +
                                std::string(command) + " --help\n"}));
}
}
