#include <cerrno>
#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/gen/gen.h"
#include "tests/support/isolated_test.h"
#include "tests/support/password_database.h"
#include "tests/support/run_program.h"

namespace
{
// --- gen_stricmp ---

struct COMPARISON
{
    const char* a;
    const char* b;
    int sign;
};

void PrintTo(const COMPARISON& row, std::ostream* out)
{
    *out << testing::PrintToString(std::string(row.a)) << " against " << testing::PrintToString(std::string(row.b));
}

int sign_of(int number)
{
    return (number > 0) - (number < 0);
}

class STRICMP_TEST : public testing::TestWithParam<COMPARISON>
{
};

TEST_P(STRICMP_TEST, compares_bytes_with_the_letters_folded)
{
    EXPECT_EQ(sign_of(gen_stricmp(GetParam().a, GetParam().b)), GetParam().sign);
    EXPECT_EQ(sign_of(gen_stricmp(GetParam().b, GetParam().a)), -GetParam().sign);
}

TEST_P(STRICMP_TEST, does_not_ask_the_locale)
{
    const SCOPED_COMMA_LOCALE locale;
    EXPECT_EQ(sign_of(gen_stricmp(GetParam().a, GetParam().b)), GetParam().sign);
}

INSTANTIATE_TEST_SUITE_P(, STRICMP_TEST,
                         testing::Values(COMPARISON{"", "", 0}, COMPARISON{"on", "ON", 0}, COMPARISON{"oN", "On", 0},
                                         COMPARISON{"azAZ", "AZaz", 0}, COMPARISON{"", "a", -1},
                                         COMPARISON{"ab", "abc", -1}, COMPARISON{"ab", "ABC", -1},
                                         COMPARISON{"ABC", "abd", -1}, COMPARISON{"Z", "a", 1},
                                         COMPARISON{"@", "`", -1}, // the neighbours of A and a are not folded
                                         COMPARISON{"[", "{", -1}, // those of Z and z neither
                                         COMPARISON{"_", "A", -1}, // letters compare as lower case: 0x5F, 0x61
                                         COMPARISON{"1", "01", 1}, COMPARISON{"on ", "on", 1},
                                         COMPARISON{"\xC9", "\xE9", -1},         // accented letters of Latin-1
                                         COMPARISON{"\xC3\x89", "\xC3\xA9", -1}, // and of UTF-8
                                         COMPARISON{"\x80", "z", 1},             // bytes count as unsigned
                                         COMPARISON{"\xFF", "\x7F", 1}));

// --- Trimming ---

struct TRIMMING
{
    std::string text;
    std::string without_blanks;
    std::string without_white_space;
};

void PrintTo(const TRIMMING& row, std::ostream* out)
{
    *out << testing::PrintToString(row.text);
}

class TRIMMING_TEST : public testing::TestWithParam<TRIMMING>
{
};

TEST_P(TRIMMING_TEST, removes_blanks_at_both_ends)
{
    EXPECT_EQ(gen_remove_leading_and_trailing_spaces(GetParam().text), GetParam().without_blanks);
}

TEST_P(TRIMMING_TEST, removes_white_space_at_both_ends)
{
    EXPECT_EQ(gen_remove_leading_and_trailing_white_spaces(GetParam().text), GetParam().without_white_space);
}

INSTANTIATE_TEST_SUITE_P(, TRIMMING_TEST,
                         testing::Values(TRIMMING{"", "", ""}, TRIMMING{"a", "a", "a"},
                                         TRIMMING{"  a b  ", "a b", "a b"}, TRIMMING{" ", "", ""},
                                         TRIMMING{"   ", "", ""}, TRIMMING{"\ta\t", "\ta\t", "a"},
                                         TRIMMING{" \ta\t ", "\ta\t", "a"}, TRIMMING{"a\r", "a\r", "a"},
                                         TRIMMING{"a\r\n", "a\r\n", "a"}, TRIMMING{"\v\fa\v\f", "\v\fa\v\f", "a"},
                                         TRIMMING{" \t\n\v\f\r", "\t\n\v\f\r", ""},
                                         TRIMMING{"a\t\tb", "a\t\tb", "a\t\tb"},
                                         TRIMMING{"\xA0"
                                                  "a\x85",
                                                  "\xA0"
                                                  "a\x85",
                                                  "\xA0"
                                                  "a\x85"}, // white space of other tables, not of ours
                                         TRIMMING{std::string(" \0 ", 3), std::string("\0", 1), std::string("\0", 1)}));

// --- Well-known directories ---

using DIRECTORIES_TEST = ISOLATED_TEST;

TEST_F(DIRECTORIES_TEST, module_path_is_where_the_executable_stands)
{
    EXPECT_EQ(gen_get_module_path(), std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/");
}

// What a program that prints module path and installation directory prints, run from `path`.
std::string paths_printed_by(const std::string& path)
{
    const PROGRAM_RESULT result = run_program({path});
    EXPECT_EQ(result.status, 0) << path;
    return result.out;
}

TEST_F(DIRECTORIES_TEST, installation_is_above_a_directory_called_bin)
{
    const std::string root = std::filesystem::canonical(temporary.path()).string();
    for (const auto& [directory, installation] :
         {std::pair("tool/bin/", "tool/"), std::pair("tool/", "tool/"), std::pair("tool/xbin/", "tool/xbin/"),
          std::pair("bin/sub/", "bin/sub/"), std::pair("bin/bin/", "bin/")})
    {
        std::filesystem::create_directories(root + "/" + directory);
        std::filesystem::copy(ZON_TEST_PRINT_PATHS, root + "/" + directory + "print_paths");
        EXPECT_EQ(paths_printed_by(root + "/" + directory + "print_paths"),
                  root + "/" + directory + "\n" + root + "/" + installation + "\n");
    }
}

TEST_F(DIRECTORIES_TEST, a_link_to_the_executable_does_not_move_it)
{
    const std::string root = std::filesystem::canonical(temporary.path()).string();
    std::filesystem::create_directories(root + "/tool/bin");
    std::filesystem::copy(ZON_TEST_PRINT_PATHS, root + "/tool/bin/print_paths");
    std::filesystem::create_symlink(root + "/tool/bin/print_paths", root + "/link");
    EXPECT_EQ(paths_printed_by(root + "/link"), root + "/tool/bin/\n" + root + "/tool/\n");
}

TEST_F(DIRECTORIES_TEST, profile_directory_is_home_as_it_stands)
{
    for (const char* const home : {"/some/where", "relative", "/ends/in/", " "})
    {
        environment.set("HOME", home);
        EXPECT_EQ(gen_get_user_profile_directory(), home);
    }
}

TEST_F(DIRECTORIES_TEST, profile_directory_without_home_is_that_of_the_password_database)
{
    const struct passwd* const entry = getpwuid(getuid());
    const std::string expected = entry != nullptr && *entry->pw_dir != '\0' ? entry->pw_dir : "/dev/null/";
    environment.unset("HOME");
    EXPECT_EQ(gen_get_user_profile_directory(), expected);
    environment.set("HOME", "");
    EXPECT_EQ(gen_get_user_profile_directory(), expected);
}

TEST_F(DIRECTORIES_TEST, profile_directory_with_home_asks_no_password_database)
{
    const SCOPED_PASSWORD_DATABASE database("/of/the/database");
    environment.set("HOME", "/of/the/environment");
    EXPECT_EQ(gen_get_user_profile_directory(), "/of/the/environment");
    EXPECT_EQ(database.calls(), 0);
}

TEST_F(DIRECTORIES_TEST, profile_directory_of_a_long_password_entry_is_read_whole)
{
    environment.unset("HOME");
    for (const std::size_t size : {1U, 1022U, 1023U, 1024U, 16383U, 16384U, 100000U, (1U << 24U) - 1U})
    {
        const std::string home = "/" + std::string(size - 1, 'h');
        const SCOPED_PASSWORD_DATABASE database(home);
        EXPECT_TRUE(gen_get_user_profile_directory() == home) << size;
    }
}

TEST_F(DIRECTORIES_TEST, interrupted_question_to_the_password_database_is_asked_again)
{
    environment.unset("HOME");
    SCOPED_PASSWORD_DATABASE database("/home/someone");
    database.fail(EINTR, 3);
    EXPECT_EQ(gen_get_user_profile_directory(), "/home/someone");
    EXPECT_EQ(database.calls(), 4);
}

// What the default answers in place of the current directory.
TEST_F(DIRECTORIES_TEST, profile_directory_without_home_and_password_entry_is_one_where_nothing_can_be_made)
{
    environment.unset("HOME");
    {
        const SCOPED_PASSWORD_DATABASE database(std::nullopt);
        EXPECT_EQ(gen_get_user_profile_directory(), "/dev/null/") << "no entry";
        environment.set("HOME", "");
        EXPECT_EQ(gen_get_user_profile_directory(), "/dev/null/") << "no entry, an empty HOME";
    }
    {
        const SCOPED_PASSWORD_DATABASE database("");
        EXPECT_EQ(gen_get_user_profile_directory(), "/dev/null/") << "an entry without a directory";
    }
    for (const int error : {EIO, ENOENT, EMFILE})
    {
        SCOPED_PASSWORD_DATABASE database("/home/someone");
        database.fail(error, 1);
        EXPECT_EQ(gen_get_user_profile_directory(), "/dev/null/") << "error " << error;
    }
    EXPECT_EQ(mkdir("/dev/null/directory", 0700), -1);
    EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(DIRECTORIES_TEST, password_database_that_finds_no_buffer_long_enough_is_given_up)
{
    environment.unset("HOME");
    SCOPED_PASSWORD_DATABASE database("/home/someone");
    database.fail(ERANGE, 1000);
    EXPECT_EQ(gen_get_user_profile_directory(), "/dev/null/");
    EXPECT_EQ(database.calls(), 15); // with room for 1024 characters, twice as many each time, up to 16 M
}

// --- Search paths ---

TEST(SEARCH_PATHS_TEST, are_kept_apart_as_last_set)
{
    gen_set_user_library_paths("/a;/b");
    gen_set_user_ip_search_paths("/c");
    EXPECT_EQ(gen_get_user_library_paths(), "/a;/b");
    EXPECT_EQ(gen_get_user_ip_search_paths(), "/c");
    gen_set_user_library_paths("");
    EXPECT_EQ(gen_get_user_library_paths(), "");
    EXPECT_EQ(gen_get_user_ip_search_paths(), "/c");
    gen_set_user_ip_search_paths("");
    EXPECT_EQ(gen_get_user_ip_search_paths(), "");
}
}
