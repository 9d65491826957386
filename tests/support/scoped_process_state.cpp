#include "tests/support/scoped_process_state.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

SCOPED_ENVIRONMENT::~SCOPED_ENVIRONMENT()
{
    for (const auto& [name, value] : before)
    {
        if (value)
            setenv(name.c_str(), value->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
}

void SCOPED_ENVIRONMENT::set(const std::string& name, const std::string& value)
{
    remember(name);
    setenv(name.c_str(), value.c_str(), 1);
}

void SCOPED_ENVIRONMENT::unset(const std::string& name)
{
    remember(name);
    unsetenv(name.c_str());
}

void SCOPED_ENVIRONMENT::remember(const std::string& name)
{
    const char* const value = std::getenv(name.c_str());
    before.try_emplace(name, value != nullptr ? std::optional<std::string>(value) : std::nullopt);
}

SCOPED_CURRENT_DIRECTORY::SCOPED_CURRENT_DIRECTORY(const std::string& directory)
    : before(std::filesystem::current_path().string())
{
    std::filesystem::current_path(directory);
}

SCOPED_CURRENT_DIRECTORY::~SCOPED_CURRENT_DIRECTORY()
{
    std::filesystem::current_path(before);
}

SCOPED_LOCALE::SCOPED_LOCALE(const char* name, const char* directory) : before(std::setlocale(LC_ALL, nullptr))
{
    SCOPED_ENVIRONMENT environment;
    if (directory != nullptr)
        environment.set("LOCPATH", directory);
    if (std::setlocale(LC_ALL, name) == nullptr)
        throw std::runtime_error("no locale " + std::string(name));
}

SCOPED_LOCALE::~SCOPED_LOCALE()
{
    std::setlocale(LC_ALL, before.c_str());
}

SCOPED_COMMA_LOCALE::SCOPED_COMMA_LOCALE() : SCOPED_LOCALE("de_DE.UTF-8", ZON_TEST_LOCALES) {}

SCOPED_WHITE_A0_LOCALE::SCOPED_WHITE_A0_LOCALE() : SCOPED_LOCALE("white_a0", ZON_TEST_LOCALES) {}
