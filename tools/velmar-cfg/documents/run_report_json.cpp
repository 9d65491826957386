// Writes every member of every row, with null for what the report does not have, so that rows of one kind are alike.
#include "tools/velmar-cfg/documents/run_report_json.h"

#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
// The members of a place: those that a host writes, and null for the others.
void write_place_fields(JSON_WRITER& out, const RUN_PLACE* place, const RUN_REPORT& report)
{
    const bool in_file = place != nullptr && report.sources[place->source].path.has_value();
    const std::optional<std::uint64_t> position =
        place != nullptr && place->position != 0 ? std::optional(place->position) : std::nullopt;
    out.field("source", place != nullptr ? std::optional(place->source) : std::nullopt);
    out.field("line", in_file ? position : std::nullopt);
    out.field("item", in_file ? std::nullopt : position);
}

void write_origin_fields(JSON_WRITER& out, const RUN_ORIGIN& origin, const RUN_REPORT& report)
{
    const char* const word = origin_word(origin.kind);
    out.field("origin", word != nullptr ? std::optional<std::string>(word) : std::nullopt);
    write_place_fields(out, origin.place ? &*origin.place : nullptr, report);
    out.key("perhaps");
    out.list(origin.perhaps,
             [&report](JSON_WRITER& row, const RUN_PLACE& place)
             {
                 row.begin_object();
                 write_place_fields(row, &place, report);
                 row.end_object();
             });
    out.key("overridden");
    out.list(origin.overridden,
             [&report](JSON_WRITER& row, const RUN_ASSIGNMENT& assignment)
             {
                 row.begin_object();
                 write_place_fields(row, &assignment.place, report);
                 row.field("value", assignment.value);
                 row.end_object();
             });
}

void write_source(JSON_WRITER& out, const RUN_SOURCE& source)
{
    out.begin_object();
    out.field("layer", layer_code(source.layer.value_or(LAYER_KIND::PROGRAM)));
    out.field("external", source.external);
    out.field("path", source.path);
    out.field("size", source.path ? std::optional(source.size) : std::nullopt);
    out.field("modified", source.path ? std::optional(source.modified) : std::nullopt);
    out.field("text", source.text);
    out.field("state", source.state);
    out.end_object();
}

void write_circumstances(JSON_WRITER& out, const RUN_REPORT& report)
{
    if (report.outcome_number)
        out.field("outcome", *report.outcome_number);
    else
        out.field("outcome", report.outcome);
    out.field("host", report.host);
    out.field("process", report.process);
    out.field("directory", report.directory);
    out.field("executable", report.executable);
    out.field("started", report.started);
    out.field("ended", report.ended);
    out.key("environment");
    out.list(report.environment,
             [](JSON_WRITER& row, const ENVIRONMENT_VARIABLE& variable) { write_json(row, variable); });
    out.field("sources_complete", report.sources_complete);
    out.key("sources");
    out.list(report.sources, write_source);
}

void write_read_variable(JSON_WRITER& out, const READ_VARIABLE& variable, const RUN_REPORT& report)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("count", variable.count);
    out.field("value", variable.value);
    out.field("external", variable.external);
    out.field("used", variable.used);
    write_origin_fields(out, variable.origin, report);
    out.end_object();
}

void write_unread_variable(JSON_WRITER& out, const UNREAD_VARIABLE& variable, const RUN_REPORT& report)
{
    out.begin_object();
    out.field("name", variable.name);
    out.field("value", variable.value);
    write_origin_fields(out, variable.origin, report);
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
    write_circumstances(out, report);
    out.key("read");
    out.list(report.read, [&report](JSON_WRITER& row, const READ_VARIABLE& variable)
             { write_read_variable(row, variable, report); });
    out.key("external_never_read");
    out.list(report.external_never_read, [&report](JSON_WRITER& row, const UNREAD_VARIABLE& variable)
             { write_unread_variable(row, variable, report); });
    out.field("uncounted", report.uncounted);
    out.field("asked_once", report.asked_once);
    out.field("set_never_read", report.set_never_read);
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
