// A run of velmar-cfg that is killed at any moment leaves the file that it edits as it was or as it should become.
#include <csignal>
#include <filesystem>
#include <random>
#include <set>
#include <sys/ptrace.h>
#include <sys/wait.h>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
class EDIT_KILL : public TOOL_TEST
{
protected:
    EDIT_KILL()
    {
        variables["VELMAR2_INI"] = "user";
        write_file("given", "[General 23.3_pro]\nHDL_PREFERENCE = KHDL\nUSER_LIBRARIES = /x\n");
        variables["ASAN_OPTIONS"] = "detect_leaks=0"; // no leak check in a traced process
    }

    void SetUp() override
    {
        if (!can_trace_programs())
            GTEST_SKIP() << "programs cannot be traced here";
    }

    // Lets a traced run of `arguments` go on for `stops` entries into and returns from the kernel, then kills it.
    // Returns how many of them it made; fewer than `stops` when it ended by itself.
    int run_for(int stops, const std::vector<std::string>& arguments) const
    {
        const pid_t child = start_traced(arguments);
        int status = 0;
        int made = 0;
        for (; made < stops; ++made)
        {
            ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
            EXPECT_EQ(waitpid(child, &status, 0), child);
            if (!WIFSTOPPED(status))
            {
                EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
                return made;
            }
        }
        kill(child, SIGKILL);
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status));
        return made;
    }

    static std::size_t files_beside()
    {
        const std::filesystem::directory_iterator entries("user");
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries))) - 1;
    }
};

// Every call of the last stretch, in which the file is replaced, and some of the time before. The return from one call
// and the entry into the next are one moment to the file.
std::set<int> moments(int all)
{
    constexpr int last_stretch = 150;
    constexpr int others = 20;
    std::set<int> chosen;
    for (int moment = std::max(1, all - last_stretch); moment < all; moment += 2)
        chosen.insert(moment);
    std::mt19937 random(20240131);
    for (int i = 0; i < others; ++i)
        chosen.insert(std::uniform_int_distribution<int>(1, all - 1)(random));
    return chosen;
}

struct KILLED_EDIT
{
    const char* file;
    std::string before;
    std::string after;
    std::vector<std::string> change;
};

void PrintTo(const KILLED_EDIT& row, std::ostream* stream)
{
    *stream << testing::PrintToString(row.change);
}

class KILLED_EDITS : public EDIT_KILL, public testing::WithParamInterface<KILLED_EDIT>
{
};

TEST_P(KILLED_EDITS, leave_the_old_or_the_new_file)
{
    const auto& [file, old_bytes, new_bytes, change] = GetParam();
    write_file(file, old_bytes);
    const int all = run_for(1'000'000, change);
    ASSERT_EQ(read_file(file), new_bytes);

    int old_files = 0;
    int new_files = 0;
    std::size_t leftovers = 0;
    for (const int moment : moments(all))
    {
        write_file(file, old_bytes);
        run_for(moment, change);
        const std::string bytes = read_file(file);
        ASSERT_TRUE(bytes == old_bytes || bytes == new_bytes) << "killed after " << moment << ": " << bytes;
        ++(bytes == old_bytes ? old_files : new_files);
        leftovers += files_beside();

        ASSERT_EQ(run(change).exit_code, 0) << "after a kill at " << moment;
        ASSERT_EQ(read_file(file), new_bytes);
        ASSERT_EQ(files_beside(), 0U) << "after a kill at " << moment;
    }
    // The moments reached before, during and after the replacement.
    EXPECT_GT(old_files, 0);
    EXPECT_GT(new_files, 0);
    EXPECT_GT(leftovers, 0U);
}

using WORDS = std::vector<std::string>;

INSTANTIATE_TEST_SUITE_P(
    commands, KILLED_EDITS,
    testing::Values(KILLED_EDIT{"user/velmar2.ini", "# mine\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                                "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n",
                                WORDS{"prefs", "set", "HDL_PREFERENCE", "KHDL", "--wait", "0"}},
                    KILLED_EDIT{"user/velmar2.ini", "# mine\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                                "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nUSER_LIBRARIES = /x\n",
                                WORDS{"prefs", "load", "given", "--wait", "0"}},
                    KILLED_EDIT{"user/velmar.ini", "# mine\na = 1\n", "# mine\na = 2\n",
                                WORDS{"--project", "user", "set", "a", "2", "--wait", "0"}},
                    KILLED_EDIT{"user/velmar.ini", "a = yes\n", "a = on\n",
                                WORDS{"lint", "user/velmar.ini", "--fix", "--wait", "0"}}));
}
