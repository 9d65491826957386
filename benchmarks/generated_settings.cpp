#include "benchmarks/generated_settings.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace
{
constexpr std::array<std::string_view, 32> words = {
    "router", "fanout", "max",   "enable", "debug", "timing", "report", "cache", "placer", "retime", "io",
    "clock",  "level",  "limit", "merge",  "net",   "power",  "seed",   "skip",  "sta",    "synth",  "tile",
    "use",    "verify", "width", "buffer", "chain", "depth",  "flow",   "goal",  "hold",   "mode"};

constexpr std::array<std::string_view, 6> boolean_words = {"on", "off", "0", "1", "true", "false"};

constexpr std::string_view name_characters = "abcdefghijklmnopqrstuvwxyz0123456789";

// The standard distributions differ between libraries; the generator itself does not.
class DICE
{
public:
    explicit DICE(std::uint64_t seed) : generator(seed) {}

    // 0 to below - 1
    std::size_t roll(std::size_t below)
    {
        return static_cast<std::size_t>(generator() % below);
    }

    bool one_in(std::size_t chances)
    {
        return roll(chances) == 0;
    }

    template <typename RANGE>
    auto pick(const RANGE& range)
    {
        return range[roll(range.size())];
    }

private:
    std::mt19937_64 generator;
};

class GENERATOR
{
public:
    explicit GENERATOR(std::uint64_t seed) : dice(seed), used{hot_name} {}

    std::string unused_name()
    {
        constexpr std::size_t shortest = 6;
        constexpr std::size_t longest = 35;
        const std::size_t length = shortest + dice.roll(longest - shortest + 1);
        std::string name(dice.pick(words));
        while (name.size() < length)
            name.append("_").append(dice.pick(words));
        name.resize(length);
        while (name.back() == '_' || !used.insert(name).second)
            std::generate(name.end() - 4, name.end(), [this] { return dice.pick(name_characters); });
        return name;
    }

    std::string sentence(std::size_t most_words)
    {
        std::string text(dice.pick(words));
        for (std::size_t more = dice.roll(most_words); more > 0; --more)
            text.append(" ").append(dice.pick(words));
        return text;
    }

    VALUE_KIND kind()
    {
        const std::size_t percent = dice.roll(100);
        return percent < 36   ? VALUE_KIND::BOOLEAN_WORD
               : percent < 54 ? VALUE_KIND::INTEGER
               : percent < 70 ? VALUE_KIND::REAL
               : percent < 85 ? VALUE_KIND::TEXT
                              : VALUE_KIND::PATH;
    }

    std::string value(VALUE_KIND kind)
    {
        switch (kind)
        {
        case VALUE_KIND::BOOLEAN_WORD:
            return std::string(dice.pick(boolean_words));
        case VALUE_KIND::INTEGER:
            return (dice.one_in(5) ? "-" : "") + std::to_string(dice.roll(dice.one_in(2) ? 100 : 1'000'000));
        case VALUE_KIND::REAL:
            return std::to_string(dice.roll(1000)) + "." + std::to_string(1 + dice.roll(999));
        case VALUE_KIND::TEXT:
            return dice.one_in(4) ? '"' + sentence(6) + '"' : sentence(6);
        case VALUE_KIND::PATH:
            break;
        }
        std::string path;
        for (std::size_t more = 2 + dice.roll(5); more > 0; --more)
            path.append("/").append(dice.pick(words));
        return path + ".log";
    }

    void add_line(GENERATED_SETTINGS& settings)
    {
        if (settings.lines != 1 && dice.one_in(10))
            settings.text.append("# ").append(sentence(8));
        else
            add_assignment(settings);
        settings.text += '\n';
        ++settings.lines;
    }

private:
    void add_assignment(GENERATED_SETTINGS& settings)
    {
        GENERATED_VARIABLE variable{};
        if (settings.lines == 1) // the second line, so that finding it is no special case of any store
            variable = {hot_name, "1", VALUE_KIND::TEXT, false};
        else
        {
            variable.name = unused_name();
            variable.kind = kind();
            variable.value = value(variable.kind);
            variable.has_comment = dice.one_in(10);
        }
        settings.text.append(variable.name).append(dice.one_in(3) ? "=" : " = ").append(variable.value);
        if (variable.has_comment)
            settings.text.append(dice.one_in(2) ? "  # " : " ; ").append(sentence(5));
        settings.variables.push_back(std::move(variable));
    }

    DICE dice;
    std::unordered_set<std::string> used;
};

constexpr std::uint64_t seed = 20'231'103;

void shuffle(std::vector<std::string>& names)
{
    DICE dice(seed + 2);
    for (std::size_t i = names.size(); i > 1; --i)
        std::swap(names[i - 1], names[dice.roll(i)]);
}

GENERATED_SETTINGS generate(std::size_t lines, std::size_t variables)
{
    GENERATOR generator(seed);
    GENERATED_SETTINGS settings;
    settings.text = "[settings]\n";
    while (settings.lines < lines && settings.variables.size() < variables)
        generator.add_line(settings);
    return settings;
}
}

GENERATED_SETTINGS generate_lines(std::size_t lines)
{
    return generate(lines, lines);
}

GENERATED_SETTINGS generate_variables(std::size_t variables)
{
    return generate(SIZE_MAX, variables);
}

std::vector<std::string> generate_unknown_names(std::size_t count)
{
    GENERATOR generator(seed + 1);
    std::vector<std::string> names(count);
    // No generated name ends so: none has a "-".
    std::generate(names.begin(), names.end(), [&] { return generator.unused_name().append("-x"); });
    return names;
}

std::vector<std::string> shuffled_names(const GENERATED_SETTINGS& settings, VALUE_KIND kind, std::size_t count)
{
    std::vector<std::string> names;
    for (const GENERATED_VARIABLE& variable : settings.variables)
    {
        if (variable.kind == kind && !variable.has_comment && variable.value != "on" && variable.value != "off")
            names.push_back(variable.name);
    }
    if (names.size() < count)
    {
        std::cerr << "too few variables of one kind: " << names.size() << '\n';
        std::abort();
    }
    shuffle(names);
    names.resize(count);
    return names;
}

std::vector<std::string> shuffled_names(const GENERATED_SETTINGS& settings)
{
    std::vector<std::string> names;
    for (const GENERATED_VARIABLE& variable : settings.variables)
        names.push_back(variable.name);
    shuffle(names);
    return names;
}
