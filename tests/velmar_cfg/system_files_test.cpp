// What list, get, explain and lint say of the machine's own configuration files, beside each other: the model of each,
// for as many files as a fixed time allows.
#include <chrono>

#include "tests/velmar_cfg/suggestions.h"
#include "tests/velmar_cfg/system_files.h"
#include "tools/velmar-cfg/lint/explanation.h"

namespace
{
using testing::UnorderedElementsAreArray;

// Hands over files until the time is up, each with its path in the test's trace. Fails when there are none, unless the
// machine has none.
template <typename CHECK>
void for_each_system_file(std::chrono::milliseconds budget, CHECK check)
{
    const std::vector<std::filesystem::path> files = system_configuration_files();
    if (files.empty())
        GTEST_SKIP() << "no configuration files below /etc and /usr";
    const auto start = std::chrono::steady_clock::now();
    std::size_t checked = 0;
    for (const std::filesystem::path& path : files)
    {
        const std::string text = bytes_of(path);
        if (text.find('\0') != std::string::npos)
            continue; // no text: the tool refuses it
        SCOPED_TRACE(path.string());
        check(text);
        if (testing::Test::HasFatalFailure() || testing::Test::HasNonfatalFailure())
            return;
        ++checked;
        if (std::chrono::steady_clock::now() - start > budget)
            break;
    }
    EXPECT_GT(checked, 0U);
}

// Every nth of the variables, a few in all.
std::vector<std::string> some_names(const SETTINGS& settings)
{
    std::vector<std::string> names = names_of_variables(settings);
    constexpr std::size_t most = 12;
    std::vector<std::string> some;
    for (std::size_t i = 0; i < names.size(); i += 1 + names.size() / most)
        some.push_back(std::move(names[i]));
    return some;
}

// The reasons that lint has for the lines of the variable; that a later line wins, explain shows in its table.
std::vector<std::string> lint_reasons(const std::vector<FINDING>& findings, const EXPLANATION& explanation)
{
    std::vector<std::string> reasons;
    for (const EXPLAINED_ASSIGNMENT& assignment : explanation.assignments)
    {
        for (const FINDING& finding : findings)
        {
            if (finding.line == assignment.location.position && finding.reason != "overridden")
                reasons.push_back(finding.reason);
        }
    }
    return reasons;
}

std::vector<std::string> lint_reasons_in(const std::vector<HINT>& hints)
{
    std::vector<std::string> reasons;
    for (const HINT& hint : hints)
    {
        if (hint.reason != "spelling" && hint.reason != "near-miss" && hint.reason != "in-comment")
            reasons.push_back(hint.reason);
    }
    return reasons;
}

TEST(SYSTEM_FILES, list_get_explain_and_lint_agree)
{
    std::size_t variables = 0;
    for_each_system_file(std::chrono::seconds(2),
                         [&](const std::string& text)
                         {
                             const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, text)};
                             const SETTINGS settings(layers);
                             const std::vector<FINDING> findings = lint_settings(layers);
                             for (const std::string& name : some_names(settings))
                             {
                                 SCOPED_TRACE(name);
                                 ++variables;
                                 const VARIABLE* const listed = settings.find(name);
                                 ASSERT_NE(listed, nullptr);
                                 const SETTINGS alone = SETTINGS::of_one_variable(layers, name);
                                 const VARIABLE* const got = alone.find(name);
                                 ASSERT_NE(got, nullptr);
                                 EXPECT_EQ(alone.value_of(*got), settings.value_of(*listed));
                                 EXPECT_EQ(alone.location_of(*got).position, settings.location_of(*listed).position);

                                 const EXPLANATION explanation = explain_variable(name, settings);
                                 EXPECT_EQ(explanation.value, settings.value_of(*listed));
                                 ASSERT_EQ(explanation.assignments.size(), settings.assignments_to(*listed).size());
                                 EXPECT_EQ(explanation.assignments.back().value, explanation.value);
                                 EXPECT_EQ(explanation.assignments.back().location.position,
                                           settings.location_of(*listed).position);
                                 EXPECT_THAT(lint_reasons_in(explanation.hints),
                                             UnorderedElementsAreArray(lint_reasons(findings, explanation)));
                             }
                         });
    EXPECT_TRUE(variables > 0 || IsSkipped());
}

bool is_comment_or_blank(std::string_view line)
{
    const std::size_t first = line.find_first_not_of(" \t\r\v\f");
    return first == std::string_view::npos || line[first] == '#' || line[first] == ';' ||
           line.substr(first).starts_with("//");
}

// Of each line, lint says that it is ignored if and only if it sets nothing and is no comment.
TEST(SYSTEM_FILES, lint_tells_each_line_that_sets_nothing)
{
    static const std::set<std::string> ignoring = {"too-short", "no-equals-sign", "comment-cut", "byte-order-mark",
                                                   "carriage-return"};
    for_each_system_file(
        std::chrono::seconds(2),
        [](const std::string& text)
        {
            const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, text)};
            std::set<std::size_t> told;
            for (const FINDING& finding : lint_settings(layers))
            {
                if (finding.severity == SEVERITY::ERROR && ignoring.contains(finding.reason))
                    told.insert(*finding.line);
            }
            STATEMENTS statements(layers);
            STATEMENT statement{};
            while (statements.next(statement))
            {
                const bool sets = statement.outcome == OUTCOME::STORED;
                EXPECT_EQ(told.contains(statement.position), !sets && !is_comment_or_blank(statement.text))
                    << "line " << statement.position << ": '" << statement.text << "'";
            }
        });
}

TEST(SYSTEM_FILES, get_suggestions_that_help)
{
    std::size_t suggested = 0;
    for_each_system_file(std::chrono::seconds(2), [&](const std::string& text)
                         { suggested += expect_that_suggestions_help(LAYER_KIND::MAIN_FILE, text, 10); });
    EXPECT_TRUE(suggested > 0 || IsSkipped());
}

std::string_view trimmed_part(std::string_view part)
{
    const std::size_t first = std::min(part.find_first_not_of(" \t\r"), part.size());
    return part.substr(first, part.find_last_not_of(" \t\r") + 1 - first);
}

// A line "NAME = VALUE", perhaps with a comment behind a blank, as every reader of such files takes it.
bool looks_plain(std::string_view line)
{
    for (const char* const comment : {" #", "\t#", " ;", "\t;"})
        line = line.substr(0, line.find(comment));
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.find_first_of("#;") != std::string_view::npos ||
        line.find(" //") != std::string_view::npos || line.find("\t//") != std::string_view::npos)
        return false;
    const std::string_view name = trimmed_part(line.substr(0, equals));
    const std::string_view value = trimmed_part(line.substr(equals + 1));
    return !name.empty() && !value.empty() && value.front() != '=' &&
           name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.-[]@") ==
               std::string_view::npos;
}

// What lint sees of other formats' habits is hardly ever seen where a line sets what it looks like.
TEST(SYSTEM_FILES, have_hardly_a_false_warning)
{
    static const std::set<std::string> habits = {"carriage-return",   "operator-in-name", "quoted-name",
                                                 "double-equals",     "trailing-comma",   "white-space-kept",
                                                 "second-assignment", "comment-cut",      "slashes-in-value"};
    std::size_t plain = 0;
    std::string warned;
    std::size_t warnings = 0;
    for_each_system_file(std::chrono::seconds(2),
                         [&](const std::string& text)
                         {
                             const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, text)};
                             std::map<std::size_t, std::string> plain_lines;
                             STATEMENTS statements(layers);
                             STATEMENT statement{};
                             while (statements.next(statement))
                             {
                                 if (looks_plain(statement.text))
                                     plain_lines.emplace(statement.position, statement.text);
                             }
                             plain += plain_lines.size();
                             for (const FINDING& finding : lint_settings(layers))
                             {
                                 if (finding.severity == SEVERITY::NOTE || !habits.contains(finding.reason) ||
                                     !plain_lines.contains(*finding.line))
                                     continue;
                                 ++warnings;
                                 warned += finding.reason + ": " + plain_lines[*finding.line] + "\n";
                             }
                         });
    if (plain < 1000)
        GTEST_SKIP() << "too few lines to tell: " << plain;
    EXPECT_LE(warnings * 1000, plain) << warned;
}
}
