// What lint says of lines and items, word for word: where, how grave, why, and what to write instead. The suggested
// texts have tests of their own (lint_suggestion_test.cpp).
#include <gmock/gmock.h>

#include "tests/velmar_cfg/suggestions.h"

namespace
{
struct FOUND
{
    const char* text;
    std::vector<std::string> findings; // "LINE:COLUMN severity reason: message; instead"
};

void PrintTo(const FOUND& row, std::ostream* stream)
{
    *stream << "'" << row.text << "'";
}

std::vector<std::string> described(const std::vector<FINDING>& findings)
{
    std::vector<std::string> texts;
    for (const FINDING& finding : findings)
        texts.push_back(std::to_string(position_of(finding)) + ":" + std::to_string(finding.column.value_or(0)) + " " +
                        severity_word(finding.severity) + " " + finding.reason + ": " + finding.message + "; " +
                        finding.instead);
    return texts;
}

class FINDINGS_OF_LINES : public testing::TestWithParam<FOUND>
{
};

TEST_P(FINDINGS_OF_LINES, say)
{
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, GetParam().text);
    EXPECT_EQ(described(findings), GetParam().findings);
    for (const FINDING& finding : findings)
    {
        EXPECT_EQ(finding.file, "velmar.ini");
        EXPECT_FALSE(finding.item);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ignored_lines, FINDINGS_OF_LINES,
    testing::Values(
        FOUND{"a=1\rb=2",
              {"1:4 error carriage-return: a carriage return alone ends no line: what follows it belongs to this "
               "line; end every line with a newline"}},
        FOUND{"ab",
              {"1:1 error too-short: a line of fewer than 3 characters is ignored; put \"#\" before it to make it a "
               "comment"}},
        FOUND{"a=",
              {"1:1 error too-short: a line of fewer than 3 characters is ignored; write 'a =' to set the empty "
               "text"}},
        FOUND{" =",
              {"1:2 error too-short: a line of fewer than 3 characters is ignored; write a name before the \"=\""}},
        FOUND{"a # b = 1",
              {"1:3 error comment-cut: the comment begins before the \"=\", so the line is ignored; take the "
               "comment sign away, or put \"#\" before 'a' to make it all a comment"}},
        FOUND{" [s]",
              {"1:2 error no-equals-sign: a settings file has no sections: a line without \"=\" is ignored; put "
               "\"#\" before it to make it a comment"}},
        FOUND{"some words",
              {"1:1 error no-equals-sign: a line without \"=\" is ignored; put \"#\" before it to make it a "
               "comment"}},
        FOUND{"[some words",
              {"1:1 error no-equals-sign: a line without \"=\" is ignored; put \"#\" before it to make it a "
               "comment"}},
        FOUND{"some words]",
              {"1:1 error no-equals-sign: a line without \"=\" is ignored; put \"#\" before it to make it a "
               "comment"}},
        FOUND{"name: value", {"1:1 error no-equals-sign: a line without \"=\" is ignored; write 'name = value'"}},
        FOUND{"name: 1\nname = 2",
              {"1:1 error no-equals-sign: a line without \"=\" is ignored; write \"=\" and a value behind the name"}},
        FOUND{"msg_sqlite",
              {"1:1 error no-equals-sign: a line without \"=\" is ignored; write \"=\" and a value behind the "
               "name"}},
        FOUND{
            "\xef\xbb\xbf"
            "a=1 # x",
            {"1:1 error byte-order-mark: the file begins with a byte order mark, which belongs to the first line; save "
             "the file without a byte order mark, beginning with 'a=1'"}},
        FOUND{"\xff\xfe"
              "a=1",
              {"1:1 error byte-order-mark: the file is UTF-16, which the library does not understand; save it as UTF-8 "
               "without a byte order mark"}},
        FOUND{"\xff\xfe"
              "a=1\r\1b=2", // the carriage return is half of a character
              {"1:1 error byte-order-mark: the file is UTF-16, which the library does not understand; save it as UTF-8 "
               "without a byte order mark"}},
        FOUND{"\xfe\xff"
              "a=1",
              {"1:1 error byte-order-mark: the file is UTF-16, which the library does not understand; save it as UTF-8 "
               "without a byte order mark"}}));

INSTANTIATE_TEST_SUITE_P(
    comments, FINDINGS_OF_LINES,
    testing::Values(
        FOUND{"a=1;b=2",
              {"1:4 error second-assignment: a line holds one assignment: what follows the \";\" is a comment "
               "and is ignored; write 'a=1' and 'b=2' on lines of their own"}},
        FOUND{"a=1; a=2",
              {"1:4 error second-assignment: a line holds one assignment: what follows the \";\" is a comment "
               "and is ignored; write 'a=2' on a line of its own"}},
        FOUND{"url = host#part",
              {"1:11 warning comment-cut: the value is cut off at the \"#\", where a comment begins; put "
               "a blank before the comment if it is one; a value that has this sign needs double "
               "quotes, which become part of it"}},
        FOUND{"list = x;y",
              {"1:9 warning comment-cut: the value is cut off at the \";\", where a comment begins; put a "
               "blank before the comment if it is one; a value that has this sign needs double quotes, which "
               "become part of it"}},
        FOUND{"u = host# note",
              {"1:9 warning comment-cut: the value is cut off at the \"#\", where a comment begins; write "
               "'u = host # note'"}},
        FOUND{"s = 1 // one",
              {"1:7 warning slashes-in-value: behind the \"=\" a \"//\" begins no comment: it belongs to the "
               "value; write 's = 1 # one'"}},
        FOUND{"s = \"x // y\"",
              {"1:5 note quotes-kept: the quotes are part of the value; write the value without quotes",
               "1:8 warning slashes-in-value: behind the \"=\" a \"//\" begins no comment: it belongs to "
               "the value; begin the comment with \"#\", outside quotes"}},
        FOUND{"a = \"x",
              {"1:5 warning unclosed-quote: the quote is not closed, so that a \";\" or \"#\" behind it begins no "
               "comment; close the quote, or take it away; quotes are part of the value"}},
        FOUND{"a = \"x\" \"y",
              {"1:9 warning unclosed-quote: the quote is not closed, so that a \";\" or \"#\" behind it "
               "begins no comment; close the quote, or take it away; quotes are part of the value"}}));

INSTANTIATE_TEST_SUITE_P(
    names, FINDINGS_OF_LINES,
    testing::Values(
        FOUND{" max fanout = 12",
              {"1:2 warning blanks-in-name: white space in a name is removed: this sets 'maxfanout'; "
               "write 'max_fanout = 12' if that is the variable"}},
        FOUND{"one of five words here = 12",
              {"1:1 warning blanks-in-name: white space in a name is removed: this sets "
               "'oneoffivewordshere'; write the name without blanks"}},
        FOUND{"export FAN=1",
              {"1:1 warning blanks-in-name: white space in a name is removed: this sets 'exportFAN'; write "
               "'FAN=1' if that is the variable"}},
        FOUND{"a := 1",
              {"1:3 warning operator-in-name: there is no operator but \"=\": the ':' is part of the name 'a:'; "
               "write 'a = 1'"}},
        FOUND{" path += x",
              {"1:7 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name "
               "'path+'; write the name, \"=\" and the whole value"}},
        FOUND{" \"c\" = 1",
              {"1:2 warning quoted-name: the quotes are part of the name: this sets '\"c\"'; write 'c = 1'"}},
        FOUND{"'a b c d e' = 1",
              {"1:1 warning blanks-in-name: white space in a name is removed: this sets ''abcde''; write "
               "the name without blanks",
               "1:1 warning quoted-name: the quotes are part of the name: this sets ''abcde''; write the "
               "name without quotes"}},
        FOUND{"=5 ", {"1:1 warning empty-name: this sets the variable of empty name; write a name before the \"=\""}},
        FOUND{"caf\xc3\xa9 = x",
              {"1:4 warning odd-character: the byte 0xc3, no ASCII letter or blank, is part of the name; "
               "write the name in ASCII letters, digits and \"_\""}},
        FOUND{"a\x1f = x",
              {"1:2 warning odd-character: the byte 0x1f, no ASCII letter or blank, is part of the name; write "
               "the name in ASCII letters, digits and \"_\""}},
        FOUND{"ab\x7f = x",
              {"1:3 warning odd-character: the byte 0x7f, no ASCII letter or blank, is part of the name; write "
               "the name in ASCII letters, digits and \"_\""}},
        FOUND{"msg_sqlit = on",
              {"1:1 warning almost-known: no variable 'msg_sqlit' is known, but 'msg_sqlite' is; write "
               "'msg_sqlite = on' if that is the variable"}},
        FOUND{"msg_sqlit = 2",
              {"1:1 warning almost-known: no variable 'msg_sqlit' is known, but 'msg_sqlite' is; write "
               "'msg_sqlite' if that is the variable"}},
        FOUND{"MSG_SQLITE = on",
              {"1:1 warning letter-case: the same variable as 'msg_sqlite', but callbacks registered under "
               "that spelling are not notified of this one; write 'msg_sqlite = on'"}},
        FOUND{
            "MSG_SQLITE = 2",
            {"1:1 warning letter-case: the same variable as 'msg_sqlite', but callbacks registered under that spelling "
             "are not notified of this one; write 'msg_sqlite'",
             "1:14 error no-boolean: '2' is no boolean, so readers of 'msg_sqlite' take their default; write "
             "'msg_sqlite = on' or 'msg_sqlite = off'"}},
        FOUND{"Fan=1\nx=1\n fan=2",
              {"1:1 warning overridden: velmar.ini:3 sets 'Fan' again; remove one of the two",
               "3:2 warning letter-case: the same variable as 'Fan' at velmar.ini:1, but callbacks "
               "registered under that spelling are not notified of this one; write 'Fan=2'"}},
        FOUND{"a=1\na=1",
              {"1:1 note overridden: velmar.ini:2 sets 'a' again, to the same value; remove one of the two"}}));

INSTANTIATE_TEST_SUITE_P(
    values, FINDINGS_OF_LINES,
    testing::Values(
        FOUND{"b == 1", {"1:4 warning double-equals: a second \"=\" is part of the value; write 'b = 1'"}},
        FOUND{"p+==x",
              {"1:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name 'p+'; "
               "write the name, \"=\" and the whole value",
               "1:4 warning double-equals: a second \"=\" is part of the value; write one \"=\""}},
        FOUND{"g=1 h=2",
              {"1:3 warning second-assignment: this holds one assignment: all behind the first \"=\" is the value "
               "'1 h=2'; write 'g=1' and 'h=2' on lines of their own"}},
        FOUND{"g = 1 g=2",
              {"1:5 warning second-assignment: this holds one assignment: all behind the first \"=\" is the "
               "value '1 g=2'; write each assignment for itself"}},
        FOUND{"d = 'on'",
              {"1:5 note quotes-kept: the quotes are part of the value; write 'd = on' unless the reader of the "
               "variable takes the quotes off"}},
        FOUND{"msg_sqlite = yes",
              {"1:14 error no-boolean: 'yes' is no boolean, so readers of 'msg_sqlite' take their "
               "default; write 'msg_sqlite = on'"}},
        FOUND{"msg_sqlite = 2",
              {"1:14 error no-boolean: '2' is no boolean, so readers of 'msg_sqlite' take their default; "
               "write 'msg_sqlite = on' or 'msg_sqlite = off'"}},
        FOUND{"msg_sqlite =",
              {"1:13 error no-boolean: '' is no boolean, so readers of 'msg_sqlite' take their default; "
               "write 'msg_sqlite = on' or 'msg_sqlite = off'"}},
        FOUND{"debug_msg_level = high",
              {"1:19 error no-integer: 'high' is no integer, so readers of 'debug_msg_level' take "
               "their default; write decimal digits only, such as 'debug_msg_level = 2'"}},
        FOUND{"debug_msg_level = 2147483648",
              {"1:19 error no-integer: '2147483648' is out of range, so readers of "
               "'debug_msg_level' take their default; write a number from -2147483648 to "
               "2147483647"}},
        FOUND{"debug_msg_level = -2147483649",
              {"1:19 error no-integer: '-2147483649' is out of range, so readers of "
               "'debug_msg_level' take their default; write a number from -2147483648 to "
               "2147483647"}},
        FOUND{"debug_msg_level = -",
              {"1:19 error no-integer: '-' is no integer, so readers of 'debug_msg_level' take their "
               "default; write decimal digits only, such as 'debug_msg_level = 2'"}},
        FOUND{"debug_msg_level = 1-2",
              {"1:19 error no-integer: '1-2' is no integer, so readers of 'debug_msg_level' take "
               "their default; write decimal digits only, such as 'debug_msg_level = 2'"}},
        FOUND{"h = on,", {"1:7 warning trailing-comma: the \",\" is part of the value; write 'h = on'"}},
        FOUND{"p+=on,",
              {"1:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name 'p+'; "
               "write the name, \"=\" and the whole value",
               "1:6 warning trailing-comma: the \",\" is part of the value; write the value without it"}},
        FOUND{"e = yes",
              {"1:5 note boolean-word: 'yes' is no boolean: a reader that asks for one takes its default; write "
               "'e = on' if this is a switch"}},
        FOUND{"p+=no",
              {"1:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name 'p+'; "
               "write the name, \"=\" and the whole value",
               "1:4 note boolean-word: 'no' is no boolean: a reader that asks for one takes its default; write "
               "'on' or 'off'"}},
        FOUND{"f = 0x10",
              {"1:5 note hexadecimal: '0x10' is no integer: a reader that asks for one takes its default; write "
               "'f = 16' if this is an integer"}},
        FOUND{"p+=0x10",
              {"1:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name 'p+'; "
               "write the name, \"=\" and the whole value",
               "1:4 note hexadecimal: '0x10' is no integer: a reader that asks for one takes its default; write "
               "decimal digits"}}));

// --- Items ---

class FINDINGS_OF_ITEMS : public testing::TestWithParam<FOUND>
{
};

TEST_P(FINDINGS_OF_ITEMS, say)
{
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::INLINE_TEXT, GetParam().text);
    EXPECT_EQ(described(findings), GetParam().findings);
    for (const FINDING& finding : findings)
    {
        EXPECT_EQ(finding.file, "VELMAR_INI_VARS");
        EXPECT_FALSE(finding.line);
    }
}

INSTANTIATE_TEST_SUITE_P(
    table, FINDINGS_OF_ITEMS,
    testing::Values(
        FOUND{" ab;c=1",
              {"1:2 error no-equals-sign: an item without \"=\" is skipped; write \"=\" and a value behind the "
               "name"}},
        FOUND{"c=1; =1", {"2:2 error empty-name: an item without a name is skipped; write a name before the \"=\""}},
        FOUND{"a=;c=1",
              {"1:1 error empty-value: an item without a value is skipped; give a value, or set the empty text in "
               "a settings file"}},
        FOUND{"a=1:b=2;c=3",
              {"2:4 warning separator: the first of \":\" and \";\" separates all items, here \":\", so that "
               "the \";\" separates nothing; write 'b=2:c=3'"}},
        FOUND{"a=1;b=2:c=3",
              {"2:4 warning separator: the first of \":\" and \";\" separates all items, here \";\", so that "
               "the \":\" separates nothing; write 'b=2;c=3'"}},
        FOUND{"a=1:p+=2;c=3",
              {"2:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name "
               "'p+'; write the name, \"=\" and the whole value",
               "2:5 warning separator: the first of \":\" and \";\" separates all items, here \":\", so "
               "that the \";\" separates nothing; begin the text with the sign that separates items, and "
               "write it between all of them"}},
        FOUND{"url=http://h/x;b=3",
              {"1:9 warning separator: the first of \":\" and \";\" separates all items, here \":\", "
               "so that the \";\" separates nothing; begin the text with \";\""}},
        FOUND{"q=c:d;e=1;f",
              {"2:2 warning separator: the first of \":\" and \";\" separates all items, here \":\", so that the \";\" "
               "separates nothing; begin the text with the sign that separates items, and write it between all of "
               "them"}},
        FOUND{"p=x;y:z=1",
              {"1:4 warning separator: the first of \":\" and \";\" separates all items, here \";\", so that "
               "the \":\" separates nothing; begin the text with \":\""}},
        FOUND{"a=1\t",
              {"1:2 warning white-space-kept: a tab or a newline at the end of a value is part of it: only blanks "
               "are removed here; write 'a=1'"}},
        FOUND{"\na=1",
              {"1:1 warning white-space-kept: a tab or a newline at the end of a name is part of it: only blanks "
               "are removed here; write 'a=1'"}},
        FOUND{"p+=x\t",
              {"1:2 warning operator-in-name: there is no operator but \"=\": the '+' is part of the name 'p+'; "
               "write the name, \"=\" and the whole value",
               "1:3 warning white-space-kept: a tab or a newline at the end of a value is part of it: only blanks "
               "are removed here; write the item without it"}},
        FOUND{"my var=on",
              {"1:1 warning blanks-in-name: blanks in a name are kept here, while a settings file removes "
               "them: this sets 'my var'; write 'my_var=on' if that is the variable"}},
        FOUND{"x=1:h=on;", {"2:5 warning trailing-comma: the \";\" is part of the value; write 'h=on'"}},
        FOUND{"g=1 h=2",
              {"1:3 warning second-assignment: this holds one assignment: all behind the first \"=\" is the value "
               "'1 h=2'; write 'g=1;h=2'"}},
        FOUND{"x=\"a#b\"", {"1:3 note quotes-kept: the quotes are part of the value; write the value without quotes"}},
        FOUND{"Fan=1;fan=2",
              {"1:1 warning overridden: VELMAR_INI_VARS:2 sets 'Fan' again; remove one of the two",
               "2:1 warning letter-case: the same variable as 'Fan' at VELMAR_INI_VARS:1, but callbacks "
               "registered under that spelling are not notified of this one; write 'Fan=2'"}},
        FOUND{"msg_sqlite=2",
              {"1:12 error no-boolean: '2' is no boolean, so readers of 'msg_sqlite' take their default; "
               "write 'msg_sqlite = on' or 'msg_sqlite = off'"}}));

// --- Limits of the rules ---

// What is found, as "LINE:COLUMN reason".
struct BOUNDARY
{
    std::string text;
    std::vector<std::string> reasons;
};

std::vector<std::string> reasons_in(LAYER_KIND kind, const std::string& text)
{
    std::vector<std::string> reasons;
    for (const FINDING& finding : findings_of(kind, text))
        reasons.push_back(std::to_string(position_of(finding)) + ":" + std::to_string(*finding.column) + " " +
                          finding.reason);
    return reasons;
}

TEST(LIMITS_OF_RULES, for_comments_that_follow_a_value)
{
    const BOUNDARY rows[] = {
        {"q = 1;note", {"1:6 comment-cut"}},
        {"q = 1; note", {}},
        {"q = 1;\tnote", {}},
        {"q = 1#note", {}},
        {"q = yes#note", {"1:5 boolean-word"}},
        {"q = fast#note", {"1:9 comment-cut"}},
        {"q = fast; note", {"1:9 comment-cut"}},
        {"q = fast ;note", {}},
        {"q = fast\t#note", {}},
        {"q = fast;", {}},
        {"q = fast;  \t", {}},
        {"q = fast;;note", {}},
        {"q = fast;#note", {}},
        {"q = fast# // note", {}},
        {"q = fast;/ note", {"1:9 comment-cut"}},
        {"q = ;note", {"1:5 comment-cut"}},
        {"q = # note", {}},
        {"q = 1 ; r = 2", {"1:7 second-assignment"}},
        {"q = 1 # r = 2", {}},
        {"q = 1 ; was r = 2", {}},
        {"q = 1 ;r=", {}},
        {"q = 1 ; r=", {"1:7 second-assignment"}},
    };
    for (const BOUNDARY& row : rows)
        EXPECT_EQ(reasons_in(LAYER_KIND::MAIN_FILE, row.text), row.reasons) << row.text;
}

TEST(LIMITS_OF_RULES, for_carriage_returns_marks_and_short_lines)
{
    const std::string mark = "\xef\xbb\xbf";
    const BOUNDARY rows[] = {
        {"a = 1\r", {}},
        {"a = 1\r\r", {}},
        {"a = 1 \r \r", {}},
        {"\ra = 1", {}},
        {"a = \r1", {"1:5 carriage-return"}},
        {"# a\rb", {}},
        {"# a\rb = 1", {"1:4 carriage-return"}},
        {"a = 1 # x\r# y", {}},
        {"a = 1 # x\r# y\rb=2", {"1:10 carriage-return"}},
        {mark, {}},
        {mark + "# a", {}},
        {mark + "ab", {"1:1 byte-order-mark"}},
        {mark + " ; a = 1", {}},
        {"a=1\n" + mark + "b=1", {"2:1 odd-character"}},
        {"\xef\xbb"
         "a=1",
         {"1:1 odd-character"}},
        {"", {}},
        {"\r", {}},
        {"#", {}},
        {"#a", {}},
        {"//", {}},
        {"/a", {"1:1 too-short"}},
        {"a#", {"1:1 too-short"}},
        {"  \t", {}},
        {" a ", {"1:2 no-equals-sign"}},
        {"a=", {"1:1 too-short"}},
        {" a=", {}},
    };
    for (const BOUNDARY& row : rows)
        EXPECT_EQ(reasons_in(LAYER_KIND::MAIN_FILE, row.text), row.reasons) << row.text;
}

TEST(LIMITS_OF_RULES, for_names)
{
    const BOUNDARY rows[] = {
        {"a~b = 1", {}},
        {"a.b-c[0] = 1", {}},
        {"a~ = 1", {"1:2 operator-in-name"}},
        {"exported = 1", {}},
        {"reset a = 1", {"1:1 blanks-in-name"}},
        {"\"\" = 1", {}},
        {"a\" = 1", {"1:2 unclosed-quote"}},
        {"a= 1", {}},
        {"\ta\t= 1", {}},
        {"a\tb = 1", {"1:1 blanks-in-name"}},
        {" = 1", {"1:1 empty-name"}},
        {"a = 1\nb = 1\nA = 1\na = 1", {"1:1 overridden", "3:1 letter-case", "3:1 overridden"}},
        {"ab = 1\na b = 1", {"1:1 overridden", "2:1 blanks-in-name"}},
    };
    for (const BOUNDARY& row : rows)
        EXPECT_EQ(reasons_in(LAYER_KIND::MAIN_FILE, row.text), row.reasons) << row.text;
}

TEST(LIMITS_OF_RULES, for_values)
{
    const BOUNDARY rows[] = {
        {"a = =", {}},
        {"a ==", {}},
        {"a == =", {"1:4 double-equals"}},
        {"a = =x", {}},
        {"a ==x", {"1:4 double-equals"}},
        {"a = x=", {}},
        {"a = \"", {"1:5 unclosed-quote"}},
        {"a = 1 # \"x", {}},
        {"p+=1 h=2", {"1:2 operator-in-name"}},
        {"a,b = on,", {"1:9 trailing-comma"}},
        {"a = \"\"", {"1:5 quotes-kept"}},
        {"a = ''", {"1:5 quotes-kept"}},
        {"a = \"x;y\"", {}},
        {"a = 'x'y'", {}},
        {"a = \"x\"y\"z\"", {"1:5 quotes-kept"}},
        {"a = 1,", {"1:6 trailing-comma"}},
        {"a = x,", {}},
        {"a = 'yes',", {"1:10 trailing-comma"}},
        {"a = yes,", {"1:8 trailing-comma"}},
        {"debug_msg_level = 2147483647", {}},
        {"debug_msg_level = -2147483648", {}},
        {"debug_msg_level = yes", {"1:19 no-integer"}},
        {"msg_sqlite = yes,", {"1:14 no-boolean"}},
        {"msg_sqlite = FALSE", {}},
        {"a = 0x", {}},
        {"a = 0xg", {}},
        {"a = http://x", {}},
        {"a = // x", {}},
        {"a = x //", {"1:7 slashes-in-value"}},
        {"a = x // y // z", {"1:7 slashes-in-value"}},
        {"a = x// y // z", {"1:11 slashes-in-value"}},
    };
    for (const BOUNDARY& row : rows)
        EXPECT_EQ(reasons_in(LAYER_KIND::MAIN_FILE, row.text), row.reasons) << row.text;
}

TEST(LIMITS_OF_RULES, for_items)
{
    const BOUNDARY rows[] = {
        {"", {}},
        {";;", {}},
        {" ; ", {}},
        {"a=1; \t;b=2", {}},
        {"a=1:b=x;y", {}},
        {"a=1:b=x;y=2", {"2:4 separator"}},
        {"a=1;b=c:d", {}},
        {"a=c:d;b=1", {"1:4 separator"}},
        {" a = 1 ", {}},
        {"a\t=1", {"1:1 white-space-kept"}},
        {"a=\v1", {"1:2 white-space-kept"}},
        {"a=1\r", {"1:2 white-space-kept"}},
        {"a\tb=1", {"1:1 blanks-in-name"}},
        {"a=# x", {}},
        {"a=x // y", {}},
        {"a=\"x", {}},
        {"a=1;A=1", {"1:1 overridden", "2:1 letter-case"}},
        {"a=;a=1", {"1:1 empty-value"}},
    };
    for (const BOUNDARY& row : rows)
        EXPECT_EQ(reasons_in(LAYER_KIND::INLINE_TEXT, row.text), row.reasons) << row.text;
}

// --- Advice that people read ---

std::string advice_on(const std::string& line)
{
    const std::vector<FINDING> findings = findings_of(LAYER_KIND::MAIN_FILE, line);
    return findings.empty() ? "" : findings.front().instead;
}

TEST(ADVICE, shows_three_lines_at_most)
{
    EXPECT_EQ(advice_on("g=1 h=2"), "write 'g=1' and 'h=2' on lines of their own");
    EXPECT_EQ(advice_on("g=1 h=2 k=3"), "write 'g=1' and 'h=2' and 'k=3' on lines of their own");
    EXPECT_EQ(advice_on("g=1 h=2 k=3 l=4"), "write 'g=1' and 'h=2' and 'k=3' and 1 more on lines of their own");
    EXPECT_EQ(advice_on("g=1 h=2 k=3 l=4 m=5"), "write 'g=1' and 'h=2' and 'k=3' and 2 more on lines of their own");
    EXPECT_EQ(advice_on(" \tb == 1\r"), "write 'b = 1'");
}

TEST(ADVICE, is_of_the_layer_where_the_line_stands)
{
    const std::vector<FINDING> findings =
        lint_settings({layer_of(LAYER_KIND::MAIN_FILE, "Fan=1\na=1\n"),
                       {LAYER_KIND::APPENDED_FILE,
                        std::make_shared<const INPUT_FILE>(INPUT_FILE{"more.ini", "fan=1\na=2\na=3\n", {}})},
                       layer_of(LAYER_KIND::INLINE_TEXT, "FAN=1")});
    const std::string spelling = ", but callbacks registered under that spelling are not notified of this one; ";
    EXPECT_EQ(described(findings),
              (std::vector<std::string>{
                  "1:1 warning letter-case: the same variable as 'Fan' at velmar.ini:1" + spelling + "write 'Fan=1'",
                  "2:1 warning overridden: more.ini:3 sets 'a' again; remove one of the two",
                  "1:1 warning letter-case: the same variable as 'Fan' at velmar.ini:1" + spelling + "write 'Fan=1'"}));
    EXPECT_EQ(findings[0].file, "more.ini");
    EXPECT_EQ(findings[2].file, "VELMAR_INI_VARS");
}

// The file's columns, not those of the text with marks in it.
TEST(ADVICE, has_the_columns_of_the_file_where_secrets_are_hidden)
{
    SECRETS secrets;
    const std::string text = "x = token=abcdef // y\ntoken = abc#d\n";
    std::vector<std::string> found;
    for (const FINDING& finding :
         lint_settings({layer_of(LAYER_KIND::MAIN_FILE, *hide_in_settings_text(text, secrets))}))
        found.push_back(std::to_string(*finding.line) + ":" + std::to_string(*finding.column) + " " + finding.reason);
    EXPECT_EQ(found, (std::vector<std::string>{"2:12 comment-cut"}));
}

// --- Findings as JSON ---

TEST(FINDINGS_JSON, has_every_field)
{
    const auto json_of = [](const FINDING& finding)
    {
        TEXT_SINK sink;
        JSON_WRITER out(sink);
        write_json(out, finding);
        out.finish();
        return sink.text;
    };
    FINDING finding{"f", 3, std::nullopt, 7, SEVERITY::NOTE, "r", "m", "i", "x\ny"};
    EXPECT_EQ(json_of(finding), "{\n  \"file\": \"f\",\n  \"line\": 3,\n  \"item\": null,\n  \"column\": 7,\n"
                                "  \"severity\": \"note\",\n  \"reason\": \"r\",\n  \"message\": \"m\",\n"
                                "  \"instead\": \"i\",\n  \"replacement\": \"x\\ny\"\n}\n");
    finding = {"f", std::nullopt, 2, std::nullopt, SEVERITY::ERROR, "r", "", "", std::nullopt};
    EXPECT_EQ(json_of(finding), "{\n  \"file\": \"f\",\n  \"line\": null,\n  \"item\": 2,\n  \"column\": null,\n"
                                "  \"severity\": \"error\",\n  \"reason\": \"r\",\n  \"message\": \"\",\n"
                                "  \"instead\": \"\",\n  \"replacement\": null\n}\n");
    EXPECT_STREQ(severity_word(SEVERITY::WARNING), "warning");
}
}
