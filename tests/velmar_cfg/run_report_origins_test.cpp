// The origins of a run report, beside those of the tool's own model of the settings, over generated stacks of layers.
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_run_report/cfg_run_report.h"
#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/documents/run_reports.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
// The two that steer the ranked report: the report itself counts their accesses as none of the run's.
bool is_steering(std::string_view name)
{
    return same_name(name, "cfg_max_to_report") || same_name(name, "cfg_min_accessed_to_report");
}

class RUN_REPORT_ORIGINS_TEST : public ISOLATED_TEST
{
protected:
    ~RUN_REPORT_ORIGINS_TEST() override
    {
        cfg_close_ini_file();
    }

    // Makes the files and the environment of a stack of layers; the project's directory, mostly relative.
    std::string make_stack()
    {
        const auto next_line = [this] { return generate.below(3) == 0 ? generate.hostile_line() : generate.line(); };
        std::filesystem::remove_all(temporary.path("stack"));
        std::filesystem::create_directories(temporary.path("stack/project"));
        std::filesystem::create_directories(temporary.path("stack/elsewhere"));
        std::filesystem::current_path(temporary.path("stack"));
        if (generate.below(4) > 0)
            write_file("project/velmar.ini", generate.file(next_line));
        if (generate.below(2) > 0)
            write_file("project/regtest.ini", generate.file(next_line));
        if (generate.below(2) > 0)
            write_file("velmar.ini", generate.file(next_line));
        environment.unset("APPENDED_VELMAR_INI");
        environment.unset("VELMAR_INI_VARS");
        if (generate.below(2) > 0)
        {
            write_file("appended.ini", generate.file(next_line));
            environment.set("APPENDED_VELMAR_INI",
                            generate.below(2) > 0 ? "appended.ini" : temporary.path("stack/appended.ini"));
        }
        if (generate.below(2) > 0)
            environment.set("VELMAR_INI_VARS", generate.inline_text(next_line));
        return generate.below(2) > 0 ? "project" : temporary.path("stack/project");
    }

    // Sets some variables from within, to new values and to those that lost or won.
    void set_some()
    {
        for (std::size_t i = generate.below(4); i > 0; --i)
        {
            const std::string name = generate.pick({"a", "B", "fanout", "msg_sqlite", "x", ""});
            cfg_set_value(name, generate.pick({"1", "on", "2.5ms", "the program's", ""}));
        }
    }

    // Where the value of a variable comes from, as the model says it; and the value.
    struct EXPECTED
    {
        std::string name;
        std::string value;
        std::string origin;
    };

    std::vector<EXPECTED> expected_origins(const SETTINGS& settings)
    {
        std::set<std::string> names = {"a", "b", "fanout", "msg_sqlite", "x", "", "never_set"};
        for (const std::string& name : names_of_variables(settings))
            names.insert(name);
        std::vector<EXPECTED> expected;
        for (const std::string& name : names)
        {
            if (is_steering(name))
                continue;
            for (int reads = 0; reads < 2; ++reads) // the first read of a variable that is not there is not counted
                static_cast<void>(cfg_get_value(name));
            const std::string value = cfg_get_value(name);
            const VARIABLE* const variable = settings.find(name);
            const bool is_winners = variable != nullptr && settings.value_of(*variable) == value;
            const std::string place =
                is_winners ? std::string(layer_code(settings.location_of(*variable).layer)) + " " +
                                 std::filesystem::weakly_canonical(settings.location_of(*variable).source).string() +
                                 " " + std::to_string(settings.location_of(*variable).position)
                           : "";
            expected.push_back({name, value,
                                is_winners                             ? place
                                : variable == nullptr && value.empty() ? "unset"
                                                                       : "program"});
        }
        return expected;
    }

    static std::string origin_in(const RUN_REPORT& report, const READ_VARIABLE& variable)
    {
        if (!variable.origin.place)
            return origin_word(variable.origin.kind);
        const RUN_SOURCE& source = report.sources[variable.origin.place->source];
        return std::string(layer_code(*source.layer)) + " " +
               std::filesystem::weakly_canonical(source.path.value_or(inline_source)).string() + " " +
               std::to_string(variable.origin.place->position);
    }

    void run_one()
    {
        const std::string project = make_stack();
        cfg_read_project_ini_file(project.c_str(), true); // another load before the one that counts
        set_some();
        const bool regtest = generate.below(2) > 0;
        cfg_read_project_ini_file(project.c_str(), regtest);
        SETTINGS_SCOPE scope;
        scope.project = project;
        scope.regtest = regtest;
        scope.secrets->show_all();
        INPUT_FILES files;
        const SETTINGS settings(load_layers(scope, files));
        set_some();
        const std::vector<EXPECTED> expected = expected_origins(settings);

        std::filesystem::current_path("elsewhere");
        const CFG_RUN_REPORT_RESULT written = cfg_write_run_report(temporary.path("run.json"));
        ASSERT_TRUE(written.written) << written.error;
        const RUN_REPORT report = read_run_report(temporary.path("run.json"), *scope.secrets);
        std::filesystem::current_path(temporary.path("stack")); // relative names of the model are of there
        for (const EXPECTED& one : expected)
        {
            const auto found = std::ranges::find_if(report.read, [&one](const READ_VARIABLE& variable)
                                                    { return same_name(variable.name, one.name); });
            ASSERT_NE(found, report.read.end()) << "'" << one.name << "'";
            ASSERT_EQ(found->value.value_or(""), one.value) << "'" << one.name << "'";
            ASSERT_EQ(origin_in(report, *found), one.origin) << "'" << one.name << "'";
            places += found->origin.place ? 1 : 0;
            others += found->origin.place ? 0 : 1;
        }
    }

    SETTINGS_GENERATOR generate{20260807};
    long places = 0;
    long others = 0;
};

TEST_F(RUN_REPORT_ORIGINS_TEST, are_those_of_the_model_or_the_program)
{
    const long stacks = std::getenv("ZON_LONG_TESTS") != nullptr ? 10'000 : 400;
    for (long stack = 0; stack < stacks; ++stack)
    {
        SCOPED_TRACE("stack " + std::to_string(stack));
        run_one();
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(places, stacks) << "some variables have their winning assignment's value";
    EXPECT_GT(others, stacks) << "some have not";
}
}
