// The layers of the settings, which files they are made of, and the walks over their lines and items.
#include "tools/velmar-cfg/settings/layers.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/hidden_text.h"

using namespace std::string_literals;

namespace
{
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr LAYER_KIND main_file = LAYER_KIND::MAIN_FILE;
constexpr LAYER_KIND appended = LAYER_KIND::APPENDED_FILE;
constexpr LAYER_KIND inline_text = LAYER_KIND::INLINE_TEXT;
constexpr LAYER_KIND regtest = LAYER_KIND::REGTEST_FILE;
constexpr LAYER_KIND program = LAYER_KIND::PROGRAM;
constexpr LAYER_KIND what_if = LAYER_KIND::WHAT_IF;
constexpr LAYER_KIND unknown = LAYER_KIND::UNKNOWN;

LAYER layer_with(LAYER_KIND kind, const std::string& text)
{
    const char* const path = is_file(kind) ? layer_code(kind) : inline_source;
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

// --- Kinds ---

TEST(LAYER_KINDS, have_codes_and_titles)
{
    struct ROW
    {
        LAYER_KIND kind;
        const char* code;
        const char* title;
        bool is_file;
    };
    const ROW rows[] = {
        {main_file, "main", "main settings file", true}, {appended, "appended", "file of APPENDED_VELMAR_INI", true},
        {inline_text, "inline", "environment", false},   {regtest, "regtest", "regression-test file", true},
        {program, "program", "program", false},          {what_if, "what-if", "what if", false},
        {unknown, "unknown", "unknown source", false},
    };
    std::vector<LAYER_KIND> in_order;
    for (const ROW& row : rows)
    {
        EXPECT_STREQ(layer_code(row.kind), row.code);
        EXPECT_STREQ(layer_title(row.kind), row.title);
        EXPECT_EQ(layer_of_code(row.code), row.kind);
        EXPECT_EQ(is_file(row.kind), row.is_file) << row.code;
        in_order.push_back(row.kind);
    }
    EXPECT_TRUE(std::ranges::equal(all_layer_kinds, in_order));
    for (const char* const other : {"", "Main", "mai", "mains", "preferences", "environment"})
        EXPECT_EQ(layer_of_code(other), std::nullopt) << other;
}

// A variable is external by the main file and by the environment, whatever else assigns to it.
TEST(LAYER_KINDS, that_mark_a_variable_external)
{
    for (unsigned int bits = 0; bits < 1U << std::size(all_layer_kinds); ++bits)
    {
        LAYER_SET set;
        for (const LAYER_KIND kind : all_layer_kinds)
        {
            if ((bits >> static_cast<unsigned int>(kind) & 1U) != 0)
                set.insert(kind);
        }
        for (const LAYER_KIND kind : all_layer_kinds)
            EXPECT_EQ(set.contains(kind), (bits >> static_cast<unsigned int>(kind) & 1U) != 0) << bits;
        EXPECT_EQ(set.mark_external(), set.contains(main_file) || set.contains(inline_text)) << bits;
        EXPECT_EQ(set == LAYER_SET(), bits == 0);
    }
}

TEST(LOCATIONS, are_fields_of_a_line_or_of_an_item)
{
    const auto json_of = [](const LOCATION* location)
    {
        TEXT_SINK sink;
        JSON_WRITER out(sink);
        out.begin_object();
        write_location_fields(out, location);
        out.end_object();
        out.finish();
        return nlohmann::ordered_json::parse(sink.text).dump();
    };
    const LOCATION line{appended, "a.ini", 12};
    const LOCATION item{inline_text, inline_source, 2};
    const LOCATION nowhere{unknown, "", 0};
    EXPECT_EQ(json_of(&line), R"({"layer":"appended","file":"a.ini","line":12,"item":null})");
    EXPECT_EQ(json_of(&item), R"({"layer":"inline","file":null,"line":null,"item":2})");
    EXPECT_EQ(json_of(&nowhere), R"({"layer":"unknown","file":null,"line":null,"item":null})");
    EXPECT_EQ(json_of(nullptr), R"({"layer":null,"file":null,"line":null,"item":null})");
    EXPECT_EQ(location_as_text(line), "a.ini:12");
    EXPECT_EQ(location_as_text(item), "VELMAR_INI_VARS:2");
    EXPECT_EQ(location_as_text(nowhere), "unknown");
    EXPECT_EQ(location_as_text({program, "the program", 0}), "the program");
    EXPECT_EQ(location_as_text({program, "a text", 3}), "a text:3");
}

// --- Statements ---

const char* word_of(OUTCOME outcome)
{
    switch (outcome)
    {
    case OUTCOME::STORED:
        return "";
    case OUTCOME::TOO_SHORT:
        return "too short";
    case OUTCOME::NO_EQUALS_SIGN:
        return "no equals sign";
    case OUTCOME::EMPTY_NAME:
        return "empty name";
    case OUTCOME::EMPTY_VALUE:
        return "empty value";
    }
    return "?";
}

// "POSITION name=value" of a statement that is stored, "POSITION too short" of one that is not.
std::string described(const STATEMENT& statement)
{
    const std::string position = std::to_string(statement.position) + " ";
    return statement.outcome == OUTCOME::STORED
               ? position + std::string(statement.name) + "=" + std::string(statement.value)
               : position + word_of(statement.outcome);
}

struct TEXT_OF_LAYER
{
    LAYER_KIND kind;
    std::string text;
    std::vector<std::string> statements;
};

TEST(STATEMENT_WALK, meets_every_line_and_every_item)
{
    const TEXT_OF_LAYER rows[] = {
        {main_file, "", {}},
        {main_file, "\n", {"1 too short"}},
        {main_file, "a=1", {"1 a=1"}},
        {main_file, "a=1\n", {"1 a=1"}},
        {main_file,
         "a=1\n\n b = 2 # c\r\nab\nabc\n",
         {"1 a=1", "2 too short", "3 b=2", "4 too short", "5 no equals sign"}},
        {main_file, "=5\n = 5\na=\na =\n", {"1 =5", "2 =5", "3 too short", "4 a="}},
        {main_file, "a b\tc=x y\n", {"1 abc=x y"}},
        {main_file, "a=1;b=2\n", {"1 a=1"}},
        {appended, "# a=1\n//a=1\na=b//c\n", {"1 no equals sign", "2 no equals sign", "3 a=b//c"}},
        {regtest, "a=\"x;y\" ;z\n", {"1 a=\"x;y\""}},
        {inline_text, "", {}},
        {inline_text, "a=1", {"1 a=1"}},
        {inline_text, " a = 1 ;b", {"1 a=1", "2 no equals sign"}},
        {inline_text, "=1;a=;;b c=2", {"1 empty name", "2 empty value", "3 no equals sign", "4 b c=2"}},
        {inline_text, "a=1:b=2;c", {"1 a=1", "2 b=2;c"}},
        {inline_text, "a=1\nb=2", {"1 a=1\nb=2"}},
        {inline_text, ";a=1", {"1 no equals sign", "2 a=1"}},
    };
    for (const TEXT_OF_LAYER& row : rows)
    {
        const LAYERS layers = {layer_with(row.kind, row.text)};
        STATEMENTS walk(layers);
        STATEMENT statement{};
        std::vector<std::string> statements;
        while (walk.next(statement))
        {
            statements.push_back(described(statement));
            // The text is a part of the layer's.
            EXPECT_GE(statement.text.data(), layers[0].source->bytes.data()) << row.text;
            EXPECT_LE(statement.text.data() + statement.text.size(),
                      layers[0].source->bytes.data() + layers[0].source->bytes.size());
        }
        EXPECT_EQ(statements, row.statements) << layer_code(row.kind) << " '" << row.text << "'";
    }
}

TEST(STATEMENT_WALK, goes_through_the_layers_in_their_order)
{
    const LAYERS layers = {layer_with(main_file, "a=1\nb=2"), layer_with(appended, ""),
                           layer_with(inline_text, "c=3;d=4"), layer_with(inline_text, "e=5"),
                           layer_with(regtest, "\nf=6\n")};
    STATEMENTS walk(layers);
    STATEMENT statement{};
    std::vector<std::string> places;
    while (walk.next(statement))
        places.push_back(std::to_string(statement.layer) + " " + location_as_text(location_of(layers, statement)) +
                         " '" + std::string(statement.text) + "'");
    EXPECT_THAT(places, ElementsAre("0 main:1 'a=1'", "0 main:2 'b=2'", "2 VELMAR_INI_VARS:1 'c=3'",
                                    "2 VELMAR_INI_VARS:2 'd=4'", "3 VELMAR_INI_VARS:1 'e=5'", "4 regtest:1 ''",
                                    "4 regtest:2 'f=6'"));
    EXPECT_FALSE(walk.next(statement));
    EXPECT_EQ(location_of(layers, {0, 2, "b=2", OUTCOME::STORED, "b", "2"}).layer, main_file);
}

TEST(STATEMENT_WALK, takes_only_whole_lines_of_a_file_that_could_not_be_read)
{
    const LAYERS layers = {
        {main_file, std::make_shared<const INPUT_FILE>(INPUT_FILE{"m", "a=1\nb=2", "Input/output error"})}};
    STATEMENTS walk(layers);
    STATEMENT statement{};
    ASSERT_TRUE(walk.next(statement));
    EXPECT_EQ(statement.text, "a=1");
    EXPECT_FALSE(walk.next(statement));
}

struct ONE_NAME
{
    const char* what;
    std::string name;
    std::string lines;
    std::vector<std::size_t> met; // numbers of the lines that a walk for the name meets
};

// A walk for one name meets every line that may assign to it, and passes over most others.
TEST(STATEMENT_WALK, for_one_name_passes_over_lines_that_begin_otherwise)
{
    const ONE_NAME rows[] = {
        {"other first letters", "fan", "b=1\nfan=2\n#fan=3\ngan=4\n", {2}},
        {"the same first letter", "fan", "fun=1\nf\nfan=2", {1, 2, 3}},
        {"either letter case of the line", "fan", "FAN=1\nFan=2\n", {1, 2}},
        {"either letter case of the name", "FAN", "fan=1\nFan=2\n", {1, 2}},
        {"the letters about A and Z", "@x", "`x=1\n@x=2\n", {2}},
        {"a bracket is no letter", "[x", "{x=1\n[x=2\n", {2}},
        {"white space before the name", "fan", " fan=1\n\tfan=2\n\v\f\rfan=3\n", {1, 2, 3}},
        {"blank lines", "fan", "\n \n\t\n", {}},
        {"bytes that a locale may take for white space",
         "fan",
         "\xa0"
         "fan=1\n\x85"
         "fan=2\n\x7f"
         "fan=3\n",
         {1, 2}},
        {"a name of such a byte", "\xe9", "e=1\n\xe9=2\n", {2}},
        {"the empty name", "", "=5\n =6\na=7\n# =8\n", {1, 2}},
        {"a name that a zero byte ends", "\0x"s, "=5\n\0y=6\n x=7\n"s, {1, 2}},
        {"a digit", "1x", "1x=1\n2x=2\n", {1}},
    };
    for (const ONE_NAME& row : rows)
    {
        const LAYERS layers = {layer_with(main_file, row.lines)};
        STATEMENTS walk(layers);
        STATEMENT statement{};
        std::vector<std::size_t> met;
        while (walk.next_for(row.name, statement))
            met.push_back(statement.position);
        EXPECT_EQ(met, row.met) << row.what;
    }
    // Items are not told by their first letters.
    const LAYERS layers = {layer_with(main_file, "b=1"), layer_with(inline_text, "b=1;fan=2"),
                           layer_with(regtest, "x=1\nfan=3")};
    STATEMENTS walk(layers);
    STATEMENT statement{};
    std::vector<std::string> met;
    while (walk.next_for("fan", statement))
        met.push_back(std::to_string(statement.layer) + " " + described(statement));
    EXPECT_THAT(met, ElementsAre("1 1 b=1", "1 2 fan=2", "2 2 fan=3"));
}

// --- Files ---

class LOADED_LAYERS : public ISOLATED_TEST
{
protected:
    LOADED_LAYERS()
    {
        environment.set("HOME", temporary.path("home"));
    }

    // "code path" of each layer; the temporary directory as "T".
    std::vector<std::string> layers_of(const SETTINGS_SCOPE& scope)
    {
        files = {};
        std::vector<std::string> texts;
        for (const LAYER& layer : load_layers(scope, files))
        {
            std::string path = layer.source->path;
            if (path.starts_with(temporary.path()))
                path.replace(0, temporary.path().size(), "T");
            texts.push_back(std::string(layer_code(layer.kind)) + " " + path);
        }
        return texts;
    }

    INPUT_FILES files;
};

TEST_F(LOADED_LAYERS, are_those_that_the_library_would_read)
{
    EXPECT_THAT(layers_of({}), IsEmpty());
    write_file("velmar.ini", "a=1\n");
    write_file("cpu/velmar.ini", "a=2\n");
    write_file("regtest.ini", "a=3\n");
    write_file("more.ini", "a=4\n");
    EXPECT_THAT(layers_of({}), ElementsAre("main T/cwd/velmar.ini"));
    EXPECT_THAT(layers_of({"cpu", false}), ElementsAre("main cpu/velmar.ini"));
    EXPECT_THAT(layers_of({"gpu", false}), ElementsAre("main T/cwd/velmar.ini")); // which has none of its own
    EXPECT_THAT(layers_of({"cpu", true}), ElementsAre("main cpu/velmar.ini", "regtest T/cwd/regtest.ini"));
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    environment.set("VELMAR_INI_VARS", "a=5");
    EXPECT_THAT(layers_of({"cpu", true}), ElementsAre("main cpu/velmar.ini", "appended more.ini",
                                                      "inline VELMAR_INI_VARS", "regtest T/cwd/regtest.ini"));
    environment.set("APPENDED_VELMAR_INI", "missing.ini");
    environment.set("VELMAR_INI_VARS", "");
    EXPECT_THAT(layers_of({}), ElementsAre("main T/cwd/velmar.ini"));
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_THAT(layers_of({"", true}), IsEmpty());
    EXPECT_THAT(layers_of({"cpu", true}), ElementsAre("main cpu/velmar.ini"));
}

TEST_F(LOADED_LAYERS, have_their_secrets_hidden_and_keep_the_original)
{
    write_file("velmar.ini", "token=abc\n");
    write_file("more.ini", "a=1\n");
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    environment.set("VELMAR_INI_VARS", "a=1;password=xyz");
    const LAYERS layers = load_layers({}, files);
    ASSERT_EQ(layers.size(), 3U);
    EXPECT_EQ(with_hidden_parts_named(layers[0].source->bytes), "token=\\(masked)\n");
    ASSERT_NE(layers[0].original, nullptr);
    EXPECT_EQ(layers[0].original->bytes, "token=abc\n");
    EXPECT_EQ(layers[0].source->path, layers[0].original->path);
    EXPECT_EQ(layers[1].original, nullptr);
    EXPECT_EQ(layers[1].source->bytes, "a=1\n");
    EXPECT_EQ(with_hidden_parts_named(layers[2].source->bytes), "a=1;password=\\(masked)");
    EXPECT_EQ(layers[2].original->bytes, "a=1;password=xyz");
    SETTINGS_SCOPE showing;
    showing.secrets->show_all();
    for (const LAYER& layer : load_layers(showing, files))
        EXPECT_EQ(layer.original, nullptr) << layer_code(layer.kind);
}

TEST_F(LOADED_LAYERS, keep_the_problem_of_a_file_that_cannot_be_read)
{
    std::filesystem::create_directory("velmar.ini");
    const LAYERS layers = load_layers({}, files);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_THAT(layers[0].source->problem, HasSubstr("is a directory"));
    EXPECT_THAT(files.problems(), ElementsAre(HasSubstr("velmar.ini: is a directory")));
}

// The marks stand in the whole lines before the error; what it says stays with them.
TEST_F(LOADED_LAYERS, keep_the_problem_of_a_file_with_secrets)
{
    write_file("velmar.ini", "token=abc\nb=1\nc=2\n");
    const FILE_FAULT fault(FILE_CALL::READ, 2);
    const LAYERS layers = load_layers({}, files);
    ASSERT_TRUE(fault.was_reached());
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_THAT(layers[0].source->problem, HasSubstr("Input/output error"));
    EXPECT_EQ(layers[0].source->problem, layers[0].original->problem);
    EXPECT_EQ(with_hidden_parts_named(layers[0].source->whole_lines()), "token=\\(masked)\nb=1\nc=2\n");
}

// What stands in a place that comes first may be meant; what comes behind the file that is found is not asked for.
TEST_F(LOADED_LAYERS, tell_of_places_that_cannot_be_seen)
{
    const auto problems = [this](const SETTINGS_SCOPE& scope)
    {
        layers_of(scope);
        std::vector<std::string> places;
        for (const std::string& problem : files.problems())
        {
            std::string place = problem.substr(0, problem.find(": "));
            if (place.starts_with(temporary.path()))
                place.replace(0, temporary.path().size(), "T");
            places.push_back(place);
        }
        return places;
    };
    const auto dangle = [](const std::string& path)
    {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        ASSERT_EQ(symlink("nowhere", path.c_str()), 0);
    };
    dangle(temporary.path("cwd/velmar.ini"));
    dangle(temporary.path("home/velmar.ini"));
    write_file(temporary.path("set/velmar.ini"), "a=1\n");
    environment.set("VELMAR_INI", temporary.path("set"));
    EXPECT_THAT(problems({}), ElementsAre("T/cwd/velmar.ini"));
    environment.set("VELMAR_INI", "");
    EXPECT_THAT(problems({}), ElementsAre("T/cwd/velmar.ini", "T/home/velmar.ini"));
    environment.set("VELMAR_INI_DISABLED", "1");
    EXPECT_THAT(problems({}), IsEmpty());
    environment.set("VELMAR_INI_DISABLED", "");

    dangle(temporary.path("cwd/cpu/velmar.ini"));
    EXPECT_THAT(problems({"cpu", false}), ElementsAre("cpu/velmar.ini", "T/cwd/velmar.ini", "T/home/velmar.ini"));
    write_file("gpu/velmar.ini", "a=1\n");
    EXPECT_THAT(problems({"gpu", false}), IsEmpty());
    dangle(temporary.path("cwd/gpu/regtest.ini"));
    EXPECT_THAT(problems({"gpu", false}), IsEmpty());
    EXPECT_THAT(problems({"gpu", true}), ElementsAre("gpu/regtest.ini"));
    dangle(temporary.path("cwd/more.ini"));
    environment.set("APPENDED_VELMAR_INI", "more.ini");
    EXPECT_THAT(problems({"gpu", true}), ElementsAre("more.ini", "gpu/regtest.ini"));
}

TEST_F(LOADED_LAYERS, may_be_one_file_that_the_user_names)
{
    write_file("any.ini", "token=abc\na=1\n");
    SECRETS secrets;
    const LAYERS layers = single_layer("any.ini", files, secrets);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers[0].kind, main_file);
    EXPECT_EQ(layers[0].source->path, "any.ini");
    EXPECT_EQ(with_hidden_parts_named(layers[0].source->bytes), "token=\\(masked)\na=1\n");
    single_layer("missing.ini", files, secrets);
    EXPECT_THAT(files.problems(), ElementsAre(HasSubstr("missing.ini: No such file or directory")));
}
}
