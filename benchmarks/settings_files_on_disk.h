// The generated settings as files: written when first asked for, removed at process exit.
#ifndef BENCHMARKS_SETTINGS_FILES_ON_DISK_H
#define BENCHMARKS_SETTINGS_FILES_ON_DISK_H

#include <cstddef>
#include <string>
#include <vector>

#include "benchmarks/generated_settings.h"

struct SETTINGS_FILE
{
    std::string path;
    std::size_t lines;
    std::size_t variables;
};

// generate_lines(lines), as a file. One thread at a time.
const SETTINGS_FILE& file_of_lines(std::size_t lines);

// The 10 000 variables that lookups find, as a file.
const SETTINGS_FILE& file_for_lookups();

// 1 000 of those, whose values are of this kind, in random order.
const std::vector<std::string>& names_to_look_up(VALUE_KIND kind);

// All of them, in random order.
const std::vector<std::string>& all_names_to_look_up();

// A directory of this process alone, removed with all that is in it at process exit.
const std::string& scratch_directory();

#endif
