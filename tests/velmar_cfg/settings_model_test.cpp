// What the tool's model of the settings answers, beside what a store answers that was filled from the same sources:
// over generated stacks of layers and over real files.
#include "tools/velmar-cfg/settings/settings.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <random>
#include <set>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/failing_files.h"
#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

using namespace zon_cfg;

namespace
{
struct STORED
{
    std::string value;
    bool external;
};

// What the store holds, by name as first spelt. No lookup is made: it would leave records.
std::map<std::string, STORED> stored_variables()
{
    std::map<std::string, STORED> variables;
    const STORE_LOCK lock;
    for (const auto& [name, record] : *cfg_ini_file.load())
        variables[name] = {record->value, record->external};
    return variables;
}

// Fails the test and names the variable where the readers answer otherwise.
void expect_same_readings(const std::string& name, std::string_view value)
{
    const TYPED_READINGS readings = read_typed(value);
    ASSERT_EQ(readings.boolean, cfg_get_value_as<bool>(name)) << name;
    ASSERT_EQ(readings.signed_integer, cfg_get_value_as<int>(name)) << name;
    bool found = false;
    const unsigned int number = cfg_ini_read_uint(name, &found);
    ASSERT_EQ(readings.unsigned_integer, found ? std::optional(number) : std::nullopt) << name;
    const std::optional<double> floating = cfg_get_value_as<double>(name);
    ASSERT_EQ(readings.floating.has_value(), floating.has_value()) << name;
    if (floating)
    {
        // The same bits but for the kinds of not-a-number.
        ASSERT_TRUE(std::isnan(*floating) ? std::isnan(*readings.floating) : *floating == *readings.floating) << name;
        ASSERT_EQ(std::signbit(*floating), std::signbit(*readings.floating)) << name;
    }
}

// Compares the settings with the store as it is.
void expect_same_as_store(const SETTINGS& settings)
{
    const std::map<std::string, STORED> stored = stored_variables();
    ASSERT_EQ(settings.variables().size(), stored.size());
    const std::vector<std::uint32_t> order = settings.order_by_name();
    ASSERT_EQ(order.size(), stored.size());
    auto next = order.begin();
    for (const auto& [name, expected] : stored) // both in byte order
    {
        const VARIABLE& variable = settings.variables()[*next++];
        ASSERT_EQ(settings.name_of(variable), name);
        ASSERT_EQ(settings.find(name), &variable) << name;
        ASSERT_EQ(settings.value_of(variable), expected.value) << name;
        ASSERT_EQ(variable.layers.mark_external(), expected.external) << name;
        ASSERT_EQ(settings.value_of(variable), cfg_get_value(name)) << name;
        ASSERT_EQ(variable.layers.mark_external(), cfg_ini_is_external(name)) << name;
        expect_same_readings(name, expected.value);
    }
}

void expect_same_alone(const SETTINGS& settings)
{
    for (const VARIABLE& variable : settings.variables())
    {
        const std::string name(settings.name_of(variable));
        const SETTINGS alone = SETTINGS::of_one_variable(settings.layers(), name);
        ASSERT_EQ(alone.variables().size(), 1U) << name;
        const VARIABLE* const found = alone.find(name);
        ASSERT_NE(found, nullptr) << name;
        ASSERT_EQ(alone.value_of(*found), settings.value_of(variable)) << name;
        ASSERT_EQ(alone.name_of(*found), name);
        ASSERT_EQ(found->layers, variable.layers) << name;
        ASSERT_EQ(alone.location_of(*found).position, settings.location_of(variable).position) << name;
        ASSERT_EQ(alone.assignments_to(*found).size(), settings.assignments_to(variable).size()) << name;
    }
    ASSERT_TRUE(SETTINGS::of_one_variable(settings.layers(), "set_by_none").variables().empty());
}

class SETTINGS_MODEL : public ISOLATED_TEST
{
protected:
    ~SETTINGS_MODEL() override
    {
        cfg_close_ini_file();
    }

    // A stack of layers in files and environment, one of many kinds of each.
    SETTINGS_SCOPE make_stack(SETTINGS_GENERATOR& generate)
    {
        const auto line = [&generate] { return generate.hostile_line(); };
        const auto write_or_remove = [&](const std::string& path)
        {
            std::filesystem::remove_all(path);
            if (const std::size_t kind = generate.below(12); kind > 1)
                write_file(path, generate.file(line));
            else if (kind == 1)
                std::filesystem::create_directories(path); // opens, and cannot be read
        };
        write_or_remove("velmar.ini");
        write_or_remove("project/velmar.ini");
        write_or_remove("appended.ini");
        write_or_remove("regtest.ini");
        write_or_remove("project/regtest.ini");
        environment.set("APPENDED_VELMAR_INI", generate.pick({"", "appended.ini", "appended.ini", "missing.ini"}));
        environment.set("VELMAR_INI_VARS", generate.below(3) > 0 ? generate.inline_text(line) : "");
        environment.set("VELMAR_INI_DISABLED", generate.pick({"", "", "", "1", "true"}));
        return {generate.below(2) > 0 ? "project" : "", generate.below(2) > 0};
    }

    static void fill_store(const SETTINGS_SCOPE& scope)
    {
        if (!scope.project.empty())
            cfg_read_project_ini_file(scope.project.c_str(), scope.regtest);
        else
        {
            cfg_read_ini_file();
            if (const std::string path = scope.regtest ? cfg_get_default_ini_file(true) : ""; !path.empty())
                cfg_read_regtest_ini_file(path);
        }
    }

    // A store of that layer alone.
    void fill_store(const LAYER& layer)
    {
        const std::string inline_text = std::getenv("VELMAR_INI_VARS");
        const std::string appended = std::getenv("APPENDED_VELMAR_INI");
        environment.set("APPENDED_VELMAR_INI", "");
        environment.set("VELMAR_INI_VARS", is_file(layer.kind) ? "" : inline_text);
        cfg_read_ini_file(is_file(layer.kind) ? layer.source->path : "");
        environment.set("VELMAR_INI_VARS", inline_text);
        environment.set("APPENDED_VELMAR_INI", appended);
    }

    // Each layer alone in a store tells which variables it sets, and the last of them is where the value comes from.
    void expect_origins(const SETTINGS& settings)
    {
        BY_VARIABLE_NAME<LAYER_SET> setting_layers;
        BY_VARIABLE_NAME<LAYER_KIND> last_layer;
        for (const LAYER& layer : settings.layers())
        {
            fill_store(layer);
            for (const auto& [name, stored] : stored_variables())
            {
                setting_layers[name].insert(layer.kind);
                last_layer[name] = layer.kind;
            }
        }
        ASSERT_EQ(setting_layers.size(), settings.variables().size());
        for (const VARIABLE& variable : settings.variables())
        {
            const std::string name(settings.name_of(variable));
            ASSERT_EQ(variable.layers, setting_layers.at(name)) << name;
            ASSERT_EQ(settings.location_of(variable).layer, last_layer.at(name)) << name;
        }
    }
};

TEST_F(SETTINGS_MODEL, answers_as_a_store_does_over_generated_stacks)
{
    constexpr unsigned int stacks = 10'000;
    constexpr unsigned int origins_each = 5; // stacks of which the layers are loaded one by one as well
    std::size_t variables = 0;
    std::size_t overridden = 0;
    std::size_t unreadable = 0;
    for (unsigned int seed = 1; seed <= stacks; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const SETTINGS_SCOPE scope = make_stack(generate);
        INPUT_FILES files;
        const SETTINGS settings(load_layers(scope, files));
        fill_store(scope);
        ASSERT_NO_FATAL_FAILURE(expect_same_as_store(settings));
        if (seed % origins_each == 0)
        {
            ASSERT_NO_FATAL_FAILURE(expect_origins(settings));
            ASSERT_NO_FATAL_FAILURE(expect_same_alone(settings));
        }
        variables += settings.variables().size();
        overridden += settings.assignments().size() - settings.variables().size();
        unreadable += static_cast<std::size_t>(std::ranges::count_if(settings.layers(), [](const LAYER& layer)
                                                                     { return !layer.source->problem.empty(); }));
    }
    // The stacks were worth comparing.
    EXPECT_GT(variables, 5U * stacks);
    EXPECT_GT(overridden, 1U * stacks);
    EXPECT_GT(unreadable, stacks / 20);
}

// --- Real files ---

bool looks_like_configuration(const std::filesystem::path& path)
{
    static const std::set<std::string> extensions = {".conf", ".ini",  ".cfg",  ".cnf",     ".desktop", ".service",
                                                     ".rc",   ".list", ".prof", ".pc",      ".toml",    ".properties",
                                                     ".txt",  ".defs", ".env",  ".network", ".cmake",   ".sh"};
    return extensions.contains(path.extension().string());
}

// Up to `most` configuration files below the directory, of up to 64 KiB, in an order of their own.
std::vector<std::string> real_files(const std::string& directory, std::size_t most)
{
    constexpr std::uintmax_t largest = 64 * 1024;
    std::vector<std::string> found;
    std::error_code error;
    using std::filesystem::directory_options;
    for (std::filesystem::recursive_directory_iterator
             entry(directory, directory_options::skip_permission_denied, error),
         end;
         !error && entry != end && found.size() < most; entry.increment(error))
    {
        std::error_code ignored;
        if (entry->is_regular_file(ignored) && looks_like_configuration(entry->path()) &&
            entry->file_size(ignored) <= largest)
            found.push_back(entry->path().string());
    }
    return found;
}

TEST_F(SETTINGS_MODEL, answers_as_a_store_does_over_real_files)
{
    std::vector<std::string> paths = {SAMPLES "/appended.ini", SAMPLES "/project/velmar.ini",
                                      SAMPLES "/project/regtest.ini", SAMPLES "/preferences/velmar2.ini"};
    for (const auto& [directory, most] :
         {std::pair("/etc", 400), std::pair("/usr/share", 400), std::pair("/usr/lib", 400)})
    {
        for (std::string& path : real_files(directory, static_cast<std::size_t>(most)))
            paths.push_back(std::move(path));
    }
    std::size_t variables = 0;
    for (const std::string& path : paths)
    {
        SCOPED_TRACE(path);
        INPUT_FILES files;
        SECRETS secrets;
        secrets.show_all();
        const SETTINGS settings(single_layer(path, files, secrets));
        cfg_read_ini_file(path);
        ASSERT_NO_FATAL_FAILURE(expect_same_as_store(settings));
        variables += settings.variables().size();
    }
    EXPECT_GT(variables, 10U); // the checked-in files alone have as many
}

// --- Single properties ---

TEST_F(SETTINGS_MODEL, survives_being_moved)
{
    write_file("velmar.ini", "n a m e = 1\nb=2\n");
    environment.set("VELMAR_INI_VARS", "c=3"); // short enough to be inside a string object
    INPUT_FILES files;
    auto settings = std::make_unique<SETTINGS>(load_layers({}, files));
    SETTINGS moved = std::move(*settings);
    settings.reset();
    files = {};
    ASSERT_EQ(moved.variables().size(), 3U);
    EXPECT_EQ(moved.value_of(*moved.find("NAME")), "1");
    EXPECT_EQ(moved.value_of(*moved.find("b")), "2");
    EXPECT_EQ(moved.value_of(*moved.find("c")), "3");
    EXPECT_EQ(location_as_text(moved.location_of(*moved.find("c"))), "VELMAR_INI_VARS:1");
}

TEST_F(SETTINGS_MODEL, knows_every_assignment_in_order)
{
    write_file("velmar.ini", "a=1\nb=2\nA=3\n");
    write_file("appended.ini", "a=4\n");
    environment.set("APPENDED_VELMAR_INI", "appended.ini");
    INPUT_FILES files;
    const SETTINGS settings(load_layers({}, files));
    std::vector<std::string> values;
    for (const ASSIGNMENT* const assignment : settings.assignments_to(*settings.find("a")))
        values.push_back(location_as_text(settings.location_of(*assignment)) + " " + std::string(assignment->value));
    const std::string main = temporary.path("cwd/velmar.ini");
    EXPECT_THAT(values, testing::ElementsAre(main + ":1 1", main + ":3 3", "appended.ini:1 4"));
    EXPECT_EQ(settings.name_of(*settings.find("A")), "a");
}

TEST_F(SETTINGS_MODEL, finds_many_names)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "name_" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    write_file("velmar.ini", text);
    INPUT_FILES files;
    const SETTINGS settings(load_layers({}, files));
    ASSERT_EQ(settings.variables().size(), 5000U);
    for (int i = 0; i < 5000; ++i)
    {
        const VARIABLE* const variable = settings.find("NAME_" + std::to_string(i));
        ASSERT_NE(variable, nullptr) << i;
        ASSERT_EQ(settings.value_of(*variable), std::to_string(i));
    }
    EXPECT_EQ(settings.find("name_5000"), nullptr);
}

TEST_F(SETTINGS_MODEL, orders_names_that_begin_alike_by_their_bytes)
{
    // More than a group that is compared whole, at every length about eight, sixteen and twenty-four equal bytes.
    std::set<std::string> expected = {""};
    for (std::size_t equal = 0; equal < 26; ++equal)
    {
        for (const char* const end :
             {"", "A", "b", "\x01", "\x7f", "\xc3\xa9", "\xff", "bb", "bbbbbbbb", "bbbbbbbbb", "_"})
            expected.insert(std::string(equal, 'x') + end);
    }
    std::vector<std::string> shuffled(expected.begin(), expected.end());
    std::ranges::shuffle(shuffled, std::minstd_rand(20));
    std::string text;
    for (const std::string& name : shuffled)
        text += name + "=12\n";
    write_file("velmar.ini", text);
    INPUT_FILES files;
    const SETTINGS settings(load_layers({}, files));
    std::vector<std::string> names;
    for (const std::uint32_t variable : settings.order_by_name())
        names.emplace_back(settings.name_of(settings.variables()[variable]));
    EXPECT_THAT(names, testing::ElementsAreArray(expected));
}

TEST_F(SETTINGS_MODEL, is_empty_without_layers)
{
    const SETTINGS settings{LAYERS()};
    EXPECT_TRUE(settings.variables().empty());
    EXPECT_EQ(settings.find(""), nullptr);
    EXPECT_EQ(settings.find("a"), nullptr);
    EXPECT_TRUE(settings.order_by_name().empty());
}

TEST_F(SETTINGS_MODEL, shares_a_file_that_two_layers_name)
{
    write_file("velmar.ini", "a=1\n");
    environment.set("APPENDED_VELMAR_INI", temporary.path("cwd/velmar.ini"));
    INPUT_FILES files;
    const LAYERS layers = load_layers({}, files);
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(layers[0].source, layers[1].source);
}

// The library takes the whole lines before an error; what is left of the last one is none.
TEST_F(SETTINGS_MODEL, goes_on_with_the_whole_lines_before_a_read_error)
{
    const auto file =
        std::make_shared<const INPUT_FILE>(INPUT_FILE{"bad.ini", "aa=1\nbb=2\ncc=3", "Input/output error"});
    const LAYERS layers = {{LAYER_KIND::MAIN_FILE, file}};
    const SETTINGS settings(layers);
    EXPECT_EQ(settings.variables().size(), 2U);
}

// --- Files that come and go ---

TEST_F(SETTINGS_MODEL, finds_what_is_there_once_a_file_is_gone)
{
    write_file("velmar.ini", "a=found\n");
    write_file("named/velmar.ini", "a=moved\n");
    environment.set("VELMAR_INI", "named");
    INPUT_FILES files;
    const FILE_FAULT fault(FILE_CALL::OPEN, 1, [] { std::filesystem::remove("velmar.ini"); });
    const SETTINGS settings(load_layers({}, files));
    ASSERT_TRUE(fault.was_reached());
    EXPECT_EQ(settings.value_of(*settings.find("a")), "moved");
    EXPECT_TRUE(files.problems().empty());
}

TEST_F(SETTINGS_MODEL, waits_for_a_file_that_is_being_replaced)
{
    write_file("appended.ini", "a=1\n");
    environment.set("APPENDED_VELMAR_INI", "appended.ini");
    INPUT_FILES files;
    const FILE_FAULT fault(FILE_CALL::OPEN, 1, std::vector<int>(20, ENOENT));
    const SETTINGS settings(load_layers({}, files));
    ASSERT_TRUE(fault.was_reached());
    EXPECT_EQ(settings.value_of(*settings.find("a")), "1");
    EXPECT_TRUE(files.problems().empty());
}

TEST_F(SETTINGS_MODEL, does_not_search_for_ever)
{
    write_file("velmar.ini", "a=1\n");
    INPUT_FILES files;
    const FILE_FAULT fault(FILE_CALL::OPEN, 1, std::vector<int>(100'000, ENOENT));
    const LAYERS layers = load_layers({}, files);
    ASSERT_EQ(layers.size(), 1U);
    EXPECT_EQ(layers.front().source->bytes, "");
    EXPECT_EQ(files.problems().size(), 1U);
}
}
