// Every command's help: an example, its arguments and options.
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;

struct HELP
{
    std::vector<std::string> command;
    std::vector<std::string> parts;
};

void PrintTo(const HELP& row, std::ostream* stream)
{
    for (const std::string& word : row.command)
        *stream << word << " ";
}

class COMMAND_HELP : public TOOL_TEST, public testing::WithParamInterface<HELP>
{
};

TEST_P(COMMAND_HELP, has_an_example_and_names_every_option)
{
    std::vector<std::string> arguments = GetParam().command;
    std::string example = "Example:\n  velmar-cfg ";
    arguments.emplace_back("--help");
    const TOOL_RUN help = run(arguments);
    EXPECT_EQ(help.exit_code, 0);
    EXPECT_EQ(help.err, "");
    EXPECT_THAT(help.out, HasSubstr(example));
    EXPECT_THAT(help.out.substr(help.out.find("Example:")), HasSubstr(GetParam().command.back()));
    for (const std::string& part : GetParam().parts)
        EXPECT_THAT(help.out, HasSubstr(part));
}

INSTANTIATE_TEST_SUITE_P(
    commands, COMMAND_HELP,
    testing::Values(HELP{{"get"}, {"NAME", "--type TYPE", "--default VALUE", "-z"}},
                    HELP{{"list"}, {"PATTERN", "--show-origin", "--external", "-z"}}, HELP{{"explain"}, {"NAME"}},
                    HELP{{"paths"}, {}}, HELP{{"lint"}, {"FILE", "--strict"}},
                    HELP{{"prefs"}, {"list", "get", "set", "reset", "describe", "lint", "path"}},
                    HELP{{"prefs", "list"}, {"--all", "-z"}}, HELP{{"prefs", "get"}, {"KEY", "-z"}},
                    HELP{{"prefs", "set"}, {"KEY", "VALUE", "--dry-run", "--wait SECONDS"}},
                    HELP{{"prefs", "reset"}, {"KEY", "--dry-run", "--wait SECONDS"}},
                    HELP{{"prefs", "describe"}, {"KEY"}}, HELP{{"prefs", "lint"}, {"FILE", "--strict"}},
                    HELP{{"prefs", "path"}, {"-z"}}, HELP{{"run-report"}, {"FILE", "--merge", "--switch NAME"}},
                    HELP{{"snapshot"}, {"-o,--output FILE"}}, HELP{{"diff"}, {"A", "B", "--used REPORT"}}));
}
