// What the fuzz targets share: a world without settings of its own, checks that end the process, and a way to take
// bytes apart.
#ifndef FUZZ_FUZZ_SUPPORT_H
#define FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Every target defines it; libFuzzer, or replay.cpp, calls it. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz
{
// Bytes as a C++ string literal shows them.
std::string quoted(const std::string& text);

inline std::string shown(const std::string& text)
{
    return quoted(text);
}

template <typename T>
std::string shown(T number)
{
    return std::to_string(number);
}

// Prints both and aborts when they differ.
template <typename T>
void expect_equal(const T& answer, const T& expected, const std::string& about)
{
    if (answer == expected)
        return;
    std::fprintf(stderr, "%s: %s instead of %s\n", about.c_str(), shown(answer).c_str(), shown(expected).c_str());
    std::abort();
}

void expect(bool holds, const std::string& about);

// The directory of this process: made at the first call in TMPDIR (/tmp without it), removed at exit. It becomes the
// current directory, and the library's environment variables are unset. Without a final "/".
const std::string& directory();

// Each takes the place of a file or an empty directory that is there.
void write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);
void make_directory(const std::string& path);
void remove_file(const std::string& path);

// The input, taken from the front; when it is used up, zeros and empty texts.
class INPUT
{
public:
    INPUT(const std::uint8_t* data, std::size_t size) : next(data), end(data + size) {}

    bool empty() const
    {
        return next == end;
    }

    // 0 to bound - 1.
    unsigned int below(unsigned int bound);

    bool flag()
    {
        return below(2) == 1;
    }

    // A length, then as many bytes as there still are.
    std::string text();

private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};
}

#endif
