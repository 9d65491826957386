// The view of a process that runs, and of an executable that would be started.
#include <atomic>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>

#include "tests/velmar_cfg/running_program.h"
#include "tests/velmar_cfg/tool_test.h"

namespace
{
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class PROCESS_STATE : public TOOL_TEST
{
protected:
    PROCESS_STATE()
    {
        // Each place of the search of the process has a file that says which place it is, and so has each of the
        // tool's.
        for (const char* const place :
             {"its/cwd", "its/named", "its/home", "its/home/.kestrin.velmar", "its/opt/bin", "own/named", "own/home"})
            write_file(std::string(place) + "/velmar.ini", std::string("place = ") + place + "\n");
        write_file("velmar.ini", "place = own/cwd\n");
        write_file("its/appended.ini", "appended = its\n");
        write_file("its/home/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
        write_file("own/home/velmar2.ini", "[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n");
        variables["HOME"] = temporary.path("cwd/own/home");
        variables["VELMAR_INI"] = temporary.path("cwd/own/named");
        variables["VELMAR_INI_VARS"] = "inline=own";
    }

    std::string its(const std::string& relative) const
    {
        return temporary.path("cwd/its/" + relative);
    }

    std::unique_ptr<RUNNING_PROGRAM> start_program(
        const std::vector<std::string>& its_environment, const std::function<bool()>& prepare = [] { return true; })
    {
        return std::make_unique<RUNNING_PROGRAM>(make_waiting_executable(its("opt/bin/velmar")), its("cwd"),
                                                 its_environment, prepare);
    }

    // What the tool says when it refuses the process.
    std::string refusal(const RUNNING_PROGRAM& program) const
    {
        const TOOL_RUN got = run({"list", "--of", program.state()});
        EXPECT_EQ(got.exit_code, 3) << got.out;
        EXPECT_EQ(got.out, "");
        const std::string beginning = "velmar-cfg: process " + std::to_string(program.number()) + " ";
        EXPECT_THAT(got.err, StartsWith(beginning));
        return got.err.substr(std::min(beginning.size(), got.err.size()));
    }

    // Where the process would find its settings file.
    std::string place_of(const RUNNING_PROGRAM& program) const
    {
        return run({"get", "place", "--of", program.state()}).out;
    }
};

TEST_F(PROCESS_STATE, reads_with_its_directory_environment_and_executable)
{
    // The search goes on to the next place when the file of one is gone.
    const auto program = start_program({"VELMAR_INI=" + its("named"), "HOME=" + its("home")});
    for (const char* const place : {"its/cwd", "its/named", "its/home", "its/home/.kestrin.velmar", "its/opt/bin"})
    {
        EXPECT_EQ(place_of(*program), std::string(place) + "\n");
        EXPECT_EQ(unlink((std::string(place) + "/velmar.ini").c_str()), 0);
    }
    EXPECT_EQ(run({"get", "place", "--of", program->state()}).exit_code, 1);
    EXPECT_EQ(run({"get", "place"}).out, "own/cwd\n");
}

TEST_F(PROCESS_STATE, takes_the_sources_that_its_environment_names)
{
    const auto program =
        start_program({"APPENDED_VELMAR_INI=../appended.ini", "VELMAR_INI_VARS=inline=its", "HOME=" + its("home")});
    EXPECT_THAT(run({"list", "--show-origin", "--of", program->state()}).out,
                HasSubstr("\n" + its("cwd/../appended.ini:1\tappended=its") + "\nVELMAR_INI_VARS:1\tinline=its\n" +
                          its("cwd") + "/velmar.ini:1\tplace=its/cwd\n"));
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE", "--of", program->state()}).out, "KHDL\n");
    EXPECT_EQ(run({"prefs", "get", "HDL_PREFERENCE"}).out, "VHDL\n");
    const auto disabled = start_program({"VELMAR_INI_DISABLED=1"});
    EXPECT_EQ(run({"get", "place", "--of", disabled->state()}).exit_code, 1);
}

// Whoever reads of the process stands in another directory.
TEST_F(PROCESS_STATE, names_its_files_from_the_root_on)
{
    EXPECT_EQ(unlink("its/cwd/velmar.ini"), 0);
    write_file("its/cwd/conf/velmar.ini", "place = conf\nno assignment\n");
    write_file("its/cwd/conf/appended.ini", "place = appended\nnor here\n");
    write_file("its/cwd/user/velmar2.ini", "no preference\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
    const auto program = start_program(
        {"VELMAR_INI=conf", "APPENDED_VELMAR_INI=./conf/appended.ini", "VELMAR2_INI=user", "HOME=" + its("home")});
    const std::string main = its("cwd/conf/velmar.ini");
    const std::string appended = its("cwd/conf/appended.ini");
    const std::string preferences = its("cwd/user/velmar2.ini");
    struct ROW
    {
        std::vector<std::string> words;
        std::vector<std::string> paths; // that it shows
    };
    const ROW rows[] = {
        {{"list", "--show-origin"}, {"\n" + appended + ":1\t"}},
        {{"list", "--json"}, {"\"" + appended + "\""}},
        {{"get", "place", "--json"}, {"\"" + appended + "\""}},
        {{"explain", "place"}, {"lost  " + main + ":1 ", "won   " + appended + ":1 "}},
        {{"explain", "place", "--json"}, {"\"" + main + "\"", "\"" + appended + "\""}},
        {{"layers"}, {"main settings file  " + main + "\n", "APPENDED_VELMAR_INI  " + appended + "\n"}},
        {{"layers", "--json"}, {"\"" + main + "\"", "\"" + appended + "\""}},
        {{"lint"}, {"\n" + main + ":2:", "\n" + appended + ":2:", "\n" + preferences + ":1:"}},
        {{"lint", "--json"}, {"\"" + main + "\"", "\"" + appended + "\"", "\"" + preferences + "\""}},
        {{"lint", "--format", "sarif"}, {main, appended, preferences}},
        {{"paths"}, {" " + main + "\n", " " + appended + "\n", " " + preferences + "\n"}},
        {{"prefs", "explain", "HDL_PREFERENCE"}, {"lines of " + preferences + ", "}},
        {{"snapshot"}, {"\"" + main + "\"", "\"" + appended + "\"", "\"" + preferences + "\""}},
    };
    for (const ROW& row : rows)
    {
        std::vector<std::string> words = row.words;
        words.insert(words.end(), {"--of", program->state()});
        const TOOL_RUN got = run(words);
        EXPECT_EQ(got.err, "");
        for (const std::string& path : row.paths)
            EXPECT_THAT(got.out, HasSubstr(path)) << testing::PrintToString(row.words);
        // Beside them, only variables of the environment hold relative ones.
        EXPECT_THAT(got.out, Not(HasSubstr("\"conf/"))) << testing::PrintToString(row.words);
        EXPECT_THAT(got.out, Not(HasSubstr("\nconf/"))) << testing::PrintToString(row.words);
        EXPECT_THAT(got.out, Not(HasSubstr(" conf/"))) << testing::PrintToString(row.words);
        EXPECT_THAT(got.out, Not(HasSubstr("\"user/"))) << testing::PrintToString(row.words);
    }
    const TOOL_RUN compared = run({"diff", program->state(), "its/opt", "--json"});
    EXPECT_THAT(compared.out, AllOf(HasSubstr("\"" + main + "\""), HasSubstr("\"" + appended + "\""),
                                    HasSubstr("\"" + preferences + "\""), Not(HasSubstr("\"conf/"))));
    // What cannot be read is called so too.
    const auto barred = start_program({"APPENDED_VELMAR_INI=conf"});
    EXPECT_EQ(run({"list", "--of", barred->state()}).err.find("velmar-cfg: " + its("cwd/conf") + ": "), 0U);
}

TEST_F(PROCESS_STATE, takes_nothing_else_of_its_environment)
{
    const auto program =
        start_program({"LD_PRELOAD=/nowhere/x.so", "NO_COLOR=", "LC_ALL=C", "XDG_DATA_HOME=/nowhere",
                       "VELMAR_INI_VARS=my_token=abcdef", "VELMAR_INI_VARS=second=1", "HOME=/nowhere"});
    const TOOL_RUN got = run({"snapshot", "--of", program->state()});
    EXPECT_EQ(got.exit_code, 0);
    EXPECT_EQ(got.err, ""); // the key for masks is the caller's own
    const nlohmann::json snapshot = got.json();
    nlohmann::json set;
    for (const nlohmann::json& row : snapshot.at("environment"))
        set[row.at("name").get<std::string>()] = row.at("value");
    EXPECT_EQ(set.size(), 6U);
    EXPECT_EQ(set.at("HOME"), "/nowhere");
    EXPECT_EQ(set.at("VELMAR_INI"), nullptr);
    EXPECT_EQ(set.at("VELMAR_INI_VARS").at("masked").at(0), "my_token="); // of two, the first
    EXPECT_THAT(read_file(temporary.path("cwd/own/home/.local/share/velmar-cfg/mask-key")), Not(testing::IsEmpty()));
}

TEST_F(PROCESS_STATE, says_that_it_has_no_home)
{
    const auto program = start_program({});
    const TOOL_RUN got = run({"paths", "--of", program->state()});
    EXPECT_THAT(got.out,
                StartsWith("as process " + std::to_string(program->number()) + " (" + its("opt/bin/velmar") + ", in " +
                           its("cwd") +
                           ") started, with the present files and the product and release of this tool, velmar "
                           "23.4; it has no HOME, so that preferences are those of its user's entry in the "
                           "password database\n"));
    EXPECT_THAT(got.out, AllOf(HasSubstr("  HOME is not set\n"), Not(HasSubstr("own/home"))));
}

TEST_F(PROCESS_STATE, compares_two_processes_in_two_directories)
{
    write_file("its/cwd/regtest.ini", "seed = 7\n");
    write_file("other/cwd/appended.ini", "appended = other\n");
    write_file("its/cwd/appended.ini", "appended = its\n");
    const auto a = start_program({"APPENDED_VELMAR_INI=appended.ini"});
    const RUNNING_PROGRAM b(make_waiting_executable(temporary.path("cwd/other/velmar")), "other/cwd",
                            {"APPENDED_VELMAR_INI=appended.ini"});
    const nlohmann::json document = run({"diff", a->state(), b.state(), "--json", "--regtest"}).json();
    // Of one relative path, two files.
    EXPECT_EQ(document.at("variables").at(0).at("a").at("value"), "its");
    EXPECT_EQ(document.at("variables").at(0).at("b").at("value"), "other");
    EXPECT_EQ(document.at("variables").at(1).at("name"), "place");
    EXPECT_EQ(document.at("variables").at(2).at("name"), "seed");
    EXPECT_THAT(document.at("a").at("view").get<std::string>(), StartsWith("as process "));
    // What is here is read from here again.
    EXPECT_EQ(run({"diff", a->state(), "--json"}).json().at("b").at("title"), "now");
    EXPECT_THAT(run({"diff", a->state(), "--only", "variables"}).out,
                HasSubstr("  place, by main settings file\n    A  its/cwd  at " + its("cwd/velmar.ini") +
                          ":1 (main settings file, external)\n    B  own/cwd  at "));
}

TEST_F(PROCESS_STATE, problems_of_its_files_are_told)
{
    write_file("its/cwd/velmar.ini", "a = 1\n");
    EXPECT_EQ(chmod("its/cwd/velmar.ini", 0), 0);
    const auto program = start_program({});
    const TOOL_RUN got = run_without_rights({"list", "--of", program->state()});
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.err, HasSubstr("velmar.ini: "));
}

// Whoever reads the document later cannot ask the process any more.
TEST_F(PROCESS_STATE, a_snapshot_names_the_process_that_it_is_of)
{
    const auto program = start_program({"HOME=" + its("home")});
    const TOOL_RUN taken = run({"snapshot", "--of", program->state()});
    nlohmann::json document = taken.json();
    EXPECT_EQ(document.at("as"),
              (nlohmann::json{{"process", program->number()}, {"executable", its("opt/bin/velmar")}}));
    EXPECT_EQ(document.at("directory"), its("cwd"));
    const std::string view = "as process " + std::to_string(program->number()) + " (" + its("opt/bin/velmar") +
                             ", in " + its("cwd") + ") started";
    program->end();
    document["user"] = "ana";
    document["host"] = "farm7";
    document["taken"] = "2026-11-22T08:00:00Z";
    write_file("its.json", document.dump());
    const std::string its_view =
        view + ", as snapshot its.json has it (velmar 23.4, taken 2026-11-22T08:00:00Z by ana on farm7)";
    EXPECT_EQ(run({"list", "--of", "its.json"}).out, its_view + "\nplace=its/cwd\n");
    EXPECT_EQ(run({"get", "place", "--of", "its.json", "--json"}).json().at("view"), its_view);
    EXPECT_EQ(run({"snapshot", "--of", "its.json"}).json(), document);
    // The title of a side is the document's already.
    EXPECT_EQ(run({"diff", "its.json", "own", "--json"}).json().at("a").at("view"), view);
    EXPECT_THAT(run({"diff", "its.json", "own"}).out, StartsWith("A  its.json (velmar 23.4; " + view + ")\nB  own ("));
    EXPECT_EQ(run({"diff", "own", "its.json", "--with", "x=1", "--json"}).json().at("b").at("view"),
              view + "; what if: with x=1");
    EXPECT_EQ(run({"diff", "its.json", "own"}).err, "");
    EXPECT_EQ(run({"diff", "its.json"}).err,
              "velmar-cfg: its.json: the snapshot of another program names no project; compared with the settings of "
              "the current directory; --project DIR names others\n");
}

// --- Refusals ---

TEST_F(PROCESS_STATE, a_process_that_has_ended_is_refused)
{
    const auto program = start_program({});
    const std::string state = program->state();
    kill(program->number(), SIGKILL);
    siginfo_t ended = {};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(program->number()), &ended, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(refusal(*program), "has ended; name one that runs\n"); // its parent has not yet asked
    program->end();
    EXPECT_EQ(run({"list", "--of", state}).err,
              "velmar-cfg: there is no process " + state.substr(4) + "; name one that runs\n");
}

TEST_F(PROCESS_STATE, a_removed_or_replaced_executable_is_refused)
{
    const auto program = start_program({});
    const std::string executable = its("opt/bin/velmar");
    ASSERT_EQ(rename(executable.c_str(), its("opt/bin/old").c_str()), 0);
    EXPECT_THAT(run({"list", "--of", program->state()}).out, HasSubstr("opt/bin/old")); // it is only called otherwise
    ASSERT_EQ(unlink(its("opt/bin/old").c_str()), 0);
    EXPECT_EQ(refusal(*program),
              "runs an executable that was removed: " + its("opt/bin/old") + " (deleted); start it anew\n");
    write_file(its("opt/bin/old") + " (deleted)", "");
    EXPECT_EQ(refusal(*program),
              "runs an executable that was replaced: " + its("opt/bin/old") + " (deleted); start it anew\n");
}

TEST_F(PROCESS_STATE, a_removed_directory_is_refused)
{
    write_file("its/gone (deleted)/velmar.ini", "place = gone\n");
    const std::string executable = make_waiting_executable(its("opt/bin/velmar"));
    const RUNNING_PROGRAM odd(executable, its("gone (deleted)"), {});
    EXPECT_EQ(place_of(odd), "gone\n"); // that is its name
    made_directory("its/there");
    const RUNNING_PROGRAM program(executable, its("there"), {});
    ASSERT_EQ(rmdir("its/there"), 0);
    EXPECT_EQ(refusal(program), "is in a directory that was removed: " + its("there") + " (deleted); start it anew\n");
}

TEST_F(PROCESS_STATE, a_thread_is_refused)
{
    EXPECT_EQ(run({"list", "--of", "pid:" + std::to_string(getpid())}).exit_code, 0);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::atomic<pid_t> thread = 0;
    std::thread other(
        [&]
        {
            thread = static_cast<pid_t>(syscall(SYS_gettid));
            thread.notify_one();
            char end = ' ';
            EXPECT_EQ(read(ends[0], &end, 1), 0);
        });
    thread.wait(0);
    const TOOL_RUN got = run({"list", "--of", "pid:" + std::to_string(thread)});
    close(ends[1]);
    other.join();
    close(ends[0]);
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_EQ(got.err, "velmar-cfg: process " + std::to_string(thread) +
                           " is a thread; name its process, pid:" + std::to_string(getpid()) + "\n");
}

TEST_F(PROCESS_STATE, an_overwritten_environment_is_refused)
{
    // The kernel takes the environment from where the process says that it is.
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        for (char** variable = environ; *variable != nullptr; ++variable)
            std::fill_n(*variable, std::strlen(*variable), 'x');
        const bool told = write(ready[1], "x", 1) == 1;
        while (told)
            pause();
        _exit(1);
    }
    char done = ' ';
    ASSERT_EQ(read(ready[0], &done, 1), 1);
    const TOOL_RUN got = run({"list", "--of", "pid:" + std::to_string(child)});
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.err, HasSubstr(" has overwritten its environment, or may be starting another program: its "
                                   "environment at the start is not known; try again\n"));
}

// Each start of a program takes the environment away for a moment.
TEST_F(PROCESS_STATE, a_process_that_starts_programs_is_no_process_without_an_environment)
{
    const std::string script = temporary.path("cwd/again");
    write_file(script, "#!/bin/sh\nexec \"$0\"\n");
    ASSERT_EQ(chmod(script.c_str(), 0755), 0);
    int started[2]; // closed by the first program that the child starts
    ASSERT_EQ(pipe2(started, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        std::string variable = "VELMAR_INI_VARS=its_own=1";
        char* const variables_of_child[] = {variable.data(), nullptr};
        char* const arguments[] = {const_cast<char*>(script.c_str()), nullptr};
        execve(script.c_str(), arguments, variables_of_child);
        _exit(127);
    }
    close(started[1]);
    char nothing = 0;
    EXPECT_EQ(read(started[0], &nothing, 1), 0);
    close(started[0]);
    for (int i = 0; i < 30; ++i)
    {
        const TOOL_RUN got = run({"get", "its_own", "--of", "pid:" + std::to_string(child)});
        if (got.exit_code == 0)
        {
            EXPECT_EQ(got.out, "1\n");
        }
        else
        {
            EXPECT_THAT(got.err, HasSubstr("another program")) << got.exit_code;
        }
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

TEST_F(PROCESS_STATE, a_process_of_another_user_is_refused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can start one";
    ASSERT_EQ(chmod(temporary.path().c_str(), 0755), 0);
    const auto program = start_program({}, [] { return setuid(65534) == 0; });
    EXPECT_EQ(refusal(*program), "belongs to another user, who may read other files; run this command as that user: "
                                 "sudo -u '#65534'\n");
}

TEST_F(PROCESS_STATE, another_root_directory_is_refused)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can have one";
    int ready[2]; // no executable is started inside: it would find no libraries there
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        const bool told = chroot("its") == 0 && write(ready[1], "x", 1) == 1;
        while (told)
            pause();
        _exit(1);
    }
    char done = ' ';
    ASSERT_EQ(read(ready[0], &done, 1), 1);
    const TOOL_RUN got = run({"list", "--of", "pid:" + std::to_string(child)});
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.err, HasSubstr(" has another root directory: its paths name other files; run this command inside"));
}

TEST_F(PROCESS_STATE, other_mounts_are_refused)
{
    std::unique_ptr<RUNNING_PROGRAM> program;
    bool may = false;
    const pid_t trial = fork();
    if (trial == 0)
        _exit(unshare(CLONE_NEWNS) == 0 ? 0 : 1);
    int status = 0;
    waitpid(trial, &status, 0);
    may = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    if (!may)
        GTEST_SKIP() << "may not be made here";
    program = start_program({}, [] { return unshare(CLONE_NEWNS) == 0; });
    EXPECT_EQ(refusal(*program),
              "has other mounts, as in a container: its paths name other files; run this command inside of it\n");
}

TEST_F(PROCESS_STATE, the_kernels_own_are_refused)
{
    const std::string kernel_thread = "/proc/2/stat";
    if (geteuid() != 0 || access(kernel_thread.c_str(), R_OK) != 0 || read_file("/proc/2/comm") != "kthreadd\n")
        GTEST_SKIP() << "none can be seen here";
    const TOOL_RUN got = run({"list", "--of", "pid:2"});
    EXPECT_EQ(got.exit_code, 3);
    EXPECT_THAT(got.err, testing::AnyOf("velmar-cfg: process 2 has no executable: it belongs to the kernel\n",
                                        HasSubstr(" has other mounts"))); // the test may run in a container
}

// --- Executables ---

class EXECUTABLE_STATE : public PROCESS_STATE
{
};

TEST_F(EXECUTABLE_STATE, reads_as_if_it_was_started_here)
{
    make_waiting_executable(its("opt/bin/velmar"));
    EXPECT_EQ(run({"get", "place", "--of", "exe:its/opt/bin/velmar"}).out, "own/cwd\n");
    ASSERT_EQ(symlink(its("opt/bin/velmar").c_str(), "link"), 0);
    variables.erase("VELMAR_INI");
    variables["HOME"] = "/nowhere";
    ASSERT_EQ(unlink("velmar.ini"), 0);
    for (const char* const name : {"exe:its/opt/bin/velmar", "exe:link"})
        EXPECT_EQ(run({"get", "place", "--of", name}).out, "its/opt/bin\n") << name;
    EXPECT_THAT(run({"list", "--of", "exe:link"}).out,
                StartsWith("as " + its("opt/bin/velmar") + " would read, started here, with the present files and"));
    // Its installation is the directory above, called bin or not.
    ASSERT_EQ(rename("its/opt/bin/velmar.ini", "its/opt/velmar.ini"), 0);
    EXPECT_THAT(run({"paths", "--of", "exe:link"}).out,
                HasSubstr("installation          " + its("opt/bin/velmar.ini")));
    make_waiting_executable(its("opt/tools/velmar"));
    EXPECT_THAT(run({"paths", "--of", "exe:its/opt/tools/velmar"}).out,
                HasSubstr("installation          " + its("opt/tools/bin/velmar.ini")));
}

TEST_F(EXECUTABLE_STATE, names_its_files_from_the_root_on)
{
    make_waiting_executable(its("opt/bin/velmar"));
    variables["APPENDED_VELMAR_INI"] = "its/appended.ini";
    EXPECT_THAT(run({"list", "--show-origin", "--of", "exe:its/opt/bin/velmar"}).out,
                HasSubstr("\n" + its("appended.ini") + ":1\tappended=its\n"));
    EXPECT_THAT(run({"list", "--show-origin"}).out, StartsWith("its/appended.ini:1\tappended=its\n"));
}

TEST_F(EXECUTABLE_STATE, a_snapshot_names_the_executable_that_it_is_of)
{
    make_waiting_executable(its("opt/bin/velmar"));
    nlohmann::json document = run({"snapshot", "--of", "exe:its/opt/bin/velmar"}).json();
    EXPECT_EQ(document.at("as"), (nlohmann::json{{"process", nullptr}, {"executable", its("opt/bin/velmar")}}));
    document["user"] = "ana";
    document["host"] = nullptr;
    document["taken"] = "2026-11-22T08:00:00Z";
    write_file("its.json", document.dump());
    EXPECT_THAT(run({"list", "--of", "its.json"}).out,
                StartsWith("as " + its("opt/bin/velmar") + " would read, started in " + temporary.path("cwd") +
                           ", as snapshot its.json has it (velmar 23.4, taken 2026-11-22T08:00:00Z by ana)\n"));
    // Nobody wrote down where.
    document["directory"] = nullptr;
    write_file("its.json", document.dump());
    EXPECT_THAT(run({"list", "--of", "its.json"}).out,
                StartsWith("as " + its("opt/bin/velmar") + " would read, as snapshot its.json has it "));
    EXPECT_EQ(run({"snapshot"}).json().at("as"), nullptr);
}

TEST_F(EXECUTABLE_STATE, what_is_no_executable_is_refused)
{
    write_file("its/file", "");
    for (const auto& [name, why] :
         {std::pair("exe:its/missing", "its/missing: No such file or directory"),
          std::pair("exe:its/cwd", "its/cwd: is no file"), std::pair("exe:its/file", "its/file: may not be run")})
    {
        EXPECT_EQ(run({"list", "--of", name}),
                  (TOOL_RUN{3, "", std::string("velmar-cfg: ") + why + "; name an executable\n"}));
    }
}
}
