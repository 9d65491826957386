#include "benchmarks/settings_files_on_disk.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

namespace
{
constexpr std::size_t variables_for_lookups = 10'000;
constexpr std::size_t names_in_a_round = 1'000;

class SCRATCH_DIRECTORY
{
public:
    SCRATCH_DIRECTORY() : owner(getpid())
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "cfg_ini_benchmark.XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
        {
            std::cerr << "cannot make " << pattern << '\n';
            std::exit(1);
        }
        path = pattern;
    }
    ~SCRATCH_DIRECTORY()
    {
        std::error_code ignored; // a directory left behind is no reason to fail
        if (owner == getpid())
            std::filesystem::remove_all(path, ignored);
    }
    SCRATCH_DIRECTORY(const SCRATCH_DIRECTORY&) = delete;
    SCRATCH_DIRECTORY& operator=(const SCRATCH_DIRECTORY&) = delete;

    std::string path;

private:
    const pid_t owner; // a forked child leaves it alone
};

SETTINGS_FILE write(const GENERATED_SETTINGS& settings, const std::string& name)
{
    const std::string path = scratch_directory() + "/" + name;
    std::ofstream file(path, std::ios::binary);
    file << settings.text;
    if (!file.flush())
    {
        std::cerr << "cannot write " << path << '\n';
        std::exit(1);
    }
    return {path, settings.lines, settings.variables.size()};
}

const GENERATED_SETTINGS& settings_for_lookups()
{
    static const GENERATED_SETTINGS settings = generate_variables(variables_for_lookups);
    return settings;
}
}

const std::string& scratch_directory()
{
    static const SCRATCH_DIRECTORY directory;
    return directory.path;
}

const SETTINGS_FILE& file_of_lines(std::size_t lines)
{
    static std::map<std::size_t, SETTINGS_FILE> files;
    auto file = files.find(lines);
    if (file == files.end())
        file = files.emplace(lines, write(generate_lines(lines), std::to_string(lines) + ".ini")).first;
    return file->second;
}

const SETTINGS_FILE& file_for_lookups()
{
    static const SETTINGS_FILE file = write(settings_for_lookups(), "lookups.ini");
    return file;
}

const std::vector<std::string>& names_to_look_up(VALUE_KIND kind)
{
    static std::map<VALUE_KIND, std::vector<std::string>> names;
    auto entry = names.find(kind);
    if (entry == names.end())
        entry = names.emplace(kind, shuffled_names(settings_for_lookups(), kind, names_in_a_round)).first;
    return entry->second;
}

const std::vector<std::string>& all_names_to_look_up()
{
    static const std::vector<std::string> names = shuffled_names(settings_for_lookups());
    return names;
}
