// What differs between two snapshots, of what it cannot be told, and what is said to have made the difference.
#include "tools/velmar-cfg/documents/snapshot_differences.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <random>

#include "tests/velmar_cfg/snapshots.h"

namespace
{
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr LAYER_KIND main_file = LAYER_KIND::MAIN_FILE;
constexpr LAYER_KIND appended = LAYER_KIND::APPENDED_FILE;
constexpr LAYER_KIND inline_text = LAYER_KIND::INLINE_TEXT;
constexpr LAYER_KIND regtest = LAYER_KIND::REGTEST_FILE;

std::vector<std::string> undecided_in(const SNAPSHOT_DIFFERENCES& differences)
{
    std::vector<std::string> rows;
    for (const UNDECIDED_ROW& row : differences.undecided)
        rows.push_back(std::string(row.list) + " " + row.name);
    return rows;
}

// --- Variables ---

// One side's variable "v"; without layers there is none.
struct SIDE
{
    std::string value;
    std::initializer_list<LAYER_KIND> layers;
};

struct VARIABLE_CASE
{
    const char* what;
    SIDE a;
    SIDE b;
    const char* result; // "same", "unknown", the code of the layer that made the difference, or "no layer"
};

void add_variable(SNAPSHOT& snapshot, const SIDE& side)
{
    if (side.layers.size() > 0)
        snapshot.variables.add(variable_of("v", side.value, side.layers));
}

std::string result_of(const SNAPSHOT& a, const SNAPSHOT& b)
{
    const SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
    if (!differences.undecided.empty())
        return differences.variables.empty() ? "unknown" : "both lists";
    if (differences.variables.empty())
        return "same";
    const std::optional<LAYER_KIND> made_by = differences.variables.front().made_by;
    return made_by ? layer_code(*made_by) : "no layer";
}

TEST(VARIABLE_DIFFERENCES, have_the_layer_that_made_them)
{
    const VARIABLE_CASE rows[] = {
        {"the same line", {"1", {main_file}}, {"1", {main_file}}, "same"},
        {"the same value from elsewhere", {"1", {main_file}}, {"1", {main_file, inline_text}}, "same"},
        {"the same value, external from elsewhere", {"1", {main_file}}, {"1", {inline_text}}, "same"},
        {"the same value, external on neither side", {"1", {appended}}, {"1", {regtest}}, "same"},
        {"another value of the same layer", {"1", {main_file}}, {"2", {main_file}}, "main"},
        {"another letter case of the value", {"on", {main_file}}, {"ON", {main_file}}, "main"},
        {"the later layer of two, on the right", {"1", {main_file}}, {"2", {main_file, appended}}, "appended"},
        {"the later layer of two, on the left", {"1", {main_file, regtest}}, {"2", {main_file}}, "regtest"},
        {"appended is before inline", {"1", {appended}}, {"2", {inline_text}}, "inline"},
        {"inline is before regtest", {"1", {inline_text}}, {"2", {regtest}}, "regtest"},
        {"main is before appended", {"1", {appended}}, {"2", {main_file}}, "appended"},
        {"a layer that lost has no part in it", {"1", {inline_text, regtest}}, {"2", {main_file}}, "regtest"},
        {"only on the left", {"1", {appended}}, {"", {}}, "appended"},
        {"only on the right", {"", {}}, {"1", {main_file, inline_text}}, "inline"},
        {"empty is not absent", {"", {main_file}}, {"", {}}, "main"},
        {"the mark by the main file", {"1", {main_file, regtest}}, {"1", {regtest}}, "main"},
        {"the mark by the environment", {"1", {appended}}, {"1", {appended, inline_text}}, "inline"},
        {"the mark by both", {"1", {regtest}}, {"1", {main_file, inline_text, regtest}}, "inline"},
        {"the mark, not by a layer that sets none", {"1", {main_file}}, {"1", {regtest}}, "main"},
        {"hidden alike", {mark_under('a', '1'), {main_file}}, {mark_under('a', '1'), {main_file}}, "same"},
        {"hidden otherwise", {mark_under('a', '1'), {main_file}}, {mark_under('a', '2'), {inline_text}}, "inline"},
        {"hidden under another key",
         {mark_under('a', '1'), {main_file}},
         {mark_under('b', '1'), {main_file}},
         "unknown"},
        {"hidden under another key, with another mark",
         {mark_under('a', '1'), {main_file, regtest}},
         {mark_under('b', '1'), {regtest}},
         "main"},
        {"hidden on one side", {mark_under('a', '1'), {main_file}}, {"1", {main_file}}, "main"},
    };
    for (const VARIABLE_CASE& row : rows)
    {
        SNAPSHOT a;
        SNAPSHOT b;
        add_variable(a, row.a);
        add_variable(b, row.b);
        EXPECT_EQ(result_of(a, b), row.result) << row.what;
        EXPECT_EQ(result_of(b, a), row.result) << row.what << ", the other way round";
        EXPECT_EQ(compare_snapshots(a, b).none(),
                  row.result == std::string("same") || row.result == std::string("unknown"))
            << row.what;
    }
}

// Another release may read the same text otherwise.
TEST(VARIABLE_DIFFERENCES, of_readings_alone_have_no_layer)
{
    const auto with_bool = [](std::initializer_list<LAYER_KIND> layers, std::optional<bool> reading)
    {
        SNAPSHOT snapshot;
        SNAPSHOT_VARIABLE variable = variable_of("v", "yes", layers);
        variable.readings.boolean = reading;
        snapshot.variables.add(variable);
        return snapshot;
    };
    EXPECT_EQ(result_of(with_bool({main_file}, std::nullopt), with_bool({main_file}, true)), "no layer");
    EXPECT_EQ(result_of(with_bool({main_file}, false), with_bool({main_file}, true)), "no layer");
    EXPECT_EQ(result_of(with_bool({main_file}, true), with_bool({main_file}, true)), "same");
    EXPECT_EQ(result_of(with_bool({main_file}, true), with_bool({main_file, inline_text}, false)), "inline");
    EXPECT_EQ(result_of(with_bool({main_file}, true), with_bool({main_file, regtest}, false)), "no layer");
}

TEST(VARIABLE_DIFFERENCES, have_the_rows_of_both_sides_and_the_spelling_of_the_first)
{
    SNAPSHOT a;
    SNAPSHOT b;
    for (const auto& [name, value] : {std::pair("zeta", "1"), {"Fan", "2"}, {"both", "3"}, {"alpha", "4"}})
        a.variables.add(variable_of(name, value, {main_file}));
    for (const auto& [name, value] : {std::pair("FAN", "5"), {"BOTH", "3"}, {"beta", "6"}, {"Beta_2", "7"}})
        b.variables.add(variable_of(name, value, {main_file}));
    std::vector<std::string> found;
    for (const VARIABLE_DIFFERENCE& row : compare_snapshots(a, b).variables)
    {
        const auto value_of = [](const std::optional<SNAPSHOT_VARIABLE>& side)
        { return side ? std::string(side->name) + "=" + std::string(side->value) : "-"; };
        found.push_back(row.name + ": " + value_of(row.a) + " " + value_of(row.b));
        EXPECT_EQ(row.dependence, DEPENDENCE::KIND::UNKNOWN);
    }
    EXPECT_THAT(found, ElementsAre("Beta_2: - Beta_2=7", "Fan: Fan=2 FAN=5", "alpha: alpha=4 -", "beta: - beta=6",
                                   "zeta: zeta=1 -"));
}

// Snapshots with the same names in other orders, and with gaps: beside a plain comparison by name.
TEST(VARIABLE_DIFFERENCES, are_found_whatever_the_order_of_the_names)
{
    std::mt19937 random(20261122);
    const auto below = [&random](unsigned int bound) { return random() % bound; };
    std::size_t differences_seen = 0;
    for (int round = 0; round < 300; ++round)
    {
        const auto values = [&]
        {
            std::map<std::string, std::string> all;
            for (unsigned int i = 0; i < 40; ++i)
            {
                if (below(4) > 0)
                    all["name_" + std::to_string(i)] = std::to_string(below(3));
            }
            return all;
        };
        const auto snapshot_of = [&](const std::map<std::string, std::string>& all, bool shuffled)
        {
            std::vector<std::string> names;
            for (const auto& [name, value] : all)
                names.push_back(name);
            if (shuffled)
                std::ranges::shuffle(names, random);
            SNAPSHOT snapshot;
            for (const std::string& name : names)
                EXPECT_TRUE(snapshot.variables.add(variable_of(name, all.at(name), {main_file})));
            return snapshot;
        };
        const std::map<std::string, std::string> left = values();
        const std::map<std::string, std::string> right = values();
        std::map<std::string, std::string> expected;
        const auto value_in = [](const std::map<std::string, std::string>& all, const std::string& name)
        { return all.contains(name) ? all.at(name) : "-"; };
        for (const auto& sides : {left, right})
        {
            for (const auto& [name, value] : sides)
            {
                if (value_in(left, name) != value_in(right, name))
                    expected[name] = value_in(left, name) + value_in(right, name);
            }
        }
        const SNAPSHOT a = snapshot_of(left, below(2) == 0);
        const SNAPSHOT b = snapshot_of(right, below(2) == 0);
        std::map<std::string, std::string> found;
        const SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
        EXPECT_TRUE(std::ranges::is_sorted(differences.variables, {}, &VARIABLE_DIFFERENCE::name));
        for (const VARIABLE_DIFFERENCE& row : differences.variables)
            found[row.name] = (row.a ? std::string(row.a->value) : "-") + (row.b ? std::string(row.b->value) : "-");
        ASSERT_EQ(found, expected) << "round " << round;
        ASSERT_EQ(differences.variables.size(), expected.size());
        differences_seen += expected.size();
    }
    EXPECT_GT(differences_seen, 3000U);
}

// --- Files ---

SNAPSHOT_FILE file_with(const std::string& hash, const std::string& behind = "")
{
    return {"main", "velmar.ini", 3, hash, behind};
}

SNAPSHOT_FILE missing_file()
{
    return {"main", "velmar.ini", std::nullopt, std::nullopt};
}

struct FILE_CASE
{
    const char* what;
    std::optional<SNAPSHOT_FILE> a; // nothing for no row
    std::optional<SNAPSHOT_FILE> b;
    SAMENESS sameness;
};

TEST(FILE_DIFFERENCES, are_those_of_the_contents)
{
    SNAPSHOT_FILE elsewhere = file_with("11");
    elsewhere.path = "copy/velmar.ini";
    SNAPSHOT_FILE without_layer = missing_file();
    without_layer.path.reset();
    const std::string masked = mark_under('a', '1');
    const std::string hash(64, 'f');
    const FILE_CASE rows[] = {
        {"the same hash", file_with("11"), file_with("11"), SAMENESS::SAME},
        {"the same hash at another path", file_with("11"), elsewhere, SAMENESS::SAME},
        {"another hash", file_with("11"), file_with("12"), SAMENESS::DIFFERENT},
        {"a file on one side", file_with("11"), missing_file(), SAMENESS::DIFFERENT},
        {"no file on both sides", missing_file(), without_layer, SAMENESS::SAME},
        {"a row on one side", file_with("11"), std::nullopt, SAMENESS::DIFFERENT},
        {"a row of no file on one side", missing_file(), std::nullopt, SAMENESS::SAME},
        {"both taken now, with secrets", file_with(masked, "11"), file_with(masked, "11"), SAMENESS::SAME},
        {"both taken now, with other secrets", file_with(masked, "11"), file_with(masked, "12"), SAMENESS::DIFFERENT},
        {"both taken now under other keys", file_with(masked, "11"), file_with(mark_under('b', '1'), "11"),
         SAMENESS::SAME},
        {"now and a document, hidden alike", file_with(masked, "11"), file_with(masked), SAMENESS::SAME},
        {"now and a document, hidden otherwise", file_with(masked, "11"), file_with(mark_under('a', '2')),
         SAMENESS::DIFFERENT},
        {"now and a document, hidden under another key", file_with(masked, "11"), file_with(mark_under('b', '1')),
         SAMENESS::UNKNOWN},
        {"now and a document that shows secrets", file_with(masked, "11"), file_with("11"), SAMENESS::SAME},
        {"now and another document that shows secrets", file_with(masked, "11"), file_with("12"), SAMENESS::DIFFERENT},
        {"now and a document without the file", file_with(masked, "11"), missing_file(), SAMENESS::DIFFERENT},
        {"now without secrets, and a document", file_with("11", "11"), file_with("11"), SAMENESS::SAME},
        {"now without secrets, and a document with some", file_with(hash, hash), file_with(masked), SAMENESS::UNKNOWN},
        {"two documents under other keys", file_with(masked), file_with(mark_under('b', '1')), SAMENESS::UNKNOWN},
    };
    for (const FILE_CASE& row : rows)
    {
        SNAPSHOT a;
        SNAPSHOT b;
        if (row.a)
            a.files.push_back(*row.a);
        if (row.b)
            b.files.push_back(*row.b);
        for (const auto& [left, right] : {std::pair(&a, &b), std::pair(&b, &a)})
        {
            const SNAPSHOT_DIFFERENCES differences = compare_snapshots(*left, *right);
            EXPECT_EQ(differences.files.size(), row.sameness == SAMENESS::DIFFERENT ? 1U : 0U) << row.what;
            EXPECT_EQ(differences.undecided.size(), row.sameness == SAMENESS::UNKNOWN ? 1U : 0U) << row.what;
        }
    }
}

TEST(FILE_DIFFERENCES, have_the_rows_of_both_sides_those_of_the_first_before)
{
    SNAPSHOT a;
    SNAPSHOT b;
    for (const char* const role : {"main", "regtest", "preferences"})
        a.files.push_back({role, "a", 1, "1"});
    for (const char* const role : {"appended", "preferences", "main"})
        b.files.push_back({role, "b", 1, "2"});
    std::vector<std::string> found;
    for (const FILE_DIFFERENCE& row : compare_snapshots(a, b).files)
        found.push_back(row.role + " " + (row.a == nullptr ? "-" : *row.a->path + row.a->role) + " " +
                        (row.b == nullptr ? "-" : *row.b->path + row.b->role));
    EXPECT_THAT(found, ElementsAre("main amain bmain", "regtest aregtest -", "preferences apreferences bpreferences",
                                   "appended - bappended"));
}

// --- Environment ---

TEST(ENVIRONMENT_DIFFERENCES, tell_empty_from_not_set)
{
    struct ROW
    {
        const char* what;
        std::vector<ENVIRONMENT_VARIABLE> a;
        std::vector<ENVIRONMENT_VARIABLE> b;
        SAMENESS sameness;
    };
    const ROW rows[] = {
        {"the same value", {{"HOME", "/x"}}, {{"HOME", "/x"}}, SAMENESS::SAME},
        {"another value", {{"HOME", "/x"}}, {{"HOME", "/X"}}, SAMENESS::DIFFERENT},
        {"not set on both sides", {{"HOME", std::nullopt}}, {{"HOME", std::nullopt}}, SAMENESS::SAME},
        {"empty and not set", {{"HOME", ""}}, {{"HOME", std::nullopt}}, SAMENESS::DIFFERENT},
        {"a row that is not set, and none", {{"HOME", std::nullopt}}, {}, SAMENESS::SAME},
        {"a row, and none", {{"HOME", ""}}, {}, SAMENESS::DIFFERENT},
        {"names in another letter case", {{"HOME", "/x"}}, {{"home", "/x"}}, SAMENESS::DIFFERENT},
        {"hidden under other keys",
         {{"VELMAR_INI_VARS", "token=" + mark_under('a', '1')}},
         {{"VELMAR_INI_VARS", "token=" + mark_under('b', '1')}},
         SAMENESS::UNKNOWN},
    };
    for (const ROW& row : rows)
    {
        SNAPSHOT a;
        SNAPSHOT b;
        a.environment = row.a;
        b.environment = row.b;
        for (const auto& [left, right] : {std::pair(&a, &b), std::pair(&b, &a)})
        {
            const SNAPSHOT_DIFFERENCES differences = compare_snapshots(*left, *right);
            EXPECT_EQ(!differences.environment.empty(), row.sameness == SAMENESS::DIFFERENT) << row.what;
            EXPECT_EQ(!differences.undecided.empty(), row.sameness == SAMENESS::UNKNOWN) << row.what;
        }
    }
}

// --- Preferences ---

SNAPSHOT_PREFERENCE preference_of(const std::string& value, PREFERENCE_SOURCE source)
{
    return {"HDL_PREFERENCE", value, "Verilog", {source, ""}, ""};
}

TEST(PREFERENCE_DIFFERENCES, are_made_by_the_source_that_comes_first)
{
    using SOURCE = PREFERENCE_SOURCE;
    const SOURCE by_rank[] = {SOURCE::RUNNING_RELEASE, SOURCE::OLDER_RELEASE, SOURCE::UNVERSIONED_SECTION,
                              SOURCE::DEFAULT, SOURCE::NOWHERE};
    for (const SOURCE one : by_rank)
    {
        for (const SOURCE other : by_rank)
        {
            SNAPSHOT a;
            SNAPSHOT b;
            a.preferences.push_back(preference_of("VHDL", one));
            b.preferences.push_back(preference_of("Verilog", other));
            const std::vector<PREFERENCE_DIFFERENCE> found = compare_snapshots(a, b).preferences;
            ASSERT_EQ(found.size(), 1U);
            const SOURCE first =
                *std::ranges::find_if(by_rank, [&](SOURCE source) { return source == one || source == other; });
            EXPECT_EQ(found.front().made_by, first) << source_word(one) << " and " << source_word(other);
            EXPECT_EQ(found.front().a->value, "VHDL");
            EXPECT_EQ(found.front().b->value, "Verilog");
        }
    }
}

TEST(PREFERENCE_DIFFERENCES, are_those_of_the_values)
{
    SNAPSHOT a;
    SNAPSHOT b;
    a.preferences.push_back(preference_of("VHDL", PREFERENCE_SOURCE::RUNNING_RELEASE));
    b.preferences.push_back(preference_of("VHDL", PREFERENCE_SOURCE::DEFAULT));
    EXPECT_TRUE(compare_snapshots(a, b).none());
    b.preferences.clear();
    const SNAPSHOT_DIFFERENCES gone = compare_snapshots(a, b);
    ASSERT_EQ(gone.preferences.size(), 1U);
    EXPECT_EQ(gone.preferences.front().b, nullptr);
    EXPECT_EQ(gone.preferences.front().made_by, PREFERENCE_SOURCE::RUNNING_RELEASE);
    const SNAPSHOT_DIFFERENCES come = compare_snapshots(b, a);
    ASSERT_EQ(come.preferences.size(), 1U);
    EXPECT_EQ(come.preferences.front().a, nullptr);
    EXPECT_EQ(come.preferences.front().key, "HDL_PREFERENCE");
    EXPECT_EQ(come.preferences.front().made_by, PREFERENCE_SOURCE::RUNNING_RELEASE);
}

// --- All together ---

TEST(DIFFERENCES_OF_INSTALLATIONS, are_product_and_release)
{
    SNAPSHOT a;
    SNAPSHOT b;
    a.product = b.product = "velmar";
    a.release = b.release = "23.4";
    a.project = "cpu"; // what was asked for is no difference
    b.regtest = true;
    EXPECT_TRUE(compare_snapshots(a, b).none());
    b.product = "other";
    b.release = "23.3";
    std::vector<std::string> found;
    for (const INSTALLATION_DIFFERENCE& row : compare_snapshots(a, b).installation)
        found.push_back(row.what + " " + row.a + " " + row.b);
    EXPECT_THAT(found, ElementsAre("product velmar other", "release 23.4 23.3"));
}

// Two snapshots with a row in each list of which nothing can be told.
std::pair<SNAPSHOT, SNAPSHOT> undecided_snapshots()
{
    const auto snapshot_under = [](char key)
    {
        const std::string mark = mark_under(key, '1');
        SNAPSHOT snapshot;
        snapshot.environment.push_back({"VELMAR_INI_VARS", mark});
        snapshot.environment.push_back({"read_token", mark}); // named as a variable that the run read
        snapshot.files.push_back({"main", "velmar.ini", 1, mark});
        snapshot.preferences.push_back({"CLOUD_TOKEN", mark, "", {PREFERENCE_SOURCE::RUNNING_RELEASE, ""}, ""});
        for (const char* const name : {"read_token", "perhaps_token", "never_token", "unknown_token"})
            snapshot.variables.add(variable_of(name, mark, {main_file}));
        return snapshot;
    };
    return {snapshot_under('a'), snapshot_under('b')};
}

TEST(UNDECIDED_ROWS, are_no_differences)
{
    const auto [a, b] = undecided_snapshots();
    const SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
    EXPECT_TRUE(differences.none());
    EXPECT_THAT(undecided_in(differences),
                ElementsAre("environment VELMAR_INI_VARS", "environment read_token", "files main",
                            "variables read_token", "variables perhaps_token", "variables never_token",
                            "variables unknown_token", "preferences CLOUD_TOKEN"));
}

// Looked up: "read" and a name that is no UTF-8; uncounted: "perhaps"; never read: "never". In other letter case.
RUN_REPORT run_report()
{
    RUN_REPORT run;
    run.read.push_back({"READ_token", 2, "1", true, true});
    run.read.push_back({"byte_\xef\xbf\xbd", 1, "1", true, true});
    run.uncounted.emplace_back("PERHAPS_token");
    run.external_never_read.push_back({"NEVER_token", "1"});
    return run;
}

TEST(WHAT_A_RUN_READ, is_kept_and_nothing_else)
{
    SNAPSHOT a;
    SNAPSHOT b;
    for (const char* const name : {"read_token", "perhaps_token", "never_token", "unknown_token", "byte_\xff"})
    {
        a.variables.add(variable_of(name, "1", {main_file}));
        b.variables.add(variable_of(name, "2", {main_file}));
    }
    a.product = "one";
    a.environment.push_back({"read_token", "1"});
    a.files.push_back({"main", "velmar.ini", 1, "11"});
    a.preferences.push_back(preference_of("VHDL", PREFERENCE_SOURCE::DEFAULT));
    SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
    ASSERT_EQ(differences.variables.size(), 5U);
    keep_what_the_run_read(differences, run_report());
    std::vector<std::string> kept;
    for (const VARIABLE_DIFFERENCE& row : differences.variables)
        kept.push_back(row.name + ": " + dependence_word(row.dependence) + ", " + std::string(row.a->value) + " " +
                       std::string(row.b->value));
    EXPECT_THAT(kept, ElementsAre("byte_\xff: read, 1 2", "perhaps_token: perhaps, 1 2", "read_token: read, 1 2"));
    EXPECT_THAT(differences.installation, IsEmpty());
    EXPECT_THAT(differences.environment, IsEmpty());
    EXPECT_THAT(differences.files, IsEmpty());
    EXPECT_THAT(differences.preferences, IsEmpty());
    EXPECT_FALSE(differences.none());
}

TEST(WHAT_A_RUN_READ, is_kept_of_undecided_rows_too)
{
    const auto [a, b] = undecided_snapshots();
    SNAPSHOT_DIFFERENCES differences = compare_snapshots(a, b);
    keep_what_the_run_read(differences, run_report());
    EXPECT_THAT(undecided_in(differences), ElementsAre("variables read_token", "variables perhaps_token"));
    EXPECT_TRUE(differences.none());
}

// --- The variables of a snapshot ---

TEST(SNAPSHOT_ROWS, are_one_for_each_name_and_keep_their_texts)
{
    SNAPSHOT_VARIABLES variables;
    {
        // The texts that they look into go.
        const std::string sources[] = {"first.ini", "first.ini", "second.ini", "first.ini"};
        const std::string names[] = {"Fan", "b", "c", "d"};
        for (std::size_t i = 0; i < 4; ++i)
        {
            const std::string value(1000 * (i + 1), static_cast<char>('0' + i));
            SNAPSHOT_VARIABLE row = variable_of(names[i], value, {main_file});
            row.location = {main_file, sources[i], i + 1};
            EXPECT_TRUE(variables.add(row));
        }
        EXPECT_FALSE(variables.add(variable_of("FAN", "again", {main_file})));
        EXPECT_FALSE(variables.add(variable_of("b", "again", {main_file})));
        EXPECT_TRUE(variables.add(variable_of("", "empty", {inline_text})));
        EXPECT_FALSE(variables.add(variable_of("", "again", {main_file})));
    }
    ASSERT_EQ(variables.size(), 5U);
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < variables.size(); ++i)
    {
        const SNAPSHOT_VARIABLE row = variables[i];
        EXPECT_EQ(row.name, variables.name(i));
        rows.push_back(std::string(row.name) + " " + std::to_string(row.value.size()) + row.value.front() + " " +
                       location_as_text(row.location));
    }
    EXPECT_THAT(rows, ElementsAre("Fan 10000 first.ini:1", "b 20001 first.ini:2", "c 30002 second.ini:3",
                                  "d 40003 first.ini:4", " 5e VELMAR_INI_VARS:1"));
}

TEST(SNAPSHOT_ROWS, are_made_of_settings_in_the_order_of_the_names)
{
    const auto file = [](const char* path, const char* bytes) {
        return std::make_shared<const INPUT_FILE>(INPUT_FILE{path, bytes, {}});
    };
    const SNAPSHOT_VARIABLES variables(SETTINGS({{main_file, file("m.ini", "b = 1\nZ = x\na=2\n")},
                                                 {appended, file("a.ini", "only = 3.5s\n")},
                                                 {inline_text, file(inline_source, "A=on;c=7")},
                                                 {regtest, file("r.ini", "\nb=2\nr=1\n")}}));
    std::vector<std::string> rows;
    for (std::size_t i = 0; i < variables.size(); ++i)
    {
        const SNAPSHOT_VARIABLE row = variables[i];
        std::string text = std::string(variables.name(i)) + "=" + std::string(row.value) + " " +
                           location_as_text(row.location) + (row.external ? " external" : "");
        for (const LAYER_KIND kind : all_layer_kinds)
            text += row.layers.contains(kind) ? std::string(" ") + layer_code(kind) : "";
        rows.push_back(text);
    }
    EXPECT_THAT(rows, ElementsAre("Z=x m.ini:2 external main", "a=on VELMAR_INI_VARS:1 external main inline",
                                  "b=2 r.ini:2 external main regtest", "c=7 VELMAR_INI_VARS:2 external inline",
                                  "only=3.5s a.ini:1 appended", "r=1 r.ini:3 regtest"));
    EXPECT_EQ(variables[1].readings.boolean, true);
    EXPECT_EQ(variables[4].readings.floating, 3.5);
    EXPECT_FALSE(variables[4].readings.floating_is_whole);
}
}
