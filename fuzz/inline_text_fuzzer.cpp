// An inline text laid over a store twice, as internal and as external assignments, against the rules written out
// plainly. The first byte says which comes first.
#include "cfg_ini/cfg_ini.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/plain_variables.h"
#include "tests/support/plain_rules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::directory();
    if (size == 0)
        return 0;
    const bool internal_first = (*data & 1) != 0;
    const std::string text(data + 1, data + size);

    cfg_read_ini_file("");
    PLAIN_VARIABLES plain;
    for (const bool internal : {internal_first, !internal_first})
    {
        cfg_process_ini_string(text, internal);
        const std::vector<plain::ASSIGNMENT> assignments = plain::assignments_of_inline_text(text);
        for (const auto& [name, value] : assignments)
            plain.store(name, value, !internal);
        for (const auto& [name, value] : assignments)
            fuzz::expect_equal(cfg_get_int_value(name, 3), plain.integer(name).value_or(3), fuzz::quoted(name));
        plain.expect_same_store();
    }
    return 0;
}
