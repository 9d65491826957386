// Keeps a JSON value as a flat list, appended in the order of the document. A list of the open containers takes the
// place of recursion, and notes where each of them ends.
//
// A member is searched for from the first sibling to the last. A number made of the length and three letters of each
// key spares nearly all comparisons of texts. The search goes on behind a member that fits, since the last one of a
// name counts. Cost for k siblings: O(k).
#include "tools/velmar-cfg/base/json_tree.h"

namespace
{
// The length and three of the letters.
std::uint32_t mark_of(std::string_view key)
{
    const auto byte = [&key](std::size_t at)
    { return static_cast<std::uint32_t>(static_cast<unsigned char>(key[at])); };
    return key.empty() ? 0
                       : static_cast<std::uint32_t>(key.size() & 0xffU) << 24 | byte(0) << 16 |
                             byte(key.size() / 2) << 8 | byte(key.size() - 1);
}
}

JSON_TREE::TEXT_RANGE JSON_TREE::keep(std::string_view text)
{
    const TEXT_RANGE range{texts.size(), text.size()};
    texts += text;
    return range;
}

void JSON_TREE::append(const JSON_TOKENS& tokens, JSON_TOKEN token, TEXT_RANGE key)
{
    VALUE value{token, mark_of(text_in(key)), key, {}, {}, values.size() + 1};
    switch (token)
    {
    case JSON_TOKEN::TEXT:
        value.text = keep(tokens.text());
        break;
    case JSON_TOKEN::NATURAL:
        value.number.natural = tokens.natural();
        break;
    case JSON_TOKEN::NEGATIVE:
        value.number.negative = tokens.negative();
        break;
    case JSON_TOKEN::FLOATING:
        value.number.floating = tokens.floating();
        break;
    case JSON_TOKEN::TRUTH:
        value.number.natural = tokens.truth() ? 1 : 0;
        break;
    default:
        break;
    }
    values.push_back(value);
}

// Not by recursion: a document may nest as deep as it is long.
void JSON_TREE::append_whole(JSON_TOKENS& tokens, JSON_TOKEN first, TEXT_RANGE key)
{
    const auto opens = [](JSON_TOKEN token)
    { return token == JSON_TOKEN::BEGIN_OBJECT || token == JSON_TOKEN::BEGIN_LIST; };
    append(tokens, first, key);
    if (!opens(first))
        return;
    open.assign(1, values.size() - 1);
    while (!open.empty())
    {
        JSON_TOKEN token = tokens.next();
        TEXT_RANGE member_key;
        if (token == JSON_TOKEN::KEY)
        {
            member_key = keep(tokens.text());
            token = tokens.next();
        }
        if (token == JSON_TOKEN::END_OBJECT || token == JSON_TOKEN::END_LIST)
        {
            values[open.back()].end = values.size();
            open.pop_back();
            continue;
        }
        append(tokens, token, member_key);
        if (opens(token))
            open.push_back(values.size() - 1);
    }
}

void JSON_TREE::read(JSON_TOKENS& tokens, JSON_TOKEN first)
{
    values.clear();
    texts.clear();
    append_whole(tokens, first, {});
}

void JSON_TREE::begin_object()
{
    values.assign(1, {JSON_TOKEN::BEGIN_OBJECT, 0, {}, {}, {}, 1});
    texts.clear();
}

void JSON_TREE::add_member(JSON_TOKENS& tokens, std::string_view key, JSON_TOKEN first)
{
    append_whole(tokens, first, keep(key));
    values.front().end = values.size();
}

std::optional<JSON_TREE::INDEX> JSON_TREE::member(INDEX object, std::string_view member_key) const
{
    std::optional<INDEX> found;
    const std::uint32_t mark = mark_of(member_key);
    if (kind(object) != JSON_TOKEN::BEGIN_OBJECT)
        return found;
    for (INDEX value = begin(object); value != end(object); value = behind(value))
    {
        if (values[value].key_mark == mark && key(value) == member_key)
            found = value;
    }
    return found;
}

std::string JSON_TREE::path(INDEX value) const
{
    std::string text;
    for (INDEX container = 0; container != value;)
    {
        const bool is_list = kind(container) == JSON_TOKEN::BEGIN_LIST;
        std::size_t position = 0;
        INDEX child = begin(container);
        for (; behind(child) <= value; child = behind(child))
            ++position;
        text += is_list ? "[" + std::to_string(position) + "]" : "." + std::string(key(child));
        container = child;
    }
    return text;
}
