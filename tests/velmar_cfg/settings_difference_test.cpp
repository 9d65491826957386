// What is shown of an edit of a settings file.
#include "tools/velmar-cfg/settings/settings_difference.h"

#include <gtest/gtest.h>

#include "tests/support/processor_time.h"
#include "tools/velmar-cfg/base/hidden_text.h"

namespace
{
// The lines of the difference that are removed or added, hidden parts as "*".
std::string shown(const std::string& before, const std::string& after)
{
    SECRETS secrets;
    const std::string difference = shown_settings_difference({"f", false, before, after, {}}, secrets);
    std::string starred;
    TEXT_PARTS parts(difference);
    for (TEXT_PART part{}; parts.next(part);)
        starred += part.hidden ? "*" : std::string(part.text);
    const std::size_t hunk = starred.find("@@ -");
    return hunk == starred.npos ? starred : starred.substr(starred.find('\n', hunk) + 1);
}

TEST(SETTINGS_DIFFERENCE, hides_the_words_of_removed_secrets_wherever_they_stand)
{
    struct ROW
    {
        const char* before;
        const char* after;
        const char* shown;
    };
    for (const auto& [before, after, difference] :
         {ROW{"a=1\n", "a=2\n", "-a=1\n+a=2\n"}, ROW{"a=1\n", "a=1\n", ""},
          ROW{"token = hush\n", "toke = hush\n", "-token = *\n+toke = *\n"},
          ROW{"token = hush1 hush2\nb = hush2\n", "b = hush2\nc = hush1/hush2\n", "-token = *\n b = *\n+c = */*\n"},
          ROW{"token = token\n", "x = token\n", "-token = *\n+x = token\n"}, // the word is shown in its own line
          ROW{"token = ab\n", "x = ab, cab\n", "-token = *\n+x = *, cab\n"},
          ROW{"token = on 12\n", "x = on 12\n", "-token = *\n+x = on 12\n"},
          ROW{"b = hush\ntoken = hush\n", "b = hush\nt = 1\n", " b = *\n-token = *\n+t = 1\n"}})
        EXPECT_EQ(shown(before, after), difference) << before << " became " << after;
}

// The words of a line, of which half are shown and half are secret; so is the line that comes.
TEST(SETTINGS_DIFFERENCE, takes_four_times_as_long_for_four_times_the_words)
{
    const auto seconds_for = [](std::size_t count)
    {
        std::string words;
        std::string secrets;
        for (std::size_t i = 0; i < count; ++i)
        {
            words += "word" + std::to_string(i) + " ";
            secrets += "hush" + std::to_string(i) + " ";
        }
        return least_processor_seconds(
            [&]
            {
                EXPECT_EQ(
                    shown("x = " + words + "; token = " + secrets + "\n", "x = " + words + secrets + "\n").find("hush"),
                    std::string::npos);
            });
    };
    EXPECT_LT(ratio_of_seconds(seconds_for, 300, 1'200, 9), 9) << "the square would take sixteen times as long";
}
}
