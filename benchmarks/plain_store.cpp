#include "benchmarks/plain_store.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <mutex>

namespace
{
std::recursive_mutex plain_mutex;
PLAIN_TABLE* plain_file = nullptr;
bool plain_dirty = true;
std::unordered_map<std::string, std::vector<void*>> callbacks; // always empty; each store of a value asks it

char folded(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

PLAIN_RECORD& counted_record(const std::string& name)
{
    const auto [entry, is_new] = plain_file->emplace(name, nullptr);
    if (is_new)
        entry->second = new PLAIN_RECORD();
    else
        ++entry->second->access_count;
    return *entry->second;
}

bool convert_to_bool(const char* text, bool& value)
{
    const auto is = [text](const char* word) { return strcasecmp(text, word) == 0; };
    value = is("on") || is("1") || is("true");
    return value || is("off") || is("0") || is("false");
}

template <typename T>
bool convert_to_number(const std::string& text, T& value)
{
    T number{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end)
        return false;
    value = number;
    return true;
}

void insert_element(const std::string& name, const std::string& value, bool external)
{
    const std::lock_guard lock(plain_mutex);
    auto entry = plain_file->find(name);
    if (entry == plain_file->end())
        entry = plain_file->insert({name, new PLAIN_RECORD()}).first;
    PLAIN_RECORD& record = *entry->second;
    record.value = value;
    record.bool_valid = convert_to_bool(record.value.c_str(), record.bool_value);
    record.int_valid = convert_to_number(record.value, record.int_value);
    record.uint_valid = convert_to_number(record.value, record.uint_value);
    record.had_valid_read = false;
    if (external)
        record.external = true;
    if (callbacks.find(name) != callbacks.end())
        std::abort();
    plain_dirty = true;
}

void remove_comment(std::string& line)
{
    bool in_quotes = false;
    for (std::size_t at = line.find_first_of(";#\""); at != std::string::npos; at = line.find_first_of(";#\"", at + 1))
    {
        if (line[at] == '"')
            in_quotes = !in_quotes;
        else if (!in_quotes)
        {
            line = line.substr(0, at);
            break;
        }
    }
    const std::size_t slashes = line.find("//");
    if (slashes != std::string::npos && slashes < line.find('='))
        line = line.substr(0, slashes);
}

std::string without_white_space(const std::string& text)
{
    std::string rest;
    for (const char c : text)
    {
        if (std::isspace(static_cast<unsigned char>(c)) == 0)
            rest += c;
    }
    return rest;
}

std::string trimmed(const std::string& text)
{
    constexpr const char* white_space = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(white_space);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(white_space) - first + 1);
}
}

std::size_t PLAIN_HASH::operator()(const std::string& name) const
{
    std::uint64_t hash = 0;
    for (const char* at = name.c_str(); *at != '\0'; ++at)
        hash = hash * 17 + static_cast<std::uint64_t>(static_cast<signed char>(folded(*at)));
    return hash;
}

bool PLAIN_EQUAL::operator()(const std::string& a, const std::string& b) const
{
    const char* in_a = a.c_str();
    const char* in_b = b.c_str();
    for (; folded(*in_a) == folded(*in_b); ++in_a, ++in_b)
    {
        if (*in_a == '\0')
            return true;
    }
    return false;
}

bool plain_is_on(const std::string& name, bool default_value)
{
    const std::lock_guard lock(plain_mutex);
    PLAIN_RECORD& record = counted_record(name);
    if (record.bool_valid)
        record.had_valid_read = true;
    return record.bool_valid ? record.bool_value : default_value;
}

int plain_get_int_value(const std::string& name, int default_value)
{
    const std::lock_guard lock(plain_mutex);
    PLAIN_RECORD& record = counted_record(name);
    if (record.int_valid)
        record.had_valid_read = true;
    return record.int_valid ? record.int_value : default_value;
}

double plain_get_double_value(const std::string& name, double default_value)
{
    std::string text;
    {
        const std::lock_guard lock(plain_mutex);
        text = counted_record(name).value;
    }
    if (text.empty())
        return default_value;
    char* stop = nullptr;
    const double number = std::strtod(text.c_str(), &stop);
    if (*stop == '\0')
    {
        const std::lock_guard lock(plain_mutex);
        if (const auto entry = plain_file->find(name); entry != plain_file->end())
            entry->second->had_valid_read = true;
    }
    return number;
}

std::string plain_get_value(const std::string& name)
{
    const std::lock_guard lock(plain_mutex);
    PLAIN_RECORD& record = counted_record(name);
    record.had_valid_read = true;
    return record.value;
}

void plain_set_value(const std::string& name, const std::string& value)
{
    insert_element(name, value, false);
}

void plain_read_ini_file(const std::string& path)
{
    const std::lock_guard lock(plain_mutex);
    plain_close_ini_file();
    plain_file = new PLAIN_TABLE;
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line))
    {
        if (line.size() < 3)
            continue;
        remove_comment(line);
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        insert_element(without_white_space(line.substr(0, equals)), trimmed(line.substr(equals + 1)), true);
    }
}

void plain_close_ini_file()
{
    const std::lock_guard lock(plain_mutex);
    if (plain_file == nullptr)
        return;
    for (const auto& [name, record] : *plain_file)
        delete record;
    delete plain_file;
    plain_file = nullptr;
    plain_dirty = true;
}

void plain_get_most_accessed(std::vector<std::pair<std::string, std::string>>& out, std::size_t max)
{
    std::vector<std::pair<std::string, std::uint64_t>> usages;
    {
        const std::lock_guard lock(plain_mutex);
        for (const auto& [name, record] : *plain_file)
            usages.emplace_back(name, record->access_count);
    }
    std::sort(usages.begin(), usages.end(),
              [](const auto& a, const auto& b)
              { return a.second != b.second ? a.second > b.second : a.first > b.first; });
    for (std::size_t i = 0; i < std::min(max, usages.size()); ++i)
        out.emplace_back(usages[i].first, std::to_string(usages[i].second));
}

const PLAIN_TABLE* plain_table()
{
    return plain_file;
}
