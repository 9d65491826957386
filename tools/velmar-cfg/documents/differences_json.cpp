// Writes each list of differences in the order in which compare_snapshots() has made it. The rows of the two sides are
// those of snapshot documents.
#include "tools/velmar-cfg/documents/differences_json.h"

#include "tools/velmar-cfg/documents/snapshot.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/environment.h"
#include "tools/velmar-cfg/settings/layers.h"

namespace
{
// `row` is a pointer or an optional.
template <typename ROW>
void write_row_or_null(JSON_WRITER& out, const char* name, const ROW& row)
{
    out.key(name);
    if (row)
        write_json(out, *row);
    else
        out.value(std::nullopt);
}

void write_side(JSON_WRITER& out, const char* name, const COMPARED_SNAPSHOT& side)
{
    out.key(name);
    out.begin_object();
    out.field("title", side.title);
    out.field_or_null("product", side.snapshot.product);
    out.field("release", side.snapshot.release);
    out.field_or_null("project", side.snapshot.project);
    out.field("regtest", side.snapshot.regtest);
    if (!side.view.empty())
        out.field("view", side.view);
    out.end_object();
}

void write_installation(JSON_WRITER& out, const INSTALLATION_DIFFERENCE& difference)
{
    out.begin_object();
    out.field("what", difference.what);
    out.field("a", difference.a);
    out.field("b", difference.b);
    out.end_object();
}

void write_environment(JSON_WRITER& out, const ENVIRONMENT_DIFFERENCE& difference)
{
    const auto value_of = [](const ENVIRONMENT_VARIABLE* variable)
    { return variable == nullptr ? std::nullopt : variable->value; };
    out.begin_object();
    out.field("name", difference.name);
    out.field("a", value_of(difference.a));
    out.field("b", value_of(difference.b));
    out.end_object();
}

void write_file(JSON_WRITER& out, const FILE_DIFFERENCE& difference)
{
    out.begin_object();
    out.field("role", difference.role);
    write_row_or_null(out, "a", difference.a);
    write_row_or_null(out, "b", difference.b);
    out.end_object();
}

void write_preference(JSON_WRITER& out, const PREFERENCE_DIFFERENCE& difference)
{
    out.begin_object();
    out.field("key", difference.key);
    write_row_or_null(out, "a", difference.a);
    write_row_or_null(out, "b", difference.b);
    out.field("made_by", source_word(difference.made_by));
    out.end_object();
}

void write_variable(JSON_WRITER& out, const VARIABLE_DIFFERENCE& difference, bool run_given)
{
    out.begin_object();
    out.field("name", difference.name);
    write_row_or_null(out, "a", difference.a);
    write_row_or_null(out, "b", difference.b);
    out.field("made_by", difference.made_by ? std::optional(layer_code(*difference.made_by)) : std::nullopt);
    out.field("same_in_every_type", difference.same_in_every_type);
    out.field("dependence", run_given ? std::optional(dependence_word(difference.dependence)) : std::nullopt);
    out.end_object();
}

void write_undecided(JSON_WRITER& out, const UNDECIDED_ROW& row)
{
    out.begin_object();
    out.field("what", row.list);
    out.field("name", row.name);
    out.end_object();
}

void write_run(JSON_WRITER& out, const std::optional<RUN_REPORT>& run)
{
    out.key("used");
    if (!run)
    {
        out.value(std::nullopt);
        return;
    }
    out.begin_object();
    out.field("file", run->file);
    out.field("run", run->run);
    out.end_object();
}
}

void write_differences_json(JSON_WRITER& out, const COMPARED_SNAPSHOT& a, const COMPARED_SNAPSHOT& b,
                            const SNAPSHOT_DIFFERENCES& differences, const std::optional<RUN_REPORT>& run)
{
    out.begin_object();
    write_side(out, "a", a);
    write_side(out, "b", b);
    write_run(out, run);
    out.field("same", differences.none());
    out.key("installation");
    out.list(differences.installation, write_installation);
    out.key("environment");
    out.list(differences.environment, write_environment);
    out.key("files");
    out.list(differences.files, write_file);
    out.key("variables");
    out.list(differences.variables, [&run](JSON_WRITER& writer, const VARIABLE_DIFFERENCE& difference)
             { write_variable(writer, difference, run.has_value()); });
    out.key("preferences");
    out.list(differences.preferences, write_preference);
    out.key("cannot_tell");
    out.list(differences.undecided, write_undecided);
    out.end_object();
}
