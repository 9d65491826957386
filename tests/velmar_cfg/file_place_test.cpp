// Where a path leads, and whose links are followed.
#include "tools/velmar-cfg/base/file_place.h"

#include "tests/velmar_cfg/replaced_file_test.h"

namespace
{
class FILE_PLACE_TEST : public REPLACED_FILE_TEST
{
};

TEST_F(FILE_PLACE_TEST, follows_links)
{
    namespace fs = std::filesystem;
    const std::string cwd = fs::canonical(".").string();
    fs::create_directories("a/b");
    fs::create_symlink("b", "a/relative");
    fs::create_symlink(cwd + "/a/b", "absolute");
    fs::create_symlink("../../user/file", "a/b/up");
    fs::create_symlink("a/./relative/../b/up", "chain");
    fs::create_symlink("user/new", "dangling");
    const std::pair<const char*, const char*> rows[] = {{"user/file", "user/file"},      {"./user//file", "user/file"},
                                                        {"a/../user/file", "user/file"}, {"a/relative/x", "a/b/x"},
                                                        {"absolute/x", "a/b/x"},         {"a/relative/../x", "a/x"},
                                                        {"absolute/up", "user/file"},    {"chain", "user/file"},
                                                        {"dangling", "user/new"},        {"new", "new"}};
    for (const auto& [path, expected] : rows)
    {
        for (const std::string& form : {std::string(path), cwd + "/" + path})
        {
            const FILE_PLACE place(form);
            EXPECT_EQ(place.path(), cwd + "/" + expected) << form;
            struct stat by_place;
            struct stat by_path;
            const bool exists = fstatat(place.directory(), place.name().c_str(), &by_place, AT_SYMLINK_NOFOLLOW) == 0;
            ASSERT_EQ(exists, stat(form.c_str(), &by_path) == 0) << form;
            EXPECT_TRUE(!exists || by_place.st_ino == by_path.st_ino) << form;
        }
    }
}

TEST_F(FILE_PLACE_TEST, tells_what_does_not_lead_anywhere)
{
    std::filesystem::create_symlink("b", "a");
    std::filesystem::create_symlink("a", "b");
    std::filesystem::create_symlink("/", "root");
    const std::string cwd = std::filesystem::canonical(".").string();
    EXPECT_EQ(complaint_of([] { FILE_PLACE("a"); }),
              "3 a: symbolic links that lead back to themselves; remove one of them");
    EXPECT_EQ(complaint_of([] { FILE_PLACE("nowhere/file"); }),
              "4 nowhere/file: No such file or directory; make the directory first");
    EXPECT_EQ(complaint_of([] { FILE_PLACE("user/file/x"); }), "4 user/file/x: Not a directory");
    EXPECT_EQ(complaint_of([] { FILE_PLACE("root"); }), "3 root: is a link to a directory, not to a file");
    for (const std::string path : {"", ".", "./", "/"})
        EXPECT_EQ(complaint_of([&path] { const FILE_PLACE place(path); }),
                  "3 " + path + ": is a directory, not a file");
}

TEST_F(FILE_PLACE_TEST, tells_that_the_current_directory_has_gone)
{
    const std::string cwd = std::filesystem::canonical(".").string();
    std::filesystem::create_directory("gone");
    std::filesystem::current_path("gone");
    std::filesystem::remove(cwd + "/gone");
    EXPECT_EQ(complaint_of([] { FILE_PLACE("file"); }),
              "4 file: the current directory is not known: No such file or directory; give an absolute path");
    EXPECT_EQ(FILE_PLACE(cwd + "/user/file").path(), cwd + "/user/file");
    std::filesystem::current_path(cwd);
}

TEST_F(FILE_PLACE_TEST, forty_links_are_followed_and_no_more)
{
    std::filesystem::create_symlink("user/file", "link1");
    for (int i = 2; i <= 41; ++i)
        std::filesystem::create_symlink("link" + std::to_string(i - 1), "link" + std::to_string(i));
    EXPECT_EQ(FILE_PLACE("link40").path(), full_path());
    EXPECT_EQ(complaint_of([] { FILE_PLACE("link41"); }),
              "3 link41: symbolic links that lead back to themselves; remove one of them");
}

TEST_F(FILE_PLACE_TEST, stays_where_it_was_whatever_takes_its_path)
{
    const FILE_PLACE place(file);
    std::filesystem::rename("user", "moved");
    write_file("planted/file", "planted\n");
    std::filesystem::create_symlink("planted", "user");
    const int opened = openat(place.directory(), place.name().c_str(), O_RDONLY | O_CLOEXEC);
    char first = 0;
    EXPECT_EQ(read(opened, &first, 1), 1);
    close(opened);
    EXPECT_EQ(first, 'o'); // of "old"
}

TEST_F(FILE_PLACE_TEST, knows_a_file_by_its_name)
{
    write_file("user/other", "");
    std::filesystem::create_hard_link("user/file", "user/second");
    std::filesystem::create_symlink("file", "user/link");
    const FILE_PLACE place(file);
    const int opened = open(file, O_RDONLY | O_CLOEXEC);
    const std::pair<const char*, bool> rows[] = {
        {"file", true}, {"second", true}, {"other", false}, {"link", false}, {"missing", false}};
    for (const auto& [name, expected] : rows)
        EXPECT_EQ(place.has(opened, name), expected) << name;
    // A file of another file system, which may have the same number there.
    const int elsewhere = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
    EXPECT_FALSE(place.has(elsewhere, "file"));
    EXPECT_FALSE(place.has(-1, "file"));
    close(elsewhere);
    close(opened);
}

TEST_F(FILE_PLACE_TEST, root_follows_no_link_of_another_user)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give links away";
    const std::string cwd = std::filesystem::canonical(".").string();
    write_file("secret/file", "x");
    std::filesystem::create_symlink("secret/file", "planted");
    std::filesystem::create_symlink("secret", "directory");
    EXPECT_EQ(FILE_PLACE("planted").path(), cwd + "/secret/file");
    ASSERT_EQ(lchown("planted", other_user, other_user), 0);
    ASSERT_EQ(lchown("directory", other_user, other_user), 0);
    const std::string why = " is a link that belongs to the user number 64711, which root does not follow; run the "
                            "command as that user";
    EXPECT_EQ(complaint_of([] { FILE_PLACE("planted"); }), "4 " + cwd + "/planted:" + why);
    EXPECT_EQ(complaint_of([] { FILE_PLACE("directory/file"); }), "4 " + cwd + "/directory:" + why);

    // The user himself does, and any other user too: it lends nobody more rights than he has.
    std::filesystem::permissions(temporary.path(), std::filesystem::perms::all);
    EXPECT_EQ(as_other_user([] { return FILE_PLACE("directory/file").path(); }), cwd + "/secret/file");
    ASSERT_EQ(lchown("directory", 64712, 64712), 0);
    EXPECT_EQ(as_other_user([] { return FILE_PLACE("directory/file").path(); }), cwd + "/secret/file");
}

TEST(USERS, are_named_or_numbered)
{
    EXPECT_EQ(user_in_words(0), "'root'");
    EXPECT_EQ(user_in_words(other_user), "number 64711");
}
}
