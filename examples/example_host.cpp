// A small host of the internal variable store: reads a project's settings, asks for variables in every form, sets some,
// and prints the four usage reports.
//
// Usage: example_host [--regtest] [--run-report FILE] PROJECT_DIRECTORY
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cfg_ini/cfg_cached_value.h"
#include "cfg_ini/cfg_ini.h"
#include "cfg_run_report/cfg_run_report.h"

namespace
{
// For a question in a hot loop: asks the store once, and again only after a change.
const CFG_CACHED_VALUE<bool> trace_routes("trace_routes", false);

// Keeps what a router would derive from "route_effort", and records every change that it is notified of.
class ROUTER : public CFG_INI_CALLBACK
{
public:
    ROUTER() : CFG_INI_CALLBACK("route_effort") {}

    // The store's lock is held here: no printing, no waiting.
    void refresh() override
    {
        effort = cfg_get_int_value("route_effort", default_effort);
        efforts_told_of.push_back(effort);
    }

    void reset_to_default() override
    {
        effort = default_effort;
    }

    static constexpr int default_effort = 2;
    int effort = default_effort;
    std::vector<int> efforts_told_of;
};

void print_row(const char* name, const std::string& text)
{
    std::printf("  %-22s %s\n", name, text.c_str());
}

void print_settings_files()
{
    const auto path_or_none = [](const char* path) { return *path != '\0' ? path : "(none)"; };
    std::puts("Settings files");
    print_row("main", path_or_none(cfg_get_ini_file_path_name()));
    print_row("appended", path_or_none(cfg_get_appended_envrionment_ini_file_path_name()));
    print_row("regression test", path_or_none(cfg_get_regtest_ini_file_path_name()));
}

const char* on_or_off(bool value)
{
    return value ? "on" : "off";
}

void ask_for_variables()
{
    std::puts("\nAnswers");
    print_row("banner", cfg_get_value("banner"));
    print_row("report_dir", cfg_get_value("report_dir"));
    print_row("place_effort", std::to_string(cfg_get_int_value("place_effort", 1)));
    print_row("thermallimit", std::to_string(cfg_get_double_value("thermallimit", 100.0)));
    print_row("regtest_seed", std::to_string(cfg_get_uint_value("regtest_seed", 1)));

    // By catalogue: name and default are compiled in.
    print_row("enhanced_html_reports", on_or_off(cfg_is_on(CFG_INI_VAR_ENHANCED_HTML_REPORTS)));
    print_row("msg_sqlite", on_or_off(cfg_is_on(CFG_INI_VAR_MSG_SQLITE)));

    // A text that does not convert counts as no value.
    print_row("retry_limit", std::to_string(cfg_get_int_value("retry_limit", 5)));
    const std::optional<bool> incremental = cfg_get_value_as<bool>("incremental");
    print_row("incremental", incremental ? on_or_off(*incremental) : "(no usable value)");

    // Asked for again and again, as programs do: the usage reports show it.
    int fanout = 0;
    for (int net = 0; net < 9; ++net)
        fanout = cfg_get_int_value("max_fanout", 8);
    print_row("max_fanout", std::to_string(fanout));

    int traced = 0;
    for (int route = 0; route < 100000; ++route)
        traced += trace_routes.get() ? 1 : 0;
    print_row("trace_routes", "on for " + std::to_string(traced) + " of 100000 routes");
}

void set_variables(const ROUTER& router)
{
    cfg_set_int_value("route_effort", 7);
    cfg_set_on("ROUTE_EFFORT"); // the same variable, but the router is notified only of its own spelling
    cfg_set_int_value("route_effort", 6);
    cfg_set_off(CFG_INI_VAR_MSG_SQLITE);

    std::puts("\nAfter setting variables");
    std::string efforts;
    for (const int effort : router.efforts_told_of)
        efforts += (efforts.empty() ? "" : ", ") + std::to_string(effort);
    print_row("router was told of", efforts);
    print_row("router works with", std::to_string(router.effort));
    print_row("msg_sqlite", on_or_off(cfg_is_on(CFG_INI_VAR_MSG_SQLITE)));
}

void print_usage_reports()
{
    // The silent reports first: the ranked one reads its two own settings, and counts that.
    std::map<std::string, std::string> used;
    std::map<std::string, std::string> external;
    std::string busiest;
    std::string busiest_value;
    cfg_get_used_variable_value_map(&used);
    cfg_get_external_variable_value_map(&external);
    const auto highest_count =
        static_cast<unsigned long long>(cfg_get_single_most_accessed_ini(busiest, busiest_value));
    std::vector<std::pair<std::string, std::string>> ranked;
    cfg_get_most_accessed(&ranked);

    std::puts("\nMost accessed variables");
    for (const auto& [name, count] : ranked)
        print_row(name.c_str(), count);
    std::puts("\nMost accessed of all");
    std::printf("  %-22s %s, asked for %llu times\n", busiest.c_str(), busiest_value.c_str(), highest_count);
    std::puts("\nVariables that the run depended on");
    for (const auto& [name, value] : used)
        print_row(name.c_str(), value);
    std::puts("\nVariables from outside the program");
    for (const auto& [name, value] : external)
        print_row(name.c_str(), value);
}

struct ARGUMENTS
{
    bool regtest = false;
    const char* run_report = nullptr;
    const char* project = nullptr;
};

std::optional<ARGUMENTS> parse(int argc, char** argv)
{
    ARGUMENTS arguments;
    for (int i = 1; i < argc; ++i)
    {
        if (std::strcmp(argv[i], "--regtest") == 0)
            arguments.regtest = true;
        else if (std::strcmp(argv[i], "--run-report") == 0 && i + 1 < argc)
            arguments.run_report = argv[++i];
        else if (argv[i][0] != '-' && arguments.project == nullptr)
            arguments.project = argv[i];
        else
            return std::nullopt;
    }
    return arguments.project != nullptr ? std::optional(arguments) : std::nullopt;
}
}

int main(int argc, char** argv)
{
    const std::optional<ARGUMENTS> arguments = parse(argc, argv);
    if (!arguments)
    {
        std::fprintf(stderr, "usage: %s [--regtest] [--run-report FILE] PROJECT_DIRECTORY\n", argv[0]);
        return 2;
    }
    ROUTER router; // before the settings are read, so that it is notified of them
    cfg_read_project_ini_file(arguments->project, arguments->regtest);
    print_settings_files();
    ask_for_variables();
    set_variables(router);
    print_usage_reports();
    if (arguments->run_report == nullptr)
        return 0;

    CFG_RUN_REPORT_OPTIONS options;
    options.run = arguments->project;
    options.outcome = CFG_RUN_OUTCOME::PASS;
    const CFG_RUN_REPORT_RESULT report = cfg_write_run_report(arguments->run_report, options);
    if (!report.written)
        std::fprintf(stderr, "%s: %s\n", argv[0], report.error.c_str());
    return report.written ? 0 : 1;
}
