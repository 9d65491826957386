// velmar-cfg lint --format sarif: documents of SARIF 2.1.0, checked against its schema (sarif/README.md).
#include <filesystem>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::HasSubstr;
using testing::Not;

class SARIF : public TOOL_TEST
{
protected:
    // What lint says of the files, which must be valid.
    nlohmann::json linted(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.end(), {"--format", "sarif"});
        const TOOL_RUN result = run(arguments);
        expect_valid(result.out);
        return nlohmann::json::parse(result.out).at("runs").at(0);
    }

    static PROGRAM_RESULT validated(const std::string& document)
    {
        write_file("document.json", document);
        return run_program(
            {PYTHON, SARIF_DIRECTORY "/validate.py", SARIF_DIRECTORY "/sarif-schema-2.1.0.json", "document.json"});
    }

    static void expect_valid(const std::string& document)
    {
        if (std::string(PYTHON).empty())
            return; // no validator here; what else is expected of the document still is
        const PROGRAM_RESULT result = validated(document);
        EXPECT_EQ(result.status, 0) << result.out << result.err;
    }
};

nlohmann::json region_of(const nlohmann::json& result)
{
    return result.at("locations").at(0).at("physicalLocation").at("region");
}

TEST_F(SARIF, has_a_validator_that_refuses_what_is_wrong)
{
    if (std::string(PYTHON).empty())
        GTEST_SKIP() << "python3-jsonschema is not installed";
    write_file("velmar.ini", "a = yes\n");
    const std::string document = run({"lint", "velmar.ini", "--format", "sarif"}).out;
    EXPECT_EQ(validated(document).status, 0);
    nlohmann::json wrong = nlohmann::json::parse(document);
    wrong["runs"][0]["results"][0]["level"] = "fatal";
    EXPECT_EQ(validated(wrong.dump()).status, 1);
    wrong = nlohmann::json::parse(document);
    wrong["runs"][0]["results"][0].erase("message");
    EXPECT_EQ(validated(wrong.dump()).status, 1);
    wrong = nlohmann::json::parse(document);
    wrong["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["region"]["startColumn"] = 0;
    EXPECT_EQ(validated(wrong.dump()).status, 1);
    wrong = nlohmann::json::parse(document);
    wrong["runs"][0]["results"][0]["reason"] = "boolean-word";
    EXPECT_EQ(validated(wrong.dump()).status, 1);
}

TEST_F(SARIF, has_each_finding_as_a_result_of_its_rule)
{
    write_file("velmar.ini", "# x\na = yes\n[x]\nb = 1\nb = 2\n");
    const nlohmann::json run = linted({"lint", "velmar.ini"});
    EXPECT_EQ(run.at("tool").at("driver").at("name"), "velmar-cfg");
    EXPECT_EQ(run.at("columnKind"), "unicodeCodePoints");
    const nlohmann::json& rules = run.at("tool").at("driver").at("rules");
    EXPECT_GT(rules.size(), 40U);
    const nlohmann::json& results = run.at("results");
    ASSERT_EQ(results.size(), 3U);
    EXPECT_EQ(results[0].at("ruleId"), "boolean-word");
    EXPECT_EQ(results[0].at("level"), "note");
    EXPECT_EQ(results[1].at("level"), "error");
    EXPECT_EQ(results[2].at("level"), "warning");
    for (const nlohmann::json& result : results)
        EXPECT_EQ(rules.at(result.at("ruleIndex").get<std::size_t>()).at("id"), result.at("ruleId"));
    EXPECT_EQ(results[0].at("message").at("text"),
              "'yes' is no boolean: a reader that asks for one takes its default; write 'a = on' if this is a switch");
    const nlohmann::json place = {{"artifactLocation", {{"uri", "velmar.ini"}}},
                                  {"region", {{"startLine", 2}, {"startColumn", 5}}}};
    EXPECT_EQ(results[0].at("locations").at(0).at("physicalLocation"), place);
    EXPECT_EQ(results[0].at("fixes").at(0).at("artifactChanges").at(0).at("replacements").at(0),
              nlohmann::json({{"deletedRegion", {{"startLine", 2}, {"startColumn", 1}, {"endColumn", 8}}},
                              {"insertedContent", {{"text", "a = on"}}}}));
    EXPECT_FALSE(results[2].contains("fixes")); // a person must decide
}

// Standard input has no URI: results refer to it by what it is.
TEST_F(SARIF, names_standard_input_as_an_artifact)
{
    write_file("given", "a = yes\n[x]\n");
    standard_input = temporary.path("cwd/given");
    const nlohmann::json run = linted({"lint", "-"});
    const nlohmann::json artifacts = nlohmann::json::parse(R"([{"description": {"text": "standard input"}}])");
    EXPECT_EQ(run.at("artifacts"), artifacts);
    ASSERT_EQ(run.at("results").size(), 2U);
    EXPECT_EQ(region_of(run.at("results")[0]), nlohmann::json({{"startLine", 1}, {"startColumn", 5}}));
    for (const nlohmann::json& result : run.at("results"))
    {
        EXPECT_EQ(result.at("locations").at(0).at("physicalLocation").at("artifactLocation"),
                  nlohmann::json({{"index", 0}}));
        EXPECT_FALSE(result.contains("fixes"));
    }
    EXPECT_FALSE(linted({"lint", "given"}).contains("artifacts"));
}

TEST_F(SARIF, counts_columns_in_characters)
{
    // Two characters of five bytes, then a byte that is no UTF-8.
    write_file("velmar.ini", "x\xc3\xa9\xe2\x82\xac = 0x10\ny\xff = no\nz = 'a'\n");
    const nlohmann::json results = linted({"lint", "velmar.ini"}).at("results");
    ASSERT_EQ(results.size(), 5U);
    EXPECT_EQ(region_of(results[0]), nlohmann::json({{"startLine", 1}, {"startColumn", 2}})); // odd-character
    EXPECT_EQ(region_of(results[1]), nlohmann::json({{"startLine", 1}, {"startColumn", 7}})); // hexadecimal
    EXPECT_EQ(region_of(results[2]), nlohmann::json({{"startLine", 2}, {"startColumn", 2}}));
    EXPECT_EQ(region_of(results[3]), nlohmann::json({{"startLine", 2}, {"startColumn", 6}}));
    EXPECT_EQ(region_of(results[4]), nlohmann::json({{"startLine", 3}, {"startColumn", 5}}));
    EXPECT_TRUE(results[4].contains("fixes"));
}

// A carriage return before the newline is part of the line's end, which is no column of a region.
TEST_F(SARIF, leaves_line_ends_as_they_are)
{
    write_file("velmar.ini", "a = yes\r\ng=1 h=2\r\nc=1\rd=no\r\ne = no\r");
    const nlohmann::json results = linted({"lint", "velmar.ini"}).at("results");
    std::vector<nlohmann::json> replacements;
    for (const nlohmann::json& result : results)
    {
        if (result.contains("fixes"))
            replacements.push_back(result.at("fixes").at(0).at("artifactChanges").at(0).at("replacements").at(0));
    }
    const auto replacement = [](int line, int end, const char* text)
    {
        return nlohmann::json({{"deletedRegion", {{"startLine", line}, {"startColumn", 1}, {"endColumn", end}}},
                               {"insertedContent", {{"text", text}}}});
    };
    EXPECT_THAT(replacements, testing::ElementsAre(replacement(1, 8, "a = on"), replacement(2, 8, "g=1\r\nh=2"),
                                                   replacement(3, 9, "c=1\nd=off"), replacement(4, 8, "e = off\r")));
}

TEST_F(SARIF, names_files_by_references_and_variables_by_their_names)
{
    const std::string odd = "a b%#?:\xc3\xa9.ini";
    write_file(odd, "a = yes\n");
    const nlohmann::json relative = linted({"lint", odd}).at("results");
    const auto uri_of = [](const nlohmann::json& results)
    { return results.at(0).at("locations").at(0).at("physicalLocation").at("artifactLocation").at("uri"); };
    EXPECT_EQ(uri_of(relative), "a%20b%25%23%3F%3A%C3%A9.ini");
    EXPECT_EQ(uri_of(linted({"lint", temporary.path("cwd/" + odd)}).at("results")).get<std::string>().substr(0, 8),
              "file:///");
    variables["VELMAR_INI_VARS"] = "x=1;d=yes";
    const nlohmann::json of_items = linted({"lint"}).at("results");
    ASSERT_EQ(of_items.size(), 1U);
    EXPECT_EQ(
        of_items[0].at("locations").at(0),
        nlohmann::json(
            {{"logicalLocations",
              {{{"name", "VELMAR_INI_VARS"}, {"fullyQualifiedName", "VELMAR_INI_VARS:2"}, {"kind", "variable"}}}}}));
    EXPECT_FALSE(of_items[0].contains("fixes"));
    variables.erase("VELMAR_INI_VARS");
    EXPECT_EQ(uri_of(linted({"lint"}).at("results")), "velmar.ini"); // that there is nothing to check
    write_file("velmar2.ini", "# note\n");
    EXPECT_EQ(linted({"prefs", "lint", "velmar2.ini"}).at("results").at(0).at("ruleId"), "not-kept");
}

TEST_F(SARIF, holds_no_secret_and_no_brace_that_means_something)
{
    write_file("velmar.ini", "api_token = \"hush-hush\"\nd = {0}x' y=1\n{1} = yes\n");
    const TOOL_RUN run_of_tool = run({"lint", "velmar.ini", "--format", "sarif"});
    expect_valid(run_of_tool.out);
    EXPECT_THAT(run_of_tool.out, Not(HasSubstr("hush")));
    const nlohmann::json results = run_of_tool.json().at("runs").at(0).at("results");
    EXPECT_FALSE(results[0].contains("fixes")); // it would write the mask
    for (const nlohmann::json& result : results)
    {
        std::string text = result.at("message").at("text");
        for (const std::string pair : {"{{", "}}"})
        {
            for (std::size_t at = text.find(pair); at != std::string::npos; at = text.find(pair))
                text.erase(at, 2);
        }
        EXPECT_THAT(text, Not(testing::AnyOf(HasSubstr("{"), HasSubstr("}"))));
    }
    EXPECT_THAT(results.dump(), HasSubstr("{{1}}"));
}

// Of a snapshot, as of the files that it was made of.
TEST_F(SARIF, is_the_same_of_a_snapshot)
{
    std::filesystem::create_directory("home");
    variables["HOME"] = temporary.path("cwd/home");
    write_file("velmar.ini", "x\xc3\xa9 = yes\r\n[x]\napi_token = \"hush-hush\"\na = 'b'\nb = no # token = hush-hush\n"
                             "token = ab;c=1 d=2\n");
    const nlohmann::json live = linted({"lint"}).at("results");
    ASSERT_GT(live.size(), 6U);
    write_file("here.json", run({"snapshot"}).out);
    std::filesystem::remove("velmar.ini");
    const nlohmann::json of_document = linted({"lint", "--of", "here.json"}).at("results");
    const nlohmann::json json = run({"lint", "--of", "here.json", "--json"}).json();
    ASSERT_EQ(of_document.size(), live.size());
    std::size_t columns = 0;
    std::size_t fixes = 0;
    for (std::size_t i = 0; i < live.size(); ++i)
    {
        nlohmann::json region = region_of(live[i]);
        if (json[i].at("column").is_null())
            region.erase("startColumn"); // behind a secret, whose size the snapshot does not tell
        EXPECT_EQ(region_of(of_document[i]), region) << i;
        columns += region_of(of_document[i]).contains("startColumn") ? 1U : 0U;
        fixes += of_document[i].contains("fixes") ? 1U : 0U;
        EXPECT_EQ(of_document[i].contains("fixes"), live[i].contains("fixes")) << i;
        if (live[i].contains("fixes"))
        {
            EXPECT_EQ(of_document[i]["fixes"][0]["artifactChanges"][0]["replacements"],
                      live[i]["fixes"][0]["artifactChanges"][0]["replacements"]);
        }
    }
    EXPECT_GT(columns, 5U);
    EXPECT_GT(fixes, 2U);
}

TEST_F(SARIF, is_of_the_fixed_file_behind_a_fix)
{
    write_file("velmar.ini", "g=1 h=2\nmsg_sqlite = 7\n");
    const nlohmann::json results = linted({"lint", "--fix", "velmar.ini"}).at("results");
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(region_of(results[0]), nlohmann::json({{"startLine", 3}, {"startColumn", 14}}));
}

TEST_F(SARIF, ends_as_the_text_does)
{
    write_file("velmar.ini", "[x]\n");
    EXPECT_EQ(run({"lint", "velmar.ini", "--format", "sarif"}).exit_code, 1);
    EXPECT_EQ(run({"lint", "velmar.ini", "--format", "sarif", "--ignore", "no-equals-sign"}).exit_code, 0);
    EXPECT_EQ(run({"lint", "nowhere.ini", "--format", "sarif"}).exit_code, 3);
    EXPECT_EQ(linted({"lint", "velmar.ini", "--ignore", "no-equals-sign"}).at("results"), nlohmann::json::array());
}
}
