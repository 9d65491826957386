// The rules of lint for one line of a settings file, one item of VELMAR_INI_VARS or one assignment that is known by
// name and value alone.
//
// What a statement does is taken from the layers, and so from the library. The rules here decide only whether the
// statement looks as if it did that.
#ifndef TOOLS_VELMAR_CFG_LINT_EXAMINATION_H
#define TOOLS_VELMAR_CFG_LINT_EXAMINATION_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/namesakes.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"

// A finding, and how its advice goes on after the suggested text.
struct NOTICE
{
    FINDING finding;
    const char* condition; // such as " if that is the variable"; null if the advice never changes
};

// The position of a statement among the assignments.
struct STANDING
{
    ASSIGNMENT_NUMBER number; // its own; of the next assignment if it is none
    bool is_assignment;       // the number is its own
    bool is_first;            // known to be the first of its variable in its layer
    bool is_new;              // it is a suggestion, to take the place of what stands there
};

// The finding that an inline text mixes both separators, at that offset of an item.
FINDING separator_finding(const INPUT_FILE& source, std::size_t offset);

// The examination of one statement. Columns are passed as offsets into its text.
class EXAMINATION
{
public:
    // All must outlive this.
    EXAMINATION(const LAYERS& layers, const NAMESAKES& all_namesakes, const STATEMENT& the_statement,
                const STANDING& the_standing);

    // The findings in the order of their columns. Must be called once.
    std::vector<NOTICE> notices();

private:
    void add(std::size_t offset, SEVERITY severity, const char* reason, const std::string& message,
             const std::string& instead, const char* condition = "");

    void examine_line();
    void examine_item();
    void examine_assignment();

    bool utf_16();
    bool carriage_return();
    void too_short();
    void no_equals_sign();
    bool byte_order_mark_before_text();
    void comment();
    void slashes();
    void unclosed_quote();

    void white_space();
    void separator();

    void name_form();
    void name_characters();
    void value_form();
    void quotes_kept();
    void known_variable(const KNOWN_VARIABLE& known);
    void unknown_variable();
    void letter_case();
    void overridden();

    // The text without its comment.
    std::string_view kept() const
    {
        return text.substr(0, kept_length);
    }

    // The offset of the value, or where it would stand.
    std::size_t value_offset() const
    {
        const std::size_t behind = text.find('=') + 1;
        return behind + first_visible(kept().substr(behind));
    }

    static std::size_t first_visible(std::string_view part);

    const NAMESAKES& namesakes;
    const STATEMENT& statement;
    const STANDING standing;
    const LAYER& layer;
    const std::string_view text;
    const std::size_t kept_length; // of the text without its comment
    std::vector<NOTICE> found;
};

#endif
