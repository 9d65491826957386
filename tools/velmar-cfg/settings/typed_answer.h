// What a reader of one type gets for a variable. The reader may have a default of its own.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_TYPED_ANSWER_H
#define TOOLS_VELMAR_CFG_SETTINGS_TYPED_ANSWER_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_value.h"

// The location is a view into the settings that were asked, which must outlive it.
struct TYPED_ANSWER
{
    std::string name; // as asked for
    READER_TYPE type;
    std::string text;    // as stored; empty when the variable is not set
    TYPED_VALUE value;   // what the reader gets: the variable's value, else the default, else none
    bool usable = false; // `value` is the variable's own
    bool external = false;
    std::optional<LOCATION> location; // of the assignment that won; nothing when no layer sets the variable

    // Whether the variable has a value. A document may tell that without the value. Nothing if it is not known.
    std::optional<bool> has_value = false;

    bool masked = false; // a part of the text is hidden, so that no reader's value is known

    // One sentence: why the variable has no usable value, or what is odd about its value. Empty if there is nothing to
    // say, or if the default is used.
    std::string remark;

    bool is_set() const
    {
        return location.has_value();
    }
};

// `fallback` is the reader's default, if it has one. With `suggest`, the remark on a variable that is not set suggests
// a similar name; that takes a walk over all names. `other_names` are candidates for it too.
TYPED_ANSWER answer_typed(const SETTINGS& settings, const std::string& name, READER_TYPE type,
                          const std::optional<TYPED_VALUE>& fallback, bool suggest = true,
                          const std::vector<std::string>& other_names = {});

// The names that may be meant by `name`: those of the known variables and of these settings, and those of `other_names`
// that are another name.
std::vector<std::string> names_that_may_be_meant(const SETTINGS& settings, const std::string& name,
                                                 const std::vector<std::string>& other_names);

// " (did you mean 'NEAREST'?)" for the nearest of those names, over all layers; else nothing.
std::string similar_variable(const SETTINGS& settings, const std::string& name,
                             const std::vector<std::string>& other_names);

// A text as a default of that type. The empty text is allowed for every type. Throws TOOL_ERROR(USAGE) for a text that
// is no value of the type.
TYPED_VALUE default_of_type(READER_TYPE type, std::string_view text);

// {"name", "type", "value", "usable", "set", "masked", "text", "external", "layer", "file", "line", "item"}.
void write_json(JSON_WRITER& out, const TYPED_ANSWER& answer);

// Its fields, for an object that has others too.
void write_fields(JSON_WRITER& out, const TYPED_ANSWER& answer);

#endif
