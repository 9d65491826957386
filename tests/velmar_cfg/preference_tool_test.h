// Runs of velmar-cfg over a preference file of the test's own: velmar2.ini in the directory "user".
#ifndef TESTS_VELMAR_CFG_PREFERENCE_TOOL_TEST_H
#define TESTS_VELMAR_CFG_PREFERENCE_TOOL_TEST_H

#include <filesystem>
#include <string>

#include "tests/velmar_cfg/tool_test.h"

class PREFERENCE_TOOL_TEST : public TOOL_TEST
{
protected:
    PREFERENCE_TOOL_TEST()
    {
        variables["VELMAR2_INI"] = "user";
        std::filesystem::create_directory("user");
    }

    static void write_preferences(const std::string& bytes)
    {
        write_file(file, bytes);
    }

    static std::string preferences()
    {
        return read_file(file);
    }

    std::string full_path() const
    {
        return std::filesystem::canonical(temporary.path("cwd/user")).string() + "/velmar2.ini";
    }

    static constexpr const char* file = "user/velmar2.ini";
};

#endif
