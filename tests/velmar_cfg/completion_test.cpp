// The completion scripts, in a real bash and a real zsh.
#include <algorithm>
#include <sstream>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

using LINES = std::vector<std::string>;

std::string quoted(const std::string& word)
{
    std::string text = "'";
    for (const char c : word)
        text += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return text + "'";
}

std::string array_of(const LINES& words)
{
    std::string text = "(";
    for (const std::string& word : words)
        text += quoted(word) + " ";
    return text + ")";
}

LINES lines_of(const PROGRAM_RESULT& result)
{
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    LINES lines;
    std::istringstream stream(result.out);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class COMPLETION : public ISOLATED_TEST
{
protected:
    // What bash offers for the last of the words, which are those that it takes the command line for.
    static LINES in_bash(const LINES& words)
    {
        const std::string script =
            "set -u; source " VELMAR_CFG_COMPLETIONS "/velmar-cfg; complete -p velmar-cfg >/dev/null; "
            "COMP_WORDS=" +
            array_of(words) + " COMP_CWORD=" + std::to_string(words.size() - 1) +
            "; _velmar_cfg velmar-cfg; [ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"";
        return lines_of(run_program({"/bin/bash", "--norc", "-c", script}));
    }

    // What zsh's functions are given to offer for the last of the words: the completion system is stood in for, since
    // it runs in the line editor only. Empty where there is no zsh.
    static LINES in_zsh(const LINES& words)
    {
        const std::string script = "compadd() { print -l -- $names; }; _files() { print -r -- files $*; }; compset() { "
                                   "print -r -- compset $*; };"
                                   "words=" +
                                   array_of(words) + " CURRENT=" + std::to_string(words.size()) +
                                   " PREFIX=" + quoted(words.back()) +
                                   "; source " VELMAR_CFG_COMPLETIONS "/_velmar-cfg";
        return lines_of(run_program({ZSH, "-f", "-c", script}));
    }
};

TEST_F(COMPLETION, offers_the_commands)
{
    EXPECT_THAT(in_bash({"velmar-cfg", ""}),
                UnorderedElementsAre("get", "list", "explain", "layers", "paths", "lint", "set", "unset", "prefs",
                                     "run-report", "snapshot", "diff", "help"));
    EXPECT_THAT(in_bash({"velmar-cfg", "--regtest", "--project", "get", "l"}),
                UnorderedElementsAre("list", "layers", "lint"));
    EXPECT_THAT(in_bash({"velmar-cfg", "help", "l"}), UnorderedElementsAre("list", "layers", "lint"));
    EXPECT_THAT(in_bash({"velmar-cfg", "help", "prefs", "p"}), UnorderedElementsAre("path"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", ""}), UnorderedElementsAre("list", "get", "set", "reset", "describe",
                                                                           "explain", "dump", "load", "lint", "path"));
}

TEST_F(COMPLETION, offers_the_options_of_the_command_and_those_of_all)
{
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "--"}),
                UnorderedElementsAre("--show-origin", "--external", "--all", "--changed", "--read", "--of", "--with",
                                     "--without", "--help", "--project", "--regtest", "--root", "--json", "--color",
                                     "--version", "--secret", "--with-secrets"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "set", "K", "-"}), Contains("--dry-run"));
    EXPECT_THAT(in_bash({"velmar-cfg", "snapshot", "-"}), Contains("-o"));
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "--", "--"}), IsEmpty());
}

TEST_F(COMPLETION, offers_the_words_that_an_option_takes)
{
    EXPECT_THAT(in_bash({"velmar-cfg", "get", "--type", ""}),
                UnorderedElementsAre("bool", "int", "uint", "double", "text"));
    EXPECT_THAT(in_bash({"velmar-cfg", "diff", "a", "--only", ""}),
                UnorderedElementsAre("installation", "environment", "files", "variables", "preferences"));
    // Bash takes "--color=a" for three words.
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "--color", "=", "a"}), UnorderedElementsAre("auto", "always"));
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "--color", "="}), UnorderedElementsAre("auto", "always", "never"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "set", "--wait", ""}), IsEmpty());
    EXPECT_THAT(in_bash({"velmar-cfg", "lint", "--format", ""}), UnorderedElementsAre("text", "sarif"));
    EXPECT_THAT(in_bash({"velmar-cfg", "lint", "--ignore", "bl"}), ElementsAre("blanks-in-name"));
}

TEST_F(COMPLETION, offers_the_variables_of_the_catalogue_in_any_letter_case)
{
    EXPECT_THAT(in_bash({"velmar-cfg", "get", "MSG_S"}), ElementsAre("msg_sqlite"));
    EXPECT_THAT(in_bash({"velmar-cfg", "get", "a", "b", "MSG_S"}), ElementsAre("msg_sqlite"));
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "--without", "MSG_S"}), ElementsAre("msg_sqlite"));
    EXPECT_THAT(in_bash({"velmar-cfg", "explain", "--json", "debug_"}),
                UnorderedElementsAre("debug_msg", "debug_msg_level"));
    EXPECT_THAT(in_bash({"velmar-cfg", "list", "zan"}), ElementsAre("zanth_flow"));
    EXPECT_THAT(in_bash({"velmar-cfg", "set", "--dry-run", "zan"}), ElementsAre("zanth_flow"));
    EXPECT_THAT(in_bash({"velmar-cfg", "set", "zanth_flow", ""}), IsEmpty());
    EXPECT_THAT(in_bash({"velmar-cfg", "unset", "zan"}), ElementsAre("zanth_flow"));
    EXPECT_THAT(in_bash({"velmar-cfg", "run-report", "--switch", "zan"}), ElementsAre("zanth_flow"));
    EXPECT_EQ(in_bash({"velmar-cfg", "get", ""}).size(), 41U); // 30 of the catalogue, 11 of the library's own
}

TEST_F(COMPLETION, offers_keys_and_their_allowed_values)
{
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "get", "hdl"}), ElementsAre("HDL_PREFERENCE"));
    EXPECT_EQ(in_bash({"velmar-cfg", "prefs", "describe", ""}).size(), 121U);
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "explain", "hdl"}), ElementsAre("HDL_PREFERENCE"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "list", "hdl"}), ElementsAre("HDL_PREFERENCE"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "set", "HDL_PREFERENCE", ""}),
                UnorderedElementsAre("Verilog", "VHDL", "KHDL"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "set", "--dry-run", "hdl_preference", "v"}),
                UnorderedElementsAre("Verilog", "VHDL"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "set", "USER_LIBRARIES", ""}), IsEmpty());
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "reset", "HDL_PREFERENCE", ""}), IsEmpty());
}

TEST_F(COMPLETION, offers_files_and_directories)
{
    write_file("designs/velmar.ini", "");
    write_file("decoy", "");
    EXPECT_THAT(in_bash({"velmar-cfg", "--project", "de"}), ElementsAre("designs"));
    EXPECT_THAT(in_bash({"velmar-cfg", "lint", "x", "de"}), UnorderedElementsAre("decoy", "designs"));
    EXPECT_THAT(in_bash({"velmar-cfg", "prefs", "load", "de"}), UnorderedElementsAre("decoy", "designs"));
    EXPECT_THAT(in_bash({"velmar-cfg", "explain", "--of", "de"}), UnorderedElementsAre("decoy", "designs"));
    EXPECT_THAT(in_bash({"velmar-cfg", "diff", "de"}), UnorderedElementsAre("decoy", "designs"));
    EXPECT_THAT(in_bash({"velmar-cfg", "diff", "a", "b", "--used", "dec"}), ElementsAre("decoy"));
    EXPECT_THAT(in_bash({"velmar-cfg", "snapshot", "--output", "=", "dec"}), ElementsAre("decoy"));
    EXPECT_THAT(in_bash({"velmar-cfg", "diff", "a", "b", ""}), IsEmpty());
}

TEST_F(COMPLETION, is_not_made_of_what_cannot_be_read)
{
    write_file("template", "@WALK@\n@TABLES@\n");
    write_file("walk", "walk\n");
    write_file("empty", "");
    EXPECT_EQ(run_program({COMPLETION_GENERATOR, "template", "walk", "script"}).status, 0);
    EXPECT_EQ(read_file("script").substr(0, 5), "walk\n");
    std::filesystem::remove("script");
    for (const LINES& inputs :
         {LINES{"nowhere", "walk"}, {"template", "nowhere"}, {"template", "empty"}, {"walk", "walk"}})
    {
        LINES command = {COMPLETION_GENERATOR, inputs[0], inputs[1], "script"};
        const PROGRAM_RESULT result = run_program(command);
        EXPECT_EQ(result.status, 1) << inputs[0] << " " << inputs[1];
        EXPECT_NE(result.err, "");
        EXPECT_FALSE(std::filesystem::exists("script"));
    }
}

TEST_F(COMPLETION, is_the_same_in_zsh)
{
    if (std::string(ZSH).empty())
        GTEST_SKIP() << "no zsh";
    // zsh filters by what is typed.
    for (const LINES& words :
         {LINES{"velmar-cfg", ""}, LINES{"velmar-cfg", "prefs", ""}, LINES{"velmar-cfg", "get", "--type", ""},
          LINES{"velmar-cfg", "get", ""}, LINES{"velmar-cfg", "prefs", "set", "HDL_PREFERENCE", ""}})
        EXPECT_EQ(in_zsh(words), in_bash(words)) << words.back();
    EXPECT_THAT(in_zsh({"velmar-cfg", "list", "--"}), Contains("--show-origin"));
    EXPECT_THAT(in_zsh({"velmar-cfg", "--project", ""}), ElementsAre("files -/"));
    EXPECT_THAT(in_zsh({"velmar-cfg", "lint", ""}), ElementsAre("files"));
    EXPECT_THAT(in_zsh({"velmar-cfg", "list", "--color=a"}), ElementsAre("compset -P *=", "auto", "always", "never"));
}
}
