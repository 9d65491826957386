// The commands of the tutorial, the guide and README.md, typed along: every output there is the one that the command
// gives.
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/support/isolated_test.h"
#include "tests/support/run_program.h"

namespace
{
struct STEP
{
    std::string command;
    std::string output;
};

// The blocks marked "console": a line with "$ " is a command, what follows its output.
std::vector<STEP> steps_of(const std::string& page)
{
    std::vector<STEP> steps;
    std::istringstream stream(page);
    bool in_block = false;
    for (std::string line; std::getline(stream, line);)
    {
        if (line.starts_with("```"))
            in_block = line == "```console";
        else if (in_block && line.starts_with("$ "))
            steps.push_back({line.substr(2), ""});
        else if (in_block)
            steps.back().output += line + "\n";
    }
    return steps;
}

// In a copy of the examples, with the built programs.
class TUTORIAL : public ISOLATED_TEST
{
protected:
    TUTORIAL()
    {
        std::filesystem::copy(EXAMPLES "/project", "project");
        std::filesystem::copy(EXAMPLES "/appended.ini", "appended.ini");
    }

    void expect_outputs(const std::vector<STEP>& steps) const;

    // The output of the commands, as in the directory that the pages name.
    std::string as_on_the_page(std::string output) const
    {
        const std::string here = std::filesystem::canonical(temporary.path("cwd")).string();
        for (std::size_t at = 0; (at = output.find(here, at)) != std::string::npos;)
            output.replace(at, here.size(), "/tmp/tutorial");
        return output;
    }
};

void TUTORIAL::expect_outputs(const std::vector<STEP>& steps) const
{
    // One shell for all, since one step exports what later ones find. A line of its own ends each step's output.
    const std::string end = "--- end of step";
    std::string script;
    for (const STEP& step : steps)
        script += step.command + "\necho '" + end + "'\n";
    const PROGRAM_RESULT result =
        run_program({"/bin/bash", "--norc", "-c", script}, {{"PATH", PROGRAMS ":" PROGRAMS "/guide:/usr/bin:/bin"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");

    std::size_t from = 0;
    for (const STEP& step : steps)
    {
        const std::size_t to = result.out.find(end + "\n", from);
        ASSERT_NE(to, std::string::npos) << step.command;
        EXPECT_EQ(as_on_the_page(result.out.substr(from, to - from)), step.output) << step.command;
        from = to + end.size() + 1;
    }
}

TEST_F(TUTORIAL, says_what_its_commands_say)
{
    const std::vector<STEP> steps = steps_of(read_file(TUTORIAL_PAGE));
    ASSERT_GT(steps.size(), 12U);
    expect_outputs(steps);
}

TEST_F(TUTORIAL, first_page_says_what_its_commands_say)
{
    const std::vector<STEP> steps = steps_of(read_file(FIRST_PAGE));
    ASSERT_EQ(steps.size(), 3U);
    expect_outputs(steps);
}

TEST_F(TUTORIAL, guide_says_what_its_programs_say)
{
    const std::vector<STEP> steps = steps_of(read_file(GUIDE));
    ASSERT_GT(steps.size(), 15U);
    expect_outputs(steps);
}
}
