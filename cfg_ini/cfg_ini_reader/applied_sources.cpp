#include "cfg_ini/cfg_ini_reader/applied_sources.h"

#include <algorithm>
#include <new>

#include "platform/fio/fio.h"

namespace zon_cfg
{
namespace
{
constexpr std::size_t most_extra_files = 256;
constexpr std::size_t most_program_texts = 64;
constexpr std::size_t most_program_text_bytes = std::size_t{256} * 1024;

constinit std::uint64_t last_moment ZON_GUARDED = 0;

bool is_extra_file(const CFG_SETTINGS_SOURCE& source)
{
    return source.role == CFG_SETTINGS_ROLE::APPENDED_FILE || source.role == CFG_SETTINGS_ROLE::REGTEST_FILE;
}

bool is_program_text(const CFG_SETTINGS_SOURCE& source)
{
    return source.role == CFG_SETTINGS_ROLE::PROGRAM_TEXT;
}

bool is_text(const CFG_SETTINGS_SOURCE& source)
{
    return is_program_text(source) || source.role == CFG_SETTINGS_ROLE::INLINE_TEXT;
}

// Whether both are the same unchanged file or the same text, applied in the same role.
bool same_source(const CFG_SETTINGS_SOURCE& a, const CFG_SETTINGS_SOURCE& b)
{
    return a.inode == b.inode && a.size == b.size && a.modified_nanoseconds == b.modified_nanoseconds &&
           a.modified_seconds == b.modified_seconds && a.device == b.device && a.mode == b.mode && a.role == b.role &&
           a.external == b.external && a.path == b.path && a.text == b.text;
}

bool is_relative(const std::string& path)
{
    return !path.starts_with('/');
}
}

void describe_file(CFG_SETTINGS_SOURCE& source, const std::string& path, const struct stat& status) noexcept
{
    source.device = status.st_dev;
    source.inode = status.st_ino;
    source.mode = status.st_mode;
    source.size = static_cast<std::uint64_t>(status.st_size);
    source.modified_seconds = status.st_mtim.tv_sec;
    source.modified_nanoseconds = static_cast<std::int32_t>(status.st_mtim.tv_nsec);
    try
    {
        std::string directory = is_relative(path) ? FIO_FILE_SYSTEM::get_current_directory() : std::string();
        if (!directory.empty() && directory.back() != '/')
            directory += '/';
        source.path = std::move(directory.append(path));
    }
    catch (const std::bad_alloc&)
    {
        source.path.clear();
    }
}

std::uint64_t next_moment()
{
    return ++last_moment;
}

void APPLIED_SOURCES::begin(const CFG_SETTINGS_SOURCE& source) noexcept
{
    for (POSITION equal = sources.end(); equal != sources.begin();)
    {
        --equal;
        // Skips an entry whose application has not ended: another thread, or the caller of this callback, will end it.
        if (equal->end == 0 || !same_source(*equal, source))
            continue;
        equal->beginning = source.beginning;
        equal->end = 0;
        equal->whole = false;
        sources.splice(sources.end(), sources, equal);
        return;
    }
    insert(source);
}

void APPLIED_SOURCES::end(const CFG_SETTINGS_SOURCE& source) noexcept
{
    const auto listed =
        std::find_if(sources.rbegin(), sources.rend(),
                     [&source](const CFG_SETTINGS_SOURCE& other) { return other.beginning == source.beginning; });
    if (listed == sources.rend())
    {
        insert(source);
        return;
    }
    listed->end = source.end;
    listed->whole = source.whole;
}

void APPLIED_SOURCES::insert(const CFG_SETTINGS_SOURCE& source) noexcept
{
    if (is_program_text(source) && source.text.size() > most_program_text_bytes)
        return;
    try
    {
        if (source.path.empty() && !is_text(source))
            throw std::bad_alloc(); // describe_file had no memory for the path
        POSITION later = sources.end();
        while (later != sources.begin() && std::prev(later)->beginning > source.beginning)
            --later;
        sources.insert(later, source);
    }
    catch (const std::bad_alloc&)
    {
        count_as_lost(source);
        return;
    }
    extra_files += is_extra_file(source) ? 1U : 0U;
    program_texts += is_program_text(source) ? 1U : 0U;
    program_text_bytes += is_program_text(source) ? source.text.size() : 0U;
    keep_within_limits();
}

void APPLIED_SOURCES::keep_within_limits()
{
    const auto erase_oldest = [this](bool is_one(const CFG_SETTINGS_SOURCE&))
    { erase(std::find_if(sources.begin(), sources.end(), is_one)); };
    while (extra_files > most_extra_files)
        erase_oldest(is_extra_file);
    while (program_texts > most_program_texts || program_text_bytes > most_program_text_bytes)
        erase_oldest(is_program_text);
}

void APPLIED_SOURCES::erase(POSITION source)
{
    extra_files -= is_extra_file(*source) ? 1U : 0U;
    program_texts -= is_program_text(*source) ? 1U : 0U;
    program_text_bytes -= is_program_text(*source) ? source->text.size() : 0U;
    count_as_lost(*source);
    sources.erase(source);
}

void APPLIED_SOURCES::count_as_lost(const CFG_SETTINGS_SOURCE& source)
{
    // A source that is still being applied has no end yet; end() then lists it again or counts it again.
    if (!is_program_text(source))
        lost = std::max({lost, source.beginning, source.end});
}
}
