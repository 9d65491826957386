// Which values are secret, and what is hidden of the texts in which they stand.
#include "tools/velmar-cfg/settings/secrets.h"

#include <gtest/gtest.h>

#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/lint/settings_rules.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_readings.h"

namespace
{
// The text with "*" for each hidden part.
std::string starred(std::string_view text)
{
    std::string result;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
        result += part.hidden ? "*" : std::string(part.text);
    return result;
}

TEST(SECRETS, are_known_by_their_names)
{
    const SECRETS secrets;
    for (const char* const name : {"token", "api_token", "TOKENS", "max_tokens", "myToKeN2", "password", "db.Password",
                                   "SECRET", "client-secret-id", "apisecret", "pass word", "t o\tken"})
        EXPECT_TRUE(secrets.is_secret_name(name)) << name;
    for (const char* const name : {"", "tok", "toke", "pass_word", "secre", "se\ncret", "fanout", "user"})
        EXPECT_FALSE(secrets.is_secret_name(name)) << name;
}

TEST(SECRETS, are_known_by_further_patterns_too)
{
    SECRETS secrets;
    secrets.add_pattern("licen[cs]e*");
    secrets.add_pattern("*_key");
    for (const char* const name : {"license", "LICENCE_FILE", "api_KEY", "token"})
        EXPECT_TRUE(secrets.is_secret_name(name)) << name;
    for (const char* const name : {"my_license", "key", "api_keys"})
        EXPECT_FALSE(secrets.is_secret_name(name)) << name;
    EXPECT_TRUE(secrets.may_hold_secret_name("a=1"));
    secrets.show_all();
    EXPECT_FALSE(secrets.is_secret_name("token"));
    EXPECT_FALSE(secrets.may_hold_secret_name("token"));
}

TEST(SECRETS, are_no_switches_and_no_short_numbers)
{
    for (const char* const value :
         {"",           " ",   "on",      "OFF",      "true",   "False",    "0",   "1",
          "yes",        "No",  "enabled", "disabled", "12",     "-7",       "+5",  "123456789",
          "-123456789", "2.5", ".5",      " 12 ",     "\"on\"", "\" 12 \"", "12\r"})
        EXPECT_TRUE(is_plain_value(value)) << value;
    for (const char* const value : {"1234567890", "12345678.90", "0x10", "12a", "1.2.3", "-", ".", "one", "on off", "t",
                                    "\"", "\"on", "1e5", "- 5", "onn"})
        EXPECT_FALSE(is_plain_value(value)) << value;
}

struct TEXT_ROW
{
    const char* text;
    const char* hidden;
};

TEST(SECRETS, are_hidden_in_lines_with_what_may_be_their_rest)
{
    SECRETS secrets;
    for (const auto& [text, hidden] : {
             TEXT_ROW{"token=abc", "token=*"},
             {"  API_Token\t= a b c \t", "  API_Token\t= * \t"},
             {"token=abc\r", "token=*\r"},
             {"t o k e n = abc", "t o k e n = *"},
             {"token = a", "token = *"},
             {"token = on", "token = on"},
             {"max_tokens = 12", "max_tokens = 12"},
             {"token = 1234567890", "token = *"},
             {"token =", "token ="},
             {"token", "token"},
             // A comment sign may have cut the secret; the sign and quotes stay, so that lint sees them.
             {"token = abc#def", "token = *#*"},
             {"token = abc  ; was def", "token = *  ; *"},
             {"token = \"ab;c\" # x", "token = \"*;*\" # *"},
             {"token = \"abc # d", "token = \"* # *"},
             {"token = \"abc", "token = \"*"},
             {"token = on#def", "token = on#*"},
             {"token = 12;def", "token = 12;*"},
             // What stood there before, too.
             {"token = on ; was abc", "token = on ; *"},
             {"token = on # token", "token = on # *"},
             {"token = 12 # \"abc\"=d", "token = 12 # *"},
             {"token = on #", "token = on #"},
             {"token = # def", "token = # *"},
             {"token =\t; was def", "token =\t; *"},
             {"token == abc", "token =*"},
             {"token += abc", "token += *"},
             // Of other lines, what is assigned to a secret name in the value or in the comment.
             {"a = 1", "a = 1"},
             {"a = 1 # token = abc", "a = 1 # token = *"},
             {"a = 1 # the token", "a = 1 # the token"},
             {"a = token", "a = token"},
             {"a = b token=abc x=1", "a = b token=*"},
             {"url = http://h/?api_token=abc", "url = http://h/?api_token=*"},
             {"cmd = x --token=\"abc\" --n=1 # c", "cmd = x --token=\"*\" --n=1 # c"},
             {"url = http://h/?token=abc;def", "url = http://h/?token=*;*"},
             {"url = token=abc,d # e;f", "url = token=* # *"},
             {"url = token=on # e", "url = token=on # e"},
             {"json = {\"token\": \"abc\", \"n\": 1}", "json = {\"token\": \"*\", \"n\": 1}"},
             {"x = max_tokens=12", "x = max_tokens=12"},
             {"a = 1\rtoken = abc\rb = 2", "a = 1\rtoken = *"},
             // Of a line without an assignment, all behind the name.
             {"password abc def", "password *"},
             {"my token: \"abc def\" g", "my token: \"*\" *"},
             {"password on", "password on"},
             // And all of its comment, whatever sign begins that.
             {"token # = abc", "token # = *"},
             {"token ; a = abc", "token ; * = *"},
             {"token //abc", "token //*"},
             {"token//= abc", "token//= *"},
             {"export token # abc", "export token # *"},
             {"[token ; abc", "[token ; *"},
             {"token abc;def", "token *;*"},
             {"password // is = abc # password = def", "password // * = * # * = *"},
             // To make a comment of it shows nothing.
             {"# token = abc", "# token = *"},
             {"# token abc", "# token *"},
             {"; my token \"abc def\" g", "; my token \"*\" *"},
             {"# token", "# token"},
             {"# token on", "# token on"},
             {"// password: abc", "// password: *"},
             {"a = 1 # token abc", "a = 1 # token *"},
             {"a = 1 ; token abc # d", "a = 1 ; token * # *"},
             {"# token abc = d", "# token * = *"},
             {"# see abc", "# see abc"},
         })
    {
        const std::optional<std::string> result = hide_in_settings_text(text, secrets);
        EXPECT_EQ(starred(result.value_or(text)), hidden) << text;
        EXPECT_EQ(result.has_value(), std::string_view(text) != hidden) << text;
    }
}

TEST(SECRETS, are_hidden_in_every_line_of_a_text)
{
    SECRETS secrets;
    EXPECT_EQ(starred(*hide_in_settings_text("a=1\ntoken=x\n\nb=2\npassword = y", secrets)),
              "a=1\ntoken=*\n\nb=2\npassword = *");
    EXPECT_EQ(starred(*hide_in_settings_text("token=x\n", secrets)), "token=*\n");
    EXPECT_EQ(hide_in_settings_text("", secrets), std::nullopt);
    EXPECT_EQ(hide_in_settings_text("\n\n", secrets), std::nullopt);
    secrets.show_all();
    EXPECT_EQ(hide_in_settings_text("token=x\n", secrets), std::nullopt);
}

TEST(SECRETS, are_hidden_in_items_with_what_separators_cut_off)
{
    SECRETS secrets;
    for (const auto& [text, hidden] : {
             TEXT_ROW{"token=abc", "token=*"},
             {"a=1;token= abc ;b=2", "a=1;token= * ;b=2"},
             {"a=1;token=on;b=2", "a=1;token=on;b=2"},
             {"a=1:token=ab;c=d:b=2", "a=1:token=*;*:b=2"},
             {"token=abc:def", "token=*:*"},
             {"token=abc:def:ghi;jk", "token=*:*:*;*"},
             {"token=abc:def==;gh=1:b=2", "token=*:*==;gh=1:b=2"},
             {"token=abc:def;gh=1:ij", "token=*:*;gh=1:ij"},
             {"token=abc:def==:b=2", "token=*:*==:b=2"},
             {"token=123456789:ABC-d", "token=123456789:*"},
             {"token=12:b=2", "token=12:b=2"},
             {"token=12::b=2", "token=12::b=2"},
             {"token=ab:cd;b=2", "token=*:*;b=2"},
             {"token=abc::def", "token=*::def"},
             {"token abc;b=2", "token *;b=2"},
             {"b=2;c", "b=2;c"},
             {"url=http://h/?token=abc", "url=http://h/?token=*"},
             {"b=1;url=h?token=abc;c=2", "b=1;url=h?token=*;c=2"},
             {";;token=abc;;", ";;token=*;;"},
         })
    {
        const std::optional<std::string> result = hide_in_inline_text(text, secrets);
        EXPECT_EQ(starred(result.value_or(text)), hidden) << text;
        EXPECT_EQ(result.has_value(), std::string_view(text) != hidden) << text;
    }
}

TEST(SECRETS, are_hidden_in_values)
{
    SECRETS secrets;
    EXPECT_EQ(starred(hide_in_value("Token", "abc", secrets)), "*");
    EXPECT_EQ(starred(hide_in_value("token", "\"abc\"", secrets)), "\"*\"");
    EXPECT_EQ(starred(hide_in_value("token", "off", secrets)), "off");
    EXPECT_EQ(starred(hide_in_value("a", "abc", secrets)), "abc");
    EXPECT_EQ(starred(hide_in_value("a", "h?token=abc", secrets)), "h?token=*");
    const std::string once = hide_in_value("token", "abc", secrets);
    EXPECT_EQ(hide_in_value("token", once, secrets), once);
}

TEST(SECRETS, have_the_same_mark_for_the_same_text)
{
    SECRETS secrets;
    EXPECT_EQ(secrets.mark("abc"), secrets.mark("abc"));
    EXPECT_NE(secrets.mark("abc"), secrets.mark("abd"));
    EXPECT_NE(SECRETS().mark("abc"), secrets.mark("abc"));
    EXPECT_EQ(hidden_part(secrets.mark("abc")).size, 3U);
    EXPECT_FALSE(hidden_part(secrets.mark("abc")).lasting);
}

TEST(SECRETS, have_no_readings)
{
    SECRETS secrets;
    const TYPED_READINGS readings = read_typed(hide_in_value("token", "1234567890", secrets));
    EXPECT_TRUE(same_readings(readings, TYPED_READINGS()));
    EXPECT_TRUE(read_typed("1234567890").signed_integer);
}

// --- The library's rules ---

LAYERS layers_of(LAYER_KIND kind, const std::string& text, SECRETS& secrets)
{
    const std::optional<std::string> hidden =
        is_file(kind) ? hide_in_settings_text(text, secrets) : hide_in_inline_text(text, secrets);
    return {{kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{"x", hidden.value_or(text), {}})}};
}

// What is hidden changes nothing else: the same statements assign to the same variables, and lint finds nothing new.
TEST(SECRETS, leave_generated_texts_as_they_are_otherwise)
{
    const std::vector<std::string> secret_names = {"token", "API_TOKEN", " my secret", "\"password\"", "xtoken:"};
    const std::vector<std::string> secret_values = {
        "S3CRET",   "\"S3CRET\"",      "S3CRET;S3CRET",     "\"S3CRET # S3CRET", "S3#S3CRET", "// S3CRET",
        "S3CRET//", "S3CRET\t:S3CRET", "\"S3CRET;S3CRET\"", "S3CRET\"",          "on",        "a=S3CRET"};
    int hidden_lines = 0;
    for (unsigned int seed = 1; seed <= 3000; ++seed)
    {
        SETTINGS_GENERATOR generate(seed);
        const auto line = [&]
        {
            return generate.below(2) == 0 ? generate.line()
                                          : generate.one_of_each({secret_names,
                                                                  {"=", " = ", "  ="},
                                                                  secret_values,
                                                                  {"", " ; note", "#S3CRET", "\r", " ;b=2"}});
        };
        const std::string text = generate.file(line);
        SCOPED_TRACE(text);
        SECRETS hiding;
        SECRETS showing;
        showing.show_all();
        const LAYERS hidden_layers = layers_of(LAYER_KIND::MAIN_FILE, text, hiding);
        const LAYERS shown_layers = layers_of(LAYER_KIND::MAIN_FILE, text, showing);
        const SETTINGS hidden(hidden_layers);
        const SETTINGS shown(shown_layers);
        ASSERT_EQ(hidden.assignments().size(), shown.assignments().size());
        for (std::size_t i = 0; i < shown.assignments().size(); ++i)
        {
            const ASSIGNMENT& a = hidden.assignments()[i];
            const ASSIGNMENT& b = shown.assignments()[i];
            ASSERT_EQ(a.name, b.name);
            ASSERT_EQ(a.position, b.position);
            if (!hiding.is_secret_name(a.name) || !has_hidden_parts(a.value))
            {
                ASSERT_TRUE(!hiding.is_secret_name(a.name) || is_plain_value(b.value)) << b.value;
                ASSERT_EQ(starred(a.value).find("S3CRET"), std::string::npos);
            }
            if (!has_hidden_parts(a.value))
            {
                ASSERT_EQ(a.value, b.value);
                continue;
            }
            ++hidden_lines;
            ASSERT_EQ(a.value.find("S3CRET"), std::string_view::npos);
        }
        // What is said of hidden lines is said of them as they are, at the same columns.
        const std::vector<FINDING> findings = lint_settings(hidden_layers);
        const std::vector<FINDING> all = lint_settings(shown_layers);
        for (const FINDING& finding : findings)
        {
            ASSERT_TRUE(std::ranges::any_of(all,
                                            [&](const FINDING& other) {
                                                return finding.reason == other.reason && finding.line == other.line &&
                                                       finding.column == other.column;
                                            }))
                << *finding.line << ":" << *finding.column << " " << finding.reason;
            ASSERT_EQ((finding.message + finding.instead + finding.replacement.value_or("")).find("S3CRET"),
                      std::string::npos)
                << finding.message << finding.instead;
        }
    }
    EXPECT_GT(hidden_lines, 3000);
}

TEST(SECRETS, leave_generated_inline_texts_as_they_are_otherwise)
{
    int hidden_items = 0;
    for (unsigned int seed = 1; seed <= 3000; ++seed)
    {
        SETTINGS_GENERATOR generate(seed);
        const auto item = [&]
        {
            return generate.below(2) == 0
                       ? generate.line()
                       : generate.pick({"token", " my_secret "}) + "=" +
                             generate.pick({"S3CRET", " S3CRET ", "on", "S3CRET;S3CRET:", "S3CRET=="});
        };
        const std::string text = generate.inline_text(item);
        SCOPED_TRACE(text);
        SECRETS hiding;
        SECRETS showing;
        showing.show_all();
        const SETTINGS hidden(layers_of(LAYER_KIND::INLINE_TEXT, text, hiding));
        const SETTINGS shown(layers_of(LAYER_KIND::INLINE_TEXT, text, showing));
        ASSERT_EQ(hidden.assignments().size(), shown.assignments().size());
        for (std::size_t i = 0; i < shown.assignments().size(); ++i)
        {
            const ASSIGNMENT& a = hidden.assignments()[i];
            const ASSIGNMENT& b = shown.assignments()[i];
            ASSERT_EQ(a.position, b.position);
            // What follows a secret and belongs to it may have been taken for a name.
            ASSERT_TRUE(a.name == b.name || has_hidden_parts(a.name)) << b.name;
            ASSERT_EQ(a.value.find("S3CRET"), std::string_view::npos);
            hidden_items += has_hidden_parts(a.value) ? 1 : 0;
        }
        ASSERT_EQ(starred(hidden.layers().front().source->bytes).find("S3CRET"), std::string::npos);
    }
    EXPECT_GT(hidden_items, 1000);
}

// --- Preferences ---

TEST(SECRET_PREFERENCES, are_marked_by_the_catalogue_or_named_so)
{
    const SECRETS secrets;
    std::vector<std::string> marked;
    for (const CFG_USER_INI_ENUMS number : all_preference_numbers())
    {
        if (zon_cfg::is_secret_preference(number))
            marked.push_back(cfg_get_user_ini_ini_string(number));
    }
    EXPECT_EQ(marked, (std::vector<std::string>{"CLOUD_TOKEN", "PROXY_USER1", "PROXY_USER2"}));
    EXPECT_FALSE(zon_cfg::is_secret_preference(CFG_USER_INI_ENUMS_END));
    for (const char* const name : {"CLOUD_TOKEN", "proxy_user1", "MY_PASSWORD"})
        EXPECT_TRUE(is_secret_preference_name(name, secrets)) << name;
    for (const char* const name : {"CLOUD_USERNAME", "PROXY_USER3", ""})
        EXPECT_FALSE(is_secret_preference_name(name, secrets)) << name;
}

TEST(SECRET_PREFERENCES, are_hidden_in_lines)
{
    SECRETS secrets;
    for (const auto& [text, hidden] : {
             TEXT_ROW{"[Cloud]\nCLOUD_TOKEN = abc\n", "[Cloud]\nCLOUD_TOKEN = *\n"},
             {"PROXY_USER1=\"joe doe\"", "PROXY_USER1=\"*\""},
             {"proxy_user2 = x\r", "proxy_user2 = *\r"},
             {"CLOUD_TOKEN = off", "CLOUD_TOKEN = off"},
             {"CLOUD_TOKEN =", "CLOUD_TOKEN ="},
             // It is a header, and looks like a value.
             {"CLOUD_TOKEN = ab[cd]ef", "CLOUD_TOKEN = *[*]*"},
             {"# CLOUD_TOKEN abc", "# CLOUD_TOKEN *"},
             {"# CLOUD_TOKEN=abc", "# CLOUD_TOKEN=*"},
             {"MY_PASSWORD = abc", "MY_PASSWORD = *"},
             {"WEB_BROWSER = b --token=abc", "WEB_BROWSER = b --token=*"},
             {"[My token]\nA = b", "[My token]\nA = b"},
             {"CLOUD_TOKEN [abc]", "CLOUD_TOKEN [*]"},
             {"MY_PASSWORD [ab] cd", "MY_PASSWORD [*] *"},
             {"CLOUD_SERVER [abc]", "CLOUD_SERVER [abc]"},
             {"CLOUD_TOKEN [Cloud 23.4_pro]", "CLOUD_TOKEN [Cloud 23.4_pro]"}, // a section that lookups use
             {"CLOUD_TOKEN [Cloud]", "CLOUD_TOKEN [Cloud]"},
             {"CLOUD_TOKEN [Clouds 23.4_pro]", "CLOUD_TOKEN [*]"},
             {"CLOUD_TOKEN [Cloud abc]", "CLOUD_TOKEN [*]"},
             {"CLOUD_USERNAME = joe\n\n", "CLOUD_USERNAME = joe\n\n"},
             {"A = b\nPROXY_USER1 = joe\n\nC = d\nMY_PASSWORD = abc\nE = f",
              "A = b\nPROXY_USER1 = *\n\nC = d\nMY_PASSWORD = *\nE = f"},
             {"A = b\nPROXY_USER1 = joe\n", "A = b\nPROXY_USER1 = *\n"},
             {"A = x Proxy_User2=joe", "A = x Proxy_User2=*"},
             {"A = x NO_PROXY_USER2=joe", "A = x NO_PROXY_USER2=joe"},
             {"PROXY_USER = joe", "PROXY_USER = joe"},
             {"", ""},
         })
    {
        const std::optional<std::string> result = hide_in_preference_text(text, secrets);
        EXPECT_EQ(starred(result.value_or(text)), hidden) << text;
        EXPECT_EQ(result.has_value(), std::string_view(text) != hidden) << text;
    }
    secrets.show_all();
    EXPECT_EQ(hide_in_preference_text("CLOUD_TOKEN=abc", secrets), std::nullopt);
}

// Lines are searched before they are taken apart; the search passes by none of the names.
TEST(SECRET_PREFERENCES, are_hidden_by_every_name_that_is_secret)
{
    SECRETS secrets;
    std::vector<std::string> names = all_preference_keys();
    for (const auto& [current_name, old_name] : cfg_user_ini_name_old_name_table)
        names.emplace_back(old_name);
    int secret_names = 0;
    for (const std::string& name : names)
    {
        const bool is_secret = is_secret_preference_name(name, secrets);
        EXPECT_EQ(hide_in_preference_text(name + " = hush-hush", secrets).has_value(), is_secret) << name;
        secret_names += is_secret ? 1 : 0;
    }
    EXPECT_EQ(secret_names, 3);
}

TEST(SECRET_PREFERENCES, are_looked_up_as_before_but_for_the_value)
{
    SECRETS secrets;
    const INPUT_FILE file{"velmar2.ini", "[Cloud 23.4_pro]\nCLOUD_TOKEN = \"abc\"\nCLOUD_USERNAME = joe\n", {}};
    const PREFERENCES preferences = preferences_in(&file, secrets);
    const PREFERENCE token = preferences.look_up(CLOUD_TOKEN);
    EXPECT_EQ(starred(token.value), "*");
    EXPECT_EQ(token.origin.source, PREFERENCE_SOURCE::RUNNING_RELEASE);
    EXPECT_EQ(preferences.look_up(CLOUD_USERNAME).value, "joe");
    EXPECT_EQ(preferences.look_up(PROXY_USER1).value, "");
    EXPECT_EQ(starred(hide_in_preference("proxy_user1", "joe", secrets)), "*");
    EXPECT_EQ(starred(hide_in_preference("CLOUD_USERNAME", "joe", secrets)), "joe");
}

// The columns are those of the file.
TEST(SECRET_PREFERENCES, are_hidden_in_findings)
{
    SECRETS secrets;
    const INPUT_FILE file{"velmar2.ini", "[General 23.4_pro]\nMY_TOKEN = abcdef\nCLOUD_TOKEN = ab[cd\n", {}};
    std::vector<FINDING> findings;
    lint_preferences(file, secrets, [&findings](const FINDING& finding) { findings.push_back(finding); });
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].reason, "unknown-key");
    EXPECT_EQ(findings[1].reason, "bracket-in-value");
    EXPECT_EQ(findings[1].column, 17U);
    for (const FINDING& finding : findings)
        EXPECT_EQ((finding.message + finding.instead).find("ab"), std::string::npos) << finding.message;
}

TEST(SECRET_PREFERENCES, are_hidden_in_messages_about_edits)
{
    struct ROW
    {
        const char* message;
        const char* file;
        const char* value;
        const char* hidden;
    };
    SECRETS secrets;
    for (const auto& [message, file, value, hidden] : {
             ROW{"it is 'hunter2'", "", "hunter2", "it is '*'"},
             {"it is 'hunter2'", "", " \"hunter2\" ", "it is '*'"},
             {"hunter2: hunter2", "", "hunter2", "*: *"},
             {"from 'old1' to 'new2'", "A=b\nCLOUD_TOKEN = \"old1\"\n", "new2", "from '*' to '*'"},
             {"A = b", "A=b\n", "zzzz", "A = b"},
             {"'ab' is about 'cab'", "", "ab", "'*' is about 'cab'"},
             {"ab/a is ab", "", "ab", "ab/a is ab"}, // a path, and a word of the message's own
             {"ab", "", "ab", "*"},
             {"on or off", "CLOUD_TOKEN=on", "off", "on or off"},
             // Texts like parts of marks.
             {"'hunter2'", "PROXY_USER1=aaaa\nPROXY_USER2=bbbb\nMY_TOKEN=Q\nX_TOKEN=0\n", "hunter2", "'*'"},
         })
    {
        std::vector<SECRET_TEXT> known = secrets_of_preference_text(file, secrets);
        add_secret_of_preference("CLOUD_TOKEN", value, secrets, known);
        EXPECT_EQ(starred(SECRET_TEXTS(known, secrets).hide_in(message)), hidden) << message;
    }
    std::vector<SECRET_TEXT> known;
    add_secret_of_preference("CLOUD_USERNAME", "hunter2", secrets, known);
    EXPECT_TRUE(known.empty());
}
}
