// Where names were found last: most lookups are spared the hash and the walk through the table.
//
// A small memory over the table, keyed by the name as it is spelt in the lookup, with two places for each name. What it
// answers is what the table would answer; it may forget at any time.
#ifndef CFG_INI_CFG_INI_READER_RECENT_NAMES_H
#define CFG_INI_CFG_INI_READER_RECENT_NAMES_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/name_matching.h"

struct CFG_INI_RECORD;

// One name as it was spelt in a lookup; fills a cache line, so that most lookups touch this one and the record's.
struct alignas(64) RECENT_NAME
{
    static constexpr std::size_t longest = 48; // longer names are not remembered

    CFG_INI_RECORD* record;
    std::uint32_t epoch; // what is remembered holds while this is the current one
    std::uint8_t length;
    char characters[longest];
};
static_assert(sizeof(RECENT_NAME) == 64);

// The two places that a name may be in, tried in this order.
using RECENT_PAIR = RECENT_NAME[2];

inline constexpr unsigned int recent_bits = 12;

// Both guarded by the store's lock. Of a thousand names in use all but ten find a place.
extern constinit RECENT_PAIR cfg_ini_recent_names[1U << recent_bits];
extern constinit std::uint32_t cfg_ini_recent_epoch; // never 0

// A name to be looked up: its place among the recent names, worked out, and its memory asked for, ahead of the lock.
class SOUGHT_NAME
{
public:
    // A null name (a view without characters) throws std::logic_error, as making a std::string of it does.
    explicit SOUGHT_NAME(std::string_view name) : text(not_null(name)), places(cfg_ini_recent_names[place_of(name)])
    {
        __builtin_prefetch(places);
    }

    // The record remembered for the name, or null. The caller holds the lock.
    [[gnu::always_inline]] CFG_INI_RECORD* recent() const
    {
        if (is_in(places[0])) [[likely]]
            return places[0].record;
        return recent_in_second_place();
    }

    // Remembers the record that the name was found to have. The caller holds the lock.
    CFG_INI_RECORD* remember(CFG_INI_RECORD* record) const;

    const std::string_view text;

private:
    CFG_INI_RECORD* recent_in_second_place() const;

    bool is_in(const RECENT_NAME& place) const
    {
        return place.epoch == cfg_ini_recent_epoch && place.length == text.size() &&
               equal_bytes(place.characters, text.data(), text.size());
    }

    // Mixes characters of the start, the middle and the end. Names with the same places only push each other out.
    static std::size_t place_of(std::string_view name)
    {
        const std::size_t length = name.size();
        const char* const start = name.data();
        std::uint64_t mix = length;
        if (length >= 8) [[likely]]
            mix += first_of<std::uint64_t>(start) * 0x9E3779B97F4A7C15U +
                   first_of<std::uint64_t>(start + length / 2 - 4) * 0xC2B2AE3D27D4EB4FU +
                   first_of<std::uint64_t>(start + length - 8) * 0x165667B19E3779F9U;
        else if (length >= 4)
            mix += (first_of<std::uint32_t>(start) | std::uint64_t{first_of<std::uint32_t>(start + length - 4)} << 32) *
                   0x9E3779B97F4A7C15U;
        else
        {
            for (const char c : name)
                mix = (mix + static_cast<unsigned char>(c)) * 0x9E3779B97F4A7C15U;
        }
        return mix >> (64 - recent_bits);
    }

    // Few branches, which names of most lengths share: the lengths of names that follow each other are hard to foresee.
    static bool equal_bytes(const char* a, const char* b, std::size_t length)
    {
        if (length >= 16) [[likely]]
        {
            // The first, the last and a middle part, each of sixteen characters; they may overlap.
            const std::size_t last = length - 16;
            const std::size_t middle = last < 16 ? last : 16;
            return (difference(a, b) | difference(a + 8, b + 8) | difference(a + middle, b + middle) |
                    difference(a + middle + 8, b + middle + 8) | difference(a + last, b + last) |
                    difference(a + last + 8, b + last + 8)) == 0;
        }
        if (length >= 8)
            return (difference(a, b) | difference(a + length - 8, b + length - 8)) == 0;
        if (length >= 4)
            return first_of<std::uint32_t>(a) == first_of<std::uint32_t>(b) &&
                   first_of<std::uint32_t>(a + length - 4) == first_of<std::uint32_t>(b + length - 4);
        return std::memcmp(a, b, length) == 0;
    }

    // Of eight characters each; 0 when they are equal.
    static std::uint64_t difference(const char* a, const char* b)
    {
        return first_of<std::uint64_t>(a) ^ first_of<std::uint64_t>(b);
    }

    template <typename T>
    static T first_of(const char* from)
    {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }

    RECENT_NAME* const places; // a pair
};

// Forgets all names; to be called before the table goes. The caller holds the lock.
void forget_recent_names();

#endif
