// File service: paths, and what the library asks the file system.
//
// What the library expects. The functions of FIO_FILE_SYSTEM return false, or an empty text, after any failure. They
// may throw std::bad_alloc and nothing else. FIO_FILE_SYSTEM::exists and get_current_directory may be called with the
// store's lock held: while the main settings file is read, and during a whole first load. So they must not wait for a
// thread that uses the store. Paths are bytes.
//
// The library opens and reads files itself. This service joins paths and answers questions about them.
//
// Example, the path of a settings file:
//
//     FIO_PATH path;
//     path.directory("/home/user");
//     path.base("velmar");
//     path.extension("ini", "");
//     print(path.fullpath());                 // "/home/user/velmar.ini"
//     if (FIO_FILE_SYSTEM::exists(path))
//         cfg_read_ini_file(path);
//
// Example of an implementation, which hides every file below one directory:
//
//     bool FIO_FILE_SYSTEM::exists(const char* path)
//     {
//         struct stat status;
//         return std::string_view(path).substr(0, 9) != "/hidden/" && stat(path, &status) == 0;
//     }
#ifndef PLATFORM_FIO_FIO_H
#define PLATFORM_FIO_FIO_H

#include <string>
#include <sys/types.h>

struct stat;

// On 32-bit machines too `struct stat` has sizes and times of 64 bits. Whoever calls or implements status() compiles
// with the same definitions.
static_assert(sizeof(off_t) == 8 && sizeof(time_t) == 8, "compile with -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64");

// A path in two parts: a directory and a file name. The file name consists of a base name and an extension, separated
// by the last ".". A path that is made from a text gives the same text back. Any thread may use an object of its own.
class FIO_PATH
{
public:
    // An empty path, or the path of a text. The part behind the last "/" of the text is the file name: "/a/b.ini" has
    // the directory "/a/", the base name "b" and the extension "ini".
    FIO_PATH();
    FIO_PATH(const char* path); // NOLINT(google-explicit-constructor): hosts pass texts where a path is wanted
    FIO_PATH& operator=(const std::string& path);

    // Replaces the file name, and keeps the directory: "/a/b.ini" becomes "/a/c.txt" for "c.txt".
    void filename(const std::string& name);

    // Replaces the directory, and keeps the file name. The directory may end in "/" or not.
    void directory(const std::string& dir);

    // Replaces the base name, and keeps the extension: "/a/b.ini" becomes "/a/c.ini" for "c". A file name without a "."
    // is replaced as a whole.
    void base(const std::string& name);

    // Replaces the extension, which is given without its ".": "/a/b.ini" becomes "/a/b.txt" for "txt". If `ext` is
    // empty, `other` is taken instead. If both are empty, the file name loses its extension.
    void extension(const std::string& ext, const std::string& other);

    // The directory and the file name, with a "/" between them unless the directory is empty or ends in one.
    std::string fullpath() const;

    // The same as fullpath(). The characters are valid until the object next changes.
    operator std::string() const; // NOLINT(google-explicit-constructor): part of the service's interface
    operator const char*() const; // NOLINT(google-explicit-constructor): part of the service's interface

private:
    void join();

    std::string directory_part;
    std::string filename_part;
    std::string full;
};

// The questions that the library asks about the file system. Any thread may call them. The answer may be out of date
// when the caller gets it, since other processes change files: the library then handles the failure to open the file.
class FIO_FILE_SYSTEM
{
public:
    // Whether the path exists: a file, a directory or anything else. Symbolic links are followed, so a link to nothing
    // does not exist.
    static bool exists(const FIO_PATH& path);
    static bool exists(const char* path);

    // Calls stat(2) for the path and writes its result to `result`. Returns false if the call fails; `result` is then
    // unspecified.
    static bool status(const char* path, struct stat* result);

    // The current directory of the process; empty if it is not known. Only the root directory ends in "/".
    static std::string get_current_directory();
};

#endif
