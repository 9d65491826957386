// File service: paths and the questions that the library asks of the file system.
//
// What the library expects. Questions about the file system answer false, or empty, on any failure; they may throw
// std::bad_alloc only. FIO_FILE_SYSTEM::exists and, for a relative path, get_current_directory are called with the store's
// lock held while the main settings file is being read, and throughout a first load; they must not wait for a thread
// that uses the store. Paths are bytes.
#ifndef PLATFORM_FIO_FIO_H
#define PLATFORM_FIO_FIO_H

#include <string>

struct stat;

// A path in two pieces: a directory, and a file name that is a base name and an extension. A path made from a text
// gives the same text back.
class FIO_PATH
{
public:
    // No directory and no file name; what stands behind the last "/" of a text is its file name.
    FIO_PATH();
    FIO_PATH(const char* path); // NOLINT(google-explicit-constructor): hosts pass texts where a path is wanted
    FIO_PATH& operator=(const std::string& path);

    // Sets the file name, directory kept.
    void filename(const std::string& name);

    // Sets the directory, with or without a final "/"; file name kept.
    void directory(const std::string& dir);

    // Sets what stands before the last "." of the file name, or the whole name when it has no ".".
    void base(const std::string& name);

    // Sets the extension (given without its "."); `other` is used when `ext` is empty. With both empty the file name
    // loses its extension.
    void extension(const std::string& ext, const std::string& other);

    // Directory and file name, joined by "/" where the directory does not end in one.
    std::string fullpath() const;

    // The full path.
    operator std::string() const; // NOLINT(google-explicit-constructor): part of the service's interface
    operator const char*() const; // NOLINT(google-explicit-constructor): valid until the object next changes

private:
    void join();

    std::string directory_part;
    std::string filename_part;
    std::string full;
};

// What the library asks of the file system.
class FIO_FILE_SYSTEM
{
public:
    // Whether something, a directory included, stands at the path (links followed).
    static bool exists(const FIO_PATH& path);
    static bool exists(const char* path);

    // Fills `result` with what stat(2) says of the path; false, with `result` unspecified, when it says nothing.
    static bool status(const char* path, struct stat* result);

    // The process's current directory, without a final "/" but for the root; empty when it is not known.
    static std::string get_current_directory();
};

#endif
