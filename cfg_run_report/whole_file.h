// Files that are written whole or not at all, for hosts' run reports and for velmar-cfg's documents.
#ifndef CFG_RUN_REPORT_WHOLE_FILE_H
#define CFG_RUN_REPORT_WHOLE_FILE_H

#include <memory>
#include <string>
#include <string_view>

// Who may read a file that is written.
enum class FILE_READERS
{
    AS_USUAL, // whoever may read the file that is replaced; if there is none, the umask decides
    OWNER,    // only the owner, even if others may read the file that is replaced
};

// Writes a file in pieces, beside the one that it is to replace. The new file has the mode of the old one from the
// beginning, and its owner if possible. It is removed unless it is put in place. A link to a file stays a link. A
// device or a pipe is written to directly.
class WHOLE_FILE_WRITER
{
public:
    // Throws std::system_error when the file, or its directory, cannot be written.
    explicit WHOLE_FILE_WRITER(const std::string& path, FILE_READERS readers = FILE_READERS::AS_USUAL);
    ~WHOLE_FILE_WRITER();
    WHOLE_FILE_WRITER(const WHOLE_FILE_WRITER&) = delete;
    WHOLE_FILE_WRITER& operator=(const WHOLE_FILE_WRITER&) = delete;

    // Both throw std::system_error; an existing file is then as it was.
    void write(std::string_view bytes);
    void put_in_place();

private:
    class OPEN_FILE;

    std::string target; // empty for a device
    std::unique_ptr<OPEN_FILE> file;
};

// Makes `bytes` the content of the file `path` in this way. Returns the empty text, or what went wrong.
std::string write_whole_file(const std::string& path, std::string_view bytes,
                             FILE_READERS readers = FILE_READERS::AS_USUAL);

#endif
