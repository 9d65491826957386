// What the layers and lint say, compared with what the library stored, over generated files.
#include "tools/velmar-cfg/settings/layers.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <random>
#include <set>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
// Texts made of pieces that matter to the line rules.
class GENERATOR
{
public:
    explicit GENERATOR(unsigned int seed) : random(seed) {}

    std::size_t below(std::size_t bound)
    {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    }

    std::string pick(const std::vector<std::string>& pieces)
    {
        return pieces[below(pieces.size())];
    }

    // A line that is often an assignment to one of a few names, and sometimes anything.
    std::string line()
    {
        static const std::vector<std::string> names = {"a",          "A", "b",  "fan out",          "Fanout",
                                                       "msg_sqlite", "",  " c", "cfg_max_to_report"};
        static const std::vector<std::string> values = {"1",          "on",  "\"x;y\"", "x // y", "2.5ms", "",
                                                        "http://h#p", "#ff", "=",       "\"open", "-7"};
        static const std::vector<std::string> pieces = {"a", "=",  ";", "#", "//", "\"", " ",
                                                        "b", "\t", "1", "/", "\r", ":"};
        if (below(4) > 0)
            return pick(names) + pick({"=", " = ", "  ="}) + pick(values) +
                   pick({"", "", " ; note", ";b=2", " # x", "\r"});
        std::string text;
        for (std::size_t i = below(7); i > 0; --i)
            text += pick(pieces);
        return text;
    }

    std::string file()
    {
        std::string text;
        for (std::size_t i = below(12); i > 0; --i)
            text += line() + "\n";
        return text + (below(2) == 0 ? line() : "");
    }

    std::string inline_text()
    {
        std::string text;
        for (std::size_t i = below(6); i > 0; --i)
            text += line() + pick({";", ":"});
        std::erase_if(text, [](char c) { return c == '\r'; });
        return text;
    }

private:
    std::mt19937 random;
};

class LAYERS : public ISOLATED_TEST
{
};

TEST_F(LAYERS, say_what_the_library_answers_over_generated_files)
{
    std::size_t variables = 0;
    std::size_t overridden = 0;
    for (unsigned int seed = 1; seed <= 200; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        GENERATOR generate(seed);
        write_file("project/velmar.ini", generate.file());
        write_file("appended.ini", generate.file());
        write_file("project/regtest.ini", generate.file());
        environment.set("APPENDED_VELMAR_INI", generate.below(3) > 0 ? "appended.ini" : "");
        environment.set("VELMAR_INI_VARS", generate.inline_text());

        SETTINGS_SCOPE scope;
        scope.project = generate.below(4) > 0 ? "project" : "";
        scope.regtest = generate.below(2) > 0;
        const SETTINGS settings = load_settings(scope);
        ASSERT_THAT(differences_from_library(settings), testing::IsEmpty());
        ASSERT_EQ(settings.variables.size(), settings.layers.assignments.size());
        for (const VARIABLE& variable : settings.variables)
        {
            const STATEMENT* const winner = settings.layers.winner_of(variable.name);
            ASSERT_NE(winner, nullptr) << variable.name;
            ASSERT_EQ(winner->value, cfg_get_value(variable.name)) << variable.name;
            ASSERT_EQ(settings.layers.external(variable.name), cfg_ini_is_external(variable.name)) << variable.name;
            overridden += settings.layers.assignments_of(variable.name).size() - 1;
        }
        variables += settings.variables.size();
    }
    // The files were worth comparing.
    EXPECT_GT(variables, 500U);
    EXPECT_GT(overridden, 500U);
}

TEST_F(LAYERS, differences_from_the_library_are_told)
{
    write_file("velmar.ini", "a=1\nbb=2\n");
    const SETTINGS settings = load_settings({});
    const auto differences_after = [&](const std::function<void(SETTINGS&)>& change)
    {
        SETTINGS changed = settings;
        change(changed);
        return differences_from_library(changed).size();
    };
    EXPECT_EQ(differences_after([](SETTINGS&) {}), 0U);
    EXPECT_GT(differences_after([](SETTINGS& s) { s.variables[0].value = "2"; }), 0U);
    EXPECT_GT(differences_after([](SETTINGS& s) { s.variables[0].external = false; }), 0U);
    EXPECT_GT(differences_after([](SETTINGS& s) { s.variables[0].name = "c"; }), 0U);
    EXPECT_GT(differences_after([](SETTINGS& s) { s.variables.pop_back(); }), 0U);
}

// The reasons with which lint says that a line or an item takes no effect.
const std::set<std::string> ignoring = {"too-short", "no-equals-sign", "comment-cut", "empty-name", "empty-value"};

bool all_comment_or_blank(const std::string& line)
{
    const std::size_t first = line.find_first_not_of(" \t\r");
    return first == std::string::npos || line[first] == '#' || line[first] == ';' || line.compare(first, 2, "//") == 0;
}

// Each line alone in a file: what the reader stores of it and what lint says of it must agree.
TEST_F(LAYERS, lint_says_of_each_line_what_the_reader_did)
{
    int stored = 0;
    int ignored = 0;
    GENERATOR generate(20240229);
    for (int i = 0; i < 1500; ++i)
    {
        const std::string line = generate.line();
        SCOPED_TRACE("line '" + line + "'");
        write_file("velmar.ini", line);
        const SETTINGS settings = load_settings({});
        const std::vector<FINDING> findings = lint_settings(settings.layers);
        const bool said_to_be_ignored =
            std::ranges::any_of(findings, [](const FINDING& finding)
                                { return finding.severity == SEVERITY::ERROR && ignoring.contains(finding.reason); });

        if (settings.variables.empty())
        {
            ASSERT_EQ(said_to_be_ignored, !all_comment_or_blank(line));
            ++ignored;
            continue;
        }
        ASSERT_FALSE(said_to_be_ignored);
        ++stored;
        const VARIABLE& variable = settings.variables.front();
        const auto found = [&](const char* reason)
        { return std::ranges::any_of(findings, [&](const FINDING& finding) { return finding.reason == reason; }); };
        // A name that is not what stands before the "=", and a value that is not what stands behind it up to a comment
        // set off by a blank, are told.
        const std::string before_equals = line.substr(0, line.find('='));
        const std::size_t first = before_equals.find_first_not_of(" \t\r");
        const std::string written =
            first == std::string::npos
                ? ""
                : before_equals.substr(first, before_equals.find_last_not_of(" \t\r") + 1 - first);
        ASSERT_EQ(found("blanks-in-name"), written != variable.name);
        ASSERT_EQ(found("empty-name"), variable.name.empty());
        const std::string behind_equals = line.substr(line.find('=') + 1);
        const bool whole = behind_equals.find(variable.value) != std::string::npos &&
                           behind_equals.find_first_of("#;") == std::string::npos;
        if (whole)
        {
            ASSERT_FALSE(found("comment-cut") || found("second-assignment"));
        }
        if (variable.value.empty() && !whole)
        {
            ASSERT_TRUE(found("comment-cut") || found("second-assignment"));
        }
    }
    EXPECT_GT(stored, 500);
    EXPECT_GT(ignored, 150);
}
}
