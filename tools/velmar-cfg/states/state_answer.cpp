// Answers a typed question from a state, as get does. The answer is that of the state's settings (typed_answer.h), but
// for two cases: the text is masked in a document, or a document does not tell whether the variable was set or which
// value it had. Then there is no value, and the remark says why.
#include "tools/velmar-cfg/states/state_answer.h"

#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
// No value, and why.
void take_value_away(TYPED_ANSWER& answer, const std::string& why)
{
    answer.value = {};
    answer.usable = false;
    answer.remark = "'" + answer.name + "' " + why;
}
}

TYPED_ANSWER answer_of_state(const STATE& state, const SETTINGS& settings, const std::string& name, READER_TYPE type,
                             const std::optional<TYPED_VALUE>& fallback, bool suggest)
{
    const bool is_absent = suggest && settings.find(name) == nullptr;
    const std::vector<std::string> others = is_absent ? state.names_in_report() : std::vector<std::string>();
    TYPED_ANSWER answer = answer_typed(settings, name, type, fallback, suggest && state.knows_unset, others);
    if (has_hidden_parts(answer.text))
    {
        answer.masked = true;
        take_value_away(answer, "is masked in " + state.name + ": its value is not known");
    }
    if (answer.is_set())
        return answer;
    const ABSENT_VARIABLE known = state.absent_variable(name);
    if (known == ABSENT_VARIABLE::UNSET)
        return answer;
    answer.has_value = is_set_without_value(known);
    if (known == ABSENT_VARIABLE::NOT_RECORDED)
    {
        const bool never_read = state.reads_of(name) == std::uint64_t{0};
        take_value_away(answer, std::string("is set") + (never_read ? " and was never read" : "") + ": " + state.name +
                                    " does not record its value");
    }
    else if (!answer.remark.empty())
    {
        const bool is_named = state.undecided.contains(name) || find_known_variable(name) != nullptr;
        answer.remark = "'" + name + "' " + state.why_not_known(name) +
                        (suggest && !is_named ? similar_variable(settings, name, others) : "");
    }
    return answer;
}
