// The user's key for masks: made once, the same for all, and used only if nobody else can have it.
#include "tools/velmar-cfg/base/mask_key.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <iterator>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "tests/support/isolated_test.h"

namespace
{
using testing::HasSubstr;
using testing::StartsWith;

class MASK_KEY_FILE : public ISOLATED_TEST
{
protected:
    const std::string path = temporary.path("data/velmar-cfg/mask-key");

    static mode_t mode_of(const std::string& file)
    {
        struct stat found;
        return stat(file.c_str(), &found) == 0 ? found.st_mode & 07777U : 0;
    }

    // Expects that the key is not the user's, and that the problem is this one of the file.
    void expect_refused(const std::string& text) const
    {
        const MASK_KEY key = lasting_mask_key(path);
        EXPECT_FALSE(key.lasting);
        EXPECT_EQ(key.problem, path + ": " + text + "; until then masks cannot be compared with those of other runs");
        EXPECT_NE(lasting_mask_key(path).bytes, key.bytes);
    }
};

TEST_F(MASK_KEY_FILE, is_made_once_for_the_user_alone)
{
    umask(0);
    const MASK_KEY key = lasting_mask_key(path);
    umask(022);
    EXPECT_EQ(key.problem, "");
    EXPECT_TRUE(key.lasting);
    EXPECT_EQ(key.bytes.size(), 32U);
    EXPECT_EQ(mode_of(path), 0600U);
    EXPECT_EQ(mode_of(temporary.path("data/velmar-cfg")), 0700U);
    EXPECT_EQ(mode_of(temporary.path("data")), 0700U);
    const MASK_KEY again = lasting_mask_key(path);
    EXPECT_EQ(again.bytes, key.bytes);
    EXPECT_EQ(again.name, key.name);
    EXPECT_THAT(key.name, testing::MatchesRegex("[0-9a-f]{16}"));
}

TEST_F(MASK_KEY_FILE, leaves_nothing_beside_it)
{
    lasting_mask_key(path);
    const std::filesystem::directory_iterator files(temporary.path("data/velmar-cfg"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(MASK_KEY_FILE, is_the_same_for_all_who_make_it_at_once)
{
    constexpr int rounds = 20;
    constexpr std::size_t at_once = 8;
    for (int round = 0; round < rounds; ++round)
    {
        const std::string file = temporary.path("race" + std::to_string(round) + "/velmar-cfg/mask-key");
        std::vector<MASK_KEY> keys(at_once);
        std::vector<std::thread> threads;
        for (MASK_KEY& key : keys)
            threads.emplace_back([&key, &file] { key = lasting_mask_key(file); });
        for (std::thread& thread : threads)
            thread.join();
        std::set<std::string> different;
        for (const MASK_KEY& key : keys)
        {
            EXPECT_EQ(key.problem, "");
            different.insert(key.bytes);
        }
        ASSERT_EQ(different.size(), 1U);
    }
}

TEST_F(MASK_KEY_FILE, takes_away_what_a_killed_run_left)
{
    std::filesystem::create_directories(temporary.path("data/velmar-cfg"));
    write_file(path + ".velmar-cfg-0123456789ab.tmp", "half");
    EXPECT_TRUE(lasting_mask_key(path).lasting);
    const std::filesystem::directory_iterator files(temporary.path("data/velmar-cfg"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

// The user could not use what root makes there, and may have planted links.
TEST_F(MASK_KEY_FILE, of_root_is_not_made_where_another_user_is_at_home)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give directories away";
    constexpr uid_t other_user = 64711;
    std::filesystem::create_directories(temporary.path("data"));
    ASSERT_EQ(chown(temporary.path("data").c_str(), other_user, other_user), 0);
    const std::string cannot_be_made =
        "the key for masks cannot be made: " + std::filesystem::canonical(temporary.path("data")).string() +
        "/velmar-cfg: ";
    const std::string advice = "; let XDG_DATA_HOME name a directory of this user that can be written";
    expect_refused(cannot_be_made + "is in a directory of the user number 64711" + advice);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.path("data")));

    std::filesystem::create_directories(temporary.path("target"));
    ASSERT_EQ(symlink(temporary.path("target").c_str(), temporary.path("data/velmar-cfg").c_str()), 0);
    ASSERT_EQ(lchown(temporary.path("data/velmar-cfg").c_str(), other_user, other_user), 0);
    expect_refused(cannot_be_made +
                   "is a link that belongs to the user number 64711, which root does not follow; run the command as "
                   "that user" +
                   advice);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.path("target")));

    std::filesystem::create_directories(temporary.path("data/own"));
    EXPECT_TRUE(lasting_mask_key(temporary.path("data/own/mask-key")).lasting);
}

TEST_F(MASK_KEY_FILE, is_another_for_another_user)
{
    EXPECT_NE(lasting_mask_key(path).name, lasting_mask_key(temporary.path("other/mask-key")).name);
    EXPECT_NE(passing_mask_key().bytes, passing_mask_key().bytes);
    EXPECT_FALSE(passing_mask_key().lasting);
}

TEST_F(MASK_KEY_FILE, is_not_used_where_others_may_know_it)
{
    lasting_mask_key(path);
    for (const mode_t mode : {0640U, 0604U, 0660U, 0601U, 0620U})
    {
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        SCOPED_TRACE(mode);
        expect_refused("others may have read or written it; remove it, so that a new key is made");
    }
    ASSERT_EQ(chmod(path.c_str(), 0400), 0);
    EXPECT_TRUE(lasting_mask_key(path).lasting);
}

TEST_F(MASK_KEY_FILE, is_not_followed_through_a_link)
{
    lasting_mask_key(temporary.path("mine/mask-key"));
    std::filesystem::create_directories(temporary.path("data/velmar-cfg"));
    ASSERT_EQ(symlink(temporary.path("mine/mask-key").c_str(), path.c_str()), 0);
    expect_refused("is a symbolic link; remove it or make it readable for this user");
    // Nor is one that leads nowhere filled.
    ASSERT_EQ(unlink(path.c_str()), 0);
    ASSERT_EQ(symlink(temporary.path("planted").c_str(), path.c_str()), 0);
    expect_refused("is a symbolic link; remove it or make it readable for this user");
    EXPECT_NE(access(temporary.path("planted").c_str(), F_OK), 0);
}

TEST_F(MASK_KEY_FILE, is_no_other_kind_of_file)
{
    std::filesystem::create_directories(path);
    expect_refused("is no regular file; remove it");
    ASSERT_EQ(rmdir(path.c_str()), 0);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    expect_refused("is no regular file; remove it");
}

TEST_F(MASK_KEY_FILE, is_not_used_when_it_is_another_user_s)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can give files away";
    lasting_mask_key(path);
    ASSERT_EQ(chown(path.c_str(), 65534, static_cast<gid_t>(-1)), 0);
    expect_refused("belongs to another user; remove it or have XDG_DATA_HOME name a directory of your own");
}

TEST_F(MASK_KEY_FILE, is_not_used_when_it_is_malformed)
{
    const std::string digits(64, 'a');
    for (const std::string& text :
         {std::string(), digits, digits + "\n\n", std::string(64, 'g') + "\n", "aa\n" + digits, digits + " "})
    {
        std::filesystem::create_directories(temporary.path("data/velmar-cfg"));
        write_file(path, text);
        ASSERT_EQ(chmod(path.c_str(), 0600), 0);
        SCOPED_TRACE(text);
        expect_refused("holds no key; remove it, so that a new one is made");
    }
    write_file(path, digits + "\n");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    EXPECT_EQ(lasting_mask_key(path).bytes, std::string(32, '\xaa'));
}

TEST_F(MASK_KEY_FILE, is_done_without_where_it_cannot_be_made)
{
    write_file(temporary.path("data"), "no directory");
    expect_refused("Not a directory; remove it or make it readable for this user");
    ASSERT_EQ(unlink(temporary.path("data").c_str()), 0);
    const MASK_KEY key = lasting_mask_key("/proc/no/mask-key");
    EXPECT_FALSE(key.lasting);
    EXPECT_THAT(key.problem, StartsWith("/proc/no/mask-key: the key for masks cannot be made: "));
    EXPECT_THAT(key.problem,
                HasSubstr("; let XDG_DATA_HOME name a directory of this user that can be written; until "));
}

TEST_F(MASK_KEY_FILE, is_where_the_user_keeps_data)
{
    environment.set("HOME", "/home/ana");
    environment.unset("XDG_DATA_HOME");
    EXPECT_EQ(mask_key_path(), "/home/ana/.local/share/velmar-cfg/mask-key");
    environment.set("XDG_DATA_HOME", "");
    EXPECT_EQ(mask_key_path(), "/home/ana/.local/share/velmar-cfg/mask-key");
    environment.set("XDG_DATA_HOME", "relative");
    EXPECT_EQ(mask_key_path(), "/home/ana/.local/share/velmar-cfg/mask-key");
    environment.set("XDG_DATA_HOME", "/data/ana");
    EXPECT_EQ(mask_key_path(), "/data/ana/velmar-cfg/mask-key");
}
}
