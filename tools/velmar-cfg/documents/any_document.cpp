// Offers the reader both formats. The document's first fields say which one holds; rows are taken by the snapshot's
// reader only if it is a snapshot.
#include "tools/velmar-cfg/documents/any_document.h"

#include <algorithm>
#include <string_view>

#include "tools/velmar-cfg/base/json_reader.h"

bool begins_like_a_document(std::string_view bytes)
{
    // The name of the format is the first member.
    for (const std::string_view expected : {"{", "\"schema\"", ":", "\"velmar-"})
    {
        bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
        if (!bytes.starts_with(expected))
            return false;
        bytes.remove_prefix(expected.size());
    }
    return true;
}

ANY_DOCUMENT read_any_document(const std::string& path, const SNAPSHOT_LISTS& wanted, SECRETS& secrets)
{
    SNAPSHOT_READER snapshot(secrets, wanted);
    const DOCUMENT_FORMAT of_snapshot = snapshot.format();
    const JSON_DOCUMENT document(path, {of_snapshot, run_report_format()});
    if (std::string_view(document.kind().schema) == of_snapshot.kind.schema)
        return snapshot.finish(document);
    return run_report_in(document, path, secrets);
}
