// One line of a settings file: cutting the comment off, and taking the line apart, against the two passes of the rule
// written out plainly.
#include "cfg_ini/cfg_ini_reader/ini_text.h"
#include "fuzz/fuzz_support.h"
#include "tests/support/plain_rules.h"

using namespace zon_cfg;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string line(data, data + size);
    const std::string about = "of " + fuzz::quoted(line);

    std::string expected = line;
    plain::remove_comment(expected);
    std::string answer = line;
    cfg_remove_commented_portion(&answer);
    fuzz::expect_equal(answer, expected, "what is left " + about);
    cfg_remove_commented_portion(&answer);
    fuzz::expect_equal(answer, expected, "what is left the second time " + about);

    std::string name = "untouched";
    std::string value = "untouched";
    const SETTINGS_LINE kind = parse_settings_line(line, name, value);
    const std::optional<plain::ASSIGNMENT> assignment = plain::assignment(line);
    fuzz::expect_equal(kind == SETTINGS_LINE::ASSIGNMENT, assignment.has_value(), "assigns something " + about);
    if (assignment)
    {
        fuzz::expect_equal(name, assignment->first, "name " + about);
        fuzz::expect_equal(value, assignment->second, "value " + about);
    }
    else
        fuzz::expect_equal(name + value, std::string("untoucheduntouched"), "outputs " + about);
    return 0;
}
