#include "cfg_run_report/cfg_run_report.h"

#include <exception>
#include <nlohmann/json.hpp>

#include "cfg_ini/cfg_ini.h"
#include "cfg_run_report/run_report_format.h"
#include "cfg_run_report/run_usage.h"
#include "cfg_run_report/whole_file.h"
#include "platform/ver/ver.h"

namespace
{
using nlohmann::ordered_json;

ordered_json path_or_null(const char* path)
{
    return *path != '\0' ? ordered_json(path) : ordered_json(nullptr);
}

ordered_json value_or_null(const VARIABLE_USAGE& variable)
{
    return variable.value ? ordered_json(*variable.value) : ordered_json(nullptr);
}

ordered_json run_report(const std::string& run)
{
    ordered_json read = ordered_json::array();
    ordered_json external_never_read = ordered_json::array();
    ordered_json uncounted = ordered_json::array();
    for (const VARIABLE_USAGE& variable : usage_of_all_variables())
    {
        if (variable.count > 0)
        {
            read.push_back({{"name", variable.name},
                            {"count", variable.count},
                            {"value", value_or_null(variable)},
                            {"external", variable.external},
                            {"used", variable.used}});
        }
        else if (variable.external)
            external_never_read.push_back({{"name", variable.name}, {"value", variable.value.value_or("")}});
        else
            uncounted.push_back(variable.name);
    }
    // The paths last: asking for the usages may have read the settings.
    return {
        {"schema", run_report_schema},
        {"schema_version", run_report_schema_version},
        {"run", run},
        {"release", ver_get_version()},
        {"files",
         {{"main", path_or_null(cfg_get_ini_file_path_name())},
          {"appended", path_or_null(cfg_get_appended_envrionment_ini_file_path_name())},
          {"regtest", path_or_null(cfg_get_regtest_ini_file_path_name())}}},
        {"read", std::move(read)},
        {"external_never_read", std::move(external_never_read)},
        {"uncounted", std::move(uncounted)},
    };
}
}

CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path, const std::string& run) noexcept
{
    const auto failed = [&path](const char* why) { return "cannot write the run report " + path + ": " + why; };
    try
    {
        const std::string text = run_report(run).dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
        const std::string error = write_whole_file(path, text);
        return {error.empty(), error.empty() ? "" : failed(error.c_str())};
    }
    catch (const std::exception& error)
    {
        return {false, failed(error.what())};
    }
}
