// One JSON value with everything in it, as a flat list. A parent stands before its children, and each value knows where
// it ends. A tree can be used again for another value, and allocates only if that is larger. So a million rows of one
// kind cost little more than their tokens.
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
    // The index of a value. That of the whole value is 0.
    using INDEX = std::size_t;

    // Replaces the content of the tree by the value that begins with `first`, the token read last. Reads the value to
    // its end.
    void read(JSON_TOKENS& tokens, JSON_TOKEN first);

    // begin_object() makes the tree an empty object, and add_member() adds a member to it.
    void begin_object();
    void add_member(JSON_TOKENS& tokens, std::string_view key, JSON_TOKEN first);

    // BEGIN_OBJECT for an object, BEGIN_LIST for a list.
    JSON_TOKEN kind(INDEX value) const
    {
        return values[value].kind;
    }

    // The value of a TEXT, a TRUTH or a number. Each function is only for its own kind, as in JSON_TOKENS.
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

    // The member of an object; if several have the key, the last.
    std::optional<INDEX> member(INDEX object, std::string_view member_key) const;

    // For walks over the values in an object or a list: the first one, the one after `value`, and the end.
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

    // The path to this value: ".variables[3].name"; empty for the whole value.
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
