// What lint suggests, applied to whole files.
#include "tools/velmar-cfg/lint/fixes.h"

#include <cstdlib>

#include "tests/velmar_cfg/settings_generator.h"
#include "tests/velmar_cfg/suggestions.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/settings_edit.h"

namespace
{
std::string fixed(const std::string& text, const REASONS& ignored = {})
{
    return fix_findings({layer_of(LAYER_KIND::MAIN_FILE, text)}, 0, ignored).text;
}

struct FIXED
{
    std::string before;
    std::string after;
    std::size_t fixes;
};

void PrintTo(const FIXED& row, std::ostream* stream)
{
    *stream << "'" << row.before << "'";
}

class FIXES : public testing::TestWithParam<FIXED>
{
};

TEST_P(FIXES, make_of_the_file)
{
    const FIXED_TEXT result = fix_findings({layer_of(LAYER_KIND::MAIN_FILE, GetParam().before)}, 0, {});
    EXPECT_EQ(result.text, GetParam().after);
    EXPECT_EQ(result.fixes, GetParam().fixes);
}

INSTANTIATE_TEST_SUITE_P(
    table, FIXES,
    testing::Values(
        FIXED{"", "", 0}, FIXED{"a = 1 # note\n", "a = 1 # note\n", 0}, FIXED{"a = yes", "a = on", 1},
        FIXED{"[x]\n\nmsg_sqlite = yes # y\r\nb = 1\n", "# [x]\n\nmsg_sqlite = on # y\r\nb = 1\n", 2},
        FIXED{"g=1 h=2\r\nb = 1\r\n", "g=1\r\nh=2\r\nb = 1\r\n", 1},
        FIXED{"\xef\xbb\xbf"
              "a = yes\n",
              "a = on\n", 1},
        // The lines set the same variable.
        FIXED{"max fanout = 1\nmax fanout = 2\n", "max_fanout = 1\nmax_fanout = 2\n", 2},
        FIXED{"max fanout = 1\nc = yes\n\"max_fanout\" = 2\n", "max_fanout = 1\nc = on\nmax_fanout = 2\n", 3},
        // Lines that come to set one variable keep their order, so that the last one decides.
        FIXED{"k: 1\nk: 2\n", "k = 1\nk = 2\n", 2},
        // A variable that a line sets already keeps its value, also where another line seems to mean it.
        FIXED{"path = /keep\nexport PATH = /other\n", "path = /keep\nexport PATH = /other\n", 0},
        FIXED{"msg_sqlite = off\nMSGSQLITE on\n", "msg_sqlite = off\nMSGSQLITE on\n", 0},
        FIXED{"h = 3\ng=1 h=2\n", "h = 3\ng=1 h=2\n", 0}, FIXED{"aa=2\n\"AA\"=3\n", "aa=2\n\"AA\"=3\n", 0},
        FIXED{"aa=2\naa: 1\rbar=2\n", "aa=2\naa: 1\rbar=2\n", 0},
        FIXED{"bar=3\naa=1\rbar=2\n", "bar=3\naa=1\rbar=2\n", 0}, FIXED{"b ?= 1\nb = 2\n", "b ?= 1\nb = 2\n", 0},
        FIXED{"\xef\xbb\xbf"
              "a = yes\na = off\n",
              "\xef\xbb\xbf"
              "a = yes\na = off\n",
              0},
        // What would be overridden, and what a person must decide, stays.
        FIXED{"\"m\" = 2\nm = 3\n", "\"m\" = 2\nm = 3\n", 0},
        FIXED{"a = x#y\nb = 1\nb = 2\n", "a = x#y\nb = 1\nb = 2\n", 0}, FIXED{"a=1\rb=yes\r\n", "a=1\nb=on\r\n", 1}));

TEST(IGNORED_REASONS, keep_their_lines)
{
    const std::string text = "a = yes\nb = 'x'\nc = 'no'\n[d]\n";
    EXPECT_EQ(fixed(text), "a = on\nb = x\nc = off\n# [d]\n");
    EXPECT_EQ(fixed(text, {"quotes-kept"}), "a = on\nb = 'x'\nc = 'no'\n# [d]\n");
    EXPECT_EQ(fixed(text, {"boolean-word", "no-equals-sign"}), "a = yes\nb = x\nc = off\n[d]\n");
    // Only a finding that would go keeps its line.
    EXPECT_EQ(fixed("e = yes\ne = no\n", {"overridden"}), "e = on\ne = off\n");
}

TEST(FIXES_OF_A_LAYER, look_at_the_other_layers_and_leave_them)
{
    const LAYERS layers = {
        layer_of(LAYER_KIND::MAIN_FILE, "Max_Fanout = 1\nx = yes\n"),
        {LAYER_KIND::APPENDED_FILE, layer_of(LAYER_KIND::MAIN_FILE, "max fanout = 2\nx = no\n").source},
        layer_of(LAYER_KIND::INLINE_TEXT, "y=yes")};
    EXPECT_EQ(fix_findings(layers, 0, {}).text, "Max_Fanout = 1\nx = on\n");
    EXPECT_EQ(fix_findings(layers, 1, {}).text, "max fanout = 2\nx = off\n"); // a guess about what the other file sets
}

TEST(HIDDEN_SECRETS, are_put_back_where_their_marks_are)
{
    SECRETS secrets;
    const std::string original = "token = \"one\"\n'password' = two;three\nb = yes\nsecret = one\n";
    const std::string hidden = hide_in_settings_text(original, secrets).value();
    EXPECT_EQ(hidden.find("one"), hidden.npos);
    EXPECT_EQ(with_secrets_shown(hidden, hidden, original), original);
    EXPECT_EQ(with_secrets_shown(fixed(hidden), hidden, original),
              "token = one\npassword = two;three\nb = on\nsecret = one\n");
    EXPECT_EQ(with_secrets_shown("x", "y", "y"), "x");
}

TEST(CHECKED_REASONS, are_known)
{
    EXPECT_EQ(checked_reasons({"letter-case", "separator", "letter-case"}), (REASONS{"letter-case", "separator"}));
    try
    {
        checked_reasons({"separator", "leter-case"});
        FAIL();
    }
    catch (const TOOL_ERROR& error)
    {
        EXPECT_EQ(error.exit_code, EXIT_CODE::USAGE);
        EXPECT_STREQ(error.what(),
                     "no finding has the reason 'leter-case' (did you mean 'letter-case'?); see velmar-cfg "
                     "lint --list-reasons");
    }
}

TEST(REASONS_, have_a_meaning_for_each_kind_of_file)
{
    EXPECT_EQ(meaning_of_reason("separator"),
              "The first of ':' and ';' separates all items; the other one was meant to separate too.");
    EXPECT_EQ(meaning_of_reason("not-kept"), "The next save drops the line.");
    EXPECT_EQ(meaning_of_reason("letter-case"),
              "The same variable is spelt in another letter case elsewhere. Of "
              "preferences: The key is spelt in another letter case, so lookups do not "
              "find it.");
    EXPECT_EQ(meaning_of_reason("too-short"), "A line of fewer than three characters is ignored.");
    EXPECT_TRUE(std::ranges::is_sorted(reason_names()));
}

// ---------------------------------------------------------------------------------------------------------------------
// Random files
// ---------------------------------------------------------------------------------------------------------------------

std::string folded(std::string name)
{
    std::ranges::transform(name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
    return name.substr(0, name.find('\0'));
}

std::map<std::string, std::string> folded_values(const std::string& text)
{
    std::map<std::string, std::string> values;
    for (const auto& [name, value] : values_of(LAYER_KIND::MAIN_FILE, text))
        values[folded(name)] = value;
    return values;
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines = {""};
    for (const char c : text)
    {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

// The variables of the lines that the text has and the other has not.
std::set<std::string> variables_of_own_lines(const std::string& text, const std::string& other)
{
    std::vector<std::string> a = lines_of(text);
    std::vector<std::string> b = lines_of(other);
    std::ranges::sort(a);
    std::ranges::sort(b);
    std::vector<std::string> changed;
    std::ranges::set_difference(a, b, std::back_inserter(changed));
    std::set<std::string> names;
    for (const std::string& line : changed)
    {
        for (const std::string& name : names_set_in(line))
            names.insert(folded(name));
    }
    return names;
}

// The lines that set other variables than these, in their order.
std::vector<std::string> lines_without(const std::set<std::string>& names, const std::string& text)
{
    std::vector<std::string> lines = lines_of(text);
    std::erase_if(lines,
                  [&names](const std::string& line)
                  {
                      const std::vector<std::string> set = names_set_in(line);
                      return set.empty() || names.contains(folded(set.front()));
                  });
    return lines;
}

bool has_suggestion(const std::string& text)
{
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, text);
    return std::ranges::any_of(findings, [](const FINDING& finding) { return finding.replacement.has_value(); });
}

std::string line_with_mistakes(SETTINGS_GENERATOR& generate)
{
    static const std::vector<std::string> mistaken = {"max fanout = 12",
                                                      "max_fanout = 1",
                                                      "Max_Fanout=3",
                                                      "msg_sqlit = on",
                                                      "msg_sqlite = yes",
                                                      "MSG_SQLITE = no",
                                                      "\"quoted\" = 1",
                                                      "quoted = 'x'",
                                                      "[section]",
                                                      "name: value",
                                                      "g=1 h=2",
                                                      "a=1;b=2",
                                                      "a == 5",
                                                      "b ?= 0x10",
                                                      "export c = on,",
                                                      "s = 1 // one",
                                                      "debug_msg_level = +5",
                                                      "a=1\rb=2",
                                                      "x y z = 1",
                                                      "ab",
                                                      "u = host# note",
                                                      "fan out = Disabled",
                                                      "caf\xc3\xa9 = 1",
                                                      "d = \"x",
                                                      "\xef\xbb\xbf"
                                                      "a = 1"};
    return generate.below(3) == 0 ? generate.pick(mistaken)
           : generate.below(2) == 0
               ? generate.hostile_line()
               : generate.with_one_of(generate.line(), {"", "", " h=2", ",", ";c=3", "\rd=4", " // x"});
}

TEST(RANDOM_FIXES, leave_no_suggestion_and_every_other_variable)
{
    SETTINGS_GENERATOR generate(20261124);
    const int count = std::getenv("ZON_LONG_TESTS") != nullptr ? 20'000 : 1'000;
    int changed = 0;
    for (int i = 0; i < count; ++i)
    {
        const std::string before = generate.file(
            [&]
            {
                std::string line = line_with_mistakes(generate);
                std::erase(line, '\n');
                return line;
            },
            7);
        const std::string after = fixed(before);
        changed += after == before ? 0 : 1;
        ASSERT_EQ(fixed(after), after) << "'" << before << "' became '" << after << "'";
        const std::set<std::string> replaced = variables_of_own_lines(before, after);
        std::map<std::string, std::string> values_before = folded_values(before);
        std::map<std::string, std::string> values_after = folded_values(after);
        std::set<std::string> named = replaced;
        for (const std::string& name : variables_of_own_lines(after, before))
        {
            ASSERT_TRUE(replaced.contains(name) || !values_before.contains(name))
                << name << " of another line: '" << before << "' became '" << after << "'";
            named.insert(name);
        }
        for (const std::string& name : named)
        {
            values_before.erase(name);
            values_after.erase(name);
        }
        ASSERT_EQ(values_after, values_before) << "'" << before << "' became '" << after << "'";
        ASSERT_EQ(lines_without(named, after), lines_without(named, before)) << "'" << before << "'";
    }
    EXPECT_GT(changed, count / 2);
    EXPECT_LT(changed, count);
}

std::string many_lines(int count, const std::vector<std::string>& beginnings)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += beginnings[static_cast<std::size_t>(i) % beginnings.size()] + std::to_string(i) + "\n";
    return text;
}

TEST(MANY_LINES_OF_ONE_VARIABLE, are_all_fixed)
{
    struct ROW
    {
        std::vector<std::string> beginnings;
        std::vector<std::string> fixed;
    };
    for (const auto& [beginnings, fixed_beginnings] :
         {ROW{{"max fanout = "}, {"max_fanout = "}},
          ROW{{"my name ?= ", "MY NAME ?= ", "My Name == "}, {"my_name = ", "my_name = ", "my_name = "}},
          ROW{{"\"a\" = ", "'A' = "}, {"a = ", "a = "}},
          ROW{{"a b = ", "c d = ", "A_B : "}, {"a_b = ", "c_d = ", "a_b = "}}})
    {
        const std::string text = many_lines(1500, beginnings);
        const FIXED_TEXT result = fix_findings({layer_of(LAYER_KIND::MAIN_FILE, text)}, 0, {});
        EXPECT_TRUE(result.text == many_lines(1500, fixed_beginnings)) << result.text.substr(0, 100);
        EXPECT_EQ(result.refusal, "");
        EXPECT_FALSE(has_suggestion(result.text)) << beginnings.front();
    }
}

// The second run of the rules finds nothing: ten times the lines cost ten times the work, and not a hundred times.
TEST(MANY_LINES_OF_ONE_VARIABLE, are_fixed_at_once)
{
    EXPECT_EQ(fix_findings({layer_of(LAYER_KIND::MAIN_FILE, many_lines(10'000, {"max fanout = "}))}, 0, {}).fixes,
              10'000U);
}

TEST(OTHER_CHANGE, is_of_a_variable_that_is_not_named)
{
    struct ROW
    {
        const char* before;
        const char* after;
        VARIABLE_NAMES named;
        std::optional<std::string> changed;
    };
    for (const auto& [before, after, named, changed] :
         {ROW{"a=1\nb=2\n", "a=1\nb=2\n", {}, std::nullopt}, ROW{"a=1\nb=2\n", "b=2\nA=1\n", {}, std::nullopt},
          ROW{"a=1\n", "a=2\n", {}, "a"}, ROW{"a=1\n", "a=2\n", {"A"}, std::nullopt},
          ROW{"a=1\nb=1\n", "a=2\nb=2\n", {"a"}, "b"}, ROW{"a=1\nb=1\n", "a=1\n", {"a"}, "b"},
          ROW{"a=1\n", "a=1\nb=1\n", {"a"}, "b"}, ROW{"a=1\n", "a=1\nb=1\n", {"b"}, std::nullopt}})
    {
        const SETTINGS old_settings({layer_of(LAYER_KIND::MAIN_FILE, before)});
        EXPECT_EQ(other_change(old_settings, SETTINGS({layer_of(LAYER_KIND::MAIN_FILE, after)}), named), changed)
            << before << " became " << after;
    }
}
}
