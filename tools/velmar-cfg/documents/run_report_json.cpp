#include "tools/velmar-cfg/documents/run_report_json.h"

#include "tools/velmar-cfg/base/json_values.h"

using nlohmann::ordered_json;

ordered_json report_as_json(const RUN_REPORT& report)
{
    ordered_json read = ordered_json::array();
    for (const READ_VARIABLE& variable : report.read)
        read.push_back({{"name", variable.name},
                        {"count", variable.count},
                        {"value", value_or_null(variable.value)},
                        {"external", variable.external},
                        {"used", variable.used}});
    ordered_json never_read = ordered_json::array();
    for (const UNREAD_VARIABLE& variable : report.external_never_read)
        never_read.push_back({{"name", variable.name}, {"value", variable.value}});
    return {{"run", report.run},
            {"file", report.file},
            {"release", report.release},
            {"files",
             {{"main", value_or_null(report.main_file)},
              {"appended", value_or_null(report.appended_file)},
              {"regtest", value_or_null(report.regtest_file)}}},
            {"read", read},
            {"external_never_read", never_read},
            {"uncounted", report.uncounted}};
}

ordered_json never_read_as_json(const std::vector<NEVER_READ_VARIABLE>& variables, std::size_t runs)
{
    ordered_json rows = ordered_json::array();
    for (const NEVER_READ_VARIABLE& variable : variables)
        rows.push_back({{"name", variable.name},
                        {"values", variable.values},
                        {"set_in_runs", variable.set_in_runs},
                        {"perhaps_read_by_runs", variable.perhaps_read_by_runs}});
    return {{"runs", runs}, {"never_read", rows}};
}

ordered_json dependences_as_json(const std::string& name, const std::vector<RUN_REPORT>& reports,
                                 const std::vector<DEPENDENCE>& dependences)
{
    ordered_json rows = ordered_json::array();
    for (std::size_t i = 0; i < reports.size(); ++i)
        rows.push_back({{"run", reports[i].run},
                        {"file", reports[i].file},
                        {"dependence", dependence_word(dependences[i].kind)},
                        {"count", dependences[i].count},
                        {"value", value_or_null(dependences[i].value)}});
    return {{"switch", name}, {"runs", rows}};
}
