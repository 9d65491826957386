// Snapshots made by hand, for tests of what is done with them.
#ifndef TESTS_VELMAR_CFG_SNAPSHOTS_H
#define TESTS_VELMAR_CFG_SNAPSHOTS_H

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/documents/snapshot.h"

// A mark whose hash is that digit throughout, under one of two keys that are kept.
inline std::string mark_under(char key, char hash)
{
    return mark_of({std::string(16, key), std::string(16, hash), true, 3});
}

inline LAYER_SET set_of(std::initializer_list<LAYER_KIND> kinds)
{
    LAYER_SET set;
    for (const LAYER_KIND kind : kinds)
        set.insert(kind);
    return set;
}

// A variable that the last of the layers gives its value, in line or item 1. It looks into the texts.
inline SNAPSHOT_VARIABLE variable_of(std::string_view name, std::string_view value,
                                     std::initializer_list<LAYER_KIND> kinds)
{
    const LAYER_SET layers = set_of(kinds);
    const LAYER_KIND last = *(kinds.end() - 1);
    return {name,
            value,
            layers.mark_external(),
            {last, is_file(last) ? layer_code(last) : inline_source, 1},
            layers,
            read_typed(value)};
}

// The JSON that `write` writes, its fields in their order, without blanks and newlines.
template <typename WRITE>
std::string compact_json(WRITE write)
{
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    write(out);
    out.finish();
    return nlohmann::ordered_json::parse(sink.text).dump();
}

#endif
