// How variable names are hashed and compared: up to their first zero byte, the letters A to Z folded to lower case,
// every other byte as it is, in no locale. No state; any thread.
#ifndef CFG_INI_CFG_INI_READER_NAME_MATCHING_H
#define CFG_INI_CFG_INI_READER_NAME_MATCHING_H

#include <cstddef>
#include <string>
#include <string_view>

namespace zon_cfg
{
// Throws std::logic_error with the message that libstdc++ gives for a std::string made of a null pointer, and that
// hosts know. Other standard libraries read from the pointer instead.
[[noreturn]] void refuse_null_text();

// Returns `text`. Refuses a view of a null pointer, but not an empty text.
inline std::string_view not_null(std::string_view text)
{
    if (text.data() == nullptr) [[unlikely]]
        refuse_null_text();
    return text;
}

// h = 0, then h * 17 + b for each folded byte b as a signed number, in 64 bits with wrap-around.
std::size_t hash_name(std::string_view name);

// Whether two texts of the same length are equal, ignoring the case of the letters A to Z. A zero byte does not end
// them.
bool equal_folded(const char* a, const char* b, std::size_t length);

// Whether two names are equal as far as the first zero byte of each.
bool equal_up_to_zero_byte(std::string_view a, std::string_view b);

// Whether two names are equal.
inline bool equal_names(std::string_view a, std::string_view b)
{
    if (a.size() == b.size() && equal_folded(a.data(), b.data(), a.size())) [[likely]]
        return true;
    // Names of different lengths, or different as a whole, may still agree up to a zero byte.
    return equal_up_to_zero_byte(a, b);
}

// A name with its hash, so that several searches for it hash it once. It does not own the characters.
struct HASHED_NAME
{
    explicit HASHED_NAME(std::string_view name) : text(name), hash(hash_name(name)) {}

    std::string_view text;
    std::size_t hash;
};

// A name as the record table keeps it, with its hash. So the table does not hash names again when it grows or compares
// entries, and a name that was hashed for a search is inserted under that hash.
class RECORD_NAME : public std::string
{
public:
    explicit RECORD_NAME(const HASHED_NAME& name) : std::string(name.text), name_hash(name.hash) {}

    std::size_t hash() const
    {
        return name_hash;
    }

private:
    std::size_t name_hash;
};
}

// The functors of the record table. Those for its own names are noexcept, which keeps the standard library from storing
// each hash a second time.
struct STL_CASE_INSENSITIVE_HASH_COMPARE
{
    using is_transparent = void;

    std::size_t operator()(const std::string& name) const
    {
        return zon_cfg::hash_name(name);
    }
    std::size_t operator()(const zon_cfg::HASHED_NAME& name) const noexcept
    {
        return name.hash;
    }
    std::size_t operator()(const zon_cfg::RECORD_NAME& name) const noexcept
    {
        return name.hash();
    }
};

struct STL_CASE_INSENSITIVE_EQUAL
{
    using is_transparent = void;

    bool operator()(const std::string& a, const std::string& b) const
    {
        return zon_cfg::equal_names(a, b);
    }
    bool operator()(const zon_cfg::RECORD_NAME& a, const zon_cfg::RECORD_NAME& b) const
    {
        return a.hash() == b.hash() && zon_cfg::equal_names(a, b);
    }
    bool operator()(const zon_cfg::HASHED_NAME& a, const zon_cfg::RECORD_NAME& b) const
    {
        return a.hash == b.hash() && zon_cfg::equal_names(a.text, b);
    }
    bool operator()(const zon_cfg::RECORD_NAME& a, const zon_cfg::HASHED_NAME& b) const
    {
        return (*this)(b, a);
    }
};

#endif
