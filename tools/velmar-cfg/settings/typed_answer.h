// What a reader of one type gets of a variable, with a default of its own if it has one.
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

// The locations look into the settings that were asked, which must outlive it.
struct TYPED_ANSWER
{
    std::string name; // as asked for
    READER_TYPE type;
    std::string text;    // as stored; empty when the variable is not set
    TYPED_VALUE value;   // what the reader gets: the variable's value, else the default, else none
    bool usable = false; // it is the variable's own value
    bool external = false;
    std::optional<LOCATION> location; // of the assignment that won; nothing when no layer sets the variable

    // Whether the variable has a value, which a document may know and leave out; nothing where it is not known.
    std::optional<bool> has_value = false;

    bool masked = false; // a part of the text is hidden, so that no reader's value is known

    // One sentence: why the variable has no usable value, or what is odd about the one that it has. Empty for neither,
    // and where a default stands in.
    std::string remark;

    bool is_set() const
    {
        return location.has_value();
    }
};

// `fallback` is what the reader gives as its default; none for a reader without one. The remark on a variable that is
// not set suggests a similar name unless that is not wanted: it takes a walk over all names. `other_names` may be meant
// as well.
TYPED_ANSWER answer_typed(const SETTINGS& settings, const std::string& name, READER_TYPE type,
                          const std::optional<TYPED_VALUE>& fallback, bool suggest = true,
                          const std::vector<std::string>& other_names = {});

// The names with which `name` may be mistaken: those of the known variables, of these settings, and the others, but for
// the name itself.
std::vector<std::string> names_that_may_be_meant(const SETTINGS& settings, const std::string& name,
                                                 const std::vector<std::string>& other_names);

// " (did you mean 'NEAREST'?)", among these names of all layers; or nothing.
std::string similar_variable(const SETTINGS& settings, const std::string& name,
                             const std::vector<std::string>& other_names);

// A text as a default of that type. The empty text is one of every type. Throws TOOL_ERROR(USAGE) for a text that no
// reader of the type could have as its default.
TYPED_VALUE default_of_type(READER_TYPE type, std::string_view text);

// {"name", "type", "value", "usable", "set", "masked", "text", "external", "layer", "file", "line", "item"}.
void write_json(JSON_WRITER& out, const TYPED_ANSWER& answer);

// Its fields, for an object that has others too.
void write_fields(JSON_WRITER& out, const TYPED_ANSWER& answer);

#endif
