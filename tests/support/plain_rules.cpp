#include "tests/support/plain_rules.h"

#include <cctype>
#include <charconv>
#include <cstring>
#include <strings.h>

namespace
{
char fold(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
}

std::string trimmed(std::string text, const std::string& characters)
{
    while (!text.empty() && characters.find(text.front()) != std::string::npos)
        text.erase(0, 1);
    while (!text.empty() && characters.find(text.back()) != std::string::npos)
        text.pop_back();
    return text;
}

// The pieces between the separators; one more than there are separators.
std::vector<std::string> pieces(const std::string& text, char separator)
{
    std::vector<std::string> all(1);
    for (const char c : text)
    {
        if (c == separator)
            all.emplace_back();
        else
            all.back() += c;
    }
    return all;
}
}

std::uint64_t plain::hash(const std::string& name)
{
    std::uint64_t h = 0;
    for (const char* p = name.c_str(); *p != '\0'; ++p)
        h = h * 17 + static_cast<std::uint64_t>(std::int64_t{static_cast<signed char>(fold(*p))});
    return h;
}

std::string plain::folded_up_to_zero(const std::string& name)
{
    std::string text = name.c_str();
    for (char& c : text)
        c = fold(c);
    return text;
}

void plain::remove_comment(std::string& line)
{
    bool in_quotes = false;
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        if (line[i] == '"')
            in_quotes = !in_quotes;
        else if ((line[i] == ';' || line[i] == '#') && !in_quotes)
        {
            line.resize(i);
            break;
        }
    }
    const std::size_t slashes = line.find("//");
    if (slashes != std::string::npos && slashes < line.find('='))
        line.resize(slashes);
}

std::optional<plain::ASSIGNMENT> plain::assignment(std::string line)
{
    const bool is_short = line.size() < 3;
    if (is_short && !(line.size() == 2 && line[0] == '='))
        return std::nullopt;
    remove_comment(line);
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
        return std::nullopt;
    std::string name;
    for (const char c : line.substr(0, equals))
    {
        if (std::isspace(static_cast<unsigned char>(c)) == 0)
            name += c;
    }
    const std::string value = trimmed(line.substr(equals + 1), " \t\n\v\f\r");
    if (is_short && value.empty())
        return std::nullopt;
    return ASSIGNMENT(name, value);
}

std::vector<plain::ASSIGNMENT> plain::assignments_of_file(const std::string& bytes)
{
    std::vector<ASSIGNMENT> all;
    for (const std::string& line : pieces(bytes, '\n'))
    {
        if (const std::optional<ASSIGNMENT> found = assignment(line))
            all.push_back(*found);
    }
    return all;
}

std::vector<plain::ASSIGNMENT> plain::assignments_of_inline_text(const std::string& text)
{
    const std::size_t first = text.find_first_of(":;");
    std::vector<ASSIGNMENT> all;
    for (const std::string& item : pieces(text, first == std::string::npos ? ';' : text[first]))
    {
        const std::size_t equals = item.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string name = trimmed(item.substr(0, equals), " ");
        const std::string value = trimmed(item.substr(equals + 1), " ");
        if (!name.empty() && !value.empty())
            all.emplace_back(name, value);
    }
    return all;
}

template <typename T>
std::optional<T> plain::number(const std::string& text)
{
    const char* const end = text.c_str() + std::strlen(text.c_str());
    T value{};
    const auto [stop, error] = std::from_chars(text.c_str(), end, value);
    if (error != std::errc{} || stop != end)
        return std::nullopt;
    return value;
}

template std::optional<int> plain::number<int>(const std::string& text);
template std::optional<unsigned int> plain::number<unsigned int>(const std::string& text);

std::optional<bool> plain::boolean(const std::string& text)
{
    for (const char* word : {"on", "1", "true"})
    {
        if (strcasecmp(text.c_str(), word) == 0)
            return true;
    }
    for (const char* word : {"off", "0", "false"})
    {
        if (strcasecmp(text.c_str(), word) == 0)
            return false;
    }
    return std::nullopt;
}
