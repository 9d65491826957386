// What setting and unsetting a variable makes of a settings file.
#include "tools/velmar-cfg/settings/settings_edit.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <set>

#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
using testing::ElementsAre;

std::string planned(const std::string& before, const SETTINGS_CHANGE& change)
{
    check_settings_change(change);
    return plan_settings_change("velmar.ini", before, change).after;
}

std::string complaint_of(const std::string& before, const SETTINGS_CHANGE& change)
{
    try
    {
        planned(before, change);
    }
    catch (const TOOL_ERROR& error)
    {
        return std::to_string(static_cast<int>(error.exit_code)) + " " + error.what();
    }
    return "";
}

// ---------------------------------------------------------------------------------------------------------------------
// Tables
// ---------------------------------------------------------------------------------------------------------------------

// `a` is set to `value`.
struct EDITED
{
    std::string before;
    const char* value;
    std::string after;
};

void PrintTo(const EDITED& row, std::ostream* stream)
{
    *stream << "a set to '" << row.value << "' in '" << row.before << "'";
}

class SETTING : public testing::TestWithParam<EDITED>
{
};

TEST_P(SETTING, makes_of_the_file)
{
    EXPECT_EQ(planned(GetParam().before, {"a", GetParam().value}), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    the_value_alone, SETTING,
    testing::Values(EDITED{"a = 1\n", "2", "a = 2\n"}, EDITED{"a=1", "2", "a=2"},
                    EDITED{"\ta\t=\t1\n", "2", "\ta\t=\t2\n"},
                    EDITED{"a    =   1   # note\n", "22", "a    =   22   # note\n"},
                    EDITED{"a = 1 ; note\r\n", "2", "a = 2 ; note\r\n"}, EDITED{"a = 1#note\n", "2", "a = 2#note\n"},
                    EDITED{"a = \"x;y\" ; z\n", "2", "a = 2 ; z\n"}, EDITED{"a = 1\n", "\"x;y\"", "a = \"x;y\"\n"},
                    EDITED{"a = 1 # b\n", "\"x;y\"", "a = \"x;y\" # b\n"}, EDITED{"a = \"1 # b\n", "2", "a = 2\n"},
                    EDITED{"a = 1 // b\n", "2", "a = 2\n"}, EDITED{"a = x = y\n", "p = q", "a = p = q\n"},
                    EDITED{"a = 1\rb = 2\r\n", "2", "a = 2\r\n"}, EDITED{"a = \xff\xfe\n", "\xe9", "a = \xe9\n"},
                    EDITED{"  A  = 1\n", "2", "  A  = 2\n"}, EDITED{"a = 1", "2", "a = 2"}));

INSTANTIATE_TEST_SUITE_P(
    the_last_line_that_sets_it, SETTING,
    testing::Values(EDITED{"a = 1\nA = 2\na = 1\nb = 1\n", "5", "a = 1\nA = 2\na = 5\nb = 1\n"},
                    EDITED{"a = 1\n# a = 2\n", "5", "a = 5\n# a = 2\n"}, EDITED{"a = 1\na\n", "5", "a = 5\na\n"},
                    EDITED{"a = 1\nb = 2 ; a = 3\n", "5", "a = 5\nb = 2 ; a = 3\n"},
                    EDITED{std::string("a = 1\na\0b = 2\n", 14), "5", std::string("a = 1\na\0b = 5\n", 14)}));

// No byte changes.
INSTANTIATE_TEST_SUITE_P(what_is_there, SETTING,
                         testing::Values(EDITED{"a =   5", "5", "a =   5"},
                                         EDITED{"a = 5 # x\r\n", "5", "a = 5 # x\r\n"},
                                         EDITED{"a = # x\n", "", "a = # x\n"}, EDITED{"a =", "", "a ="},
                                         EDITED{"a = \"x # y\n", "\"x # y", "a = \"x # y\n"}));

INSTANTIATE_TEST_SUITE_P(the_empty_text, SETTING,
                         testing::Values(EDITED{"a = 5 # x\n", "", "a =  # x\n"}, EDITED{"a = 5\n", "", "a = \n"},
                                         EDITED{"a=5\n", "", "a =\n"}, // "a=" would be too short
                                         EDITED{"a=5\r\n", "", "a=\r\n"}, EDITED{"", "", "a =\n"},
                                         EDITED{"b = 1\r\n", "", "b = 1\r\na =\r\n"}));

INSTANTIATE_TEST_SUITE_P(a_line_without_a_value, SETTING,
                         testing::Values(EDITED{"a =\n", "5", "a = 5\n"}, EDITED{"a = \n", "5", "a = 5\n"},
                                         EDITED{"a=\r\n", "5", "a=5\r\n"}, EDITED{"a =\r\n", "5", "a = 5\r\n"},
                                         EDITED{"a =\t\t\r\n", "5", "a =\t\t5\r\n"},
                                         EDITED{"a = # x\n", "5", "a = 5 # x\n"},
                                         EDITED{"a =     # x\n", "5", "a = 5    # x\n"},
                                         EDITED{"a =# x\n", "5", "a = 5 # x\n"}, EDITED{"a=;x\n", "5", "a=5 ;x\n"},
                                         EDITED{"a=\n", "5", "a=\na = 5\n"})); // too short to set anything

INSTANTIATE_TEST_SUITE_P(
    a_new_line_at_the_end, SETTING,
    testing::Values(EDITED{"", "5", "a = 5\n"}, EDITED{"b = 1\n", "5", "b = 1\na = 5\n"},
                    EDITED{"b = 1", "5", "b = 1\na = 5\n"}, EDITED{"b = 1\r\n", "5", "b = 1\r\na = 5\r\n"},
                    EDITED{"b = 1\r\nc = 2", "5", "b = 1\r\nc = 2\r\na = 5\r\n"},
                    EDITED{"b = 1\nc = 2\r\n", "5", "b = 1\nc = 2\r\na = 5\r\n"},
                    EDITED{"b = 1\r\nc = 2\n", "5", "b = 1\r\nc = 2\na = 5\n"},
                    EDITED{"b = 1\r\nc = 2\r", "5", "b = 1\r\nc = 2\r\na = 5\r\n"}, EDITED{"\n\n", "5", "\n\na = 5\n"},
                    EDITED{"b = 1\rc = 2", "5", "b = 1\rc = 2\na = 5\n"},
                    // A carriage return would make assignments of these.
                    EDITED{"b = 1\r\nc=", "5", "b = 1\r\nc=\na = 5\r\n"}, EDITED{"x\r\n= ", "5", "x\r\n= \na = 5\r\n"},
                    EDITED{"\xef\xbb\xbf", "5", "\xef\xbb\xbf\na = 5\n"},
                    EDITED{"\xef\xbb\xbf"
                           "a = 1\n", // sets another name
                           "5",
                           "\xef\xbb\xbf"
                           "a = 1\na = 5\n"},
                    EDITED{"a b = 1\n", "5", "a b = 1\na = 5\n"}));

INSTANTIATE_TEST_SUITE_P(a_new_line_behind_a_comment, SETTING,
                         testing::Values(EDITED{"x = 1\n# a = 1\nb = 2\n", "5", "x = 1\n# a = 1\na = 5\nb = 2\n"},
                                         EDITED{"#a=1\r\nb = 2\n", "5", "#a=1\r\na = 5\r\nb = 2\n"},
                                         EDITED{"  ; A = 1 ; default\nb = 2\n", "5",
                                                "  ; A = 1 ; default\n  a = 5\nb = 2\n"},
                                         EDITED{"\t// a = 1\nb = 2\n", "5", "\t// a = 1\n\ta = 5\nb = 2\n"},
                                         EDITED{"## // ;a = 1\nb = 2\n", "5", "## // ;a = 1\na = 5\nb = 2\n"},
                                         EDITED{"# a = 1", "5", "# a = 1\na = 5\n"},
                                         EDITED{"x\r\n# a = 1", "5", "x\r\n# a = 1\r\na = 5\r\n"},
                                         EDITED{"# a = 1\n# a = 2\nb = 2\n", "5", "# a = 1\n# a = 2\na = 5\nb = 2\n"},
                                         EDITED{"# ab = 1\nb = 2\n", "5", "# ab = 1\nb = 2\na = 5\n"},
                                         EDITED{"# see a = 1\nb = 2\n", "5", "# see a = 1\nb = 2\na = 5\n"},
                                         EDITED{"b = 2 # a = 1\nc = 3\n", "5", "b = 2 # a = 1\nc = 3\na = 5\n"},
                                         EDITED{"/ a = 1\nb = 2\n", "5", "/ a = 1\nb = 2\na = 5\n"},
                                         EDITED{"#a\nb = 2\n", "5", "#a\nb = 2\na = 5\n"}));

TEST(SETTING_A_LINE, says_which)
{
    const std::string before = "# a = 1\nb = 1\nB = 2\n";
    EXPECT_THAT(plan_settings_change("f", before, {"a", "5"}).lines, ElementsAre(CHANGED_LINE{2, LINE_CHANGE::ADDED}));
    EXPECT_THAT(plan_settings_change("f", before, {"c", "5"}).lines, ElementsAre(CHANGED_LINE{4, LINE_CHANGE::ADDED}));
    EXPECT_THAT(plan_settings_change("f", "", {"c", "5"}).lines, ElementsAre(CHANGED_LINE{1, LINE_CHANGE::ADDED}));
    EXPECT_THAT(plan_settings_change("f", before, {"b", "5"}).lines,
                ElementsAre(CHANGED_LINE{3, LINE_CHANGE::REPLACED}));
    EXPECT_THAT(plan_settings_change("f", before, {"b", "2"}).lines, ElementsAre());
    EXPECT_THAT(plan_settings_change("f", before, {"b", {}}).lines,
                ElementsAre(CHANGED_LINE{2, LINE_CHANGE::REMOVED}, CHANGED_LINE{3, LINE_CHANGE::REMOVED}));
    EXPECT_STREQ(line_change_word(LINE_CHANGE::ADDED), "added");
    EXPECT_STREQ(line_change_word(LINE_CHANGE::REPLACED), "replaced");
    EXPECT_STREQ(line_change_word(LINE_CHANGE::REMOVED), "removed");
}

TEST(UNSETTING, removes_every_line_that_sets_the_variable)
{
    const std::pair<std::string, std::string> rows[] = {
        {"a = 1\n", ""},
        {"b = 1\n  A = 1 # x\r\nc = 2\na=\r\n# a = 1\na=\nb = 2 ; a = 1\na = 3",
         "b = 1\nc = 2\n# a = 1\na=\nb = 2 ; a = 1\n"},
        {"b = 1\r\na = 1", "b = 1\r\n"},
        {"b = 1\n", "b = 1\n"},
        {"", ""},
        {"ab = 1\na b = 1\n\"a\" = 1\n", "ab = 1\na b = 1\n\"a\" = 1\n"},
    };
    for (const auto& [before, after] : rows)
        EXPECT_EQ(planned(before, {"a", {}}), after) << before;
    EXPECT_EQ(planned("=5\n = 6\na = 1\n", {"", {}}), "a = 1\n"); // the variable of empty name
}

TEST(NAMES, of_lines_are_those_that_they_set)
{
    EXPECT_THAT(names_set_in("a = 1\n# b = 2\nA b = 1\r\n=5"), ElementsAre("a", "Ab", ""));
}

// ---------------------------------------------------------------------------------------------------------------------
// What no line can hold
// ---------------------------------------------------------------------------------------------------------------------

TEST(REFUSED_NAMES, are_told_with_what_the_line_would_be)
{
    const std::pair<const char*, const char*> rows[] = {
        {"max fanout", "it would set 'maxfanout'"},
        {" a", "it would set 'a'"},
        {"a ", "it would set 'a'"},
        {"a=b", "it would set 'a'"},
        {"=", "it would set ''"},
        {"#a", "it would be ignored, as a comment"},
        {";a", "it would be ignored, as a comment"},
        {"a;b", "it would be ignored, as a comment"},
        {"//a", "it would be ignored, as a comment"},
        {"a//b", "it would be ignored, as a comment"},
        {"a\nb", "a newline ends the line"},
        {"a\r", "it would set 'a'"},
        {" ", "it would set ''"},
    };
    for (const auto& [name, what] : rows)
    {
        for (const std::optional<std::string>& value : {std::optional<std::string>("1"), std::optional<std::string>()})
        {
            const std::string complaint = complaint_of("", {name, value});
            EXPECT_THAT(complaint, testing::StartsWith("5 no line of a settings file can set '")) << name;
            EXPECT_THAT(complaint, testing::HasSubstr(std::string(": ") + what +
                                                      "; leave out white space, '=', and what begins a comment"))
                << name;
        }
    }
    EXPECT_EQ(complaint_of("", {"", "1"}), "5 the name is empty; give the name of a variable");
    EXPECT_EQ(complaint_of("", {"", {}}), "");
}

TEST(ODD_NAMES, are_taken_as_the_library_takes_them)
{
    for (const char* const name : {"a", "A.b-c[0]", "/x", "a/b", "\"a;b\"", "\"open", "\xc3\xa9", "\xff",
                                   "\xef\xbb\xbf"
                                   "a",
                                   "-x", "1", ":", "export"})
    {
        const std::string after = planned("# first\n", {name, "5"});
        EXPECT_EQ(after, "# first\n" + std::string(name) + " = 5\n");
        EXPECT_EQ(planned(after, {name, "6"}), "# first\n" + std::string(name) + " = 6\n");
        EXPECT_EQ(planned(after, {name, {}}), "# first\n");
    }
}

TEST(REFUSED_VALUES, are_told_with_what_would_be_read_back)
{
    const std::string begin = "5 a line of a settings file cannot hold this value: it would be read back as ";
    const std::string comment = "; outside double quotes, ';' or '#' begins a comment";
    const std::string ends = "; white space at its ends does not count";
    const std::string newline = "; a newline ends the line";
    const std::pair<const char*, std::string> rows[] = {
        {"x;y", "'x'" + comment},
        {"#ff0000", "nothing" + comment},
        {"http://h#p", "'http://h'" + comment},
        {"\"x\";y", "'\"x\"'" + comment},
        {" x", "'x'" + ends},
        {"x\t", "'x'" + ends},
        {"x\r", "'x'" + ends},
        {" ", "nothing" + ends},
        {"x\ny = 1", "'x'" + newline},
        {"\n", "nothing" + newline},
        {"x\n", "'x'" + newline},
    };
    for (const auto& [value, what] : rows)
        EXPECT_EQ(complaint_of("", {"a", value}), begin + what) << value;
    for (const char* const value : {"", "\"x;y\"", "\"x;y", "a//b", "//", "x y", "= 5", "'", "\xff", "x\ry", "\\n"})
        EXPECT_EQ(complaint_of("", {"a", value}), "") << value;
    // A quote in the name keeps what would else begin a comment.
    EXPECT_EQ(complaint_of("", {"\"a", "x;y"}), "");
}

TEST(A_COMMENT_BEHIND_THE_VALUE, must_stay_one)
{
    EXPECT_EQ(complaint_of("b = 1\na = 1 # note\n", {"a", "\"x"}),
              "5 velmar.ini:2: the comment in this line would become part of the value, whose quote is not closed; put "
              "the comment on a line of its own first");
    EXPECT_EQ(complaint_of("a = 1\n", {"a", "\"x"}), "");
    EXPECT_EQ(complaint_of("a = 1 # note\n", {"a", "\"x\""}), "");
}

// ---------------------------------------------------------------------------------------------------------------------
// Random files
// ---------------------------------------------------------------------------------------------------------------------

std::map<std::string, std::string> values_in(const std::string& text)
{
    const SETTINGS settings(
        {{LAYER_KIND::MAIN_FILE, std::make_shared<const INPUT_FILE>(INPUT_FILE{"velmar.ini", text, {}})}});
    std::map<std::string, std::string> values;
    for (const VARIABLE& variable : settings.variables())
    {
        std::string name(settings.name_of(variable));
        name.resize(std::min(name.find('\0'), name.size())); // nothing behind a zero byte counts
        std::ranges::transform(name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
        values[name] = settings.value_of(variable);
    }
    return values;
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines = {""};
    for (const char c : text)
    {
        lines.back() += c;
        if (c == '\n')
            lines.emplace_back();
    }
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

class RANDOM_EDITS
{
public:
    explicit RANDOM_EDITS(unsigned int seed) : generate(seed) {}

    // Makes one edit and looks at what it did. Whether it was made.
    bool next()
    {
        const std::string before = file();
        const SETTINGS_CHANGE change = random_change();
        SCOPED_TRACE("'" + change.name + "' " + (change.value ? "set to '" + *change.value + "'" : "unset") + " in '" +
                     before + "'");
        std::string after;
        try
        {
            check_settings_change(change);
            after = plan_settings_change("f", before, change).after;
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::REFUSED);
            return false;
        }
        compare_values(before, after, change);
        if (change.value)
            compare_bytes_of_set(lines_of(before), lines_of(after), change);
        else
            compare_bytes_of_unset(lines_of(before), lines_of(after), change.name);
        return true;
    }

private:
    // Whether the line, its end included, sets the variable, asked of the whole model.
    static bool line_sets(std::string line, const std::string& name)
    {
        return values_in(line).contains(key(name));
    }

    static std::string key(std::string name)
    {
        std::ranges::transform(name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; });
        return name.substr(0, name.find('\0'));
    }

    std::string file()
    {
        const bool carriage_returns = generate.below(3) == 0;
        std::string text = generate.file(
            [&]
            {
                std::string line = generate.below(2) == 0 ? generate.hostile_line() : generate.line();
                std::erase(line, '\n');
                if (generate.below(5) == 0)
                    line = generate.pick({"#", "# ", "; ", "//", "  # "}) + line;
                return line + (carriage_returns ? "\r" : "");
            },
            6);
        return generate.below(10) == 0 ? "\xef\xbb\xbf" + text : text;
    }

    SETTINGS_CHANGE random_change()
    {
        std::string name =
            generate.pick({"a", "A", "b", "fanout", "msg_sqlite", "c", "\xc3", "/", ":", "\"a", "fan out", "", "x",
                           "new", "a\"b\"", "\x01", "#a", "longer_than_sixteen_letters"});
        if (generate.below(4) == 0)
            return {std::move(name), {}};
        static const std::vector<std::string> values = {
            "1",    "on", "\"x;y\"", "x // y", "",   "http://h#p",   "=",   "-7", "a b", "\"open",
            "\xff", " x", "x\ry",    "x;y",    "\"", "\xe2\x82\xac", "x\n", "//", "'",   "0"};
        return {std::move(name), generate.pick(values)};
    }

    static void compare_values(const std::string& before, const std::string& after, const SETTINGS_CHANGE& change)
    {
        std::map<std::string, std::string> expected = values_in(before);
        expected.erase(key(change.name));
        if (change.value)
            expected[key(change.name)] = *change.value;
        EXPECT_EQ(values_in(after), expected);
    }

    // All lines are as they were but for one, which is new, or which begins and ends as the old one did.
    static void compare_bytes_of_set(std::vector<std::string> before, std::vector<std::string> after,
                                     const SETTINGS_CHANGE& change)
    {
        const bool is_new =
            std::ranges::none_of(before, [&](const std::string& line) { return line_sets(line, change.name); });
        ASSERT_EQ(after.size(), before.size() + (is_new ? 1 : 0));
        const auto unlike = std::ranges::mismatch(before, after);
        if (unlike.in1 == before.end() && !is_new)
            return;
        std::size_t first = static_cast<std::size_t>(unlike.in1 - before.begin());
        if (is_new && first < before.size() && !before[first].ends_with('\n') &&
            after[first].starts_with(before[first])) // the last line got an end
        {
            EXPECT_THAT(after[first].substr(before[first].size()), testing::AnyOf("\n", "\r\n"));
            ++first;
        }
        else if (!is_new)
        {
            const std::string& old_line = before[first];
            const std::string& new_line = after[first];
            const std::size_t same_begin =
                static_cast<std::size_t>(std::ranges::mismatch(old_line, new_line).in1 - old_line.begin());
            EXPECT_GE(same_begin + 1, old_line.find('=')); // "a=" becomes "a ="
            ++first;
            EXPECT_EQ(std::vector(before.begin() + static_cast<std::ptrdiff_t>(first), before.end()),
                      std::vector(after.begin() + static_cast<std::ptrdiff_t>(first), after.end()));
            EXPECT_EQ(old_line.ends_with('\n'), new_line.ends_with('\n'));
            EXPECT_EQ(old_line.ends_with("\r\n"), new_line.ends_with("\r\n"));
            return;
        }
        EXPECT_TRUE(line_sets(after[first], change.name));
        EXPECT_EQ(
            std::vector(before.begin() + static_cast<std::ptrdiff_t>(std::min(first, before.size())), before.end()),
            std::vector(after.begin() + static_cast<std::ptrdiff_t>(first) + 1, after.end()));
    }

    static void compare_bytes_of_unset(const std::vector<std::string>& before, const std::vector<std::string>& after,
                                       const std::string& name)
    {
        std::vector<std::string> expected;
        std::ranges::copy_if(before, std::back_inserter(expected),
                             [&](const std::string& line) { return !line_sets(line, name); });
        EXPECT_EQ(after, expected);
    }

    SETTINGS_GENERATOR generate;
};

bool long_tests()
{
    return std::getenv("ZON_LONG_TESTS") != nullptr;
}

TEST(RANDOM_SETTINGS_EDITS, change_what_was_asked_and_no_other_byte)
{
    RANDOM_EDITS edits(20261122);
    const int count = long_tests() ? 100'000 : 5'000;
    int made = 0;
    for (int i = 0; i < count; ++i)
    {
        made += edits.next() ? 1 : 0;
        ASSERT_FALSE(testing::Test::HasFailure()) << "edit " << i;
    }
    EXPECT_GT(made, count / 2);
    EXPECT_LT(made, count); // some are refused
}

TEST(A_LONG_LINE, is_changed_in_its_value)
{
    const std::string long_value(1U << 20U, 'x');
    const std::string before = "b = " + long_value + "\na = " + long_value + " # note\n# a = " + long_value + "\n";
    EXPECT_EQ(planned(before, {"a", "1"}), "b = " + long_value + "\na = 1 # note\n# a = " + long_value + "\n");
    EXPECT_EQ(planned("", {"a", long_value}), "a = " + long_value + "\n");
}
}
