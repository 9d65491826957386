// The members of the JSON documents that the tool writes, beside those that its manual page lists.
#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "tests/velmar_cfg/tool_test.h"

namespace
{
using NAMES = std::set<std::string>;
using ARGUMENTS = std::vector<std::string>;

// --- What the page lists ---

bool is_name(const std::string& word)
{
    return word != "," && word != "." && word != "and";
}

// The members of each document, by its title; "members of ..." stand for those of the item of that title.
std::map<std::string, NAMES> members_on_page()
{
    std::map<std::string, NAMES> members;
    std::map<std::string, std::string> texts;
    std::string title;
    bool in_section = false;
    std::istringstream page(read_file(MANUAL_PAGES "/velmar-cfg.1"));
    for (std::string line; std::getline(page, line);)
    {
        if (line.starts_with(".Sh "))
            in_section = line == ".Sh JSON";
        if (!in_section)
            continue;
        if (line.starts_with(".It Cm "))
            title = line.substr(std::string(".It Cm ").size());
        std::istringstream words(line);
        std::string macro;
        words >> macro;
        if (macro == ".It")
            words >> macro;
        if (macro == "Va" || macro == ".Va")
        {
            for (std::string word; words >> word;)
            {
                if (is_name(word))
                    members[title].insert(word);
            }
        }
        else if (!line.starts_with(".It"))
            texts[title] += line + " ";
    }
    for (const char* const group : {"members of locations", "members of readings", "members of preferences"})
    {
        EXPECT_FALSE(members[group].empty()) << group;
        for (const auto& [document, text] : texts)
        {
            if (text.find(group) != std::string::npos)
                members[document].insert(members[group].begin(), members[group].end());
        }
    }
    return members;
}

// --- What the tool writes ---

void add_members(const nlohmann::json& document, NAMES& names)
{
    if (document.is_object() && document.size() == 1 && document.contains("hex"))
        return;
    for (const auto& [name, value] : document.items())
    {
        if (document.is_object())
            names.insert(name);
        if (value.is_structured())
            add_members(value, names);
    }
}

// The commands that write a document, each of which has all its rows somewhere.
struct DOCUMENT
{
    const char* title;
    std::vector<ARGUMENTS> commands;
};

const DOCUMENT documents[] = {
    {"get", {{"get", "max_fanout"}}},
    {"list", {{"list", "--all"}, {"list", "--read", "--of", "run.json"}}},
    {"layers", {{"layers"}}},
    {"explain", {{"explain", "max_fanout"}}},
    {"paths", {{"paths"}}},
    {"lint", {{"lint"}, {"prefs", "lint"}}},
    {"lint --list-reasons", {{"lint", "--list-reasons"}, {"prefs", "lint", "--list-reasons"}}},
    {"lint --fix --dry-run", {{"lint", "--fix", "--dry-run"}}},
    {"set", {{"set", "max_fanout", "9", "--dry-run"}, {"unset", "max_fanout", "--dry-run"}}},
    {"snapshot", {{"snapshot"}, {"snapshot", "--of", "exe:/bin/sh"}}},
    {"diff",
     {{"diff", "before.json"}, {"diff", "other", "--used", "run.json"}, {"diff", "other", "--with", "max_fanout=9"}}},
    {"run-report", {{"run-report", "run.json"}}},
    {"run-report --merge", {{"run-report", "--merge", "run.json"}}},
    {"run-report --merge --switch", {{"run-report", "--merge", "run.json", "--switch", "max_fanout"}}},
    {"prefs list", {{"prefs", "list"}}},
    {"prefs get", {{"prefs", "get", "HDL_PREFERENCE"}}},
    {"prefs describe", {{"prefs", "describe", "HDL_PREFERENCE"}}},
    {"prefs explain", {{"prefs", "explain", "HDL_PREFERENCE"}}},
    {"prefs dump", {{"prefs", "dump"}}},
    {"prefs load", {{"prefs", "load", "given", "--dry-run"}}},
    {"prefs path", {{"prefs", "path"}}},
    {"prefs set",
     {{"prefs", "set", "HDL_PREFERENCE", "Verilog", "--dry-run"}, {"prefs", "reset", "HDL_PREFERENCE", "--dry-run"}}},
};

class JSON_FIELDS : public TOOL_TEST
{
protected:
    JSON_FIELDS()
    {
        write_file("project/velmar.ini", "max_fanout = 12\n# max_fanout = 9\nno assignment\nname = \xff\n");
        write_file("velmar.ini", "max_fanout = 14\n");
        write_file("other/velmar.ini", "max_fanout = 16\n");
        write_file("user/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nno preference\n");
        write_file("given", "no preference\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
        write_file("run.json", R"({"schema": "velmar-run-report", "schema_version": 2, "run": "r", "release": "23.4",
            "outcome": "pass", "host": "h", "process": 1, "directory": "/", "executable": "/x",
            "started": "2026-11-22T08:25:00Z", "ended": "2026-11-22T08:26:00Z",
            "environment": [{"name": "HOME", "value": null}], "sources_complete": true,
            "sources": [{"layer": "main", "external": true, "path": "/p", "size": 1,
                         "modified": "2026-11-22T08:25:00.000000000Z", "state": "same"}],
            "read": [{"name": "max_fanout", "count": 1, "value": "12", "external": true, "used": true,
                      "origin": "unknown", "perhaps": [{"source": 0}],
                      "overridden": [{"source": 0, "line": 1, "value": "9"}]}],
            "external_never_read": [{"name": "a", "value": "1", "source": 0, "line": 2}],
            "asked_once": ["b"], "set_never_read": ["c"]})");
        nlohmann::json before = run({"snapshot", "--project", "other"}).json();
        before["release"] = "23.3";
        write_file("before.json", before.dump());
        variables["VELMAR2_INI"] = "user";
    }
};

// Those of `names` that are not among `others`.
NAMES missing(const NAMES& names, const NAMES& others)
{
    NAMES result;
    std::ranges::set_difference(names, others, std::inserter(result, result.end()));
    return result;
}

TEST_F(JSON_FIELDS, are_those_of_the_manual_page)
{
    std::map<std::string, NAMES> listed = members_on_page();
    for (const DOCUMENT& document : documents)
    {
        NAMES written;
        for (ARGUMENTS arguments : document.commands)
        {
            arguments.emplace_back("--json");
            if (std::ranges::count(arguments, "--of") == 0)
                arguments.insert(arguments.end(), {"--project", "project"});
            add_members(run(arguments).json(), written);
        }
        EXPECT_EQ(missing(written, listed[document.title]), NAMES()) << "not on the page of " << document.title;
        EXPECT_EQ(missing(listed[document.title], written), NAMES()) << "not written by " << document.title;
    }
}

TEST_F(JSON_FIELDS, stand_on_the_manual_page_for_documents_that_there_are)
{
    for (const auto& item : members_on_page())
    {
        const std::string& title = item.first;
        const auto has_title = [&title](const DOCUMENT& document) { return title == document.title; };
        EXPECT_TRUE(title.empty() || title.starts_with("members of ") || std::ranges::any_of(documents, has_title))
            << title;
    }
}
}
