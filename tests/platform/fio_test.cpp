#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/fio/fio.h"
#include "tests/support/isolated_test.h"

namespace
{
// --- Paths: the text a path is made from, and what becomes of it ---

class PATH_TEXT_TEST : public testing::TestWithParam<const char*>
{
};

TEST_P(PATH_TEXT_TEST, comes_back_as_given)
{
    const std::string text = GetParam();
    const FIO_PATH path(text.c_str());
    EXPECT_EQ(path.fullpath(), text);
    EXPECT_EQ(static_cast<std::string>(path), text);
    EXPECT_STREQ(static_cast<const char*>(path), text.c_str());

    FIO_PATH assigned("before/it.was");
    assigned = text;
    EXPECT_EQ(assigned.fullpath(), text);
}

INSTANTIATE_TEST_SUITE_P(, PATH_TEXT_TEST,
                         testing::Values("", "/", "a", "a/", "/a", "//", "a//b.c", "a///", ".ini", "a/.ini", "a.b/c",
                                         ".", "..", "a/..", "a.", "a b", "\xC3\x89/\xFF.x"));

struct COMPOSITION
{
    std::string start;
    std::string part;
    std::string expected;
};

void PrintTo(const COMPOSITION& row, std::ostream* out)
{
    *out << '"' << row.start << "\" with \"" << row.part << "\" is \"" << row.expected << '"';
}

class DIRECTORY_PART_TEST : public testing::TestWithParam<COMPOSITION>
{
};

TEST_P(DIRECTORY_PART_TEST, is_replaced_and_the_file_name_kept)
{
    FIO_PATH path(GetParam().start.c_str());
    path.directory(GetParam().part);
    EXPECT_EQ(path.fullpath(), GetParam().expected);
    EXPECT_STREQ(static_cast<const char*>(path), GetParam().expected.c_str());
}

INSTANTIATE_TEST_SUITE_P(, DIRECTORY_PART_TEST,
                         testing::Values(COMPOSITION{"a/b.c", "x", "x/b.c"}, COMPOSITION{"a/b.c", "x/", "x/b.c"},
                                         COMPOSITION{"a/b.c", "", "b.c"}, COMPOSITION{"a/b.c", "/", "/b.c"},
                                         COMPOSITION{"b.c", "x/y", "x/y/b.c"}, COMPOSITION{"b.c", "x//", "x//b.c"},
                                         COMPOSITION{"a/", "x", "x/"}, COMPOSITION{"", "x", "x/"},
                                         COMPOSITION{"a/.ini", "x.y", "x.y/.ini"}));

class FILENAME_PART_TEST : public testing::TestWithParam<COMPOSITION>
{
};

TEST_P(FILENAME_PART_TEST, is_replaced_and_the_directory_kept)
{
    FIO_PATH path(GetParam().start.c_str());
    path.filename(GetParam().part);
    EXPECT_EQ(path.fullpath(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(, FILENAME_PART_TEST,
                         testing::Values(COMPOSITION{"a/b.c", "x.y", "a/x.y"}, COMPOSITION{"a/b.c", "", "a/"},
                                         COMPOSITION{"b.c", "x", "x"}, COMPOSITION{"", "x.y", "x.y"},
                                         COMPOSITION{"/b", "x", "/x"}, COMPOSITION{"a//b", "x", "a//x"}));

class BASE_PART_TEST : public testing::TestWithParam<COMPOSITION>
{
};

TEST_P(BASE_PART_TEST, is_what_stands_before_the_last_dot_of_the_file_name)
{
    FIO_PATH path(GetParam().start.c_str());
    path.base(GetParam().part);
    EXPECT_EQ(path.fullpath(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(, BASE_PART_TEST,
                         testing::Values(COMPOSITION{"a/b.c", "n", "a/n.c"}, COMPOSITION{"a/b", "n", "a/n"},
                                         COMPOSITION{"a/b.c.d", "n", "a/n.d"}, COMPOSITION{"a/.ini", "n", "a/n.ini"},
                                         COMPOSITION{"", "n", "n"}, COMPOSITION{"a/", "n", "a/n"},
                                         COMPOSITION{"a.b/c", "n", "a.b/n"}, COMPOSITION{"b.c", "", ".c"},
                                         COMPOSITION{"b.", "n", "n."}, COMPOSITION{"b.c", "n.m", "n.m.c"}));

struct EXTENSION
{
    std::string start;
    std::string ext;
    std::string other;
    std::string expected;
};

void PrintTo(const EXTENSION& row, std::ostream* out)
{
    *out << '"' << row.start << "\" with \"" << row.ext << "\" or \"" << row.other << "\" is \"" << row.expected << '"';
}

class EXTENSION_PART_TEST : public testing::TestWithParam<EXTENSION>
{
};

TEST_P(EXTENSION_PART_TEST, is_the_first_that_is_not_empty)
{
    FIO_PATH path(GetParam().start.c_str());
    path.extension(GetParam().ext, GetParam().other);
    EXPECT_EQ(path.fullpath(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(, EXTENSION_PART_TEST,
                         testing::Values(EXTENSION{"a/b", "ini", "", "a/b.ini"},
                                         EXTENSION{"a/b.c", "ini", "", "a/b.ini"},
                                         EXTENSION{"a/b.c", "ini", "x", "a/b.ini"}, EXTENSION{"b.c", "", "x", "b.x"},
                                         EXTENSION{"b.c", "", "", "b"}, EXTENSION{"b", "", "", "b"},
                                         EXTENSION{"", "ini", "", ".ini"}, EXTENSION{"a.b/c", "ini", "", "a.b/c.ini"},
                                         EXTENSION{".ini", "x", "", ".x"}, EXTENSION{"b.", "ini", "", "b.ini"},
                                         EXTENSION{"b.c.d", "ini", "", "b.c.ini"}));

TEST(PATH_TEST, is_composed_from_its_parts_in_any_order)
{
    FIO_PATH one;
    EXPECT_EQ(one.fullpath(), "");
    one.directory("dir");
    one.base("velmar");
    one.extension("ini", "");
    EXPECT_EQ(one.fullpath(), "dir/velmar.ini");

    FIO_PATH other;
    other.extension("ini", "");
    other.base("velmar");
    other.directory("dir/");
    EXPECT_EQ(other.fullpath(), "dir/velmar.ini");
}

// --- Questions to the file system ---

using FILE_SYSTEM_TEST = ISOLATED_TEST;

TEST_F(FILE_SYSTEM_TEST, exists_follows_links_and_takes_directories)
{
    write_file(temporary.path("file"), "");
    std::filesystem::create_symlink(temporary.path("file"), temporary.path("link"));
    std::filesystem::create_symlink(temporary.path("nowhere"), temporary.path("dangling"));

    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(temporary.path("file").c_str()));
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(FIO_PATH(temporary.path("file").c_str())));
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(temporary.path("link").c_str()));
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(temporary.path().c_str()));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(temporary.path("dangling").c_str()));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(temporary.path("missing").c_str()));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(FIO_PATH(temporary.path("missing").c_str())));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(temporary.path("file/below").c_str()));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(""));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(std::string(100000, 'x').c_str()));
}

TEST_F(FILE_SYSTEM_TEST, exists_takes_relative_paths_from_the_current_directory)
{
    write_file(temporary.path("cwd/here"), "");
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists("here"));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists("cwd/here"));
}

TEST_F(FILE_SYSTEM_TEST, status_tells_what_stands_there)
{
    write_file(temporary.path("file"), "12345");
    struct stat status;
    ASSERT_TRUE(FIO_FILE_SYSTEM::status(temporary.path("file").c_str(), &status));
    EXPECT_EQ(status.st_size, 5);
    EXPECT_TRUE(S_ISREG(status.st_mode));
    ASSERT_TRUE(FIO_FILE_SYSTEM::status(temporary.path().c_str(), &status));
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_FALSE(FIO_FILE_SYSTEM::status(temporary.path("missing").c_str(), &status));
    EXPECT_FALSE(FIO_FILE_SYSTEM::status("", &status));
}

// Beyond what 32 bits hold.
TEST_F(FILE_SYSTEM_TEST, status_tells_of_files_of_any_size_and_date)
{
    const std::string path = temporary.path("file");
    write_file(path, "");
    std::filesystem::resize_file(path, 3'000'000'000); // takes no room on the disk
    const struct timespec in_2100[] = {{4'102'444'800, 0}, {4'102'444'800, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), in_2100, 0), 0);
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(path.c_str()));
    struct stat status;
    ASSERT_TRUE(FIO_FILE_SYSTEM::status(path.c_str(), &status));
    EXPECT_EQ(status.st_size, 3'000'000'000);
    EXPECT_EQ(status.st_mtim.tv_sec, 4'102'444'800);
}

TEST_F(FILE_SYSTEM_TEST, current_directory_has_no_final_slash_but_for_the_root)
{
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), std::filesystem::canonical(temporary.path("cwd")).string());
    const SCOPED_CURRENT_DIRECTORY root("/");
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), "/");
}

TEST_F(FILE_SYSTEM_TEST, a_current_directory_longer_than_any_path_is_told_whole)
{
    const std::string name(255, 'd');
    std::string expected = std::filesystem::canonical(temporary.path("cwd")).string();
    const SCOPED_CURRENT_DIRECTORY here(expected);
    for (int depth = 0; depth < 18; ++depth)
    {
        ASSERT_TRUE(std::filesystem::create_directory(name));
        ASSERT_EQ(chdir(name.c_str()), 0);
        expected += "/" + name;
    }
    ASSERT_GT(expected.size(), std::size_t{PATH_MAX});
    // The C library walks up so long a path, and finds no way through some mounts.
    char* const known = getcwd(nullptr, 0);
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), known != nullptr ? expected : "");
    std::free(known);
}

TEST_F(FILE_SYSTEM_TEST, a_removed_current_directory_is_empty)
{
    std::filesystem::create_directory(temporary.path("gone"));
    std::filesystem::current_path(temporary.path("gone"));
    std::filesystem::remove(temporary.path("gone"));
    EXPECT_EQ(FIO_FILE_SYSTEM::get_current_directory(), "");
    std::filesystem::current_path(temporary.path("cwd"));
}
}
