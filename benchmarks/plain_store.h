// The internal variable store, implemented plainly: the same table, the same hash, the same single lock and the same
// text rules, with the simplest standard means. The comparison shows what the library's own algorithms gain.
#ifndef BENCHMARKS_PLAIN_STORE_H
#define BENCHMARKS_PLAIN_STORE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

struct PLAIN_RECORD
{
    std::string value;
    std::uint64_t access_count = 0;
    bool bool_valid = false;
    bool int_valid = false;
    bool uint_valid = false;
    bool had_valid_read = false;
    bool bool_value = false;
    bool external = false;
    int int_value = 0;
    unsigned int uint_value = 0;
};

struct PLAIN_HASH
{
    std::size_t operator()(const std::string& name) const;
};

struct PLAIN_EQUAL
{
    bool operator()(const std::string& a, const std::string& b) const;
};

using PLAIN_TABLE = std::unordered_map<std::string, PLAIN_RECORD*, PLAIN_HASH, PLAIN_EQUAL>;

// Any thread; one recursive mutex around each call.
bool plain_is_on(const std::string& name, bool default_value);
int plain_get_int_value(const std::string& name, int default_value);
double plain_get_double_value(const std::string& name, double default_value);
std::string plain_get_value(const std::string& name);
void plain_set_value(const std::string& name, const std::string& value);
void plain_read_ini_file(const std::string& path);
void plain_close_ini_file();
void plain_get_most_accessed(std::vector<std::pair<std::string, std::string>>& out, std::size_t max);

// The table as it stands, for looking names up without the lock; null without a store.
const PLAIN_TABLE* plain_table();

#endif
