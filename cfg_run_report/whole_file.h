// Files that are written whole or not at all, for hosts' run reports and for velmar-cfg.
#ifndef CFG_RUN_REPORT_WHOLE_FILE_H
#define CFG_RUN_REPORT_WHOLE_FILE_H

#include <memory>
#include <string>
#include <string_view>
#include <system_error>

// Where a path leads once every symbolic link is followed, its directory without links; the file itself need not exist.
// Throws std::system_error for a directory that does not exist and for links in a circle.
std::string followed_path(const std::string& path);

// What becomes of the owner of a file that is replaced, where he is another than the new file's.
enum class FILE_OWNER
{
    KEPT,             // or the file is not replaced
    KEPT_IF_POSSIBLE, // only root can
};

// The owner could not be kept.
class OWNER_NOT_KEPT : public std::system_error
{
public:
    using std::system_error::system_error;
};

// Puts the finished file `made` in the place of `target`, a path without links on the same file system: all of its
// bytes are on the disk before, and an existing target's mode, and owner, are its own. Throws std::system_error, and
// then the target is as it was. Returns no error, or what kept the directory from being synchronised: the target is
// replaced, but a power cut may undo that.
std::error_code replace_file(const std::string& made, const std::string& target, FILE_OWNER owner);

// Who may read a file that is written.
enum class FILE_READERS
{
    AS_USUAL, // whoever may read the file that is replaced; where there is none, whoever the umask lets
    OWNER,    // nobody else, also where others may read the file that is replaced
};

// Writes a file in pieces beside the one that it is to replace, with that one's mode from the beginning. Unless it is
// put in place, it goes again. A link to a file stays a link. What is no file (a device, a pipe) is written to as it
// is.
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
std::string write_whole_file(const std::string& path, std::string_view bytes);

#endif
