// Texts that end, or begin, where memory does: what reads a byte too many ends there, and not by chance with the right
// answer.
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "tools/velmar-cfg/base/content_hash.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/base/keyed_hash.h"
#include "tools/velmar-cfg/base/nearest_name.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/base/unified_diff.h"
#include "tools/velmar-cfg/preferences/preference_secrets.h"
#include "tools/velmar-cfg/preferences/preferences.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/secrets_in_messages.h"

namespace
{
// A page between two that nobody may read.
class LONELY_PAGE
{
public:
    LONELY_PAGE() : size(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)))
    {
        begin = static_cast<char*>(mmap(nullptr, 3 * size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        EXPECT_EQ(mprotect(begin + size, size, PROT_READ | PROT_WRITE), 0);
    }

    ~LONELY_PAGE()
    {
        munmap(begin, 3 * size);
    }

    LONELY_PAGE(const LONELY_PAGE&) = delete;
    LONELY_PAGE& operator=(const LONELY_PAGE&) = delete;

    // The text, which is shorter than a page, at one of its ends.
    std::string_view text_at_end(const std::string& text) const
    {
        return placed(begin + 2 * size - text.size(), text);
    }

    std::string_view text_at_begin(const std::string& text) const
    {
        return placed(begin + size, text);
    }

private:
    static std::string_view placed(char* where, const std::string& text)
    {
        std::memcpy(where, text.data(), text.size());
        return {where, text.size()};
    }

    const std::size_t size;
    char* begin;
};

std::string in_json(std::string_view text)
{
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    out.value(text);
    out.finish();
    return sink.text;
}

std::string in_parts(std::string_view text)
{
    std::string all;
    TEXT_PARTS parts(text);
    for (TEXT_PART part{}; parts.next(part);)
        all += (part.hidden ? "*" : "<" + std::string(part.text) + ">");
    return all;
}

std::string settled(std::string_view text)
{
    SECRETS secrets;
    const std::string found = hide_in_preference_text(text, secrets).value_or("nothing");
    const std::string more = hide_in_settings_text(text, secrets).value_or("nothing");
    return in_parts(found) + in_parts(more) + in_parts(hide_in_value("a", text, secrets)) +
           in_parts(hide_in_text(text, "hush", secrets)) + (is_plain_value(text) ? "plain" : "") +
           (is_secret_preference_name(text, secrets) ? "secret" : "");
}

std::string looked_up(std::string_view text)
{
    const PREFERENCES preferences(text);
    return preferences.look_up(CLOUD_SERVER).value + "|" + preferences.look_up(SHOW_MESSAGE_ID).value;
}

struct READER
{
    const char* name;
    std::function<std::string(std::string_view)> read;
};

const READER readers[] = {
    {"printable", printable},
    {"is_utf_8", [](std::string_view text) { return std::to_string(static_cast<int>(is_utf_8(text))); }},
    {"as_hexadecimal", as_hexadecimal},
    {"from_hexadecimal", [](std::string_view text) { return from_hexadecimal(text).value_or("none"); }},
    {"in_single_quotes", in_single_quotes},
    {"shortened", [](std::string_view text) { return shortened(text, 3) + shortened(text, text.size()); }},
    {"in_json", in_json},
    {"in_parts", in_parts},
    {"named", with_hidden_parts_named},
    {"compared",
     [](std::string_view text)
     {
         return std::to_string(static_cast<int>(compare_texts(text, "a")) * 10 +
                               static_cast<int>(compare_texts("a", text)));
     }},
    {"distance",
     [](std::string_view text) { return std::to_string(edit_distance(text, "name") + edit_distance("name", text)); }},
    {"suggested",
     [](std::string_view text) {
         return did_you_mean(text, {"name", "token"});
     }},
    {"sha256", sha256_of},
    {"hmac", [](std::string_view text) { return hmac_of(text, "bytes") + hmac_of("key", text); }},
    {"difference", [](std::string_view text)
     { return unified_diff(text, "a\nb\n", "a", "b") + unified_diff("a\nb", text, "a", "b"); }},
    {"secrets", settled},
    {"preferences", looked_up},
};

std::vector<std::string> texts()
{
    const std::string mark = mark_of({"0123456789abcdef", "fedcba9876543210", true, 4});
    std::vector<std::string> all = {"",
                                    "a",
                                    "name",
                                    "name=",
                                    "name = value",
                                    "a\n",
                                    "a\nb",
                                    "\n",
                                    "\r",
                                    "\\",
                                    "\"",
                                    "\"a",
                                    "#",
                                    "a ;",
                                    "[",
                                    "[Cloud]",
                                    "[Cloud]\n",
                                    "[Cloud]\nCLOUD_SERVER",
                                    "[Cloud]\nCLOUD_SERVER=",
                                    "[Cloud]\nCLOUD_SERVER=a",
                                    "[Messages]\nSHOW_MESSAGE_ID = \"",
                                    "[Messages 23.4_pro",
                                    "api_token",
                                    "api_token=",
                                    "api_token=hush",
                                    "x api_token: hush-hush",
                                    "proxy_user",
                                    "PROXY_USER1",
                                    "PROXY_USER1 = \"hush",
                                    "hus",
                                    "0a",
                                    "0",
                                    "\xc2",
                                    "\xc2\x9b",
                                    "\xe2",
                                    "\xe2\x80",
                                    "\xe2\x80\xa8",
                                    "\xd8",
                                    "\xf0\x9f\x98",
                                    "\x1b",
                                    std::string(1, '\0'),
                                    std::string("a\0", 2),
                                    mark,
                                    "a" + mark,
                                    mark + "a"};
    for (std::size_t length = 1; length < mark.size(); ++length)
        all.push_back(mark.substr(0, length));
    return all;
}

TEST(TEXT_BOUNDARIES, are_those_of_what_is_read)
{
    const LONELY_PAGE page;
    for (const std::string& text : texts())
    {
        // Where more follows, which must not count.
        const std::string longer = text + "\xe2\x80\xa8=\"";
        for (const auto& [name, read] : readers)
        {
            SCOPED_TRACE(std::string(name) + " of '" + printable(text) + "'");
            const std::string expected = read(text);
            EXPECT_EQ(read(page.text_at_end(text)), expected);
            EXPECT_EQ(read(page.text_at_begin(text)), expected);
            EXPECT_EQ(read(std::string_view(longer).substr(0, text.size())), expected);
        }
    }
}
}
