#include "tools/velmar-cfg/documents/run_report_json.h"

namespace
{
void write_read_variable(JSON_WRITER& out, const READ_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("count", variable.count);
    out.field("value", variable.value);
    out.field("external", variable.external);
    out.field("used", variable.used);
    out.end_object();
}

void write_unread_variable(JSON_WRITER& out, const UNREAD_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("value", variable.value);
    out.end_object();
}

void write_never_read_variable(JSON_WRITER& out, const NEVER_READ_VARIABLE& variable)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("values", variable.values);
    out.field("set_in_runs", variable.set_in_runs);
    out.field("perhaps_read_by_runs", variable.perhaps_read_by_runs);
    out.end_object();
}
}

void write_json(JSON_WRITER& out, const RUN_REPORT& report)
{
    out.begin_object();
    write_fields(out, report);
    out.end_object();
}

void write_fields(JSON_WRITER& out, const RUN_REPORT& report)
{
    out.field("run", report.run);
    out.field("file", report.file);
    out.field("release", report.release);
    out.key("files");
    out.begin_object();
    out.field("main", report.main_file);
    out.field("appended", report.appended_file);
    out.field("regtest", report.regtest_file);
    out.end_object();
    out.key("read");
    out.list(report.read, write_read_variable);
    out.key("external_never_read");
    out.list(report.external_never_read, write_unread_variable);
    out.field("uncounted", report.uncounted);
}

void write_never_read_json(JSON_WRITER& out, const std::vector<NEVER_READ_VARIABLE>& variables, std::size_t runs)
{
    out.begin_object();
    out.field("runs", runs);
    out.key("never_read");
    out.list(variables, write_never_read_variable);
    out.end_object();
}

void write_dependences_json(JSON_WRITER& out, const std::string& name, const std::vector<RUN_REPORT>& reports,
                            const std::vector<DEPENDENCE>& dependences)
{
    out.begin_object();
    out.field("switch", name);
    out.key("runs");
    out.begin_list();
    for (std::size_t i = 0; i < reports.size(); ++i)
    {
        out.begin_object();
        out.field("run", reports[i].run);
        out.field("file", reports[i].file);
        out.field("dependence", dependence_word(dependences[i].kind));
        out.field("count", dependences[i].count);
        out.field("value", dependences[i].value);
        out.end_object();
    }
    out.end_list();
    out.end_object();
}
