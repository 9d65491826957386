// The lines of a settings file, one at a time.
#ifndef CFG_INI_CFG_INI_READER_SETTINGS_LINES_H
#define CFG_INI_CFG_INI_READER_SETTINGS_LINES_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace zon_cfg
{
class SETTINGS_LINES
{
public:
    // Opens the file. A file that does not open, and one that opens but cannot be read (a directory), has no lines.
    explicit SETTINGS_LINES(const std::string& path);

    bool opened() const
    {
        return file != nullptr;
    }

    // Whether there is a further line; if so, `line` becomes its bytes without the newline, valid until the next call.
    // A last line need not end in one, unless a read failed: the lines then end with the last whole one. A line may be
    // of any length and may hold any byte.
    bool next(std::string_view& line);

    // How many bytes the file has, to be asked before the first line; 0 when it cannot be told. Only for making room:
    // the file may grow or shrink while it is read.
    std::size_t size_hint();

private:
    bool fill();

    struct CLOSER
    {
        void operator()(std::FILE* stream) const
        {
            std::fclose(stream); // a file only read: nothing to lose
        }
    };

    std::unique_ptr<std::FILE, CLOSER> file;
    std::unique_ptr<char[]> buffer;
    std::string divided; // a line that ran over the end of the buffer
    std::size_t position = 0;
    std::size_t filled = 0;
};
}

#endif
