// Copies what belongs to a file beside its bytes: owner, group, extended attributes (the access control list is one of
// them) and mode. The mode comes last, since a change of the owner clears some of its bits and an access control list
// sets some. Then everything is read back: some file systems accept a change and keep less.
#include "tools/velmar-cfg/base/file_attributes.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <map>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "tools/velmar-cfg/base/file_place.h"

namespace
{
// By name. The access control list is one of them.
using ATTRIBUTES = std::map<std::string, std::string>;

bool is_left_to_the_system(std::string_view name)
{
    return name.starts_with("security.");
}

// The value of an attribute; nothing when it cannot be read, with errno.
std::optional<std::string> attribute_of(int file, const char* name)
{
    for (;;)
    {
        const ssize_t size = fgetxattr(file, name, nullptr, 0);
        if (size < 0)
            return std::nullopt;
        std::string value(static_cast<std::size_t>(size) + 1, '\0'); // no room at all would ask for the size again
        const ssize_t got = fgetxattr(file, name, value.data(), value.size());
        if (got >= 0)
        {
            value.resize(static_cast<std::size_t>(got));
            return value;
        }
        if (errno != ERANGE)
            return std::nullopt;
    }
}

// All attributes; nothing when they cannot be read, with errno. A file system without attributes has none.
std::optional<ATTRIBUTES> attributes_of(int file)
{
    std::string names;
    for (;;)
    {
        const ssize_t size = flistxattr(file, nullptr, 0);
        names.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        const ssize_t got = size <= 0 ? size : flistxattr(file, names.data(), names.size());
        if (got >= 0)
        {
            names.resize(static_cast<std::size_t>(got));
            break;
        }
        if (errno == ENOTSUP)
            return ATTRIBUTES();
        if (errno != ERANGE)
            return std::nullopt;
    }
    ATTRIBUTES attributes;
    for (std::size_t start = 0; start < names.size();)
    {
        const std::string name = names.c_str() + start;
        start += name.size() + 1;
        if (is_left_to_the_system(name))
            continue;
        const std::optional<std::string> value = attribute_of(file, name.c_str());
        if (!value)
            return std::nullopt;
        attributes[name] = *value;
    }
    return attributes;
}

std::string not_kept(const std::string& what, int error = errno)
{
    return what + " cannot be kept: " + std::strerror(error);
}

std::string take_over_extended(int from, int to)
{
    const std::optional<ATTRIBUTES> wanted = attributes_of(from);
    const std::optional<ATTRIBUTES> found = attributes_of(to);
    if (!wanted || !found)
        return not_kept("its attributes");
    for (const auto& [name, value] : *found)
    {
        if (!wanted->contains(name) && fremovexattr(to, name.c_str()) != 0)
            return not_kept("that it has no attribute " + name);
    }
    for (const auto& [name, value] : *wanted)
    {
        const auto same = found->find(name);
        if ((same == found->end() || same->second != value) &&
            fsetxattr(to, name.c_str(), value.data(), value.size(), 0) != 0)
            return not_kept("its attribute " + name);
    }
    return {};
}
}

std::string take_over_attributes(int from, int to)
{
    struct stat wanted;
    struct stat own;
    if (fstat(from, &wanted) != 0 || fstat(to, &own) != 0)
        return not_kept("its owner");
    if (own.st_uid != wanted.st_uid && fchown(to, wanted.st_uid, static_cast<gid_t>(-1)) != 0)
    {
        const int error = errno;
        return not_kept("its owner " + user_in_words(wanted.st_uid), error);
    }
    if (own.st_gid != wanted.st_gid && fchown(to, static_cast<uid_t>(-1), wanted.st_gid) != 0)
        return not_kept("its group number " + std::to_string(wanted.st_gid));
    if (std::string problem = take_over_extended(from, to); !problem.empty())
        return problem;
    // Last: a change of the owner takes bits of the mode away, and an access control list sets some.
    if (fchmod(to, wanted.st_mode & 07777U) != 0)
        return not_kept("its mode");
    // Some file systems take all and keep less.
    if (fstat(to, &own) != 0 || own.st_uid != wanted.st_uid || own.st_gid != wanted.st_gid ||
        own.st_mode != wanted.st_mode)
        return "its owner and mode cannot be kept on this file system";
    if (attributes_of(to) != attributes_of(from))
        return "its access control list and attributes cannot be kept on this file system";
    return {};
}
