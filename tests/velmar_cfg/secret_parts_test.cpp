// Which parts of a text are hidden by the rules that settings, preferences and messages share, and under which key.
#include "tools/velmar-cfg/settings/secrets.h"

#include <filesystem>
#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

namespace
{
// The text with "<...>" for each hidden part, "..." being its size.
std::string sized(std::string_view text)
{
    std::string result;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
        result += part.hidden ? "<" + std::to_string(hidden_part(part.text).size) + ">" : std::string(part.text);
    return result;
}

TEST(HIDDEN_RUNS, are_what_stands_between_the_kept_signs)
{
    struct ROW
    {
        const char* text;
        const char* kept;
        const char* hidden;
    };
    const ROW rows[] = {
        {"", "\";#", ""},
        {"abc", "", "<3>"},
        {"abc", "\";#", "<3>"},
        {" abc ", "", " <3> "},
        {"\ta b\v\f\r\n", "", "\t<3>\v\f\r\n"},
        {" \t ", "", " \t "},
        {"\"abc\"", "\"", "\"<3>\""},
        {"\" ab c \"", "\"", "\" <4> \""},
        {"a;b#c", "\";#", "<1>;<1>#<1>"},
        {"a;;b", ";", "<1>;;<1>"},
        {";a", ";", ";<1>"},
        {"a;", ";", "<1>;"},
        {"a; ;b", ";", "<1>; ;<1>"},
        {"a:b", ";", "<3>"},
        {"a b;c d", ";", "<3>;<3>"},
        {"\xc3\xa9", "", "<2>"},
    };
    SECRETS secrets;
    for (const ROW& row : rows)
        EXPECT_EQ(sized(hide_runs(row.text, row.kept, secrets)), row.hidden) << row.text;
}

TEST(HIDDEN_RUNS, stay_as_they_are_once_hidden)
{
    SECRETS secrets;
    const std::string once = hide_runs("abc;de", ";", secrets);
    EXPECT_EQ(hide_runs(once, ";", secrets), once);
    EXPECT_EQ(sized(hide_runs("x;" + once, ";", secrets)), "<1>;<3>;<2>");
}

TEST(TEXTS_BEHIND_NAMES, are_hidden_where_the_name_is_secret)
{
    struct ROW
    {
        const char* text;
        const char* hidden;          // all that follows
        const char* hidden_assigned; // only what is assigned
    };
    const ROW rows[] = {
        {"", "", ""},
        {"no name", "no name", "no name"},
        {"token", "token", "token"},
        {"token=abc", "token=<3>", "token=<3>"},
        {"token:abc", "token:<3>", "token:<3>"},
        {"token abc", "token <3>", "token abc"},
        {"token  = 'abc'", "token  = '<4>", "token  = '<4>"},
        {"\"token\": \"abc\"", "\"token\": \"<3>\"", "\"token\": \"<3>\""},
        {"token=on", "token=on", "token=on"},
        {"token=123456789", "token=123456789", "token=123456789"},
        {"token=1234567890", "token=<10>", "token=<10>"},
        {"token=", "token=", "token="},
        {"token = ", "token = ", "token = "},
        {"x=1 token=abc y=2", "x=1 token=<7>", "x=1 token=<7>"},
        {"token=\"abc\" y=2", "token=\"<3>\" <3>", "token=\"<3>\" y=2"},
        {"token=\"abc\" password=de", "token=\"<3>\" <11>", "token=\"<3>\" password=<2>"},
        {"my.token-id_2=abc", "my.token-id_2=<3>", "my.token-id_2=<3>"},
        {"my token=abc", "my token=<3>", "my token=<3>"},
        {"(token)=abc", "(token<5>", "(token)=abc"},
        {"--token abc", "--token <3>", "--token abc"},
        {"\xc3\xa9token=abc", "\xc3\xa9token=<3>", "\xc3\xa9token=<3>"},
        {"TOKEN==abc", "TOKEN==<3>", "TOKEN==<3>"},
    };
    SECRETS secrets;
    const auto is_secret = [&secrets](std::string_view name) { return secrets.is_secret_name(name); };
    for (const ROW& row : rows)
    {
        EXPECT_EQ(sized(hide_behind_names(row.text, false, is_secret, secrets)), row.hidden) << row.text;
        EXPECT_EQ(sized(hide_behind_names(row.text, true, is_secret, secrets)), row.hidden_assigned) << row.text;
    }
}

TEST(VALUES_TO_SHOW, keep_the_signs_of_the_layer_that_they_are_from)
{
    struct ROW
    {
        const char* name;
        const char* value;
        const char* of_line;
        const char* of_item;
    };
    const ROW rows[] = {
        {"token", "a:b;c", "<3>;<1>", "<1>:<1>;<1>"},
        {"token", "\"a#b\"", "\"<1>#<1>\"", "<5>"},
        {"token", " \"on\" ", " \"on\" ", " \"on\" "},
        {"token", "\"onx", "\"<3>", "<4>"},
        {"a", "token=x:y;z", "token=<5>", "token=<5>"},
        {"a", "a:b;c", "a:b;c", "a:b;c"},
        {"", "abc", "abc", "abc"},
    };
    SECRETS secrets;
    for (const ROW& row : rows)
    {
        EXPECT_EQ(sized(hide_in_value(row.name, row.value, secrets)), row.of_line) << row.value;
        EXPECT_EQ(sized(hide_in_value(row.name, row.value, secrets, kept_in_items)), row.of_item) << row.value;
    }
    secrets.show_all();
    EXPECT_EQ(hide_in_value("token", "abc", secrets), "abc");
    EXPECT_TRUE(secrets.shown());
    EXPECT_FALSE(SECRETS().shown());
}

TEST(SECRETS_IN_MESSAGES, are_hidden_piece_by_piece)
{
    struct ROW
    {
        const char* text;
        const char* secret;
        const char* hidden;
    };
    const ROW rows[] = {
        {"it is abcd", "", "it is abcd"},
        {"it is abcd", "abcd", "it is <4>"},
        {"abcdabcd", "abcd", "<4><4>"},
        {"xabcdx", "abcd", "x<4>x"},
        {"xabcx", "abc", "xabcx"},
        {"'abc'", "abc", "'<3>'"},
        {"\"abc\"", "abc", "\"<3>\""},
        {"'abc\"", "abc", "'abc\""},
        {"no such word: abc", "abc", "no such word: <3>"},
        {"no such word: abc; see help", "abc", "no such word: <3>; see help"},
        {"no such word: abc de", "abc", "no such word: abc de"},
        {"no such word abc", "abc", "no such word abc"},
        {"/a/b: a line holds 'a'", "a", "/a/b: a line holds '<1>'"}, // paths and the message's own words stay
        {"/abc", "abc", "/abc"},
        {"is 'abc;de'", "abc;de", "is '<6>'"},
        {"is 'abc'", "abc;de", "is '<3>'"},
        {"is 'abcd'", "abcd#e", "is '<4>'"},
        {"abc", "abc", "<3>"},
        {"aaaa", "aa", "aaaa"},
        {"aaaaa", "aaaa", "<5>"}, // of both places
        {"aaaaaxaaaa", "aaaa", "<5>x<4>"},
        {"abcd and efgh", "\"abcd[efgh]\"", "<4> and <4>"},
        {"abcd[efgh", " abcd [ efgh ", "<4>[<4>"},
        {"abcd", "[]\"\"", "abcd"},
        {"is abcdefgh", "abcd\"efgh", "is <4><4>"},
        {"ABCD", "abcd", "ABCD"},
    };
    SECRETS secrets;
    for (const ROW& row : rows)
        EXPECT_EQ(sized(hide_in_text(row.text, row.secret, secrets)), row.hidden)
            << row.text << " without " << row.secret;
}

TEST(SECRETS_IN_MESSAGES, are_hidden_where_a_quotation_cuts_them_short)
{
    const std::string secret(200, 'x');
    SECRETS secrets;
    EXPECT_EQ(sized(hide_in_text("is '" + secret.substr(0, 100) + "...'", secret, secrets)), "is '<200>'");
    EXPECT_EQ(sized(hide_in_text("is '" + secret.substr(0, 100) + "...'", secret + ";y", secrets)), "is '<202>'");
    EXPECT_EQ(sized(hide_in_text("is '" + secret.substr(0, 99) + "'", secret, secrets)),
              "is '" + secret.substr(0, 99) + "'");
}

TEST(SHORT_SECRETS_OF_OTHERS_TEXTS, are_hidden_where_they_stand_apart)
{
    SECRETS secrets;
    for (const auto& [text, hidden] : {std::pair("x abc x", "x <3> x"),
                                       {"xabc abc abcx", "xabc <3> abcx"},
                                       {"abc", "<3>"},
                                       {"-abc", "-<3>"},
                                       {"abc1", "abc1"}})
        EXPECT_EQ(sized(hide_in_text(text, "abc", secrets, SHORT_SECRETS::APART)), hidden) << text;
}

// Several at once are hidden as each would be alone, in whatever order they are known.
TEST(SECRETS_IN_MESSAGES, are_hidden_together)
{
    struct ROW
    {
        std::vector<SECRET_TEXT> secrets;
        const char* text;
        const char* hidden;
    };
    const ROW rows[] = {
        {{}, "abcd", "abcd"},
        {{{""}, {" "}, {"[]"}}, "abcd [] ", "abcd [] "},
        {{{"abcd"}, {"efgh"}}, "abcdefgh abcd efgh", "<4><4> <4> <4>"},
        {{{"abcd"}, {"bcdef"}, {"efgh"}}, "abcdefgh.", "<8>."}, // a chain of three
        {{{"abcd"}, {"bcdef"}, {"efgh"}}, "xabcdx.bcdefx.efgh", "x<4>x.<5>x.<4>"},
        {{{"xabcdefx"}, {"bcde"}, {"abcd"}}, "xabcdefx xabcdef", "<8> x<5>f"}, // one in another
        {{{"cdef"}, {"abcdefg"}}, "abcdefg", "<7>"},
        {{{"abcde"}, {"abcd"}, {"abcdef"}}, "abcd abcde abcdef", "<4> <5> <6>"},
        {{{"ab"}, {"a b"}, {"a"}}, "it is 'ab', 'a b', 'a': b", "it is '<2>', '<3>', '<1>': b"},
        {{{"ab"}, {"xx ab yy"}}, "xx ab yy; 'ab' ab", "<8>; '<2>' ab"}, // a short one within a long one
        {{{"abcd"}, {"ab"}}, "abcd'ab'abcd", "<4>'<2>'<4>"},
        {{{"abcd", "x="}, {"efgh"}}, "x=abcd abcd efgh", "x=<4> abcd <4>"},
    };
    SECRETS secrets;
    for (ROW row : rows)
    {
        EXPECT_EQ(sized(SECRET_TEXTS(row.secrets, secrets).hide_in(row.text)), row.hidden) << row.text;
        std::ranges::reverse(row.secrets);
        EXPECT_EQ(sized(SECRET_TEXTS(row.secrets, secrets).hide_in(row.text)), row.hidden) << row.text;
    }
}

// A mark tells whether two texts are the same: one that hides a whole secret is that secret's.
TEST(SECRETS_IN_MESSAGES, have_the_marks_of_the_whole_secret)
{
    SECRETS secrets;
    const std::string long_one(200, 'x');
    const SECRET_TEXTS texts({{"abcd"}, {"cdef"}, {long_one}}, secrets);
    EXPECT_EQ(texts.hide_in("abcd"), secrets.mark("abcd"));
    EXPECT_EQ(texts.hide_in("abcdef"), secrets.mark("abcdef"));
    EXPECT_EQ(texts.hide_in("'" + long_one.substr(0, 100) + "...'"), "'" + secrets.mark(long_one) + "'");
}

TEST(TYPED_VALUES, are_hidden_with_their_secret_names)
{
    struct ROW
    {
        const char* message;
        const char* word;
        const char* hidden;
    };
    const ROW rows[] = {
        {"no 'token=abcd'", "token=abcd", "no 'token=<4>'"},
        {"no 'token:abcd'", "token:abcd", "no 'token:<4>'"},
        {"a word 'token=a' in /a", "token=a", "a word 'token=<1>' in /a"},
        {"a word 'token:a'", "token:a", "a word 'token:<1>'"},
        {"it is 'abcd'", "token:abcd", "it is '<4>'"},
        {"no 'name=abcd'", "name=abcd", "no 'name=abcd'"},
        {"no 'token=on'", "token=on", "no 'token=on'"},
        {"no 'token:12'", "token:12", "no 'token:12'"},
        {"no 'h:/?token=abcd'", "h:/?token=abcd", "no 'h:/?token=<4>'"},
        {"no 'token'", "token", "no 'token'"},
        {"no 'token= ab'", "token= ab", "no 'token=<3>'"},
        {"no 'token= abcd '", "token= abcd ", "no 'token=<6>'"},
    };
    SECRETS secrets;
    const auto is_secret = [&secrets](std::string_view name) { return secrets.is_secret_name(name); };
    for (const ROW& row : rows)
        EXPECT_EQ(sized(hide_typed_value(row.message, row.word, is_secret, secrets)), row.hidden) << row.word;
}

// The mark of one piece may hold the letters of another: marks are not looked into.
TEST(SECRETS_IN_MESSAGES, leave_marks_as_they_are)
{
    SECRETS secrets;
    const std::string mark = secrets.mark("abcd");
    for (const std::string& part : {mark.substr(0, 4), mark.substr(30, 4), mark.substr(mark.size() - 4)})
        EXPECT_EQ(hide_in_text("x " + mark, part, secrets), "x " + mark) << part;
}

TEST(SECRET_NAMES, match_patterns_as_a_shell_does)
{
    struct ROW
    {
        const char* pattern;
        const char* name;
        bool matches;
    };
    const ROW rows[] = {
        {"key", "key", true},     {"key", "KEY", true},   {"key", "keys", false}, {"key", "my_key", false},
        {"*key", "my_key", true}, {"*key", "key", true},  {"k?y", "kay", true},   {"k?y", "ky", false},
        {"[ab]x", "bX", true},    {"[ab]x", "cx", false}, {"[!ab]x", "cx", true}, {"a.b", "a.b", true},
        {"a.b", "axb", false},    {"", "", true},         {"", "x", false},       {"*", "anything", true},
        {"\\*", "*", true},       {"\\*", "x", false},    {"a*", "a/b", true},
    };
    for (const ROW& row : rows)
    {
        SECRETS secrets;
        secrets.add_pattern(row.pattern);
        EXPECT_EQ(secrets.is_secret_name(row.name), row.matches) << row.pattern << " and " << row.name;
        EXPECT_TRUE(secrets.may_hold_secret_name(row.name));
    }
}

// --- Keys ---

class KEYS_OF_MARKS : public ISOLATED_TEST
{
protected:
    KEYS_OF_MARKS()
    {
        environment.set("XDG_DATA_HOME", temporary.path("data"));
    }
};

TEST_F(KEYS_OF_MARKS, are_of_this_process_unless_a_lasting_one_is_wanted)
{
    SECRETS passing;
    EXPECT_FALSE(hidden_part(passing.mark("abc")).lasting);
    EXPECT_FALSE(std::filesystem::exists(mask_key_path()));
    SECRETS lasting;
    lasting.use_lasting_key();
    EXPECT_EQ(lasting.key_problem(), ""); // none was used so far
    EXPECT_FALSE(std::filesystem::exists(mask_key_path()));
    const HIDDEN_PART part = hidden_part(lasting.mark("abc"));
    EXPECT_TRUE(part.lasting);
    EXPECT_EQ(part.size, 3U);
    EXPECT_TRUE(std::filesystem::exists(mask_key_path()));
    EXPECT_EQ(lasting.key_problem(), "");
    SECRETS another;
    another.use_lasting_key();
    EXPECT_EQ(hidden_part(another.mark("abc")), part);
    EXPECT_NE(hidden_part(another.mark("abd")).hmac, part.hmac);
    EXPECT_EQ(hidden_part(another.mark("abd")).key, part.key);
}

TEST_F(KEYS_OF_MARKS, are_of_this_process_with_the_reason_where_none_can_be_kept)
{
    write_file(temporary.path("data"), "no directory");
    SECRETS secrets;
    secrets.use_lasting_key();
    EXPECT_FALSE(hidden_part(secrets.mark("abc")).lasting);
    EXPECT_THAT(secrets.key_problem(), testing::HasSubstr(mask_key_path()));
    EXPECT_EQ(secrets.mark("abc"), secrets.mark("abc"));
}
}
