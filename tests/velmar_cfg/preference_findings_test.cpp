// What lint says of the lines of a preference file, word for word: where, how grave, why, and what to write instead.
#include "tools/velmar-cfg/lint/preference_rules.h"

#include <gmock/gmock.h>

#include "platform/ver/ver.h"
#include "tests/support/original_function.h"

using namespace std::string_literals;

namespace
{
bool forgets_running_release = false;
}

// The version service of a host that may forget the running release.
std::vector<std::string> ver_get_all_versions()
{
#ifdef _LIBCPP_VERSION
    constexpr const char* name = "_Z20ver_get_all_versionsv";
#else
    constexpr const char* name = "_Z20ver_get_all_versionsB5cxx11v";
#endif
    std::vector<std::string> versions = original<std::vector<std::string>()>(name)();
    if (forgets_running_release)
        std::erase(versions, ver_get_version());
    return versions;
}

namespace
{
struct PREFERENCE_FINDINGS
{
    std::string what;
    std::string text;
    std::vector<std::string> findings; // "LINE:COLUMN severity reason: message; instead"
};

void PrintTo(const PREFERENCE_FINDINGS& row, std::ostream* stream)
{
    *stream << row.what;
}

std::vector<FINDING> findings_of(const INPUT_FILE& file)
{
    SECRETS secrets;
    std::vector<FINDING> findings;
    lint_preferences(file, secrets, [&findings](const FINDING& finding) { findings.push_back(finding); });
    return findings;
}

std::vector<std::string> findings_in(const std::string& text)
{
    std::vector<std::string> texts;
    for (const FINDING& finding : findings_of({"velmar2.ini", text, {}}))
    {
        EXPECT_EQ(finding.file, "velmar2.ini");
        EXPECT_FALSE(finding.item || finding.replacement);
        texts.push_back(std::to_string(*finding.line) + ":" + std::to_string(*finding.column) + " " +
                        severity_word(finding.severity) + " " + finding.reason + ": " + finding.message + "; " +
                        finding.instead);
    }
    return texts;
}

TEST(RUNNING_RELEASE, has_known_sections_also_where_the_host_forgets_it)
{
    const std::string text = "[General " + ver_get_version() + "_pro]\nHDL_PREFERENCE = VHDL\n";
    const std::vector<std::string> findings = findings_in(text);
    forgets_running_release = true;
    EXPECT_EQ(findings_in(text), findings);
    forgets_running_release = false;
    EXPECT_THAT(findings, testing::IsEmpty());
}

class PREFERENCE_RULES : public testing::TestWithParam<PREFERENCE_FINDINGS>
{
};

TEST_P(PREFERENCE_RULES, say)
{
    EXPECT_EQ(findings_in(GetParam().text), GetParam().findings);
}

const std::string section = "[Messages 23.4_pro]\n";
const std::string set = "SHOW_MESSAGE_ID = on\n";

INSTANTIATE_TEST_SUITE_P(
    lines_that_a_save_loses, PREFERENCE_RULES,
    testing::Values(
        PREFERENCE_FINDINGS{
            "a short line",
            section + set + " x\n",
            {"3:2 error too-short: a line of fewer than 3 characters is ignored, and a save drops it; write "
             "'KEY = VALUE'"}},
        PREFERENCE_FINDINGS{
            "UTF-16",
            "\xff\xfe[\0x\0]\0\n\0"s + "a\0=\0001\0\n\0"s,
            {"1:1 error byte-order-mark: the file is UTF-16, which the library does not understand; save it as UTF-8 "
             "without a byte order mark"}},
        PREFERENCE_FINDINGS{
            "an open header",
            section + set + "old [Messages\n",
            {"3:5 error malformed-header: a line with a \"[\" is taken for a section header; without \"]\" it "
             "is ignored, and a save drops it; close the header with \"]\""}},
        PREFERENCE_FINDINGS{"a bracket in a value",
                            section + set + "PROXY_SETTINGS = x[\n",
                            {"3:19 error bracket-in-value: a line with a \"[\" is taken for a section header; it sets "
                             "nothing, and a save drops the key; write a value without \"[\""}},
        PREFERENCE_FINDINGS{
            "two brackets in a value",
            section + set + "PROXY_SETTINGS = [host]\n",
            {"3:18 error bracket-in-value: a line with a \"[\" is taken for a section header: the section "
             "'host' begins here, and a save drops the key; write a value without \"[\""}},
        PREFERENCE_FINDINGS{
            "a header without a name",
            "[] \n",
            {"1:1 error empty-header: a header without a name: the lines below it are ignored, and a save "
             "drops them; write '[General 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a key below it",
            "[] \n" + set,
            {"1:1 error empty-header: a header without a name: the lines below it are ignored, and a save "
             "drops them; write '[General 23.4_pro]'",
             "2:1 error below-empty-header: a key line below a header without a name is ignored, and a save "
             "drops it; put it below a header such as '[General 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a key before any section",
            "\n\t" + set,
            {"2:2 error before-section: a key line before any section is ignored, and a save drops it; put "
             "it below a header such as '[General 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a section without a key",
            section,
            {"1:1 note empty-section: a section without a value, which a save drops; write a key with a "
             "value below it, or remove the line"}},
        PREFERENCE_FINDINGS{
            "a comment beside a header",
            "[Messages 23.4_pro] # mine\n" + set,
            {"1:1 note beside-header: a save keeps the header, and drops the text beside it; keep comments "
             "elsewhere"}},
        PREFERENCE_FINDINGS{
            "a key beside a header",
            "[Messages 23.4_pro] A = b\n" + set,
            {"1:1 error beside-header: a save keeps the header, and drops the text beside it; write the key "
             "into a line of its own"}},
        PREFERENCE_FINDINGS{
            "a second line of a key",
            section + set + " SHOW_MESSAGE_ID = off\n",
            {"3:2 error duplicate: line 2 sets this key of this section already: the first one counts, and a "
             "save drops this one; remove one of the two"}},
        PREFERENCE_FINDINGS{
            "a key without a value",
            section + set + "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES  =\n",
            {"5:17 warning empty-value: an empty value counts as none, and a save drops the line; give a "
             "value or remove the line"}},
        PREFERENCE_FINDINGS{
            "a zero byte",
            section + "SHOW_MESSAGE_ID = on\0x\n"s,
            {"2:21 warning zero-byte: the text behind a zero byte is ignored, and a save drops it; remove "
             "the zero byte"}},
        PREFERENCE_FINDINGS{
            "a zero byte before the equals sign",
            section + set + "HDL_PREFERENCE\0 = VHDL\n"s,
            {"3:1 error not-kept: a zero byte ends this line before the \"=\", and a save drops it; remove the zero "
             "byte"}},
        PREFERENCE_FINDINGS{
            "quotes within quotes",
            "[General 23.4_pro]\nUSER_LIBRARIES = \"\"/x\"\"\n",
            {"2:1 warning changed-value: a save keeps these quotes, and the load after it removes them; "
             "remove the inner quotes"}},
        PREFERENCE_FINDINGS{
            "a comment",
            "  # a comment\n",
            {"1:3 note not-kept: this line sets nothing, and a save drops it; keep comments elsewhere; for "
             "a preference write 'KEY = VALUE'"}}));

INSTANTIATE_TEST_SUITE_P(
    lines_that_do_something_else, PREFERENCE_RULES,
    testing::Values(
        PREFERENCE_FINDINGS{
            "a section in another letter case",
            " [messages 23.4_pro]\n" + set,
            {"1:2 warning unknown-section: no lookup searches the section 'messages 23.4_pro'; letter case "
             "counts; write '[Messages 23.4_pro]'",
             "2:1 error wrong-section: SHOW_MESSAGE_ID is looked for in sections 'Messages' only; move it "
             "below '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a section that is nearly known",
            "[Messages 23.4_por]\n" + set,
            {"1:1 warning unknown-section: no lookup searches the section 'Messages 23.4_por'; letter case "
             "counts; write '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a section like no other",
            "[Something wholly other]\nx = 1\n",
            {"1:1 warning unknown-section: no lookup searches the section 'Something wholly other'; letter "
             "case counts; write a section of the catalogue, such as '[General 23.4_pro]'",
             "2:1 warning unknown-key: there is no preference 'x'; the line has no effect; remove the "
             "line"}},
        PREFERENCE_FINDINGS{
            "an old name",
            section + "Post warning messages = 1\n",
            {"2:1 note old-name: the old name of DISPLAY_WARNING_MESSAGES, converted by the next save; write "
             "'DISPLAY_WARNING_MESSAGES = 1'"}},
        PREFERENCE_FINDINGS{
            "what looks like a comment",
            section + " ; SHOW_MESSAGE_ID = off\n#A=b\n",
            {"2:2 warning no-comment: there are no comments: this is kept as a preference '; "
             "SHOW_MESSAGE_ID'; remove the line",
             "3:1 warning no-comment: there are no comments: this is kept as a preference '#A'; remove the "
             "line"}},
        PREFERENCE_FINDINGS{
            "a key that is nearly known",
            section + "SHOW_MESAGE_ID = on\n",
            {"2:1 warning unknown-key: there is no preference 'SHOW_MESAGE_ID'; the line has no effect; "
             "write 'SHOW_MESSAGE_ID = on'"}},
        PREFERENCE_FINDINGS{"a key in another letter case",
                            section + "Show_Message_Id = on\n",
                            {"2:1 error letter-case: a value is found only under the key's own spelling; write "
                             "'SHOW_MESSAGE_ID = on'"}},
        PREFERENCE_FINDINGS{
            "the wrong section",
            "[General 23.3_pro]\n" + set,
            {"2:1 error wrong-section: SHOW_MESSAGE_ID is looked for in sections 'Messages' only; move it "
             "below '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a section that only begins alike",
            "[Messages23.4_pro]\n" + set,
            {"1:1 warning unknown-section: no lookup searches the section 'Messages23.4_pro'; letter case "
             "counts; write '[Messages 23.4_pro]'",
             "2:1 error wrong-section: SHOW_MESSAGE_ID is looked for in sections 'Messages' only; move it "
             "below '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a release that nobody knows",
            "[Messages 1234.5678_pro]\n" + set,
            {"1:1 warning unknown-section: no lookup searches the section 'Messages 1234.5678_pro'; letter "
             "case counts; write a section of the catalogue, such as '[General 23.4_pro]'"}},
        PREFERENCE_FINDINGS{"a value that is not allowed",
                            section + "SHOW_MESSAGE_ID = \t1\n",
                            {"2:20 error not-allowed: '1' is not allowed for SHOW_MESSAGE_ID; write one of off, on"}},
        PREFERENCE_FINDINGS{
            "all at once",
            "[general 23.4_pro]\nhdl_preference = C\n",
            {"1:1 warning unknown-section: no lookup searches the section 'general 23.4_pro'; letter case "
             "counts; write '[General 23.4_pro]'",
             "2:1 error letter-case: a value is found only under the key's own spelling; write "
             "'HDL_PREFERENCE = C'",
             "2:1 error wrong-section: HDL_PREFERENCE is looked for in sections 'General' only; move it "
             "below '[General 23.4_pro]'",
             "2:18 error not-allowed: 'C' is not allowed for HDL_PREFERENCE; write one of KHDL, Verilog, VHDL"}}));

const std::string merged =
    "the section [general 23.4_pro] differs from [General 23.4_pro] in letter case only, and a save "
    "writes both below that header; rename one of the two sections";

INSTANTIATE_TEST_SUITE_P(
    lines_that_a_save_loses_and_that_take_effect, PREFERENCE_RULES,
    testing::Values(
        PREFERENCE_FINDINGS{
            "an unknown section without a key",
            "[messages 23.4_pro]\n",
            {"1:1 note empty-section: a section without a value, which a save drops; write a key with a "
             "value below it, or remove the line",
             "1:1 warning unknown-section: no lookup searches the section 'messages 23.4_pro'; letter case "
             "counts; write '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "a comment beside an unknown section",
            "x [Mesages 23.4_pro]\n" + set,
            {"1:1 note beside-header: a save keeps the header, and drops the text beside it; keep comments "
             "elsewhere",
             "1:3 warning unknown-section: no lookup searches the section 'Mesages 23.4_pro'; letter case "
             "counts; write '[Messages 23.4_pro]'",
             "2:1 error wrong-section: SHOW_MESSAGE_ID is looked for in sections 'Messages' only; move it "
             "below '[Messages 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "an unknown key without a value",
            section + set + "SHOW_MESAGE_ID =\n",
            {"3:16 warning empty-value: an empty value counts as none, and a save drops the line; give a "
             "value or remove the line",
             "3:1 warning unknown-key: there is no preference 'SHOW_MESAGE_ID'; the line has no effect; "
             "write 'SHOW_MESSAGE_ID = '"}},
        PREFERENCE_FINDINGS{
            "a known key without one of its values",
            section + "DISPLAY_WARNING_MESSAGES = 1\nSHOW_MESSAGE_ID =\n",
            {"3:17 warning empty-value: an empty value counts as none, and a save drops the line; give a "
             "value or remove the line"}},
        PREFERENCE_FINDINGS{
            "a section in two letter cases",
            "[general 23.4_pro]\nHDL_PREFERENCE = VHDL\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n",
            {"1:1 error merged-section: " + merged,
             "1:1 warning unknown-section: no lookup searches the section 'general 23.4_pro'; letter case "
             "counts; write '[General 23.4_pro]'",
             "2:1 error merged-section: " + merged,
             "2:1 error wrong-section: HDL_PREFERENCE is looked for in sections 'General' only; move it "
             "below '[General 23.4_pro]'"}},
        PREFERENCE_FINDINGS{
            "an unknown key with a zero byte",
            section + "SHOW_MESAGE_ID = on\0x\n"s,
            {"2:20 warning zero-byte: the text behind a zero byte is ignored, and a save drops it; remove "
             "the zero byte",
             "2:1 warning unknown-key: there is no preference 'SHOW_MESAGE_ID'; the line has no effect; "
             "write 'SHOW_MESSAGE_ID = on'"}},
        PREFERENCE_FINDINGS{
            "quotes within quotes in the wrong section",
            section + "USER_LIBRARIES = \"\"/x\"\"\n",
            {"2:1 warning changed-value: a save keeps these quotes, and the load after it removes them; "
             "remove the inner quotes",
             "2:1 error wrong-section: USER_LIBRARIES is looked for in sections 'General' only; move it "
             "below '[General 23.4_pro]'"}}));

INSTANTIATE_TEST_SUITE_P(
    lines_without_findings, PREFERENCE_RULES,
    testing::Values(
        PREFERENCE_FINDINGS{"nothing", "", {}}, PREFERENCE_FINDINGS{"blank lines", "\n \t\n\r\n", {}},
        PREFERENCE_FINDINGS{"a section without a release", "[Messages]\n" + set, {}},
        PREFERENCE_FINDINGS{"the release before", "[Messages 23.3_pro]\n" + set, {}},
        PREFERENCE_FINDINGS{"a value in another letter case", section + "SHOW_MESSAGE_ID = OFF\n", {}},
        PREFERENCE_FINDINGS{"quotes", section + "SHOW_MESSAGE_ID = \"on\"\r\n", {}},
        PREFERENCE_FINDINGS{"no newline at the end", section + "SHOW_MESSAGE_ID=on", {}},
        PREFERENCE_FINDINGS{"a section twice", section + set + section + "DISPLAY_WARNING_MESSAGES = 1\n", {}},
        PREFERENCE_FINDINGS{"any text where it is free", "[General 23.4_pro]\nUSER_LIBRARIES = a;b#c\n", {}}));

TEST(PREFERENCE_RULES_OF_A_FILE, are_applied_to_the_whole_lines_before_a_read_error)
{
    const std::vector<FINDING> findings = findings_of({"velmar2.ini", "ab\ncd", "Input/output error"});
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].line, 1U);
}
}
