// Help texts and manual pages, against the command line that the tool itself is made of.
#include <algorithm>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"
#include "tools/velmar-cfg/commands/command_line.h"
#include "tools/velmar-cfg/lint/reasons.h"
#include "tools/velmar-cfg/preferences/preference_save.h"
#include "tools/velmar-cfg/settings/environment.h"

namespace
{
using testing::HasSubstr;

std::vector<std::string> words_of(const std::string& line)
{
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

const std::vector<std::string> pages = {"velmar-cfg.1", "velmar.ini.5", "velmar2.ini.5"};

std::string page(const std::string& name)
{
    return read_file(MANUAL_PAGES "/" + name);
}

// Every command of the tool, the tool itself first.
class DOCUMENTATION : public TOOL_TEST
{
protected:
    DOCUMENTATION() : app(make_command_line(tool)), commands(all_commands(*app)) {}

    // The words of the command, without the program's.
    static std::vector<std::string> words(const CLI::App* command)
    {
        std::vector<std::string> all = words_of(spoken_name(command));
        all.erase(all.begin());
        return all;
    }

    TOOL tool;
    const std::unique_ptr<CLI::App> app;
    const std::vector<CLI::App*> commands;
};

TEST_F(DOCUMENTATION, knows_all_commands)
{
    EXPECT_EQ(commands.size(), 24U);
}

TEST_F(DOCUMENTATION, a_list_of_commands_has_a_summary_of_each)
{
    EXPECT_THAT(run({"--help"}).out,
                HasSubstr("\n  paths                     Show where settings are looked for\n"
                          "  lint                      Show the lines that are ignored or do not do what\n"
                          "                            they seem to do, with what to write instead\n"));
}

TEST_F(DOCUMENTATION, help_before_a_command_is_help_behind_it)
{
    for (const CLI::App* const command : commands)
    {
        std::vector<std::string> before = words(command);
        std::vector<std::string> behind = before;
        before.insert(before.begin(), "help");
        behind.emplace_back("--help");
        EXPECT_EQ(run(before), run(behind)) << spoken_name(command);
    }
}

TEST_F(DOCUMENTATION, help_fits_the_width)
{
    for (const std::size_t width : {40U, 80U, 133U})
    {
        variables["COLUMNS"] = std::to_string(width);
        for (const CLI::App* const command : commands)
        {
            std::vector<std::string> arguments = words(command);
            arguments.emplace_back("--help");
            std::size_t widest = 0;
            for (const std::string& line : lines_of(run(arguments).out))
            {
                EXPECT_FALSE(line.ends_with(' ')) << line;
                if (!line.starts_with("  velmar-cfg "))
                    widest = std::max(widest, line.size());
            }
            EXPECT_LE(widest, width) << spoken_name(command);
            EXPECT_GT(widest + 25, std::min<std::size_t>(width, 100)) << spoken_name(command);
        }
    }
}

TEST_F(DOCUMENTATION, a_name_that_is_too_long_for_its_column_has_a_line_of_its_own)
{
    variables["COLUMNS"] = "40";
    EXPECT_THAT(run({"snapshot", "--help"}).out, HasSubstr("\n  -o, --output FILE\n"
                                                           "                    Write to this file,"));
}

TEST_F(DOCUMENTATION, help_of_a_command_has_the_options_of_every_command)
{
    for (const CLI::App* const command : commands)
    {
        std::vector<std::string> arguments = words(command);
        arguments.emplace_back("--help");
        const std::string help = run(arguments).out;
        for (const char* const option :
             {"\n  --project DIR ", "\n  --regtest ", "\n  --root DIR ", "\n  --json ", "\n  --color WHEN "})
            EXPECT_THAT(help, HasSubstr(option)) << spoken_name(command);
        EXPECT_EQ(help.find("--version") != help.npos, command == app.get());
        EXPECT_EQ(help.find("\n  -h, --help "), help.rfind("\n  -h, --help "));
    }
}

TEST_F(DOCUMENTATION, each_help_names_every_option_and_argument_and_gives_an_example)
{
    for (CLI::App* const command : commands)
    {
        SCOPED_TRACE(spoken_name(command));
        std::vector<std::string> arguments = words(command);
        arguments.emplace_back("--help");
        const TOOL_RUN help = run(arguments);
        EXPECT_EQ(help.exit_code, 0);
        EXPECT_EQ(help.err, "");
        for (const CLI::Option* const option : options_of(command))
        {
            for (const std::string& name : names_of(option))
                EXPECT_THAT(help.out, HasSubstr(name));
            EXPECT_THAT(help.out, HasSubstr(option->get_type_name()));
            EXPECT_NE(option->get_description(), "");
        }
        for (const CLI::Option* const argument : arguments_of(command))
            EXPECT_THAT(help.out, HasSubstr(argument->get_name(true)));
        for (const CLI::App* const subcommand : command->get_subcommands([](const CLI::App*) { return true; }))
            EXPECT_THAT(help.out, HasSubstr("\n  " + subcommand->get_name() + " "));
        const std::size_t example = help.out.find("Example:\n  velmar-cfg ");
        ASSERT_NE(example, std::string::npos);
        if (command != app.get())
        {
            EXPECT_THAT(help.out.substr(example), HasSubstr(command->get_name()));
        }
    }
}

// What velmar-cfg(1) says of one command.
struct MANUAL_SECTION
{
    std::vector<std::string> arguments;
    std::map<std::string, std::string> options; // with the name of the value, empty for none
    bool example = false;
};

// "--name" of the mdoc word "-name", "-n" of "n".
std::string spelt(const std::string& flag)
{
    return "-" + flag;
}

void add_option(const std::vector<std::string>& words, MANUAL_SECTION& section)
{
    const auto value = std::find(words.begin(), words.end(), "Ar");
    for (auto word = words.begin() + 2; word != value; ++word)
    {
        if (*word != ",")
            section.options[spelt(*word)] = value == words.end() ? "" : *(value + 1);
    }
}

// By the words of the command; the program's own is what stands before the commands.
std::map<std::string, MANUAL_SECTION> sections_of_manual()
{
    std::map<std::string, MANUAL_SECTION> sections;
    std::string command;
    for (const std::string& line : lines_of(page("velmar-cfg.1")))
    {
        const std::vector<std::string> words = words_of(line);
        if (line.starts_with(".Sh ENVIRONMENT"))
            break;
        if (line.starts_with(".Ss "))
        {
            command.clear();
            auto word = words.begin() + 1;
            for (; word != words.end() && *word != "Ar" && *word != "Op"; ++word)
                command += (command.empty() ? "" : " ") + *word;
            for (; word != words.end(); ++word)
            {
                if (*word != "Ar" && *word != "Op" && *word != "...")
                    sections[command].arguments.push_back(*word);
            }
        }
        else if (line.starts_with(".It Fl "))
            add_option(words, sections[command]);
        else if (line.starts_with(".Dl velmar-cfg ") && line.find(command) != std::string::npos)
            sections[command].example = true;
    }
    return sections;
}

TEST_F(DOCUMENTATION, the_manual_page_has_each_command_with_its_options_and_arguments)
{
    std::map<std::string, MANUAL_SECTION> sections = sections_of_manual();
    EXPECT_EQ(sections.size(), commands.size());
    for (CLI::App* const command : commands)
    {
        SCOPED_TRACE(spoken_name(command));
        std::string name;
        for (const std::string& word : words(command))
            name += (name.empty() ? "" : " ") + word;
        std::map<std::string, std::string> options;
        for (const CLI::Option* const option : options_of(command))
        {
            for (const std::string& spelling : names_of(option))
                options[spelling] = option->get_type_name();
        }
        if (!name.empty())
        {
            options.erase("--help");
            options.erase("-h");
        }
        std::vector<std::string> arguments;
        for (const CLI::Option* const argument : arguments_of(command))
            arguments.push_back(argument->get_name(true));
        EXPECT_EQ(sections[name].options, options);
        EXPECT_EQ(sections[name].arguments, arguments);
        EXPECT_TRUE(sections[name].example || name.empty());
    }
}

TEST(MANUAL_PAGES_, each_has_examples_files_and_precedence)
{
    for (const std::string& name : pages)
    {
        for (const char* const heading : {".Sh NAME", ".Sh ENVIRONMENT", ".Sh FILES", ".Sh EXAMPLES"})
            EXPECT_THAT(page(name), HasSubstr(heading + std::string("\n"))) << name;
    }
    EXPECT_THAT(page("velmar-cfg.1"), HasSubstr(".Sh EXIT STATUS\n"));
    EXPECT_THAT(page("velmar.ini.5"), HasSubstr(".Sh PRECEDENCE\n"));
    EXPECT_THAT(page("velmar2.ini.5"), HasSubstr(".Sh PRECEDENCE\n"));
}

TEST(MANUAL_PAGES_, name_every_environment_variable_that_matters)
{
    SECRETS secrets;
    for (const ENVIRONMENT_VARIABLE& variable : environment_that_matters(secrets))
    {
        const bool of_preferences = variable.name == "VELMAR2_INI";
        EXPECT_THAT(page(of_preferences ? "velmar2.ini.5" : "velmar.ini.5"),
                    HasSubstr(".It Ev " + variable.name + "\n"));
        EXPECT_THAT(page("velmar-cfg.1"), HasSubstr(variable.name));
    }
    EXPECT_THAT(page("velmar2.ini.5"), HasSubstr(".It Ev HOME\n"));
}

// The names of findings that a source in lint/ has: what stands behind a severity.
std::set<std::string> findings_in_source(const std::string& file)
{
    const std::string source = read_file(LINT_SOURCES "/" + file);
    static const std::regex finding(R"(SEVERITY::[A-Z]+,([^,]*),)");
    static const std::regex name(R"re("([a-z-]+)")re");
    std::set<std::string> names;
    for (std::sregex_iterator found(source.begin(), source.end(), finding), end; found != end; ++found)
    {
        const std::string expression = (*found)[1];
        for (std::sregex_iterator word(expression.begin(), expression.end(), name); word != end; ++word)
            names.insert((*word)[1]);
    }
    return names;
}

// The names that the manual page explains below this heading.
std::vector<std::string> findings_in_manual(const std::string& heading)
{
    std::vector<std::string> names;
    bool below = false;
    for (const std::string& line : lines_of(page("velmar-cfg.1")))
    {
        if (line.starts_with(".Ss ") || line.starts_with(".Sh "))
            below = line == ".Ss " + heading;
        else if (below && line.starts_with(".It Li "))
            names.push_back(words_of(line).back());
    }
    return names;
}

TEST(MANUAL_PAGES_, explain_every_finding_in_alphabetical_order)
{
    std::set<std::string> of_settings;
    for (const char* const file : {"examination.cpp", "assignment_rules.cpp", "environment_rules.cpp", "finding.cpp"})
        of_settings.merge(findings_in_source(file));
    std::set<std::string> of_preferences = findings_in_source("preference_rules.cpp");
    of_preferences.merge(findings_in_source("finding.cpp"));
    of_preferences.insert(of_settings.extract("no-preference-file"));
    for (int reason = 0; reason <= static_cast<int>(LOSS::CHANGED_VALUE); ++reason)
        of_preferences.insert(loss_word(static_cast<LOSS>(reason)));
    EXPECT_GT(of_settings.size(), 25U);
    EXPECT_GT(of_preferences.size(), 14U);
    EXPECT_THAT(findings_in_manual("Of settings"), testing::ElementsAreArray(of_settings));
    EXPECT_THAT(findings_in_manual("Of preferences"), testing::ElementsAreArray(of_preferences));
}

// The sentences of the manual page below the heading, by the names of the findings, as plain text.
std::map<std::string, std::string> meanings_in_manual(const std::string& heading)
{
    std::map<std::string, std::string> meanings;
    std::string name;
    bool below = false;
    for (const std::string& line : lines_of(page("velmar-cfg.1")))
    {
        if (line.starts_with(".Ss ") || line.starts_with(".Sh "))
            below = line == ".Ss " + heading;
        else if (below && line.starts_with(".It Li "))
            name = words_of(line).back();
        else if (below && !name.empty() && !line.starts_with(".Bl") && !line.starts_with(".El"))
        {
            std::vector<std::string> words = words_of(line);
            if (words.front() == ".Ql")
                words[1] = "'" + words[1].substr(words[1].starts_with("\\&") ? 2 : 0) + "'";
            if (words.front().starts_with('.'))
                words.erase(words.begin());
            for (const std::string& word : words)
                meanings[name] += (meanings[name].empty() || word == "," || word == "." ? "" : " ") + word;
        }
    }
    return meanings;
}

TEST(MANUAL_PAGES_, say_of_findings_what_the_list_of_reasons_says)
{
    for (const auto& [heading, reasons] :
         {std::pair("Of settings", reasons_of_settings()), std::pair("Of preferences", reasons_of_preferences())})
    {
        std::map<std::string, std::string> listed;
        for (const REASON& reason : reasons)
            listed[reason.name] = reason.meaning;
        EXPECT_EQ(listed, meanings_in_manual(heading));
        EXPECT_TRUE(std::ranges::is_sorted(reasons, {}, [](const REASON& reason) { return std::string(reason.name); }));
    }
}

// What explain has to say besides the findings of lint.
TEST(MANUAL_PAGES_, name_every_hint)
{
    const std::string source = read_file(LINT_SOURCES "/explanation.cpp");
    static const std::regex hint(R"re(\{"([a-z-]+)",)re");
    std::size_t hints = 0;
    for (std::sregex_iterator found(source.begin(), source.end(), hint), end; found != end; ++found, ++hints)
        EXPECT_THAT(page("velmar-cfg.1"), HasSubstr("\n.Dq " + (*found)[1].str() + "\n"));
    EXPECT_EQ(hints, 3U);
}

class MANUAL_CHECKERS : public testing::TestWithParam<std::vector<std::string>>
{
};

TEST_P(MANUAL_CHECKERS, find_nothing)
{
    const std::vector<std::string>& checker = GetParam();
    if (checker.front().empty())
        GTEST_SKIP() << "not installed";
    for (const std::string& name : pages)
    {
        std::vector<std::string> arguments = checker;
        arguments.push_back(MANUAL_PAGES "/" + name);
        const PROGRAM_RESULT result = run_program(arguments);
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_EQ(result.out, "") << name;
        EXPECT_EQ(result.err, "") << name;
    }
}

INSTANTIATE_TEST_SUITE_P(programs, MANUAL_CHECKERS,
                         testing::Values(std::vector<std::string>{MANDOC, "-T", "lint", "-W", "warning"},
                                         std::vector<std::string>{GROFF, "-mdoc", "-ww", "-z", "-Tutf8"}));
}
