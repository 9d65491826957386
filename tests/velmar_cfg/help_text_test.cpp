// The help text of every command, word by word: descriptions, options, arguments, examples and their order.
//
// help.txt holds them one behind the other, each below a line "=== COMMAND". After a change of a help text, run this
// test with UPDATE_HELP_TEXTS=1 in the environment, which writes the file anew, and look at the difference.
#include "tools/velmar-cfg/commands/help.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <sstream>

#include "tests/support/temporary_directory.h"
#include "tools/velmar-cfg/commands/command_line.h"

namespace
{
using testing::HasSubstr;

constexpr const char* beginning_of_title = "=== ";

// By the words of the command, in the order of the file.
using HELP_TEXTS = std::vector<std::pair<std::string, std::string>>;

HELP_TEXTS help_texts_of_tool()
{
    TOOL tool;
    const std::unique_ptr<CLI::App> app = make_command_line(tool);
    HELP_TEXTS texts;
    for (const CLI::App* const command : all_commands(*app))
        texts.emplace_back(spoken_name(command), help_of(command, 80));
    return texts;
}

HELP_TEXTS help_texts_of_file()
{
    HELP_TEXTS texts;
    std::istringstream lines(read_file(HELP_TEXTS_FILE));
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with(beginning_of_title))
            texts.emplace_back(line.substr(std::string(beginning_of_title).size()), "");
        else if (!texts.empty())
            texts.back().second += line + "\n";
    }
    return texts;
}

TEST(HELP_TEXT, is_what_the_file_says)
{
    const HELP_TEXTS texts = help_texts_of_tool();
    if (std::getenv("UPDATE_HELP_TEXTS") != nullptr)
    {
        std::string bytes;
        for (const auto& [command, text] : texts)
            bytes += beginning_of_title + command + "\n" + text;
        write_file(HELP_TEXTS_FILE, bytes);
        GTEST_SKIP() << "written anew: " << HELP_TEXTS_FILE;
    }
    const HELP_TEXTS expected = help_texts_of_file();
    for (std::size_t i = 0; i < std::min(texts.size(), expected.size()); ++i)
    {
        EXPECT_EQ(texts[i].first, expected[i].first) << "the order of the commands";
        EXPECT_EQ(texts[i].second, expected[i].second) << texts[i].first;
    }
    EXPECT_EQ(texts.size(), expected.size());
}

// --- Its form ---

// A command line of one command, whose help text is asked for.
class FORM_OF_HELP : public testing::Test
{
protected:
    FORM_OF_HELP() : app(std::make_unique<CLI::App>("What it does."))
    {
        app->name("tool");
        app->set_help_flag();
    }

    std::string help(std::size_t width) const
    {
        return help_of(app.get(), width);
    }

    const std::unique_ptr<CLI::App> app;
    std::string text;
    std::vector<std::string> texts;
    bool flag = false;
};

TEST_F(FORM_OF_HELP, breaks_paragraphs_at_the_width_and_never_within_words)
{
    app->description("aaaa bbbb cccc dddddddddddddd e");
    for (const auto& [width, expected] :
         {std::pair<std::size_t, const char*>{14, "aaaa bbbb cccc\ndddddddddddddd\ne\n"},
          {13, "aaaa bbbb\ncccc\ndddddddddddddd\ne\n"},
          {9, "aaaa bbbb\ncccc\ndddddddddddddd\ne\n"},
          {8, "aaaa\nbbbb\ncccc\ndddddddddddddd\ne\n"},
          {1, "aaaa\nbbbb\ncccc\ndddddddddddddd\ne\n"}})
        EXPECT_THAT(help(width), testing::StartsWith(expected)) << width;
}

TEST_F(FORM_OF_HELP, indents_the_further_lines_of_the_usage)
{
    app->add_option("FIRST", text)->required();
    app->add_option("SECOND", text);
    app->add_option("THIRD", texts);
    EXPECT_THAT(help(80), HasSubstr("\nUsage: tool [OPTION ...] FIRST [SECOND] [THIRD ...]\n"));
    EXPECT_THAT(help(30), HasSubstr("\nUsage: tool [OPTION ...] FIRST\n       [SECOND] [THIRD ...]\n"));
    app->require_subcommand(1);
    EXPECT_THAT(help(80), HasSubstr(" [THIRD ...] COMMAND [ARGUMENT ...]\n"));
}

TEST_F(FORM_OF_HELP, has_no_heading_above_nothing)
{
    EXPECT_EQ(help(80), "What it does.\nUsage: tool [OPTION ...]\n\n");
}

TEST_F(FORM_OF_HELP, has_arguments_options_and_commands_in_columns)
{
    app->add_option("NAME", text, "The name")->required();
    app->add_option("-o,--output", text, "Where to")->type_name("FILE");
    app->add_flag("--quick", flag, "Fast");
    app->add_subcommand("go", "Goes. And more.");
    EXPECT_EQ(help(80), "What it does.\n"
                        "Usage: tool [OPTION ...] NAME\n"
                        "\n"
                        "Arguments:\n"
                        "  NAME                      The name\n"
                        "\n"
                        "Options:\n"
                        "  -o, --output FILE         Where to\n"
                        "  --quick                   Fast\n"
                        "\n"
                        "Commands:\n"
                        "  go                        Goes\n"
                        "\n");
}

// Two blanks at least stand between a name and its description.
TEST_F(FORM_OF_HELP, gives_a_long_name_a_line_of_its_own)
{
    app->add_flag("--four-and-twenty-bytes--", flag, "Too long");
    app->add_flag("--four-and-twenty-bytes-", flag, "Fits");
    EXPECT_THAT(help(80), HasSubstr("\n  --four-and-twenty-bytes--\n"
                                    "                            Too long\n"
                                    "  --four-and-twenty-bytes-  Fits\n"));
    // A narrow terminal has a narrow column.
    EXPECT_THAT(help(20), HasSubstr("\n  --four-and-twenty-bytes-\n          Fits\n"));
}

TEST_F(FORM_OF_HELP, keeps_command_lines_of_examples_and_breaks_what_explains_them)
{
    app->footer("Example:\n  tool a line that is longer than the width of the screen\n"
                "      what it does, in words enough\n\n"
                "A note that goes on\nand on.\nSee also:\n  tool b\n");
    EXPECT_THAT(help(24), testing::EndsWith("\nExample:\n"
                                            "  tool a line that is longer than the width of the screen\n"
                                            "      what it does, in\n"
                                            "      words enough\n"
                                            "\n"
                                            "A note that goes on and\n"
                                            "on.\n"
                                            "See also:\n"
                                            "  tool b\n"));
}

TEST(SUMMARIES, end_at_the_first_sentence_or_clause)
{
    for (const auto& [description, expected] : {std::pair{"Shows all. And more: much", "Shows all"},
                                                {"Shows: all. And more", "Shows"},
                                                {"Shows; or else: not", "Shows"},
                                                {"Shows velmar.ini", "Shows velmar.ini"},
                                                {"Shows all.", "Shows all."},
                                                {"", ""}})
        EXPECT_EQ(summary(description), expected) << description;
}
}
