// The machine's own configuration files, for tests that want texts which nobody wrote for them.
#ifndef TESTS_VELMAR_CFG_SYSTEM_FILES_H
#define TESTS_VELMAR_CFG_SYSTEM_FILES_H

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

// Regular files below /etc and /usr that are called like configuration, of 64 KiB at most, in an order that only
// depends on which there are.
inline std::vector<std::filesystem::path> system_configuration_files()
{
    namespace fs = std::filesystem;
    constexpr std::uintmax_t largest = std::uintmax_t{64} * 1024;
    const std::vector<std::string> extensions = {".conf", ".ini",        ".cfg",     ".cnf",     ".rc",
                                                 ".pc",   ".properties", ".service", ".desktop", ".toml"};
    std::vector<fs::path> files;
    for (const char* const root : {"/etc", "/usr"})
    {
        std::error_code error;
        fs::recursive_directory_iterator walk(root, fs::directory_options::skip_permission_denied, error);
        for (; !error && walk != fs::recursive_directory_iterator(); walk.increment(error))
        {
            const fs::directory_entry& entry = *walk;
            std::error_code of_entry;
            if (std::ranges::find(extensions, entry.path().extension().string()) != extensions.end() &&
                entry.symlink_status(of_entry).type() == fs::file_type::regular && entry.file_size(of_entry) <= largest)
                files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    std::ranges::shuffle(files, std::mt19937(20261122));
    return files;
}

// The bytes of a file; empty when it cannot be read.
inline std::string bytes_of(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

#endif
