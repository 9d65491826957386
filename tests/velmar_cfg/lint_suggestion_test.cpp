// What lint suggests, applied as a program would apply it: the replacement takes the place of the whole line or item.
#include "tests/velmar_cfg/suggestions.h"

#include "tests/velmar_cfg/settings_generator.h"

namespace
{
// ---------------------------------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------------------------------

constexpr const char* nothing = nullptr; // a person must decide

// The finding of that reason, of the first line or item that has one, and what it suggests.
struct SUGGESTION
{
    std::string text;
    const char* reason;
    const char* replacement;
};

void PrintTo(const SUGGESTION& row, std::ostream* stream)
{
    *stream << row.reason << " in '" << row.text << "'";
}

void expect_suggestion(LAYER_KIND kind, const SUGGESTION& row)
{
    const std::vector<FINDING> findings = findings_of(kind, row.text);
    const auto found = std::ranges::find(findings, row.reason, &FINDING::reason);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->replacement,
              row.replacement == nothing ? std::nullopt : std::optional<std::string>(row.replacement));
    EXPECT_NE(found->instead, "");
    expect_that_suggestions_help(kind, row.text);
}

class LINE_SUGGESTIONS : public testing::TestWithParam<SUGGESTION>
{
};

TEST_P(LINE_SUGGESTIONS, are_what_was_meant)
{
    expect_suggestion(LAYER_KIND::MAIN_FILE, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    ignored_lines, LINE_SUGGESTIONS,
    testing::Values(SUGGESTION{"[section]", "no-equals-sign", "# [section]"},
                    SUGGESTION{"  [section] ; x\r", "no-equals-sign", "  # [section] ; x\r"},
                    SUGGESTION{"some words without it", "no-equals-sign", "# some words without it"},
                    SUGGESTION{"fan_out 12", "no-equals-sign", "fan_out = 12"},
                    SUGGESTION{"\tfan_out yes, # x\r", "no-equals-sign", "\tfan_out = on # x\r"},
                    SUGGESTION{"set fan_out 12", "no-equals-sign", "fan_out = 12"},
                    SUGGESTION{"set fan_out", "no-equals-sign", "# set fan_out"},
                    SUGGESTION{"fan_out fast", "no-equals-sign", "# fan_out fast"}, // perhaps words
                    SUGGESTION{"fan 12 in", "no-equals-sign", "# fan 12 in"},
                    SUGGESTION{"12 on", "no-equals-sign", "# 12 on"},
                    SUGGESTION{"a,b 12", "no-equals-sign", "# a,b 12"},
                    SUGGESTION{"MSG_SQLITE on", "no-equals-sign", "msg_sqlite = on"},
                    SUGGESTION{"set MSG_SQLITE on", "no-equals-sign", "msg_sqlite = on"},
                    SUGGESTION{"  MSG_SQLITE on # x\r", "no-equals-sign", "  msg_sqlite = on # x\r"},
                    SUGGESTION{"msg_sqlite", "no-equals-sign", nothing},
                    SUGGESTION{"msg_sqlite is on", "no-equals-sign", nothing}, SUGGESTION{"ab", "too-short", "# ab"},
                    SUGGESTION{"a=", "too-short", "a ="}, SUGGESTION{" =", "too-short", nothing},
                    SUGGESTION{"a # b = 1", "comment-cut", nothing}, SUGGESTION{"a // b = 1", "comment-cut", nothing}));

INSTANTIATE_TEST_SUITE_P(other_formats, LINE_SUGGESTIONS,
                         testing::Values(SUGGESTION{"name: value", "no-equals-sign", "name = value"},
                                         SUGGESTION{"\"c\": 1,", "no-equals-sign", "c = 1"},
                                         SUGGESTION{"  name: yes # it is", "no-equals-sign", "  name = on # it is"},
                                         SUGGESTION{"note: some words", "no-equals-sign", "# note: some words"},
                                         SUGGESTION{"localhost:8080", "no-equals-sign", "# localhost:8080"},
                                         SUGGESTION{"12: 30", "no-equals-sign", "# 12: 30"},
                                         SUGGESTION{"name:", "no-equals-sign", "# name:"},
                                         SUGGESTION{"export FAN=1", "blanks-in-name", "FAN=1"},
                                         SUGGESTION{"set fan = 1", "blanks-in-name", "fan = 1"}));

INSTANTIATE_TEST_SUITE_P(
    names, LINE_SUGGESTIONS,
    testing::Values(
        SUGGESTION{"max fanout = 12", "blanks-in-name", "max_fanout = 12"},
        SUGGESTION{"msg sqlite = on", "blanks-in-name", "msg_sqlite = on"},
        SUGGESTION{"disable_ vexe_mode = on", "blanks-in-name", "disable_vexe_mode = on"},
        SUGGESTION{"my_ own = 1", "blanks-in-name", "my_own = 1"},
        SUGGESTION{"my _own = 1", "blanks-in-name", "my_own = 1"},
        SUGGESTION{"_ own _ b = 1", "blanks-in-name", "_own_b = 1"},
        SUGGESTION{"this is a line of prose = 1", "blanks-in-name", nothing},
        SUGGESTION{"if (x) = 1", "blanks-in-name", nothing}, SUGGESTION{"py.test --cov = x", "blanks-in-name", nothing},
        SUGGESTION{"max fanout = 1\nmax_fanout = 2", "blanks-in-name", nothing}, // would be overridden
        SUGGESTION{"max_fanout = 1\nmax fanout = 2", "blanks-in-name", "max_fanout = 2"},
        SUGGESTION{"Max_Fanout = 1\nmax fanout = 2", "blanks-in-name", "Max_Fanout = 2"},
        SUGGESTION{"a:=1", "operator-in-name", "a = 1"}, SUGGESTION{"a:=", "operator-in-name", "a ="},
        SUGGESTION{"a ::= 1", "operator-in-name", "a = 1"}, SUGGESTION{"a ?= 1", "operator-in-name", "a = 1"},
        SUGGESTION{"path += x", "operator-in-name", nothing}, SUGGESTION{"path -= x", "operator-in-name", nothing},
        SUGGESTION{"a != 1", "operator-in-name", nothing}, SUGGESTION{":=1", "operator-in-name", nothing},
        SUGGESTION{"\"c\" = 1", "quoted-name", "c = 1"}, SUGGESTION{"'my var' = 1", "quoted-name", "my_var = 1"},
        SUGGESTION{"'-x' = 1", "quoted-name", "-x = 1"},
        SUGGESTION{"a\xc2\xa0"
                   "b = 1",
                   "odd-character", "a_b = 1"},
        SUGGESTION{"caf\xc3\xa9 = 1", "odd-character", nothing}, SUGGESTION{"=5", "empty-name", nothing},
        SUGGESTION{"msg_sqlit = on", "almost-known", "msg_sqlite = on"},
        SUGGESTION{"MSG_sqlite = yes", "letter-case", "msg_sqlite = on"},
        SUGGESTION{"Fan=1\nx=1\nfan=2", "letter-case", "Fan=2"}, SUGGESTION{"a=1\na=2", "overridden", nothing}));

INSTANTIATE_TEST_SUITE_P(
    values, LINE_SUGGESTIONS,
    testing::Values(
        SUGGESTION{"b == 1", "double-equals", "b = 1"}, SUGGESTION{"b===1", "double-equals", "b = 1"},
        SUGGESTION{"d = 'on'", "quotes-kept", "d = on"}, SUGGESTION{"d = \"x y\"", "quotes-kept", "d = x y"},
        SUGGESTION{"d = \"x // y\"", "quotes-kept", nothing}, SUGGESTION{"d = \" x\"", "quotes-kept", nothing},
        SUGGESTION{"d = \"x\" \"y\"", "quotes-kept", nothing}, SUGGESTION{"e = yes", "boolean-word", "e = on"},
        SUGGESTION{"e = Disabled", "boolean-word", "e = off"}, SUGGESTION{"f = 0x10", "hexadecimal", "f = 16"},
        SUGGESTION{"h = on,", "trailing-comma", "h = on"}, SUGGESTION{"h = 'yes',", "trailing-comma", "h = on"},
        SUGGESTION{"g=1 h=2", "second-assignment", "g=1\nh=2"},
        SUGGESTION{"  g = 1, h = yes, k = 3 # n\r", "second-assignment", "  g = 1\r\n  h = on\r\n  k = 3 # n\r"},
        SUGGESTION{"g=fast msg_sqlite=on", "second-assignment", "g=fast\nmsg_sqlite=on"},
        SUGGESTION{"g=1 h=2\nh=3", "second-assignment", nothing}, // would be overridden
        SUGGESTION{"g=1 g=2", "second-assignment", nothing},
        SUGGESTION{"msg_sqlite = YES", "no-boolean", "msg_sqlite = on"},
        SUGGESTION{"msg_sqlite = \"off\"", "no-boolean", "msg_sqlite = off"},
        SUGGESTION{"msg_sqlite = on,", "no-boolean", "msg_sqlite = on"},
        SUGGESTION{"msg_sqlite = 2", "no-boolean", nothing},
        SUGGESTION{"debug_msg_level = 99999999999", "no-integer", nothing},
        SUGGESTION{"debug_msg_level = high", "no-integer", nothing},
        SUGGESTION{"debug_msg_level = 0x1F", "no-integer", "debug_msg_level = 31"},
        SUGGESTION{"debug_msg_level = 0xffffffff", "no-integer", nothing},
        SUGGESTION{"debug_msg_level = +5", "no-integer", "debug_msg_level = 5"},
        SUGGESTION{"debug_msg_level = -2.0", "no-integer", "debug_msg_level = -2"},
        SUGGESTION{"debug_msg_level = 2.5", "no-integer", nothing}));

INSTANTIATE_TEST_SUITE_P(
    comments, LINE_SUGGESTIONS,
    testing::Values(
        SUGGESTION{"url = host#part", "comment-cut", nothing}, SUGGESTION{"list = x;y", "comment-cut", nothing},
        SUGGESTION{"color = #ff0000", "comment-cut", nothing}, SUGGESTION{"list =;y", "comment-cut", nothing},
        SUGGESTION{"u = host# note", "comment-cut", "u = host # note"},
        SUGGESTION{"a=1;b=2", "second-assignment", "a=1\nb=2"},
        SUGGESTION{"\ta=1 ; b = 2; c = 3 # x\r", "second-assignment", "\ta=1\r\n\tb = 2\r\n\tc = 3 # x\r"},
        SUGGESTION{"a=1;b=2 ; note", "second-assignment", "a=1\nb=2 ; note"},
        SUGGESTION{"s = 1 // one # two", "slashes-in-value", "s = 1 # one # two"},
        SUGGESTION{"s = \"x // y", "slashes-in-value", nothing}, SUGGESTION{"s = \"x", "unclosed-quote", nothing},
        SUGGESTION{"\xef\xbb\xbf"
                   "a = yes",
                   "byte-order-mark", "a = on"},
        SUGGESTION{"\xef\xbb\xbf[x]", "byte-order-mark", "# [x]"},
        SUGGESTION{"a=1\rb = 2\r", "carriage-return", "a=1\nb = 2\r"},
        SUGGESTION{"# x\ra=1\r[s]\rb=yes", "carriage-return", "# x\na=1\n# [s]\nb=on"},
        SUGGESTION{"a=1\rb=x;y", "carriage-return", nothing})); // the new lines would have a finding

class LINES_WITHOUT_FINDINGS : public testing::TestWithParam<const char*>
{
};

TEST_P(LINES_WITHOUT_FINDINGS, set_what_they_look_like)
{
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, GetParam());
    EXPECT_TRUE(findings.empty()) << findings.front().reason;
}

INSTANTIATE_TEST_SUITE_P(table, LINES_WITHOUT_FINDINGS,
                         testing::Values("q = 1;", "q = 1;  // note", "q = 1; note", "q = 1# note", "q = on;# note",
                                         "q = 1#note", "q = word;// note", "x = =y", "q = word;", "a.b = 1",
                                         "a-b[0] = 1", "key = abc==", "x = a=b", "opt = -DX=1 -DY=2", "cmd = run x=1",
                                         "g = 1 h", "t = 12:30, 14:00", "list = a, b,", "n = 1,2", "w = no way",
                                         "v = 0xzz", "# a comment\r# and more", "a = 1\r", "\r\r", "e = 'it's'",
                                         "x = # note", "x = ; note", "x =#\tnote", "x = ;", "x = #", "x = ;; note"));

class ITEM_SUGGESTIONS : public testing::TestWithParam<SUGGESTION>
{
};

TEST_P(ITEM_SUGGESTIONS, are_what_was_meant)
{
    expect_suggestion(LAYER_KIND::INLINE_TEXT, GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    table, ITEM_SUGGESTIONS,
    testing::Values(
        SUGGESTION{"url=http://h/x;b=3", "separator", ";url=http"}, SUGGESTION{"q=c:\\dir;r=2", "separator", ";q=c"},
        SUGGESTION{"p=x;y:z=1", "separator", ":p=x"}, SUGGESTION{"a=1:b=2;c=3", "separator", "b=2:c=3"},
        SUGGESTION{"a=1;b=2:c=3", "separator", "b=2;c=3"}, SUGGESTION{"u=http:b=2;c=3:d=4;e=5", "separator", "b=2:c=3"},
        SUGGESTION{"my var=on", "blanks-in-name", "my_var=on"},
        SUGGESTION{"x=1;my\tvar=on", "blanks-in-name", "my_var=on"},
        SUGGESTION{"a=on\t;b=1", "white-space-kept", "a=on"}, SUGGESTION{"a=1;\nb = 2", "white-space-kept", "b = 2"},
        SUGGESTION{"a=\t1", "white-space-kept", "a=1"}, SUGGESTION{"a=\"x\"", "quotes-kept", "a=x"},
        SUGGESTION{"g=1 h=2", "second-assignment", "g=1;h=2"},
        SUGGESTION{"x=0:g=1 h=2", "second-assignment", "g=1:h=2"}, SUGGESTION{"a=\"x#y\"", "quotes-kept", nothing},
        SUGGESTION{"path+=x", "operator-in-name", nothing}, SUGGESTION{"a?=yes", "operator-in-name", "a = on"},
        SUGGESTION{"\"c\"=1", "quoted-name", "c=1"}, SUGGESTION{"b==1", "double-equals", "b = 1"},
        SUGGESTION{"msg_sqlite=no", "no-boolean", "msg_sqlite=off"}, SUGGESTION{"e=yes", "boolean-word", "e=on"},
        SUGGESTION{"x=1:h=on;", "trailing-comma", "h=on"}, SUGGESTION{"ab", "no-equals-sign", nothing},
        SUGGESTION{"=1", "empty-name", nothing}, SUGGESTION{"a=", "empty-value", nothing},
        // Two parts of it would set one variable, under two spellings.
        SUGGESTION{"x=1;c=2:A=3:a=4;c=5", "separator", nothing},
        // The finding about the separator is told of the first item as soon as the other separator helps.
        SUGGESTION{"a b=http://h;c=1;a b=2:,", "blanks-in-name", "a_b=http"},
        // The suggestion is one character longer than its item and does not put the whole text right.
        SUGGESTION{"x=1:a=2 ; note h=2:b?=f;c=3", "operator-in-name", "b = f:c=3"}));

TEST(SUGGESTED_SEPARATOR, makes_the_items_that_were_meant)
{
    const std::string text = "url=http://h/x;b=3";
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::INLINE_TEXT, text);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(values_of(LAYER_KIND::INLINE_TEXT, apply(LAYER_KIND::INLINE_TEXT, text, findings.front()).text),
              (std::map<std::string, std::string>{{"url", "http://h/x"}, {"b", "3"}}));
}

// What another layer assigns to the variable is no reason against a suggestion; how it is spelt there counts.
TEST(SUGGESTIONS, look_across_layers)
{
    const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, "Max_Fanout = 1\nmsg sqlite = yes\n"),
                           {LAYER_KIND::APPENDED_FILE, layer_of(LAYER_KIND::MAIN_FILE, "max fanout = 12").source},
                           layer_of(LAYER_KIND::INLINE_TEXT, "max_fanout=3;msg_sqlite=on")};
    std::vector<std::string> suggested;
    for (const FINDING& finding : lint_settings(layers))
        suggested.push_back(finding.reason + ": " + finding.replacement.value_or("nothing"));
    EXPECT_EQ(suggested, (std::vector<std::string>{"blanks-in-name: msg_sqlite = on", "almost-known: msg_sqlite = on",
                                                   "boolean-word: msg_sqlite = on", "blanks-in-name: Max_Fanout = 12",
                                                   "letter-case: Max_Fanout=3"}));
}

TEST(SUGGESTIONS, are_never_cut_short)
{
    const std::string name(300, 'n');
    const std::string value(5000, 'v');
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, "\"" + name + "\" = " + value);
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings.front().replacement, name + " = " + value);
    EXPECT_LT(findings.front().instead.size(), 200U);
}

// What people are told of one finding does not bring another: here the letter case of the name.
TEST(SUGGESTIONS, spell_the_name_alike)
{
    const auto instead_of = [](const std::string& line, const char* reason)
    {
        const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, line);
        const auto found = std::ranges::find(findings, reason, &FINDING::reason);
        return found == findings.end() ? "nothing" : found->instead;
    };
    EXPECT_EQ(instead_of("MSG_SQLITE == 2", "letter-case"), "write 'msg_sqlite'");
    EXPECT_EQ(instead_of("MSG_SQLITE == 2", "no-boolean"), "write 'msg_sqlite = on' or 'msg_sqlite = off'");
    EXPECT_EQ(instead_of("Debug_Msg_Level = high", "no-integer"),
              "write decimal digits only, such as 'debug_msg_level = 2'");
}

// Texts for which a step too much for each character, or a call within a call, would not end.
TEST(SUGGESTIONS, end_for_long_lines)
{
    const auto repeated = [](const std::string& part, std::size_t times)
    {
        std::string text;
        for (std::size_t i = 0; i < times; ++i)
            text += part;
        return text;
    };
    const std::size_t many = 50000;
    for (const std::string& line :
         {"a=1" + repeated(";b=2", many), "g=1" + repeated(" h=2", many), "a=" + repeated(" //", many),
          repeated("a=1\r", many), repeated("a b ", many) + "=1", "a" + repeated(":", many) + "=1",
          "a=" + repeated("=", many) + "x", repeated("\"", many) + "=\"", repeated("a: ", many)})
    {
        const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, line);
        ASSERT_FALSE(findings.empty()) << line.substr(0, 20);
        EXPECT_LT(findings.front().message.size() + findings.front().instead.size(), 1000U) << line.substr(0, 20);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Generated texts
// ---------------------------------------------------------------------------------------------------------------------

// Lines and items with mistakes, some of them several.
class MISTAKES
{
public:
    explicit MISTAKES(unsigned int seed) : generate(seed) {}

    // An assignment with up to three mistakes, and what was meant.
    struct MISTAKEN
    {
        std::string text;
        std::string name;
        std::string value;
        std::size_t mistakes;
    };

    MISTAKEN line()
    {
        MISTAKEN made = assignment();
        if (one_in(4))
            made.text += generate.pick({" # note", " ; note", "\t# a; b"});
        else if (one_in(8))
            made.text += mistake(made, " // note");
        if (one_in(6))
            made.text += "\r";
        if (one_in(6))
            made.text = generate.pick({"  ", "\t"}) + made.text;
        return made;
    }

    MISTAKEN item()
    {
        MISTAKEN made = assignment();
        if (one_in(6))
            made.text = generate.pick({" ", "  "}) + made.text + " ";
        if (one_in(6))
            made.text += mistake(made, generate.pick({"\t", "\n"}));
        return made;
    }

    SETTINGS_GENERATOR generate;

private:
    bool one_in(std::size_t times)
    {
        return generate.below(times) == 0;
    }

    static std::string mistake(MISTAKEN& made, const std::string& text)
    {
        ++made.mistakes;
        return text;
    }

    MISTAKEN assignment()
    {
        MISTAKEN made{"", "", "", 0};
        const std::size_t kind = generate.below(3); // a known switch, a known number, an unknown variable
        made.name = kind == 0   ? generate.pick({"msg_sqlite", "disable_vexe_mode"})
                    : kind == 1 ? generate.pick({"debug_msg_level", "cfg_max_to_report"})
                                : generate.pick({"fan_out_limit", "route_effort", "x1"});
        made.value = kind == 0   ? generate.pick({"on", "off"})
                     : kind == 1 ? generate.pick({"0", "16", "255"})
                                 : generate.pick({"on", "16", "fast", "/opt/lib"});
        const std::string value = mistaken_value(made);
        const bool two_signs = one_in(8);
        if (two_signs)
            ++made.mistakes;
        made.text =
            generate.with_one_of(mistaken_name(made, kind), two_signs ? std::vector<std::string>{" == "}
                                                                      : std::vector<std::string>{"=", " = ", " ="}) +
            value;
        return made;
    }

    std::string mistaken_value(MISTAKEN& made)
    {
        std::string value = made.value;
        const bool is_word = value == "on" || value == "off";
        const bool is_number = value.find_first_not_of("0123456789") == std::string::npos;
        if (is_word && one_in(3))
            value = mistake(made, value == "on" ? generate.pick({"yes", "Enabled"}) : generate.pick({"no", "DISABLE"}));
        if (is_number && one_in(3))
            value = mistake(made, value == "0" ? "0x0" : value == "16" ? "0x10" : "0xFF");
        if (one_in(4))
        {
            const std::string quote = generate.pick({"\"", "'"});
            value = mistake(made, quote + value + quote);
        }
        if ((is_word || is_number) && one_in(6))
            value += mistake(made, ",");
        return value;
    }

    std::string mistaken_name(MISTAKEN& made, std::size_t kind)
    {
        std::string name = made.name;
        if (one_in(4) && kind < 2)
            std::ranges::transform(name, name.begin(), [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; });
        else if (one_in(6) && kind < 2)
            name.pop_back();
        else if (one_in(4) && name.find('_') != std::string::npos)
            name[name.find('_')] = ' ';
        made.mistakes += name != made.name ? 1U : 0U;
        if (one_in(6))
            name = mistake(made, "\"" + name + "\"");
        if (one_in(10))
            name = mistake(made, "export " + name);
        if (one_in(8))
            name += mistake(made, generate.pick({"?", " ?"}));
        return name;
    }
};

template <typename MAKE>
void expect_that_all_is_put_right(LAYER_KIND kind, MAKE make)
{
    std::size_t several = 0;
    std::size_t mistaken = 0;
    for (int i = 0; i < 2500; ++i)
    {
        const MISTAKES::MISTAKEN made = make();
        const std::vector<FINDING> findings = findings_of(kind, made.text);
        ASSERT_EQ(findings.empty(), made.mistakes == 0) << "'" << made.text << "'";
        if (findings.empty())
            continue;
        ++mistaken;
        several += made.mistakes > 1 ? 1U : 0U;
        for (const FINDING& finding : findings)
        {
            ASSERT_TRUE(finding.replacement) << finding.reason << " in '" << made.text << "'";
            ASSERT_EQ(values_of(kind, apply(kind, made.text, finding).text),
                      (std::map<std::string, std::string>{{made.name, made.value}}))
                << finding.reason << " in '" << made.text << "': '" << *finding.replacement << "'";
        }
        expect_that_suggestions_help(kind, made.text);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    EXPECT_GT(mistaken, 1250U);
    EXPECT_GT(several, 600U);
}

TEST(GENERATED_MISTAKES, in_lines_are_put_right)
{
    MISTAKES mistakes(20261122);
    expect_that_all_is_put_right(LAYER_KIND::MAIN_FILE, [&] { return mistakes.line(); });
}

TEST(GENERATED_MISTAKES, in_items_are_put_right)
{
    MISTAKES mistakes(20261123);
    expect_that_all_is_put_right(LAYER_KIND::INLINE_TEXT, [&] { return mistakes.item(); });
}

// Whatever stands in a file or in the inline text.
TEST(GENERATED_TEXTS, get_suggestions_that_help)
{
    MISTAKES mistakes(7);
    SETTINGS_GENERATOR& generate = mistakes.generate;
    const auto line = [&]
    {
        return generate.below(3) == 0 ? mistakes.line().text
               : generate.below(2) == 0
                   ? generate.hostile_line()
                   : generate.with_one_of(generate.line(), {"", " h=2", ",", ";c=3", "\rd=4", " // x"});
    };
    std::size_t suggested = 0;
    for (int i = 0; i < 1500; ++i)
    {
        suggested += expect_that_suggestions_help(LAYER_KIND::MAIN_FILE, generate.file(line, 6));
        ASSERT_FALSE(HasFailure()) << "file " << i;
        suggested += expect_that_suggestions_help(LAYER_KIND::INLINE_TEXT, generate.inline_text(line));
        ASSERT_FALSE(HasFailure()) << "inline text " << i;
    }
    EXPECT_GT(suggested, 3000U);
}
}
