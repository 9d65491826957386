// How often each command opens the files that it is about: once.
#include <cstring>
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>

#include "tests/support/run_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
class TRACED_TOOL_TEST : public TOOL_TEST
{
protected:
    TRACED_TOOL_TEST()
    {
        variables["ASAN_OPTIONS"] = "detect_leaks=0"; // no leak check in a traced process
        variables["APPENDED_VELMAR_INI"] = "appended.ini";
        variables["VELMAR2_INI"] = "user";
        write_file("project/velmar.ini", "a=1\nb=2 # note\n");
        write_file("project/regtest.ini", "a=3\n");
        write_file("appended.ini", "c=4\n");
        write_file("given", "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
        write_file("user/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
    }

    void SetUp() override
    {
        if (!can_trace_programs())
            GTEST_SKIP() << "programs cannot be traced here";
    }

    // The text at an address of the traced process, as far as it can be read.
    static std::string text_at(pid_t child, std::uint64_t address)
    {
        std::string text;
        char c = 0;
        for (iovec here{&c, 1}; text.size() < 4096; ++address)
        {
            iovec there{reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)), 1};
            if (process_vm_readv(child, &here, 1, &there, 1, 0) != 1 || c == '\0')
                break;
            text += c;
        }
        return text;
    }

    // Runs the tool: the flags of each open of each path, existing or not.
    std::map<std::string, std::vector<int>> opens_of(const std::vector<std::string>& arguments) const
    {
        std::map<std::string, std::vector<int>> opens;
        const pid_t child = start_traced(arguments);
        EXPECT_EQ(ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD), 0); // tells calls from signals
        for (int status = 0;;)
        {
            ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
            EXPECT_EQ(waitpid(child, &status, 0), child);
            if (!WIFSTOPPED(status))
            {
                EXPECT_TRUE(WIFEXITED(status));
                return opens;
            }
            __ptrace_syscall_info info;
            if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) <= 0 || info.op != PTRACE_SYSCALL_INFO_ENTRY)
                continue;
            if (info.entry.nr == SYS_openat)
                opens[text_at(child, info.entry.args[1])].push_back(static_cast<int>(info.entry.args[2]));
#ifdef SYS_open // newer processors have only the other
            else if (info.entry.nr == SYS_open)
                opens[text_at(child, info.entry.args[0])].push_back(static_cast<int>(info.entry.args[1]));
#endif
        }
    }
};

class FILE_OPENS : public TRACED_TOOL_TEST, public testing::WithParamInterface<std::vector<std::string>>
{
};

TEST_P(FILE_OPENS, each_file_is_opened_once)
{
    std::vector<std::string> arguments = GetParam();
    arguments.insert(arguments.begin(), "--regtest");
    if (arguments.back() != "project") // which has the same files
        arguments.insert(arguments.begin(), {"--project", "project"});
    const std::map<std::string, std::vector<int>> opens = opens_of(arguments);
    std::map<std::string, int> of_files;
    for (const auto& [path, flags] : opens)
    {
        if (path.ends_with(".ini"))
            of_files[path.substr(path.rfind('/') + 1)] += static_cast<int>(flags.size());
    }
    const std::string command = GetParam().front();
    std::map<std::string, int> expected = {{"velmar.ini", 1}, {"regtest.ini", 1}, {"appended.ini", 1}};
    if (command == "snapshot" || command == "lint" || command == "diff")
        expected["velmar2.ini"] = 1;
    if (command == "paths")
        expected.clear(); // it only looks whether they are there
    if (command == "prefs")
        expected = {{"velmar2.ini", 1}};
    EXPECT_EQ(of_files, expected);
}

// Neither a planted link nor a pipe nor a terminal in the place of the key is waited for, followed or taken over.
TEST_F(TRACED_TOOL_TEST, the_key_of_masks_is_opened_with_care)
{
    write_file("project/velmar.ini", "api_token = abc\n");
    int looks = 0;
    for (const auto& [path, all_flags] : opens_of({"--project", "project", "snapshot", "-o", "/dev/null"}))
    {
        if (!path.ends_with("/velmar-cfg/mask-key"))
            continue;
        for (const int flags : all_flags)
        {
            constexpr int careful = O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
            EXPECT_EQ(flags & careful, careful);
            ++looks;
        }
    }
    EXPECT_EQ(looks, 2) << "before it is made, and after";
}

INSTANTIATE_TEST_SUITE_P(
    commands, FILE_OPENS,
    testing::Values(std::vector<std::string>{"get", "a"}, std::vector<std::string>{"get", "unset"},
                    std::vector<std::string>{"list"}, std::vector<std::string>{"explain", "a"},
                    std::vector<std::string>{"lint"}, std::vector<std::string>{"snapshot"},
                    std::vector<std::string>{"diff", "project"}, std::vector<std::string>{"diff", "project", "project"},
                    std::vector<std::string>{"paths"}, std::vector<std::string>{"prefs", "list"},
                    std::vector<std::string>{"prefs", "get", "HDL_PREFERENCE"},
                    std::vector<std::string>{"prefs", "explain", "HDL_PREFERENCE"},
                    std::vector<std::string>{"prefs", "dump"}, std::vector<std::string>{"prefs", "load", "given"},
                    std::vector<std::string>{"prefs", "lint"},
                    std::vector<std::string>{"prefs", "set", "HDL_PREFERENCE", "KHDL"},
                    std::vector<std::string>{"prefs", "set", "HDL_PREFERENCE", "KHDL", "--dry-run"},
                    std::vector<std::string>{"prefs", "reset", "HDL_PREFERENCE"}));
}
