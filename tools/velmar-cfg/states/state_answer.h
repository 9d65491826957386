// What a reader of one type gets for a variable of a state.
#ifndef TOOLS_VELMAR_CFG_STATES_STATE_ANSWER_H
#define TOOLS_VELMAR_CFG_STATES_STATE_ANSWER_H

#include <optional>
#include <string>

#include "tools/velmar-cfg/settings/settings.h"
#include "tools/velmar-cfg/settings/typed_answer.h"
#include "tools/velmar-cfg/settings/typed_value.h"
#include "tools/velmar-cfg/states/state.h"

// As answer_typed(), with what the state knows of a variable that no layer sets. `settings` are those of the state.
// `fallback` takes the place of a value that is not usable, but not of one that the document leaves out or masks.
TYPED_ANSWER answer_of_state(const STATE& state, const SETTINGS& settings, const std::string& name, READER_TYPE type,
                             const std::optional<TYPED_VALUE>& fallback, bool suggest);

#endif
