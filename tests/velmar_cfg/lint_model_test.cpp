// What lint says of a line, beside what the library's rules do with it, over generated lines.
#include "tools/velmar-cfg/lint/settings_rules.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>

#include "tests/support/processor_time.h"
#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
// The reasons with which lint says that a line or an item takes no effect.
const std::set<std::string> ignoring = {"too-short", "no-equals-sign", "comment-cut", "empty-name", "empty-value"};

bool all_comment_or_blank(const std::string& line)
{
    const std::size_t first = line.find_first_not_of(" \t\r");
    return first == std::string::npos || line[first] == '#' || line[first] == ';' || line.compare(first, 2, "//") == 0;
}

// Each line alone in a file: what the reader stores of it and what lint says of it must agree.
TEST(LINT_MODEL, says_of_each_line_what_becomes_of_it)
{
    int stored = 0;
    int ignored = 0;
    SETTINGS_GENERATOR generate(20240229);
    for (int i = 0; i < 1500; ++i)
    {
        const std::string line = generate.line();
        SCOPED_TRACE("line '" + line + "'");
        const SETTINGS settings(
            {{LAYER_KIND::MAIN_FILE, std::make_shared<const INPUT_FILE>(INPUT_FILE{"velmar.ini", line, {}})}});
        const std::vector<FINDING> findings = lint_settings(settings.layers());
        const auto found = [&](const char* reason)
        { return std::ranges::any_of(findings, [&](const FINDING& finding) { return finding.reason == reason; }); };
        if (found("carriage-return"))
        {
            ASSERT_EQ(findings.size(), 1U);
            ASSERT_LT(line.find('\r'), line.find_last_not_of(" \t\r"));
            continue;
        }
        const bool said_to_be_ignored =
            std::ranges::any_of(findings, [](const FINDING& finding)
                                { return finding.severity == SEVERITY::ERROR && ignoring.contains(finding.reason); });

        if (settings.variables().empty())
        {
            ASSERT_EQ(said_to_be_ignored, !all_comment_or_blank(line));
            ++ignored;
            continue;
        }
        ASSERT_FALSE(said_to_be_ignored);
        ++stored;
        const VARIABLE& variable = settings.variables().front();
        const std::string_view name = settings.name_of(variable);
        const std::string_view value = settings.value_of(variable);
        // A name that is not what stands before the "=", and a value that is not what stands behind it up to a comment
        // set off by a blank, are told.
        const std::string before_equals = line.substr(0, line.find('='));
        const std::size_t first = before_equals.find_first_not_of(" \t\r");
        const std::string written =
            first == std::string::npos
                ? ""
                : before_equals.substr(first, before_equals.find_last_not_of(" \t\r") + 1 - first);
        ASSERT_EQ(found("blanks-in-name") || found("operator-in-name"), written != name || written.ends_with(':'));
        ASSERT_EQ(found("empty-name"), name.empty());
        const std::string behind_equals = line.substr(line.find('=') + 1);
        const bool whole =
            behind_equals.find(value) != std::string::npos && behind_equals.find_first_of("#;") == std::string::npos;
        if (whole)
        {
            ASSERT_FALSE(found("comment-cut") || found("second-assignment"));
        }
        if (value.empty() && !whole)
        {
            // What follows the sign at once was perhaps to be the value.
            const std::string behind_sign = behind_equals.substr(behind_equals.find_first_of("#;") + 1);
            const bool is_comment = behind_sign.find_first_of(" \t\r#;") == 0 || behind_sign.starts_with("//");
            ASSERT_EQ(found("comment-cut"), !behind_sign.empty() && !is_comment && !found("second-assignment"));
        }
    }
    EXPECT_GT(stored, 500);
    EXPECT_GT(ignored, 150);
}

// A file of distinct names takes about ten times what it takes to find out which variables it sets. With a table of
// letters by letters for each known variable of about a name's length, it took hundreds of times that.
TEST(LINT_MODEL, takes_a_small_multiple_of_the_time_of_a_load)
{
    std::mt19937 random(20261122);
    const std::vector<std::string> words = {"fan", "msg", "max", "cfg", "route", "timing", "level", "limit", "effort"};
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text +=
            words[random() % words.size()] + "_" + words[random() % words.size()] + "_" + std::to_string(i) + " = 1\n";
    const LAYERS layers = {
        {LAYER_KIND::MAIN_FILE, std::make_shared<const INPUT_FILE>(INPUT_FILE{"velmar.ini", text, {}})}};
    const double load = least_processor_seconds([&] { const SETTINGS settings(layers); });
    const double lint = least_processor_seconds([&] { lint_settings(layers, [](const FINDING&) {}); });
    EXPECT_LT(lint, 60 * load);
}
}
