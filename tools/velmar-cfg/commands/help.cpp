// Writes help texts from the declarations of the command line.
//
// Paragraphs are broken at blanks, and no line is longer than the width unless one word is. In tables, descriptions
// begin at a common column, in the line below a name that is too long. A command's notes come as lines: those without
// indentation are joined to paragraphs, those indented by two at most are command lines and stay whole, and those
// further in are broken at their own indentation.
#include "tools/velmar-cfg/commands/help.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "tools/velmar-cfg/commands/command_line.h"

namespace
{
class HELP_TEXT
{
public:
    explicit HELP_TEXT(std::size_t the_width) : width(the_width) {}

    void add_line(const std::string& line)
    {
        text += line + "\n";
    }

    // The words of a paragraph behind `beginning`, further lines indented.
    void add_paragraph(const std::string& beginning, const std::string& words, std::size_t indentation)
    {
        std::string line = beginning;
        std::istringstream stream(words);
        bool empty = true;
        for (std::string word; stream >> word; empty = false)
        {
            const std::size_t blank = empty ? 0 : 1;
            if (!empty && line.size() + blank + word.size() > width)
            {
                add_line(line);
                line = std::string(indentation, ' ') + word;
            }
            else
                line += std::string(blank, ' ') + word;
        }
        add_line(line);
    }

    // A name, and behind it, from a common column on, what it stands for.
    void add_row(const std::string& name, const std::string& description)
    {
        const std::size_t column = std::min<std::size_t>(widest_column, width / 2);
        std::string beginning = "  " + name;
        if (beginning.size() + 2 > column)
        {
            add_line(beginning);
            beginning.clear();
        }
        beginning.resize(column, ' ');
        add_paragraph(beginning, description, column);
    }

    // Examples and notes: lines indented by two are command lines, those further in explain them.
    void add_footer(const std::string& footer)
    {
        constexpr std::size_t of_command_lines = 2;
        std::istringstream lines(footer);
        std::string note;
        const auto end_note = [&]
        {
            if (!note.empty())
                add_paragraph("", note, 0);
            note.clear();
        };
        for (std::string line; std::getline(lines, line);)
        {
            const std::size_t indentation = line.find_first_not_of(' ');
            if (indentation == 0 && !line.ends_with(':'))
            {
                note += line + " ";
                continue;
            }
            end_note();
            if (indentation == std::string::npos || indentation <= of_command_lines)
                add_line(line);
            else
                add_paragraph(std::string(indentation, ' '), line, indentation);
        }
        end_note();
    }

    std::string text;

private:
    static constexpr std::size_t widest_column = 28;
    const std::size_t width;
};

std::string name_of_argument(const CLI::Option* argument)
{
    std::string name = argument->get_name(true);
    if (argument->get_items_expected_max() > 1)
        name += " ...";
    return argument->get_required() ? name : "[" + name + "]";
}

// "-o, --output FILE"
std::string name_of_option(const CLI::Option* option)
{
    std::string name;
    for (const std::string& spelling : option->get_snames())
        name += (name.empty() ? "-" : ", -") + spelling;
    for (const std::string& spelling : option->get_lnames())
        name += (name.empty() ? "--" : ", --") + spelling;
    return option->get_type_name().empty() ? name : name + " " + option->get_type_name();
}

void add_options(HELP_TEXT& help, const char* title, const std::vector<const CLI::Option*>& options)
{
    if (options.empty())
        return;
    help.add_line("");
    help.add_line(title);
    for (const CLI::Option* const option : options)
        help.add_row(name_of_option(option), option->get_description());
}

bool is_option(const CLI::Option* option)
{
    return option->nonpositional();
}

// The program's options that hold behind a command too: those that do not end the parsing at once.
std::vector<const CLI::Option*> options_of_every_command(const CLI::App* program)
{
    std::vector<const CLI::Option*> options = program->get_options(is_option);
    std::erase_if(options, [program](const CLI::Option* option)
                  { return option == program->get_help_ptr() || option == program->get_version_ptr(); });
    return options;
}

void add_usage(HELP_TEXT& help, const CLI::App* command, const std::vector<const CLI::Option*>& arguments)
{
    std::string words = spoken_name(command) + " [OPTION ...]";
    for (const CLI::Option* const argument : arguments)
        words += " " + name_of_argument(argument);
    if (command->get_require_subcommand_min() > 0)
        words += " COMMAND [ARGUMENT ...]";
    help.add_paragraph("Usage: ", words, 7);
}
}

std::string help_of(const CLI::App* command, std::size_t width)
{
    const CLI::App* program = command;
    while (program->get_parent() != nullptr)
        program = program->get_parent();
    const std::vector<const CLI::Option*> arguments =
        command->get_options([](const CLI::Option* option) { return option->get_positional(); });

    HELP_TEXT help(width);
    help.add_paragraph("", command->get_description(), 0);
    add_usage(help, command, arguments);
    if (!arguments.empty())
    {
        help.add_line("");
        help.add_line("Arguments:");
    }
    for (const CLI::Option* const argument : arguments)
        help.add_row(name_of_argument(argument), argument->get_description());
    add_options(help, "Options:", command->get_options(is_option));
    if (command != program)
        add_options(help, "Options of every command:", options_of_every_command(program));
    const std::vector<const CLI::App*> commands = command->get_subcommands([](const CLI::App*) { return true; });
    if (!commands.empty())
    {
        help.add_line("");
        help.add_line("Commands:");
    }
    for (const CLI::App* const one : commands)
        help.add_row(one->get_name(), summary(one->get_description()));
    help.add_line("");
    help.add_footer(command->get_footer());
    return help.text;
}
