// Many words, searched for in a text at once.
#include "tools/velmar-cfg/base/word_search.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

#include "tests/support/processor_time.h"

namespace
{
// Where the words stand, as "END:WORD" for each end.
std::string matches(const std::vector<std::string_view>& words, std::string_view text)
{
    std::string found;
    WORD_SEARCH(words).for_each_longest_match(
        text, [&](std::size_t end, std::size_t word)
        { found += (found.empty() ? "" : " ") + std::to_string(end) + ":" + std::string(words[word]); });
    return found;
}

// One letter for each word: whether it stands in the text.
std::string standing(const std::vector<std::string_view>& words, std::string_view text)
{
    std::string letters;
    for (const bool stands : WORD_SEARCH(words).standing_in(text))
        letters += stands ? 'y' : 'n';
    return letters;
}

TEST(WORD_SEARCH_, finds_the_longest_word_at_each_end)
{
    struct ROW
    {
        std::vector<std::string_view> words;
        std::string_view text;
        const char* matches;
        const char* standing;
    };
    for (const auto& [words, text, expected_matches, expected_standing] :
         {ROW{{}, "abc", "", ""}, ROW{{"a"}, "", "", "n"}, ROW{{"a"}, "bab", "2:a", "y"},
          ROW{{"ab", "b"}, "ab b", "2:ab 4:b", "yy"}, ROW{{"b", "ab"}, "xb", "2:b", "yn"},
          ROW{{"he", "she", "his", "hers"}, "ushers", "4:she 6:hers", "yyny"},
          ROW{{"abcd", "bc", "c"}, "abce", "3:bc", "nyy"},                      // seen on the way to a longer one
          ROW{{"aa"}, "aaaa", "2:aa 3:aa 4:aa", "y"},                           //
          ROW{{"same", "same"}, "same", "4:same", "yy"},                        //
          ROW{{"aab", "ab", "b"}, "aaab", "4:aab", "yyy"},                      // back by one
          ROW{{"abab", "x"}, "abaabab x", "7:abab 9:x", "yy"},                  // back by more
          ROW{{"\xff\x80", "\x80"}, "\xff\x80\x80", "2:\xff\x80 3:\x80", "yy"}, // no negative characters
          ROW{{std::string_view("\0a", 2)}, std::string_view("b\0a", 3), "3:", "y"}})
    {
        EXPECT_EQ(matches(words, text).substr(0, std::string_view(expected_matches).size()), expected_matches) << text;
        EXPECT_EQ(standing(words, text), expected_standing) << text;
    }
}

TEST(WORD_SEARCH_, finds_what_a_search_for_each_word_finds)
{
    std::mt19937 random(7);
    const auto text_of = [&random](std::size_t longest)
    {
        std::string text;
        for (auto size = 1 + random() % longest; size > 0; --size)
            text += "abc"[random() % 3];
        return text;
    };
    std::size_t found = 0;
    for (int round = 0; round < 2'000; ++round)
    {
        std::vector<std::string> texts;
        for (auto count = random() % 12; count > 0; --count)
            texts.push_back(text_of(6));
        const std::vector<std::string_view> words(texts.begin(), texts.end());
        const std::string text = text_of(30);
        std::map<std::size_t, std::string_view> longest; // by the end
        std::vector<bool> standing_words;
        for (const std::string_view word : words)
        {
            standing_words.push_back(text.find(word) != text.npos);
            for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1))
                longest[at + word.size()] =
                    std::max(longest[at + word.size()], word, [](auto a, auto b) { return a.size() < b.size(); });
        }
        std::map<std::size_t, std::string_view> matched;
        WORD_SEARCH search(words);
        search.for_each_longest_match(text, [&](std::size_t end, std::size_t word) { matched[end] = words[word]; });
        ASSERT_EQ(matched, longest) << text;
        ASSERT_EQ(search.standing_in(text), standing_words) << text;
        found += matched.size();
    }
    EXPECT_GT(found, 1'000U);
}

// Words that begin alike, and one that the text nearly is at each of its bytes.
TEST(WORD_SEARCH_, takes_four_times_as_long_for_four_times_the_text_and_the_words)
{
    const auto seconds_for = [](std::size_t count)
    {
        std::vector<std::string> texts = {std::string(count, 'a') + "b"};
        for (std::size_t i = 0; i < count; ++i)
            texts.push_back("HUNTER" + std::to_string(i));
        const std::vector<std::string_view> words(texts.begin(), texts.end());
        std::string text(10 * count, 'a');
        for (std::size_t i = 0; i < count; ++i)
            text += " HUNTER" + std::to_string(i);
        return least_processor_seconds(
            [&]
            {
                std::size_t found = 0;
                const WORD_SEARCH search(words);
                search.for_each_longest_match(text, [&found](std::size_t, std::size_t) { ++found; });
                EXPECT_GE(found, count);
            });
    };
    EXPECT_LT(ratio_of_seconds(seconds_for, 10'000, 40'000, 10), 10) << "the square would take sixteen times as long";
}
}
