#include "tools/velmar-cfg/base/text_store.h"

#include <gtest/gtest.h>

namespace
{
TEST(TEXT_STORE_KEEPS, texts_of_all_lengths_wherever_it_is_moved)
{
    TEXT_STORE store;
    std::vector<std::pair<std::string, std::string_view>> kept;
    for (std::size_t size = 0; size < 300'000; size = size * 2 + 1)
    {
        for (int i = 0; i < 5; ++i)
        {
            const std::string text(size, static_cast<char>('a' + i));
            kept.emplace_back(text, store.keep(text));
        }
    }
    const TEXT_STORE moved = std::move(store);
    for (const auto& [text, view] : kept)
        ASSERT_EQ(view, text) << text.size();
}
}
