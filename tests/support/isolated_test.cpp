#include "tests/support/isolated_test.h"

#include <clocale>
#include <filesystem>

namespace
{
// The tests run in the environment's locale, as in a host that has users.
[[maybe_unused]] const char* const locale = std::setlocale(LC_ALL, "");
}

ISOLATED_TEST::ISOLATED_TEST()
{
    for (const char* const name : {"VELMAR_INI", "VELMAR_INI_DISABLED", "HOME", "APPENDED_VELMAR_INI",
                                   "VELMAR_INI_VARS", "VELMAR2_INI", "ZON_MSG_DEBUG"})
        environment.unset(name);
    environment.set("TMPDIR", temporary.path());
    std::filesystem::create_directory(temporary.path("cwd"));
    current_directory = std::make_unique<SCOPED_CURRENT_DIRECTORY>(temporary.path("cwd"));
}
