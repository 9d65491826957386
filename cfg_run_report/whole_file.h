// Files that are written whole or not at all.
#ifndef CFG_RUN_REPORT_WHOLE_FILE_H
#define CFG_RUN_REPORT_WHOLE_FILE_H

#include <string>
#include <string_view>

// Makes `bytes` the content of the file `path`: written beside it, and put in its place once all of it is on the disk.
// An existing file keeps its mode, a link to a file stays a link. What is no file (a device, a pipe) is written to as
// it is. Returns the empty text, or what went wrong, in which case an existing file is as it was.
std::string write_whole_file(const std::string& path, std::string_view bytes);

#endif
