// The benchmark's figures compare only if its data is what it says: checked here, line by line.
#include "benchmarks/generated_settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace
{
constexpr std::size_t many = 20'000;

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

double percent_of(std::size_t part, std::size_t whole)
{
    return 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

TEST(GeneratedSettings, AreTheSameEveryTime)
{
    EXPECT_EQ(generate_lines(500).text, generate_lines(500).text);
}

TEST(GeneratedSettings, OfFewerLinesAreTheStartOfThoseOfMore)
{
    const std::string few = generate_lines(100).text;
    EXPECT_EQ(generate_lines(500).text.substr(0, few.size()), few);
}

TEST(GeneratedSettings, HaveTheLinesAskedForBehindOneSectionHead)
{
    const GENERATED_SETTINGS settings = generate_lines(1'000);
    const std::vector<std::string> lines = lines_of(settings.text);
    ASSERT_EQ(lines.size(), 1'001U);
    EXPECT_EQ(lines.front(), "[settings]");
    EXPECT_EQ(settings.lines, 1'000U);
}

TEST(GeneratedSettings, HaveTheVariablesAskedFor)
{
    EXPECT_EQ(generate_variables(1'000).variables.size(), 1'000U);
}

TEST(GeneratedSettings, HoldEveryVariableOnALineOfItsOwnInOrder)
{
    const GENERATED_SETTINGS settings = generate_lines(2'000);
    std::size_t next = 0;
    for (const std::string& line : lines_of(settings.text))
    {
        if (line.front() == '#' || line.front() == '[')
            continue;
        ASSERT_LT(next, settings.variables.size()) << line;
        const GENERATED_VARIABLE& variable = settings.variables[next++];
        const std::string tight = variable.name + "=" + variable.value;
        const std::string wide = variable.name + " = " + variable.value;
        const std::size_t length = line.rfind(wide, 0) == 0 ? wide.size() : tight.size();
        EXPECT_TRUE(line.rfind(wide, 0) == 0 || line.rfind(tight, 0) == 0) << line;
        EXPECT_EQ(line.size() > length, variable.has_comment) << line;
    }
    EXPECT_EQ(next, settings.variables.size());
}

TEST(GeneratedSettings, NameEachVariableOnceInSixToThirtyFiveCharacters)
{
    std::set<std::string> names;
    std::size_t shortest = SIZE_MAX;
    std::size_t longest = 0;
    for (const GENERATED_VARIABLE& variable : generate_lines(many).variables)
    {
        EXPECT_TRUE(names.insert(variable.name).second) << variable.name;
        EXPECT_EQ(variable.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"), std::string::npos)
            << variable.name;
        shortest = std::min(shortest, variable.name.size());
        longest = std::max(longest, variable.name.size());
    }
    EXPECT_EQ(shortest, 6U);
    EXPECT_EQ(longest, 35U);
}

TEST(GeneratedSettings, HaveATenthOfCommentLinesAndATenthOfTrailingComments)
{
    const GENERATED_SETTINGS settings = generate_lines(many);
    const auto trailing = static_cast<std::size_t>(std::count_if(settings.variables.begin(), settings.variables.end(),
                                                                 [](const GENERATED_VARIABLE& variable)
                                                                 { return variable.has_comment; }));
    EXPECT_NEAR(percent_of(settings.lines - settings.variables.size(), settings.lines), 10.0, 1.0);
    EXPECT_NEAR(percent_of(trailing, settings.variables.size()), 10.0, 1.0);
}

TEST(GeneratedSettings, HoldEveryKindOfValueAndEveryBooleanWord)
{
    std::set<VALUE_KIND> kinds;
    std::set<std::string> words;
    for (const GENERATED_VARIABLE& variable : generate_lines(many).variables)
    {
        kinds.insert(variable.kind);
        if (variable.kind == VALUE_KIND::BOOLEAN_WORD)
            words.insert(variable.value);
    }
    EXPECT_EQ(kinds.size(), 5U);
    EXPECT_EQ(words, (std::set<std::string>{"0", "1", "false", "off", "on", "true"}));
}

TEST(GeneratedSettings, GiveTheHotNameOfTwentyTwoCharactersTheValueOne)
{
    const GENERATED_SETTINGS settings = generate_lines(100);
    const auto hot = std::find_if(settings.variables.begin(), settings.variables.end(),
                                  [](const GENERATED_VARIABLE& variable) { return variable.name == hot_name; });
    ASSERT_NE(hot, settings.variables.end());
    EXPECT_EQ(hot->name.size(), 22U);
    EXPECT_EQ(hot->value, "1");
}

TEST(ShuffledNames, AreThoseOfTheKindThatEveryStoreReads)
{
    const GENERATED_SETTINGS settings = generate_variables(10'000);
    const std::vector<std::string> names = shuffled_names(settings, VALUE_KIND::BOOLEAN_WORD, 1'000);
    const std::set<std::string> distinct(names.begin(), names.end());
    EXPECT_EQ(distinct.size(), 1'000U);
    for (const GENERATED_VARIABLE& variable : settings.variables)
    {
        if (distinct.count(variable.name) == 0)
            continue;
        EXPECT_EQ(variable.kind, VALUE_KIND::BOOLEAN_WORD) << variable.name;
        EXPECT_FALSE(variable.has_comment) << variable.name;
        EXPECT_NE(variable.value, "on") << variable.name;
        EXPECT_NE(variable.value, "off") << variable.name;
    }
}

TEST(ShuffledNames, OfAllVariablesLeaveNoneOut)
{
    const GENERATED_SETTINGS settings = generate_variables(1'000);
    std::vector<std::string> in_order;
    for (const GENERATED_VARIABLE& variable : settings.variables)
        in_order.push_back(variable.name);
    std::vector<std::string> names = shuffled_names(settings);
    EXPECT_NE(names, in_order);
    std::sort(names.begin(), names.end());
    std::sort(in_order.begin(), in_order.end());
    EXPECT_EQ(names, in_order);
}

TEST(UnknownNames, AreNoVariablesAndNoTwoAlike)
{
    const std::vector<std::string> names = generate_unknown_names(10'000);
    std::set<std::string> distinct(names.begin(), names.end());
    EXPECT_EQ(distinct.size(), 10'000U);
    for (const GENERATED_VARIABLE& variable : generate_variables(10'000).variables)
        EXPECT_EQ(distinct.count(variable.name), 0U) << variable.name;
}
}
