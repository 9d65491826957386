// Why a variable has its value: the assignments to it, and what may be a mistake about it.
#include "tools/velmar-cfg/lint/explanation.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "tests/velmar_cfg/suggestions.h"

namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

LAYER layer_at(LAYER_KIND kind, const char* path, const std::string& text)
{
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

SETTINGS settings_of(const std::string& text)
{
    return SETTINGS({layer_of(LAYER_KIND::MAIN_FILE, text)});
}

// "reason: text" of each hint.
std::vector<std::string> hints_on(const std::string& name, const SETTINGS& settings)
{
    std::vector<std::string> hints;
    for (const HINT& hint : explain_variable(name, settings).hints)
        hints.push_back(hint.reason + ": " + hint.text);
    return hints;
}

std::vector<std::string> reasons_on(const std::string& name, const std::string& text)
{
    const SETTINGS settings = settings_of(text);
    std::vector<std::string> reasons;
    for (const HINT& hint : explain_variable(name, settings).hints)
        reasons.push_back(hint.reason);
    return reasons;
}

TEST(EXPLANATION_MODEL, has_every_assignment_in_the_order_of_the_layers)
{
    const SETTINGS settings({layer_at(LAYER_KIND::MAIN_FILE, "m.ini", "# x\n  f a n = 1 # one\nb=2\nfan =\n"),
                             layer_at(LAYER_KIND::APPENDED_FILE, "a.ini", "fan=3"),
                             layer_at(LAYER_KIND::INLINE_TEXT, inline_source, "b=1; fan = 4 ;c=5"),
                             layer_at(LAYER_KIND::REGTEST_FILE, "r.ini", "\nFAN= 2.5 \n")});
    const EXPLANATION explanation = explain_variable("fan", settings);
    std::vector<std::string> assignments;
    for (const EXPLAINED_ASSIGNMENT& assignment : explanation.assignments)
        assignments.push_back(location_as_text(assignment.location) + " [" + std::string(assignment.name) + "|" +
                              std::string(assignment.value) + "] '" + assignment.text + "'");
    EXPECT_THAT(assignments,
                ElementsAre("m.ini:2 [fan|1] '  f a n = 1 # one'", "m.ini:4 [fan|] 'fan ='", "a.ini:1 [fan|3] 'fan=3'",
                            "VELMAR_INI_VARS:2 [fan|4] ' fan = 4 '", "r.ini:2 [FAN|2.5] 'FAN= 2.5 '"));
    EXPECT_EQ(explanation.name, "fan");
    EXPECT_EQ(explanation.value, "2.5");
    EXPECT_TRUE(explanation.external);
    EXPECT_EQ(explanation.readings.floating, 2.5);
    EXPECT_EQ(explanation.readings.signed_integer, std::nullopt);
    EXPECT_EQ(explanation.known, nullptr);
}

TEST(EXPLANATION_MODEL, of_what_is_not_set_is_empty)
{
    const SETTINGS settings = settings_of("other = 1\n");
    const EXPLANATION explanation = explain_variable("nothing_alike", settings);
    EXPECT_THAT(explanation.assignments, IsEmpty());
    EXPECT_THAT(explanation.hints, IsEmpty());
    EXPECT_EQ(explanation.value, "");
    EXPECT_FALSE(explanation.external);
    EXPECT_TRUE(same_readings(explanation.readings, TYPED_READINGS()));
}

TEST(EXPLANATION_MODEL, knows_external_variables_by_their_layers)
{
    for (const auto& [kind, external] : {std::pair(LAYER_KIND::MAIN_FILE, true),
                                         {LAYER_KIND::APPENDED_FILE, false},
                                         {LAYER_KIND::INLINE_TEXT, true},
                                         {LAYER_KIND::REGTEST_FILE, false}})
    {
        const SETTINGS settings({layer_of(kind, "a=1")});
        EXPECT_EQ(explain_variable("A", settings).external, external) << layer_code(kind);
    }
}

TEST(EXPLANATION_MODEL, says_what_lint_says_of_the_assignments)
{
    const SETTINGS settings = settings_of("url = host#part\nother = x;y\nURL = \"b\"\n");
    const std::string spelt =
        "the same variable as 'url' at velmar.ini:1, but callbacks registered under that spelling are "
        "not notified of this one";
    EXPECT_THAT(
        hints_on("url", settings),
        ElementsAre("spelling: set as 'URL': the same variable, since the case of A to Z does not count",
                    "comment-cut: velmar.ini:1: the value is cut off at the \"#\", where a comment begins; put a "
                    "blank before the comment if it is one; a value that has this sign needs double quotes, which "
                    "become part of it",
                    "letter-case: velmar.ini:3: " + spelt + "; write 'url = b'",
                    "quotes-kept: velmar.ini:3: the quotes are part of the value; write 'url = b' unless the "
                    "reader of the variable takes the quotes off"));
}

// The table of assignments shows which one won.
TEST(EXPLANATION_MODEL, does_not_repeat_that_a_later_one_won)
{
    EXPECT_THAT(reasons_on("a", "a=1\na=2\na=2\n"), IsEmpty());
    EXPECT_THAT(reasons_on("a", "a=yes\na=2\n"), ElementsAre("boolean-word"));
}

TEST(EXPLANATION_MODEL, says_how_the_variable_is_spelt_first)
{
    EXPECT_THAT(reasons_on("FAN", "fan = yes\nFAN = 1\n"), ElementsAre("spelling", "boolean-word", "letter-case"));
    EXPECT_THAT(reasons_on("fan", "fan = 1\n"), IsEmpty());
    const SETTINGS settings = settings_of("Fan = 1\nfAn=2\n");
    EXPECT_EQ(hints_on("fan", settings).front(),
              "spelling: set as 'Fan': the same variable, since the case of A to Z does not count");
}

struct COMMENT
{
    std::string text;
    std::size_t assignments_in_comments;
};

TEST(EXPLANATION_MODEL, finds_the_assignments_that_stand_in_comments)
{
    const COMMENT rows[] = {
        {"# a1 = 1", 1},
        {"#a1=1", 1},
        {"; a1 = 1", 1},
        {"// a1 = 1", 1},
        {"  ##; // a1 = 1", 1},
        {"\t#\ta1 = 1", 1},
        {"#\t# a1 = 1", 1},
        {"# A1 = 1", 1},
        {"# a 1 = 1", 1},
        {"b = 1 # a1 = 1", 1},
        {"b = 1 ;a1=2", 1},
        {"b = 1; # a1 = 2", 1},
        {"# a1 = 1 # a1 = 2", 1},
        {"# a1 = 1\n; a1 = 2", 2},
        {"# a1 =", 1},
        {"# a1", 0},
        {"# was a1 = 1", 0},
        {"# a10 = 1", 0},
        {"# b = a1 = 1", 0},
        {"b = \"# a1 = 1\"", 0},
        {"b = 1 // a1 = 1", 0},
        {"=1#a", 0},
        {"#", 0},
        {"", 0},
    };
    for (const COMMENT& row : rows)
    {
        const std::vector<std::string> reasons = reasons_on("a1", row.text);
        EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(reasons, "in-comment")), row.assignments_in_comments)
            << row.text;
    }
    const SETTINGS settings = settings_of("\n# a1 = 1\n");
    EXPECT_THAT(hints_on("a1", settings),
                ElementsAre("in-comment: velmar.ini:2: an assignment to it stands in a comment and is ignored"));
    // Inline texts have no comments.
    const SETTINGS of_items({layer_of(LAYER_KIND::INLINE_TEXT, "b=# a1=1")});
    EXPECT_THAT(hints_on("a1", of_items), IsEmpty());
}

TEST(EXPLANATION_MODEL, names_the_nearest_of_the_names_that_are_set_or_known)
{
    EXPECT_THAT(hints_on("max_fanuot", settings_of("max_fanout = 1\n")),
                ElementsAre("near-miss: there is also 'max_fanout'; is that the one?"));
    EXPECT_THAT(hints_on("msg_sqlit", settings_of("")),
                ElementsAre("near-miss: there is also 'msg_sqlite'; is that the one?"));
    // A known one is what was meant.
    EXPECT_THAT(hints_on("msg_sqlite", settings_of("msg_sqlitf = 1\n")), IsEmpty());
    EXPECT_THAT(hints_on("MSG_SQLITE", settings_of("msg_sqlitf = 1\n")), IsEmpty());
    // What is set may be a slip of the pen all the same.
    EXPECT_THAT(hints_on("max_fanuot", settings_of("max_fanout = 1\nmax_fanuot = 2\n")),
                ElementsAre("near-miss: there is also 'max_fanout'; is that the one?"));
    EXPECT_THAT(hints_on("fan", settings_of("van = 1\nwholly_other = 2\n")),
                ElementsAre("near-miss: there is also 'van'; is that the one?"));
    EXPECT_THAT(hints_on("fa", settings_of("va = 1\n")), IsEmpty());
}

// --- JSON ---

nlohmann::ordered_json json_of(const std::string& name, const SETTINGS& settings)
{
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    write_json(out, explain_variable(name, settings));
    out.finish();
    return nlohmann::ordered_json::parse(sink.text);
}

TEST(EXPLANATION_JSON, has_every_field)
{
    EXPECT_EQ(json_of("nothing", settings_of("")).dump(),
              R"({"name":"nothing","set":false,"value":"","external":false,"assignments":[],"readings":{"bool":null,)"
              R"("int":null,"uint":null,"double":null,"double_whole":false},"known":false,"default":null,"hints":[]})");
    const SETTINGS settings(
        {layer_of(LAYER_KIND::APPENDED_FILE, "fan = 1\n"), layer_of(LAYER_KIND::INLINE_TEXT, "x=1;FAN=2")});
    EXPECT_EQ(json_of("fan", settings).at("assignments").dump(),
              R"([{"name":"fan","value":"1","layer":"appended","file":"velmar.ini","line":1,"item":null,)"
              R"("text":"fan = 1","won":false},{"name":"FAN","value":"2","layer":"inline","file":null,"line":null,)"
              R"("item":2,"text":"FAN=2","won":true}])");
    EXPECT_EQ(json_of("fan", settings).at("set"), true);
    EXPECT_EQ(json_of("fan", settings).at("external"), true);
    EXPECT_EQ(
        json_of("fan", settings).at("hints").at(0).dump(),
        R"({"reason":"spelling","text":"set as 'FAN': the same variable, since the case of A to Z does not count"})");
}

TEST(EXPLANATION_JSON, has_the_default_of_the_catalogue)
{
    const SETTINGS none = settings_of("");
    EXPECT_EQ(json_of("MSG_SQLITE", none).at("known"), true);
    EXPECT_EQ(json_of("MSG_SQLITE", none).at("default"), "on");
    // The library's own variables are known without one.
    EXPECT_EQ(json_of("debug_msg", none).at("known"), true);
    EXPECT_EQ(json_of("debug_msg", none).at("default"), nullptr);
    EXPECT_EQ(json_of("fan", none).at("known"), false);
    EXPECT_EQ(json_of("fan", none).at("default"), nullptr);
}
}
