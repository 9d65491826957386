// How words are parsed and what is told of those that cannot be, over a small command line of the test's own; and what
// is hidden of words that were typed.
#include <gmock/gmock.h>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/commands/command.h"
#include "tools/velmar-cfg/commands/command_line.h"

namespace
{
using testing::ElementsAre;

// "tool [--dir DIR] [--quick] group {put NAME [MORE ...] [--limit N] [--kind a|b], take [WHAT]}" with what is parsed.
class PARSING : public testing::Test
{
protected:
    PARSING()
    {
        app->name("tool");
        app->require_subcommand(1);
        COMMAND root(*app);
        root.add_option("-d,--dir", "DIR", directory, "A directory");
        root.add_flag("--quick", quick, "Fast");
        COMMAND group = root.add_group("group", "A group", "tool group put x");
        COMMAND put = group.add_command(tool, "put", "Puts", "tool group put x",
                                        [this]
                                        {
                                            ran = "put";
                                            return EXIT_CODE::FINDINGS;
                                        });
        put.add_argument("NAME", name, "The name");
        put.add_optional_argument("MORE", more, "More names");
        put.add_option("--limit", "N", limit, "How many");
        put.add_option("--text", "TEXT", text, "A text");
        put.add_choice("--kind", "KIND", kind, {"a", "b"}, "Of what kind");
        put.add_flag("--dry", dry, "Nothing");
        put.require_with("--dry", "--limit");
        COMMAND take = group.add_command(tool, "take", "Takes", "tool group take", [] { return EXIT_CODE::FINE; });
        take.add_optional_argument("WHAT", what, "What");
        take.add_nul_flag(tool);
    }

    // Parses these words: "" or the complaint.
    std::string parse(const std::vector<const char*>& words)
    {
        std::vector<const char*> arguments = {"tool"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        try
        {
            parse_command_line(*app, static_cast<int>(arguments.size()), arguments.data());
            return "";
        }
        catch (const CLI::ParseError& error)
        {
            return usage_complaint(app.get(), error, static_cast<int>(arguments.size()), arguments.data());
        }
    }

    TOOL tool;
    const std::unique_ptr<CLI::App> app = std::make_unique<CLI::App>("A tool.");
    std::optional<std::string> directory;
    bool quick = false;
    std::string name;
    std::vector<std::string> more;
    std::optional<std::string> text;
    unsigned int limit = 7;
    std::string kind = "a";
    bool dry = false;
    std::optional<std::string> what;
    std::string ran;
};

TEST_F(PARSING, fills_what_was_given_and_leaves_the_rest)
{
    ASSERT_EQ(parse({"group", "put", "x"}), "");
    EXPECT_EQ(name, "x");
    EXPECT_THAT(more, ElementsAre());
    EXPECT_EQ(text, std::nullopt);
    EXPECT_EQ(directory, std::nullopt);
    EXPECT_EQ(limit, 7U);
    EXPECT_EQ(kind, "a");
    EXPECT_FALSE(quick || dry);
    EXPECT_EQ(ran, ""); // before the global options hold
    EXPECT_EQ(tool.command(), EXIT_CODE::FINDINGS);
    EXPECT_EQ(ran, "put");

    ASSERT_EQ(parse({"group", "--quick", "put", "--limit", "0", "y", "--kind=b", "z", "w", "--dry", "-d", "e"}), "");
    EXPECT_EQ(name, "y");
    EXPECT_THAT(more, ElementsAre("z", "w"));
    EXPECT_EQ(limit, 0U);
    EXPECT_EQ(kind, "b");
    EXPECT_TRUE(quick && dry);
    EXPECT_EQ(directory, "e");
}

TEST_F(PARSING, takes_the_empty_text_for_a_value)
{
    ASSERT_EQ(parse({"group", "put", "", "--text", "", "--dir="}), "");
    EXPECT_EQ(name, "");
    EXPECT_EQ(text, "");
    EXPECT_EQ(directory, "");
    ASSERT_EQ(parse({"group", "take", ""}), "");
    EXPECT_EQ(what, "");
}

// "--text=" has an empty value, and does not take the next word.
TEST_F(PARSING, an_option_that_ends_with_an_equals_sign_takes_no_further_word)
{
    struct ROW
    {
        std::vector<const char*> words;
        std::optional<std::string> text;
        std::vector<std::string> names;
    };
    for (const auto& [words, expected_text, names] :
         {ROW{{"group", "put", "--text=", "x"}, "", {"x"}}, ROW{{"group", "put", "x", "--text=", "y"}, "", {"x", "y"}},
          ROW{{"group", "put", "--text==", "x"}, "=", {"x"}}, ROW{{"group", "put", "--text=a=", "x"}, "a=", {"x"}},
          ROW{{"--dir=", "group", "put", "x"}, std::nullopt, {"x"}},
          ROW{{"group", "put", "--dir=", "x"}, std::nullopt, {"x"}},
          // Behind "--" it is a word like any other, and a name without hyphens is one anyway.
          ROW{{"group", "put", "--", "x", "--text="}, std::nullopt, {"x", "--text="}},
          ROW{{"group", "put", "x", "text="}, std::nullopt, {"x", "text="}},
          // An option without a value takes none.
          ROW{{"group", "put", "x", "--text", "--quick="}, "--quick=", {"x"}}})
    {
        SCOPED_TRACE(testing::PrintToString(words));
        text.reset();
        more.clear();
        ASSERT_EQ(parse(words), "");
        EXPECT_EQ(text, expected_text);
        std::vector<std::string> all = {name};
        all.insert(all.end(), more.begin(), more.end());
        EXPECT_EQ(all, names);
    }
}

TEST_F(PARSING, what_is_wrong_is_told_with_the_command_s_help)
{
    struct ROW
    {
        std::vector<const char*> words;
        const char* complaint;
    };
    for (const auto& [words, complaint] :
         {ROW{{}, "name a command; see tool --help"}, ROW{{"group"}, "name a command; see tool group --help"},
          ROW{{"grup"}, "there is no command 'grup' (did you mean 'group'?); see tool --help"},
          ROW{{"group", "puts"}, "there is no command 'group puts' (did you mean 'put'?); see tool group --help"},
          ROW{{"group", "xyzzy"}, "there is no command 'group xyzzy'; see tool group --help"},
          ROW{{"group", "put"}, "NAME is required; see tool group put --help"},
          ROW{{"group", "take", "a", "b"}, "the argument 'b' is one too many; see tool group take --help"},
          ROW{{"group", "take", "-"}, ""},
          // Only an option of the command, or of one above it, can be meant.
          ROW{{"group", "put", "x", "--limt", "1"},
              "there is no option '--limt' (did you mean '--limit'?); see tool group put --help"},
          ROW{{"group", "put", "x", "--quik"},
              "there is no option '--quik' (did you mean '--quick'?); see tool group put --help"},
          ROW{{"group", "take", "--limt=1"},
              "there is no option '--limt'; put -- before an argument that begins with \"-\"; see tool group take "
              "--help"},
          ROW{{"--limt", "group"}, "there is no option '--limt'; see tool group --help"},
          // An option of the command has no place before it, and none behind "--".
          ROW{{"--limit", "1", "group", "put", "x"},
              "'--limit' goes after the command: tool group put --limit; see tool group put --help"},
          ROW{{"--limit=1", "group", "put", "x"},
              "'--limit' goes after the command: tool group put --limit; see tool group put --help"},
          ROW{{"group", "-z", "take"}, "'-z' goes after the command: tool group take -z; see tool group take --help"},
          ROW{{"--dir", "put", "--limit", "1", "group", "put", "x"},
              "'--limit' goes after the command: tool group put --limit; see tool group put --help"},
          ROW{{"--dir", "--limit", "group", "put", "x", "--limt"},
              "there is no option '--limt' (did you mean '--limit'?); see tool group put --help"},
          ROW{{"--limit", "1", "group", "take"},
              "group take takes no '--limit'; it is an option of group put; see tool group take --help"},
          ROW{{"--limit", "1"}, "name a command; '--limit' is an option of group put; see tool --help"},
          ROW{{"group", "take", "--", "a", "--quick"},
              "'--quick' stands behind \"--\", so it is an argument, and there is one too many; put options before "
              "\"--\"; see tool group take --help"},
          ROW{{"group", "take", "--quick", "--", "a", "--quick"},
              "'--quick' stands behind \"--\", so it is an argument, and there is one too many; put options before "
              "\"--\"; see tool group take --help"},
          ROW{{"group", "take", "-z", "--", "a", "-z"},
              "'-z' stands behind \"--\", so it is an argument, and there is one too many; put options before \"--\"; "
              "see tool group take --help"},
          ROW{{"--dir", "--limt", "group", "take", "--", "a", "--limt"},
              "'--limt' stands behind \"--\", so it is an argument, and there is one too many; put options before "
              "\"--\"; see tool group take --help"},
          ROW{{"group", "take", "--", "a", "--limt=1"},
              "'--limt' stands behind \"--\", so it is an argument, and there is one too many; put options before "
              "\"--\"; see tool group take --help"},
          ROW{{"group", "take", "--limt", "--", "a", "--limt"},
              "there is no option '--limt'; put -- before an argument that begins with \"-\"; see tool group take "
              "--help"},
          ROW{{"group", "put", "x", "--dry"}, "--dry requires --limit; see tool group put --help"}})
        EXPECT_EQ(parse(words), complaint) << testing::PrintToString(words);
    for (const auto& words : std::vector<std::vector<const char*>>{{"group", "put", "x", "--kind", "c"},
                                                                   {"group", "put", "x", "--kind", "A"},
                                                                   {"group", "put", "x", "--limit", "-1"},
                                                                   {"group", "put", "x", "--limit", "many"},
                                                                   {"group", "put", "x", "--limit"}})
        EXPECT_NE(parse(words), "") << testing::PrintToString(words);
}

TEST_F(PARSING, nul_flag_is_the_tool_s)
{
    ASSERT_EQ(parse({"group", "take"}), "");
    EXPECT_FALSE(tool.options.nul_terminated);
    ASSERT_EQ(parse({"group", "take", "-z"}), "");
    EXPECT_TRUE(tool.options.nul_terminated);
}

TEST_F(PARSING, commands_and_options_are_listed_and_named)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : all_commands(*app))
        names.push_back(spoken_name(command));
    EXPECT_THAT(names, ElementsAre("tool", "tool group", "tool group put", "tool group take"));

    CLI::App* const put = all_commands(*app)[2];
    EXPECT_EQ(arguments_of(put).size(), 2U);
    std::vector<std::string> options;
    for (const CLI::Option* const option : options_of(put))
    {
        for (const std::string& spelling : names_of(option))
            options.push_back(spelling);
    }
    EXPECT_THAT(options, ElementsAre("--help", "-h", "--limit", "--text", "--kind", "--dry"));
    EXPECT_THAT(names_of(app->get_option("--dir")), ElementsAre("--dir", "-d"));

    EXPECT_EQ(named_command(app.get()), app.get());
    ASSERT_EQ(parse({"group", "put", "x"}), "");
    EXPECT_EQ(named_command(app.get()), put);
}

// --- Secrets that were typed ---

std::string told(const std::string& message, const std::vector<const char*>& words)
{
    SECRETS secrets;
    const std::string hidden =
        without_typed_secrets(message, static_cast<int>(words.size()), words.data(), {"--dry-run", "--wait"}, secrets);
    std::string text;
    TEXT_PARTS parts(hidden);
    for (TEXT_PART part{}; parts.next(part);)
        text += part.hidden ? "*" : std::string(part.text);
    return text;
}

TEST(TYPED_SECRETS, are_hidden_behind_their_names)
{
    EXPECT_EQ(told("no 'api_token=hush-hush'", {"tool", "get", "api_token=hush-hush"}), "no 'api_token=*'");
    EXPECT_EQ(told("no 'api=hush-hush'", {"tool", "get", "api=hush-hush"}), "no 'api=hush-hush'");
    // The first word is the program's.
    EXPECT_EQ(told("no 'api_token=hush-hush'", {"api_token=hush-hush"}), "no 'api_token=hush-hush'");
}

TEST(TYPED_SECRETS, are_hidden_behind_a_preference_that_is_to_be_set)
{
    struct ROW
    {
        std::vector<const char*> words;
        bool hidden;
    };
    for (const auto& [words, hidden] : {ROW{{"tool", "prefs", "set", "CLOUD_TOKEN", "hush-hush"}, true},
                                        ROW{{"tool", "prefs", "set", "cloud_token", "--dry-run", "hush-hush"}, true},
                                        ROW{{"tool", "prefs", "set", "CLOUD_TOKEN", "x", "hush-hush"}, true},
                                        ROW{{"tool", "prefs", "set", "CLOUD_SERVER", "hush-hush"}, false},
                                        ROW{{"tool", "prefs", "get", "CLOUD_TOKEN", "hush-hush"}, false},
                                        ROW{{"tool", "CLOUD_TOKEN", "set", "hush-hush"}, false},
                                        ROW{{"tool", "prefs", "set", "hush-hush", "CLOUD_TOKEN"}, false}})
        EXPECT_EQ(told("it is 'hush-hush'", words), hidden ? "it is '*'" : "it is 'hush-hush'")
            << testing::PrintToString(words);
    EXPECT_EQ(told("on", {"tool", "set", "CLOUD_TOKEN", "on"}), "on"); // too plain to be a secret
}

TEST(TYPED_SECRETS, are_hidden_that_look_like_options)
{
    struct ROW
    {
        const char* word;
        const char* message;
        const char* hidden;
    };
    for (const auto& [word, message, hidden] : {ROW{"--hush", "no '--hush'", "no '*'"},
                                                {"--hush=hush", "no '--hush'", "no '*'"},
                                                {"--h", "no '--h'", "no '*'"},
                                                {"-hush", "no '-hush'", "no '*'"},
                                                {"--dry-run", "no '--dry-run'", "no '--dry-run'"},
                                                {"--dryrun", "no '--dryrun'", "no '--dryrun'"},
                                                {"--dryrum", "no '--dryrum'", "no '*'"},
                                                {"--wait=hush", "no '--wait'", "no '--wait'"}})
        EXPECT_EQ(told(message, {"tool", "set", "CLOUD_TOKEN", word}), hidden) << word;
}

TEST(TYPED_SECRETS, are_hidden_as_the_default_of_a_secret_name)
{
    struct ROW
    {
        std::vector<const char*> words;
        bool hidden;
    };
    for (const auto& [words, hidden] : {ROW{{"tool", "get", "api_token", "--default", "hush-hush"}, true},
                                        ROW{{"tool", "get", "--default", "hush-hush", "api_token"}, true},
                                        ROW{{"tool", "get", "--default=hush-hush", "api_token"}, true},
                                        ROW{{"tool", "get", "fanout", "--default", "hush-hush"}, false},
                                        ROW{{"tool", "get", "api_token", "--type", "hush-hush"}, false}})
        EXPECT_EQ(told("it is 'hush-hush'", words), hidden ? "it is '*'" : "it is 'hush-hush'")
            << testing::PrintToString(words);
}
}
