#include <gtest/gtest.h>
#include <ostream>

#include "cfg_ini/cfg_user_ini_reader/preference_file.h"

namespace
{
using namespace zon_cfg;
using KIND = PREFERENCE_LINE_KIND;
using namespace std::string_literals;

// --- Lines that are ignored ---

struct IGNORED
{
    std::string line;
    KIND kind;
};

void PrintTo(const IGNORED& row, std::ostream* out)
{
    *out << testing::PrintToString(row.line);
}

class IGNORED_PREFERENCE_LINE_TEST : public testing::TestWithParam<IGNORED>
{
};

TEST_P(IGNORED_PREFERENCE_LINE_TEST, says_why)
{
    const PREFERENCE_LINE line = classify_preference_line(GetParam().line);
    EXPECT_EQ(line.kind, GetParam().kind);
    EXPECT_EQ(line.section, "");
    EXPECT_EQ(line.name, "");
    EXPECT_EQ(line.value, "");
    EXPECT_FALSE(line.quotes_removed);
    EXPECT_FALSE(line.old_name_converted);
}

INSTANTIATE_TEST_SUITE_P(too_short, IGNORED_PREFERENCE_LINE_TEST,
                         testing::Values(IGNORED{"", KIND::TOO_SHORT}, IGNORED{"a", KIND::TOO_SHORT},
                                         IGNORED{"a=", KIND::TOO_SHORT}, IGNORED{"=1", KIND::TOO_SHORT},
                                         IGNORED{"[]", KIND::TOO_SHORT}, IGNORED{"[a", KIND::TOO_SHORT},
                                         IGNORED{"\r", KIND::TOO_SHORT},
                                         IGNORED{"a=\0b"s, KIND::TOO_SHORT}, // cut at the NUL first
                                         IGNORED{"\0a=b"s, KIND::TOO_SHORT}, IGNORED{"[]\0 "s, KIND::TOO_SHORT}));

INSTANTIATE_TEST_SUITE_P(malformed_header, IGNORED_PREFERENCE_LINE_TEST,
                         testing::Values(IGNORED{"[General", KIND::MALFORMED_HEADER},
                                         IGNORED{"ab[", KIND::MALFORMED_HEADER},
                                         IGNORED{"]a[", KIND::MALFORMED_HEADER}, // the "]" must follow
                                         IGNORED{"[[[", KIND::MALFORMED_HEADER},
                                         IGNORED{"a=[b", KIND::MALFORMED_HEADER},
                                         IGNORED{"a]=[b", KIND::MALFORMED_HEADER},
                                         IGNORED{"[General 23.4_pro\0]"s, KIND::MALFORMED_HEADER}));

INSTANTIATE_TEST_SUITE_P(other, IGNORED_PREFERENCE_LINE_TEST,
                         testing::Values(IGNORED{"   ", KIND::OTHER}, IGNORED{"abc", KIND::OTHER},
                                         IGNORED{"# a comment", KIND::OTHER}, IGNORED{"; a comment", KIND::OTHER},
                                         IGNORED{"General]", KIND::OTHER}, IGNORED{"a: b", KIND::OTHER},
                                         IGNORED{"abc\0=[x]"s, KIND::OTHER}, IGNORED{"\"\"\"", KIND::OTHER}));

// --- Headers ---

struct HEADER
{
    std::string line;
    std::string section;
    bool bracket_after_equals = false;
};

void PrintTo(const HEADER& row, std::ostream* out)
{
    *out << testing::PrintToString(row.line);
}

class PREFERENCE_HEADER_TEST : public testing::TestWithParam<HEADER>
{
};

TEST_P(PREFERENCE_HEADER_TEST, names_the_section)
{
    const PREFERENCE_LINE line = classify_preference_line(GetParam().line);
    EXPECT_EQ(line.kind, KIND::HEADER);
    EXPECT_EQ(line.section, GetParam().section);
    EXPECT_EQ(line.bracket_after_equals, GetParam().bracket_after_equals);
    EXPECT_EQ(line.name, "");
    EXPECT_EQ(line.value, "");
}

INSTANTIATE_TEST_SUITE_P(plain, PREFERENCE_HEADER_TEST,
                         testing::Values(HEADER{"[General 23.4_pro]", "General 23.4_pro"}, HEADER{"[a]", "a"},
                                         HEADER{"[general]", "general"},     // case kept
                                         HEADER{"[ General ]", " General "}, // not trimmed
                                         HEADER{"  [General]  ", "General"}, HEADER{"[General]\r", "General"},
                                         HEADER{"[General] = 1", "General"}, // what follows is ignored
                                         HEADER{"[a][b]", "a"}, HEADER{"[a]]", "a"},
                                         HEADER{"[[a]", "[a"}, // from the first "[" to the next "]"
                                         HEADER{"]x[a]", "a"}, HEADER{"text [a]", "a"},
                                         HEADER{"# [a]", "a"},   // there are no comments
                                         HEADER{"[a=b]", "a=b"}, // the "=" stands behind the "["
                                         HEADER{"[a]\0[b]"s, "a"}));

INSTANTIATE_TEST_SUITE_P(empty, PREFERENCE_HEADER_TEST,
                         testing::Values(HEADER{"[] ", ""}, HEADER{"[]\r", ""}, HEADER{" []", ""}, HEADER{"[]]", ""},
                                         HEADER{"[][a]", ""}, HEADER{"a=[]", "", true}));

INSTANTIATE_TEST_SUITE_P(bracket_in_a_value, PREFERENCE_HEADER_TEST,
                         testing::Values(HEADER{"PROXY_SETTINGS = [host]", "host", true},
                                         HEADER{"PROXY_SETTINGS = [::1]:8080", "::1", true},
                                         HEADER{"a=\"b[c]d\"", "c", true}, HEADER{"=[a]", "a", true}));

// --- Key lines ---

struct KEY
{
    std::string line;
    std::string name;
    std::string value;
    bool quotes_removed = false;
    bool old_name_converted = false;
};

void PrintTo(const KEY& row, std::ostream* out)
{
    *out << testing::PrintToString(row.line);
}

class PREFERENCE_KEY_LINE_TEST : public testing::TestWithParam<KEY>
{
};

TEST_P(PREFERENCE_KEY_LINE_TEST, gives_a_name_a_value)
{
    const PREFERENCE_LINE line = classify_preference_line(GetParam().line);
    EXPECT_EQ(line.kind, KIND::KEY);
    EXPECT_EQ(line.name, GetParam().name);
    EXPECT_EQ(line.value, GetParam().value);
    EXPECT_EQ(line.quotes_removed, GetParam().quotes_removed);
    EXPECT_EQ(line.old_name_converted, GetParam().old_name_converted);
    EXPECT_EQ(line.section, "");
    EXPECT_FALSE(line.bracket_after_equals);
}

INSTANTIATE_TEST_SUITE_P(blanks, PREFERENCE_KEY_LINE_TEST,
                         testing::Values(KEY{"a=b", "a", "b"}, KEY{"  a  =  b  ", "a", "b"},
                                         KEY{"\ta\v=\fb\r", "a", "b"}, KEY{"a b = c d", "a b", "c d"},
                                         KEY{"WEB_BROWSER = /opt/a b ", "WEB_BROWSER", "/opt/a b"}));

INSTANTIATE_TEST_SUITE_P(equals_signs, PREFERENCE_KEY_LINE_TEST,
                         testing::Values(KEY{"a=b=c", "a", "b=c"}, KEY{"a==", "a", "="}, KEY{"===", "", "=="},
                                         KEY{"a = ", "a", ""}, KEY{"abc=", "abc", ""}, KEY{" = value", "", "value"},
                                         KEY{" = ", "", ""}));

INSTANTIATE_TEST_SUITE_P(no_comments, PREFERENCE_KEY_LINE_TEST,
                         testing::Values(KEY{"; a = b", "; a", "b"}, KEY{"# a = b", "# a", "b"},
                                         KEY{"a = b ; c # d", "a", "b ; c # d"}, KEY{"a = b] c", "a", "b] c"},
                                         KEY{"a]=b", "a]", "b"}));

INSTANTIATE_TEST_SUITE_P(
    quotes, PREFERENCE_KEY_LINE_TEST,
    testing::Values(KEY{"  USER_LIBRARIES  =  \"  /opt/lib  \"  ", "USER_LIBRARIES", "/opt/lib", true},
                    KEY{"a=\"b\"", "a", "b", true}, KEY{"a = \" \"", "a", "", true},
                    KEY{"a=\"\"", "a", "\"\""}, // nothing between them: kept
                    KEY{"a=\"\"\"", "a", "\"", true}, KEY{"a=\"\"\"\"", "a", "\"\"", true},
                    KEY{"a = \"\"b\"\" ", "a", "\"b\"", true}, // one pair only
                    KEY{"a = \" \"b\" \"", "a", "\"b\"", true}, KEY{"a=\"", "a", "\""}, KEY{"a=\"b", "a", "\"b"},
                    KEY{"a=b\"", "a", "b\""}, KEY{"a=\"bc", "a", "\"bc"}, KEY{"a=bc\"", "a", "bc\""},
                    KEY{"a=\"b\" c", "a", "\"b\" c"}, KEY{"a='b'", "a", "'b'"},
                    KEY{"\"a\"=b", "\"a\"", "b"})); // a name keeps its quotes

INSTANTIATE_TEST_SUITE_P(nul, PREFERENCE_KEY_LINE_TEST,
                         testing::Values(KEY{"a=b\0c"s, "a", "b"}, KEY{"a=b\0[c]"s, "a", "b"},
                                         KEY{"a=\"b\"\0\""s, "a", "b", true}));

INSTANTIATE_TEST_SUITE_P(
    old_names, PREFERENCE_KEY_LINE_TEST,
    testing::Values(KEY{"Post warning messages = on", "DISPLAY_WARNING_MESSAGES", "on", false, true},
                    KEY{"post WARNING messages=on", "DISPLAY_WARNING_MESSAGES", "on", false, true},
                    KEY{" Keep XML Files In =\"/a\"", "VANTREL_SAVE_XML_FILES_LOCATION", "/a", true, true},
                    KEY{"Keep XML Files=1", "VANTREL_SAVE_XML_FILES", "1", false, true},
                    KEY{"GENERATE_HTML_REPORT_FILE=1", "GENERATE_HTML_REPORT_FILES", "1", false, true},
                    KEY{"GENERATE_HTML_REPORT_FILES=1", "GENERATE_HTML_REPORT_FILES", "1"},
                    KEY{"generate_html_report_files=1", "generate_html_report_files", "1"}, // current: spelling kept
                    KEY{"Post  warning messages=1", "Post  warning messages", "1"}));       // blanks count
}
