// General service: strings, well-known directories, and the search paths that preferences set.
//
// What the library expects. The string functions are pure; gen_stricmp neither allocates nor throws and is called with
// the store's lock held. The path functions may be called from any thread, also with the store's lock held during a
// first read; they must not use the configuration library. The two setters are called from the thread that uses the
// preferences and must not use the preference store. They may throw: the exception goes to the caller of the
// preference, an assignment is undone, and what loading has to hand over is handed over at the next use of the
// preferences.
#ifndef PLATFORM_GEN_GEN_H
#define PLATFORM_GEN_GEN_H

#include <string>

// Compares two zero-terminated strings without regard to the case of the letters A to Z: less than, equal to or greater
// than 0 as strcmp.
int gen_stricmp(const char* a, const char* b);

// Copies without leading and trailing blanks (' ' only), and without leading and trailing white space
// (" \t\n\v\f\r").
std::string gen_remove_leading_and_trailing_spaces(const std::string& text);
std::string gen_remove_leading_and_trailing_white_spaces(const std::string& text);

// Directory of the running executable, ends in "/"; empty when it cannot be told.
std::string gen_get_module_path();

// Installation directory, ends in "/": the one above the executable's when that is called "bin", else the executable's;
// empty when it cannot be told.
std::string gen_get_velmar_path();

// HOME, else the home directory of the password database. Never empty, which would mean the current directory: the
// default answers "/dev/null/" when there is neither, a directory below which no file is found and none can be made.
std::string gen_get_user_profile_directory();

// Take the user's library paths and IP search paths, as the preferences hold them. The defaults keep the text last set
// for gen_get_user_library_paths and gen_get_user_ip_search_paths.
void gen_set_user_library_paths(const std::string& paths);
void gen_set_user_ip_search_paths(const std::string& paths);
std::string gen_get_user_library_paths();
std::string gen_get_user_ip_search_paths();

#endif
