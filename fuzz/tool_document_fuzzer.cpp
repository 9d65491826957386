// The bytes of a file as a snapshot and as a run report: what is refused is refused with one line that names the file,
// and what is accepted, written and read again, is the same and does not differ from itself.
#include <nlohmann/json.hpp>

#include "fuzz/fuzz_support.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_values.h"
#include "tools/velmar-cfg/documents/snapshot_differences.h"
#include "tools/velmar-cfg/documents/snapshot_json.h"

using fuzz::expect_equal;
using nlohmann::ordered_json;

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
    return document_as_text(snapshot_as_json(snapshot));
}

// As a host writes it, but for the name of a run without one.
std::string as_text(const RUN_REPORT& report)
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
    return document_as_text({{"schema", "velmar-run-report"},
                             {"schema_version", 1},
                             {"run", report.run},
                             {"release", report.release},
                             {"files",
                              {{"main", value_or_null(report.main_file)},
                               {"appended", value_or_null(report.appended_file)},
                               {"regtest", value_or_null(report.regtest_file)}}},
                             {"read", read},
                             {"external_never_read", never_read},
                             {"uncounted", report.uncounted}});
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
    if (const auto snapshot = accepted(path, read_snapshot))
    {
        fuzz::expect(compare_snapshots(*snapshot, *snapshot).none(), "a snapshot differs from itself");
        expect_same_again(*snapshot, path, read_snapshot);
    }
    fuzz::write_file(path, bytes);
    if (const auto report = accepted(path, read_run_report))
    {
        expect_same_again(*report, path, read_run_report);
        for (const READ_VARIABLE& variable : report->read)
            fuzz::expect(dependence_on(variable.name, *report).kind == DEPENDENCE::KIND::READ, "read, but not found");
        static_cast<void>(variables_that_no_run_read({*report, *report}));
    }
    return 0;
}
