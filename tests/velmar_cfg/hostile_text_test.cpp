// Every command over files, directories, documents and environment variables full of what steers a terminal: none of it
// gets there as it is.
#include <filesystem>

#include "tests/velmar_cfg/tool_test.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/commands/command_line.h"

namespace
{
using ARGUMENTS = std::vector<std::string>;

// Of each kind one: C0, delete, C1, a byte that is C1 to some terminals and no UTF-8, a bidirectional override, a
// backslash. It holds no "=", ";", ":" or bracket, so that it can stand anywhere.
constexpr const char* hostile = "x\x1b"
                                "c\x7f\xc2\x9b\x9b\xe2\x80\xae\\y";

// The same without the byte that is no UTF-8: in names of files it would be an object in JSON.
constexpr const char* hostile_utf_8 = "x\x1b"
                                      "c\x7f\xc2\x9b\xe2\x80\xae\\y";

const ARGUMENTS command_lines[] = {
    {"get", hostile},
    {"get", hostile, "--type", "int"},
    {"get", "unset", "--json"},
    {"get", hostile, "--json"},
    {"list", "--show-origin"},
    {"list", "--json"},
    {"list", hostile},
    {"explain", hostile},
    {"layers"},
    {"explain", hostile, "--json"},
    {"layers", "--json"},
    {"paths"},
    {"paths", "--json"},
    {"lint"},
    {"lint", "--json"},
    {"lint", hostile},
    {"lint", "--format", "sarif"},
    {"lint", "--fix", "--dry-run"},
    {"lint", "--fix", "--dry-run", "--json"},
    {"lint", "--ignore", hostile},
    {"set", hostile, hostile, "--dry-run"},
    {"set", hostile, hostile, "--dry-run", "--json"},
    {"set", "inline", "1", "--dry-run"},
    {"set", "a", "1", "--file", hostile, "--dry-run"},
    {"unset", hostile, "--dry-run"},
    {"unset", "inline", "--json", "--dry-run"},
    {"prefs"},
    {"prefs", hostile},
    {"prefs", "list", "--all"},
    {"prefs", "list", "--json"},
    {"prefs", "get", "USER_LIBRARIES", "--json"},
    {"prefs", "get", hostile},
    {"prefs", "set", "USER_LIBRARIES", hostile, "--dry-run"},
    {"prefs", "set", "USER_LIBRARIES", hostile, "--dry-run", "--json"},
    {"prefs", "set", "HDL_PREFERENCE", hostile},
    {"prefs", "reset", "USER_LIBRARIES", "--dry-run"},
    {"prefs", "describe", "USER_LIBRARIES"},
    {"prefs", "describe", "USER_LIBRARIES", "--json"},
    {"prefs", "list", hostile},
    {"prefs", "explain", "USER_LIBRARIES"},
    {"prefs", "explain", "USER_LIBRARIES", "--json"},
    {"prefs", "explain", hostile},
    {"prefs", "dump", "--json"},
    {"prefs", "load", "velmar2.ini"},
    {"prefs", "load", "velmar2.ini", "--dry-run", "--json"},
    {"prefs", "load", hostile},
    {"prefs", "lint"},
    {"prefs", "lint", "--json"},
    {"prefs", "path"},
    {"prefs", "path", "--json"},
    {"run-report", "report.json"},
    {"run-report", "report.json", "--json"},
    {"run-report", hostile},
    {"run-report", "--merge", "report.json", "report.json"},
    {"run-report", "--merge", "report.json", "--switch", hostile},
    {"run-report", "--merge", "report.json", "--switch", "other"},
    {"snapshot"},
    {"snapshot", "-o", "nowhere/file"},
    {"diff", "."},
    {"diff", ".", "--json"},
    {"diff", ".", "--used", "report.json"},
    {"diff", hostile},
    {"list", "--of", "hostile.json"},
    {"layers", "--of", "hostile.json"},
    {"paths", "--of", "hostile.json"},
    {"paths", "--of", "hostile.json", "--json"},
    {"lint", "--of", "hostile.json"},
    {"prefs", "list", "--all", "--of", "hostile.json"},
    {"prefs", "describe", "USER_LIBRARIES", "--of", "hostile.json"},
    {"help", hostile},
    {hostile},
    {"--project", hostile, "list"},
};

class HOSTILE_TEXT : public TOOL_TEST
{
protected:
    HOSTILE_TEXT()
    {
        const std::string text = hostile;
        const std::string directory = std::string("project ") + hostile_utf_8;
        write_file(directory + "/velmar.ini", text + " = " + text + "\tTAB\n" + text + "\nmsg_sqlite = " + text + "\n");
        write_file(directory + "/velmar2.ini", "[General 23.4_pro]\nUSER_LIBRARIES = " + text + "\tTAB\n" + text +
                                                   " = " + text + "\n" + text + "\n");
        std::filesystem::copy_file(directory + "/velmar2.ini", "velmar2.ini");
        project = {"--project", directory};
        variables["VELMAR2_INI"] = directory;
        variables["VELMAR_INI"] = text;
        variables["VELMAR_INI_VARS"] = "inline=" + text + "\n;" + text;
        write_report();
        write_snapshot();
    }

    // One that was edited to hold such texts wherever it holds any.
    void write_snapshot()
    {
        nlohmann::json snapshot = run({"snapshot", "--project", project.back()}).json();
        for (const char* const member : {"user", "host", "directory", "taken", "product", "release", "project"})
            snapshot[member] = hostile_utf_8;
        snapshot["as"] = {{"process", 1}, {"executable", hostile_utf_8}};
        for (const char* const member : {"file", "place", "path", "remark"})
            snapshot["search"][0][member] = hostile_utf_8;
        snapshot["search"][0]["state"] = "read";
        snapshot["findings"] = {{{"file", hostile_utf_8},
                                 {"line", nullptr},
                                 {"item", 1},
                                 {"column", 1},
                                 {"severity", "error"},
                                 {"reason", hostile_utf_8},
                                 {"message", hostile_utf_8},
                                 {"instead", hostile_utf_8},
                                 {"replacement", hostile_utf_8}}};
        snapshot["problems"] = {{{"of", "settings"}, {"text", hostile_utf_8}}};
        snapshot["sources"][0]["problem"] = hostile_utf_8;
        snapshot["environment"][0]["name"] = hostile_utf_8;
        for (nlohmann::json& preference : snapshot["preferences"])
        {
            for (const char* const member : {"value", "default", "section", "release"})
                preference[member] = hostile_utf_8;
        }
        write_file("hostile.json", snapshot.dump());
    }

    static void write_report()
    {
        const nlohmann::json named = {{"name", hostile_utf_8}, {"value", hostile_utf_8}};
        nlohmann::json read = named;
        read["count"] = 1;
        read["external"] = true;
        read["used"] = true;
        read["origin"] = "unknown";
        read["perhaps"] = nlohmann::json::array({{{"source", 0}}, {{"source", 1}, {"item", 1}}});
        read["overridden"] = nlohmann::json::array({{{"source", 0}, {"line", 1}, {"value", hostile_utf_8}}});
        nlohmann::json unread = named;
        unread["name"] = hostile_utf_8 + std::string("unread");
        unread["source"] = 0;
        unread["line"] = 2;
        const nlohmann::json source = {{"layer", "appended"}, {"external", true},          {"path", hostile_utf_8},
                                       {"size", 1},           {"modified", hostile_utf_8}, {"state", hostile_utf_8}};
        const nlohmann::json text = {
            {"layer", "program"}, {"external", true}, {"text", hostile_utf_8}, {"state", hostile_utf_8}};
        write_file("report.json", nlohmann::json{{"schema", "velmar-run-report"},
                                                 {"schema_version", 2},
                                                 {"run", hostile_utf_8},
                                                 {"release", hostile_utf_8},
                                                 {"outcome", hostile_utf_8},
                                                 {"host", hostile_utf_8},
                                                 {"process", 1},
                                                 {"directory", hostile_utf_8},
                                                 {"executable", hostile_utf_8},
                                                 {"started", hostile_utf_8},
                                                 {"ended", hostile_utf_8},
                                                 {"environment", {named}},
                                                 {"sources_complete", false},
                                                 {"sources", {source, text}},
                                                 {"read", {read}},
                                                 {"external_never_read", {unread}},
                                                 {"asked_once", {hostile_utf_8 + std::string("asked")}},
                                                 {"set_never_read", {hostile_utf_8 + std::string("uncounted")}}}
                                      .dump());
    }

    // Newlines end lines, and a tabulator stands between two columns of `list`.
    static void expect_harmless(std::string_view output)
    {
        EXPECT_EQ(output.find("\tTAB"), output.npos) << output;
        while (!output.empty())
        {
            const auto [length, character] = first_character(output);
            ASSERT_GT(length, 0U) << "no UTF-8: " << as_hexadecimal(output.substr(0, 20));
            ASSERT_TRUE(character == '\n' || character == '\t' || !steers_a_terminal(character))
                << as_hexadecimal(output.substr(0, 20));
            output.remove_prefix(length);
        }
    }

    ARGUMENTS project;
};

TEST_F(HOSTILE_TEXT, reaches_no_terminal)
{
    std::size_t escapes = 0;
    for (ARGUMENTS arguments : command_lines)
    {
        SCOPED_TRACE(printable(testing::PrintToString(arguments)));
        const bool of_document = std::ranges::count(arguments, "--of") > 0;
        if (arguments.front() != "--project" && !of_document)
            arguments.insert(arguments.end(), project.begin(), project.end());
        const TOOL_RUN result = run(arguments);
        const bool prints_as_it_is = arguments.front() == "get" && result.err.empty() && arguments.size() == 4;
        if (prints_as_it_is)
            EXPECT_EQ(result.out, std::string(hostile) + "\tTAB\n");
        else
            expect_harmless(result.out);
        expect_harmless(result.err);
        const std::string all = result.out + result.err;
        if (all.find("\\x1b") != all.npos || all.find("\\u001b") != all.npos)
            ++escapes;
    }
    EXPECT_GT(escapes, std::size(command_lines) / 2); // else nothing hostile was shown at all
}

TEST_F(HOSTILE_TEXT, is_given_to_every_command)
{
    TOOL tool;
    const std::unique_ptr<CLI::App> app = make_command_line(tool);
    for (const CLI::App* const command : all_commands(*app))
    {
        const std::string spoken = spoken_name(command).substr(std::string("velmar-cfg").size());
        const auto runs = [&spoken](const ARGUMENTS& arguments)
        {
            std::string words;
            for (const std::string& argument : arguments)
                words += " " + argument;
            return words.starts_with(spoken);
        };
        EXPECT_TRUE(std::ranges::any_of(command_lines, runs)) << spoken;
    }
}
}
