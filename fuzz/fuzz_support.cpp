#include "fuzz/fuzz_support.h"

#include <filesystem>
#include <memory>
#include <unistd.h>

std::string fuzz::quoted(const std::string& text)
{
    std::string shown = "\"";
    for (const char c : text)
    {
        char escaped[8];
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\';
        std::snprintf(escaped, sizeof escaped, plain ? "%c" : "\\%03o", byte);
        shown += escaped;
    }
    return shown + '"';
}

void fuzz::expect(bool holds, const std::string& about)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", about.c_str());
    std::abort();
}

namespace
{
class OWN_DIRECTORY
{
public:
    OWN_DIRECTORY()
    {
        for (const char* name :
             {"HOME", "VELMAR_INI", "VELMAR_INI_DISABLED", "APPENDED_VELMAR_INI", "VELMAR_INI_VARS", "VELMAR2_INI"})
            unsetenv(name);
        path = (std::filesystem::temp_directory_path() / "zon_fuzz_XXXXXX").string();
        fuzz::expect(mkdtemp(path.data()) != nullptr, "no temporary directory " + path);
        std::filesystem::current_path(path);
        path = std::filesystem::current_path().string(); // as the search for settings names it
    }

    ~OWN_DIRECTORY()
    {
        std::error_code nothing_to_do;
        std::filesystem::remove_all(path, nothing_to_do);
    }

    OWN_DIRECTORY(const OWN_DIRECTORY&) = delete;
    OWN_DIRECTORY& operator=(const OWN_DIRECTORY&) = delete;

    std::string path;
};

using STREAM = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

STREAM opened(const std::string& path, const char* mode)
{
    STREAM stream(std::fopen(path.c_str(), mode), std::fclose);
    fuzz::expect(stream != nullptr, "cannot open " + path);
    return stream;
}
}

const std::string& fuzz::directory()
{
    static const OWN_DIRECTORY own;
    return own.path;
}

void fuzz::write_file(const std::string& path, const std::string& bytes)
{
    if (std::filesystem::is_directory(path))
        remove_file(path);
    const STREAM stream = opened(path, "wb");
    expect(std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size(), "cannot write " + path);
}

std::string fuzz::read_file(const std::string& path)
{
    const STREAM stream = opened(path, "rb");
    std::string bytes;
    char piece[4096];
    for (std::size_t count = 0; (count = std::fread(piece, 1, sizeof piece, stream.get())) > 0;)
        bytes.append(piece, count);
    return bytes;
}

void fuzz::make_directory(const std::string& path)
{
    remove_file(path);
    std::filesystem::create_directory(path);
}

void fuzz::remove_file(const std::string& path)
{
    std::filesystem::remove(path);
}

unsigned int fuzz::INPUT::below(unsigned int bound)
{
    return empty() ? 0 : *next++ % bound;
}

std::string fuzz::INPUT::text()
{
    std::string bytes;
    for (unsigned int length = below(64); length > 0 && !empty(); --length)
        bytes += static_cast<char>(*next++);
    return bytes;
}
