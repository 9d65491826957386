#include "tools/velmar-cfg/base/hash_index.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace
{
// An index over texts, with hashes that the test chooses.
class INDEXED_TEXTS
{
public:
    explicit INDEXED_TEXTS(std::uint64_t (*its_hash)(const std::string&)) : hash(its_hash) {}

    std::optional<std::uint32_t> find(const std::string& text) const
    {
        return index.find(hash(text), [&](std::uint32_t entry) { return texts.at(entry) == text; });
    }

    void add(const std::string& text)
    {
        index.add(hash(text), static_cast<std::uint32_t>(texts.size()));
        texts.push_back(text);
    }

private:
    std::uint64_t (*hash)(const std::string&);
    std::vector<std::string> texts;
    HASH_INDEX index;
};

// Finds as many numbers as `count`, in the order in which they came, and none of those that did not come.
void expect_found(const INDEXED_TEXTS& texts, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count; ++i)
        ASSERT_EQ(texts.find(std::to_string(i)), i) << "of " << count;
    for (std::uint32_t i = count; i < count + 100; ++i)
        ASSERT_EQ(texts.find(std::to_string(i)), std::nullopt) << "of " << count;
}

struct HASH_OF_TEXTS
{
    const char* what;
    std::uint64_t (*hash)(const std::string&);
};

void PrintTo(const HASH_OF_TEXTS& row, std::ostream* stream)
{
    *stream << row.what;
}

class HASH_INDEX_OVER : public testing::TestWithParam<HASH_OF_TEXTS>
{
};

TEST_P(HASH_INDEX_OVER, finds_each_entry_at_every_size)
{
    INDEXED_TEXTS texts(GetParam().hash);
    for (std::uint32_t count = 0; count < 300; ++count)
    {
        expect_found(texts, count);
        texts.add(std::to_string(count));
    }
}

INSTANTIATE_TEST_SUITE_P(
    table, HASH_INDEX_OVER,
    testing::Values(HASH_OF_TEXTS{"good hashes", [](const std::string& text)
                                  { return std::uint64_t{std::hash<std::string>()(text)}; }},
                    HASH_OF_TEXTS{"one hash", [](const std::string&) { return std::uint64_t{7}; }},
                    HASH_OF_TEXTS{"hash 0", [](const std::string&) { return std::uint64_t{0}; }},
                    HASH_OF_TEXTS{"few hashes", [](const std::string& text) { return std::uint64_t{text.size()}; }},
                    HASH_OF_TEXTS{"multiples of a power of two",
                                  [](const std::string& text) { return std::uint64_t{std::stoul(text)} << 40; }},
                    HASH_OF_TEXTS{"the last slot, from which a search goes on at the first", [](const std::string&)
                                  {
                                      // Times the spreading factor this is -1: its upper half is all ones.
                                      constexpr std::uint64_t inverse = 0xf1de83e19937733dU;
                                      return 0 - inverse;
                                  }}));

TEST(HASH_INDEX_OF_MANY, agrees_with_a_map)
{
    std::minstd_rand random(5);
    std::unordered_map<std::string, std::uint32_t> expected;
    INDEXED_TEXTS texts([](const std::string& text) { return std::uint64_t{std::hash<std::string>()(text) % 5000}; });
    for (int i = 0; i < 20'000; ++i)
    {
        const std::string text = std::to_string(random() % 10'000);
        const auto [entry, is_new] = expected.try_emplace(text, static_cast<std::uint32_t>(expected.size()));
        ASSERT_EQ(texts.find(text), is_new ? std::nullopt : std::optional(entry->second)) << text;
        if (is_new)
            texts.add(text);
    }
}

// What no question asks about costs no look: an owner may keep entries in a file's text, which is far away.
TEST(HASH_INDEX_OF_MANY, looks_at_no_entry_of_another_hash)
{
    HASH_INDEX index;
    for (std::uint32_t i = 0; i < 1000; ++i)
        index.add(std::hash<std::string>()(std::to_string(i)), i);
    for (std::uint32_t i = 1000; i < 2000; ++i)
        EXPECT_EQ(index.find(std::hash<std::string>()(std::to_string(i)),
                             [](std::uint32_t) -> bool { throw std::logic_error("looked at an entry"); }),
                  std::nullopt);
}
}
