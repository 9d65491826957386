#include "tests/support/temporary_directory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>

TEMPORARY_DIRECTORY::TEMPORARY_DIRECTORY()
{
    const char* const parent = std::getenv("TMPDIR");
    directory = std::string(parent != nullptr && *parent != '\0' ? parent : "/tmp") + "/zon_test_XXXXXX";
    if (mkdtemp(directory.data()) == nullptr)
        throw std::runtime_error("cannot make " + directory);
}

TEMPORARY_DIRECTORY::~TEMPORARY_DIRECTORY()
{
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

void write_file(const std::string& path, const std::string& bytes)
{
    std::filesystem::create_directories(std::filesystem::absolute(path).parent_path());
    std::ofstream stream(path, std::ios::binary);
    stream << bytes;
    stream.close();
    ASSERT_TRUE(stream) << path;
}

std::string read_file(const std::string& path)
{
    const std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}
