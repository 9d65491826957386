// General service: strings, well-known directories, and the search paths that preferences set.
//
// What the library expects.
// - The string functions depend on their arguments only. gen_stricmp neither allocates nor throws, and is called with
//   the store's lock held.
// - Any thread may call the path functions. During a first load it may hold the store's lock. They must not use the
//   configuration library.
// - The two setters are called from the thread that uses the preferences. They must not use the preference store. They
//   may throw: the exception passes to the caller of the preference. If the call was an assignment, it is then undone.
//   Search paths that a load had to pass on are passed on again at the next use of the preferences.
//
// Example:
//
//     if (gen_stricmp("Max_Fanout", "max_fanout") == 0)                              // equal but for the letter case
//         print(gen_remove_leading_and_trailing_white_spaces("\t two words \r\n"));   // "two words"
//
// Example of an implementation of the path functions. A host can replace these and keep the others:
//
//     std::string gen_get_module_path() { return "/opt/acme/bin/"; }
//     std::string gen_get_velmar_path() { return "/opt/acme/"; }
//     std::string gen_get_user_profile_directory()
//     {
//         const char* const profile = std::getenv("ACME_PROFILE");
//         return profile != nullptr ? profile : "/dev/null/";   // never empty
//     }
#ifndef PLATFORM_GEN_GEN_H
#define PLATFORM_GEN_GEN_H

#include <string>

// Compares two zero-terminated strings, and ignores the case of the letters A to Z. The result is less than, equal to
// or greater than 0, as that of strcmp.
int gen_stricmp(const char* a, const char* b);

// A copy of the text without the characters at both ends that are blanks (only ' '), or white space (" \t\n\v\f\r").
// Those within the text stay.
std::string gen_remove_leading_and_trailing_spaces(const std::string& text);
std::string gen_remove_leading_and_trailing_white_spaces(const std::string& text);

// The directory of the running executable, with "/" at the end; empty if it is not known.
std::string gen_get_module_path();

// The installation directory, with "/" at the end; empty if it is not known. The default takes the directory of the
// executable, or its parent if the directory is called "bin".
std::string gen_get_velmar_path();

// The directory for velmar2.ini if VELMAR2_INI does not name one. It must not be empty, as that would mean the current
// directory. The default takes HOME, or else the home directory in the password database. If there is neither, it
// returns "/dev/null/", a directory in which no file exists and none can be created.
std::string gen_get_user_profile_directory();

// Receive the user's library paths and IP search paths, as the preferences hold them. An assignment passes on any text.
// A load passes on only texts that are not empty, so the host then keeps what it was passed before. The defaults keep
// the text that was set last, and the two getters return it; any thread may call them. The library calls only the
// setters.
void gen_set_user_library_paths(const std::string& paths);
void gen_set_user_ip_search_paths(const std::string& paths);
std::string gen_get_user_library_paths();
std::string gen_get_user_ip_search_paths();

#endif
