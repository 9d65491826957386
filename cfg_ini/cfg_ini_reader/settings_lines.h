// The lines of a settings file, one at a time.
#ifndef CFG_INI_CFG_INI_READER_SETTINGS_LINES_H
#define CFG_INI_CFG_INI_READER_SETTINGS_LINES_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/types.h>

namespace zon_cfg
{
class SETTINGS_LINES
{
public:
    // Opens the file. If the path names a pipe, waits for a writer. A file that does not open has no lines. Neither has
    // one that opens but cannot be read, such as a directory.
    explicit SETTINGS_LINES(const std::string& path);
    ~SETTINGS_LINES();
    SETTINGS_LINES(const SETTINGS_LINES&) = delete;
    SETTINGS_LINES& operator=(const SETTINGS_LINES&) = delete;

    bool opened() const
    {
        return descriptor >= 0;
    }

    // Returns whether there is a further line. If there is, `line` becomes its bytes without the newline, valid until
    // the next call. The last line need not end in a newline. But if the file ended because reads failed, a line
    // without a newline is dropped. A line may be of any length and may hold any byte.
    bool next(std::string_view& line);

    // The result of fstat for the open file; all zero if fstat failed. Reads nothing and does not wait. The file may
    // grow or shrink while it is read.
    struct stat status() const;

    // Whether the lines have ended because reads failed.
    bool cut_short() const
    {
        return failed;
    }

private:
    ssize_t read_piece();
    bool fill();

    std::unique_ptr<char[]> buffer;
    const int descriptor;
    std::string divided; // a line that ran over the end of the buffer
    std::size_t position = 0;
    std::size_t filled = 0;
    off_t file_position = 0; // of the next piece
    bool has_positions = true;
    bool ended; // nothing is read any more, though a pipe or a terminal might have more
    bool failed = false;
};
}

#endif
