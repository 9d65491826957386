// The bytes of a settings file, through the real reader and from a file, against the rules written out plainly: which
// variables there are, under which spelling, and what every typed reading of them answers and leaves behind.
#include <bit>
#include <cmath>

#include "cfg_ini/cfg_ini.h"
#include "fuzz/fuzz_support.h"
#include "fuzz/plain_variables.h"
#include "tests/support/plain_rules.h"

using fuzz::expect_equal;

namespace
{
void expect_same_readings(PLAIN_VARIABLES& plain, const std::string& name)
{
    const std::string about = "variable " + fuzz::quoted(name);
    expect_equal(cfg_is_on(name, true), plain.boolean(name).value_or(true), about + ", or true");
    expect_equal(cfg_get_int_value(name, -7), plain.integer(name).value_or(-7), about + ", signed");
    expect_equal(cfg_get_uint_value(name, 7), plain.unsigned_integer(name).value_or(7), about + ", unsigned");
    const double number = cfg_get_double_value(name, 0.5);
    const double expected = plain.floating(name).value_or(0.5);
    if (!std::isnan(number) || !std::isnan(expected))
        expect_equal(std::bit_cast<std::uint64_t>(number), std::bit_cast<std::uint64_t>(expected), about + ", bits");
    expect_equal(cfg_get_value(name), plain.text(name), about + ", text");
    fuzz::expect(cfg_ini_is_external(name), about + ", external");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = fuzz::directory() + "/fuzzed.ini";
    const std::string bytes(data, data + size);
    fuzz::write_file(path, bytes);
    cfg_read_ini_file(path);

    PLAIN_VARIABLES plain;
    const std::vector<plain::ASSIGNMENT> assignments = plain::assignments_of_file(bytes);
    for (const auto& [name, value] : assignments)
        plain.store(name, value, true);
    plain.expect_same_store();

    for (const auto& [name, value] : assignments)
    {
        expect_same_readings(plain, name);
        expect_same_readings(plain, plain::folded_up_to_zero(name));
    }
    plain.expect_same_store();
    return 0;
}
