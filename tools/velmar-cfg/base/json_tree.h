// One JSON value with all that is in it, as a flat list: a parent before its children, each with its end. A value that
// is read into a tree that held another allocates nothing once the tree is large enough, so that a million rows of one
// kind are read for the price of their tokens.
#ifndef TOOLS_VELMAR_CFG_BASE_JSON_TREE_H
#define TOOLS_VELMAR_CFG_BASE_JSON_TREE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/json_tokens.h"

class JSON_TREE
{
public:
    // An index among the values; the value itself is the first.
    using INDEX = std::size_t;

    // Replaces what the tree holds by the value that `first`, the token read last, begins. Reads its tokens to the end.
    void read(JSON_TOKENS& tokens, JSON_TOKEN first);

    // An empty object, to which members are added, all of which stand in it and in no other.
    void begin_object();
    void add_member(JSON_TOKENS& tokens, std::string_view key, JSON_TOKEN first);

    // BEGIN_OBJECT for an object, BEGIN_LIST for a list.
    JSON_TOKEN kind(INDEX value) const
    {
        return values[value].kind;
    }

    // Of a TEXT; of a TRUTH or a number of the three kinds, as JSON_TOKENS has them.
    std::string_view text(INDEX value) const
    {
        return text_in(values[value].text);
    }
    bool truth(INDEX value) const
    {
        return values[value].number.natural != 0;
    }
    std::uint64_t natural(INDEX value) const
    {
        return values[value].number.natural;
    }
    std::int64_t negative(INDEX value) const
    {
        return values[value].number.negative;
    }
    double floating(INDEX value) const
    {
        return values[value].number.floating;
    }

    // The member of an object; of several with one key the last.
    std::optional<INDEX> member(INDEX object, std::string_view member_key) const;

    // The values in an object or a list: the first, the one behind another, and where they end.
    INDEX begin(INDEX container) const
    {
        return container + 1;
    }
    INDEX behind(INDEX value) const
    {
        return values[value].end;
    }
    INDEX end(INDEX container) const
    {
        return values[container].end;
    }

    // How to get from the tree's value to this one: ".variables[3].name"; empty for the tree's value itself.
    std::string path(INDEX value) const;

private:
    struct TEXT_RANGE
    {
        std::size_t begin = 0; // in `texts`
        std::size_t size = 0;
    };

    union NUMBER
    {
        std::uint64_t natural = 0;
        std::int64_t negative;
        double floating;
    };

    struct VALUE
    {
        JSON_TOKEN kind;
        std::uint32_t key_mark; // of a member: tells most keys apart
        TEXT_RANGE key;         // of a member
        TEXT_RANGE text;        // of a TEXT
        NUMBER number;
        INDEX end; // behind the last value in this one
    };

    TEXT_RANGE keep(std::string_view text);
    std::string_view text_in(TEXT_RANGE range) const
    {
        return {texts.data() + range.begin, range.size};
    }
    std::string_view key(INDEX value) const
    {
        return text_in(values[value].key);
    }
    void append(const JSON_TOKENS& tokens, JSON_TOKEN token, TEXT_RANGE key);
    void append_whole(JSON_TOKENS& tokens, JSON_TOKEN first, TEXT_RANGE key);

    std::vector<VALUE> values;
    std::string texts;
    std::vector<INDEX> open; // while a value is read: the containers around the next token
};

#endif
