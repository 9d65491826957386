// The bytes of a file as a snapshot and as a run report: what is refused is refused with one line that names the file,
// and what is accepted, written and read again, is the same and does not differ from itself.
#include "fuzz/fuzz_support.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/run_report_json.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"

using fuzz::expect_equal;

namespace
{
// What `read` makes of the file; nothing when it refuses it.
template <typename READ>
auto accepted(const std::string& path, READ read) -> std::optional<decltype(read(path))>
{
    try
    {
        return read(path);
    }
    catch (const TOOL_ERROR& error)
    {
        const std::string what = error.what();
        fuzz::expect(error.exit_code == EXIT_CODE::BAD_INPUT, "the exit code of " + what);
        fuzz::expect(what.starts_with(path + ": ") && what.find('\n') == std::string::npos, "the complaint " + what);
        return std::nullopt;
    }
}

std::string as_text(const SNAPSHOT& snapshot)
{
    TEXT_SINK text;
    JSON_WRITER out(text);
    write_json(out, snapshot);
    out.finish();
    return text.text;
}

// As a host writes it, but for the name of a run without one.
std::string as_text(const RUN_REPORT& report)
{
    TEXT_SINK text;
    JSON_WRITER out(text);
    out.begin_object();
    out.field("schema", "velmar-run-report");
    out.field("schema_version", report.version);
    write_fields(out, report);
    out.end_object();
    out.finish();
    return text.text;
}

// Writes what was accepted, and reads it again.
template <typename DOCUMENT, typename READ>
void expect_same_again(const DOCUMENT& document, const std::string& path, READ read)
{
    const std::string text = as_text(document);
    fuzz::write_file(path, text);
    const auto again = accepted(path, read);
    fuzz::expect(again.has_value(), "refused what was written of an accepted document: " + fuzz::quoted(text));
    expect_equal(as_text(*again), text, "written again");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = fuzz::directory() + "/document.json";
    const std::string bytes(data, data + size);

    fuzz::write_file(path, bytes);
    SECRETS secrets; // a document that shows some is read with them masked
    const auto read_snapshot_of = [&secrets](const std::string& file) { return read_snapshot(file, secrets); };
    if (const auto snapshot = accepted(path, read_snapshot_of))
    {
        fuzz::expect(compare_snapshots(*snapshot, *snapshot).none(), "a snapshot differs from itself");
        expect_same_again(*snapshot, path, read_snapshot_of);
    }
    fuzz::write_file(path, bytes);
    const auto read_report = [&secrets](const std::string& file) { return read_run_report(file, secrets); };
    if (const auto report = accepted(path, read_report))
    {
        expect_same_again(*report, path, read_report);
        for (const READ_VARIABLE& variable : report->read)
            fuzz::expect(dependence_on(variable.name, *report).kind == DEPENDENCE::KIND::READ, "read, but not found");
        static_cast<void>(variables_that_no_run_read({*report, *report}));
    }
    return 0;
}
