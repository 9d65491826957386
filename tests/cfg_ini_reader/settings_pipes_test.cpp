// Settings files that are pipes, over the plain platform services: who waits for whom, and what signals do to a reader.
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <memory>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "tests/support/isolated_test.h"
#include "tests/support/threads.h"

namespace
{
using READER = std::function<void(const std::string& path)>;

// More than a reader asks for at once, in lines that set nothing.
std::string filler()
{
    std::string text;
    while (text.size() <= std::size_t{80} * 1024)
        text += "# a comment that fills the pipe\n";
    return text;
}

class PIPE_WRITER
{
public:
    // Waits for a reader, when opened for writing only.
    explicit PIPE_WRITER(const std::string& path, int access = O_WRONLY)
        : descriptor(::open(path.c_str(), access | O_CLOEXEC))
    {
        EXPECT_GE(descriptor, 0);
    }

    ~PIPE_WRITER()
    {
        ::close(descriptor);
    }

    PIPE_WRITER(const PIPE_WRITER&) = delete;
    PIPE_WRITER& operator=(const PIPE_WRITER&) = delete;

    void write(std::string_view text) const
    {
        while (!text.empty())
        {
            const ssize_t written = ::write(descriptor, text.data(), text.size());
            ASSERT_GT(written, 0);
            text.remove_prefix(static_cast<std::size_t>(written));
        }
    }

private:
    const int descriptor;
};

class SETTINGS_PIPES_TEST : public ISOLATED_TEST
{
protected:
    SETTINGS_PIPES_TEST()
    {
        cfg_close_ini_file();
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    }

    ~SETTINGS_PIPES_TEST() override
    {
        cfg_close_ini_file();
    }

    const std::string pipe = temporary.path("pipe.ini");
};

// A process that hangs is ended by the signal; there is nothing better to do with one.
void limit_to_seconds(unsigned int seconds)
{
    ::alarm(seconds);
}

constexpr unsigned int far_too_long = 60;
constexpr unsigned int long_enough_to_see_a_hang = 1;

// --- Writers that use the store ---

// The writer asks for, and sets, variables before it opens the pipe, before its first byte, and after more bytes than
// the reader asks for at once. Any wait for the reader would be for ever.
void read_while_the_writer_uses_the_store(const READER& read, const std::string& pipe)
{
    limit_to_seconds(far_too_long);
    cfg_process_ini_string("before=1", true);
    run_together(2,
                 [&](int index)
                 {
                     if (index == 0)
                         return read(pipe);
                     EXPECT_EQ(cfg_get_value("before"), "1");
                     const PIPE_WRITER writer(pipe);
                     EXPECT_EQ(cfg_get_value("before"), "1");
                     cfg_set_value("set_before_the_first_byte", "1");
                     writer.write("first=1\n" + filler());
                     EXPECT_EQ(cfg_get_value("before"), "1");
                     cfg_set_value("set_later", "1");
                     writer.write(filler() + "last=1");
                 });
    for (const char* const name : {"first", "last", "set_before_the_first_byte", "set_later"})
        EXPECT_EQ(cfg_get_value(name), "1") << name;
}

TEST_F(SETTINGS_PIPES_TEST, the_writer_of_a_file_applied_on_top_may_use_the_store)
{
    EXPECT_IN_FRESH_PROCESS(read_while_the_writer_uses_the_store(cfg_read_regtest_ini_file, pipe));
    EXPECT_IN_FRESH_PROCESS(read_while_the_writer_uses_the_store(cfg_read_and_append_environment_ini_file, pipe));
}

TEST_F(SETTINGS_PIPES_TEST, the_writer_of_a_layer_of_an_explicit_load_may_use_the_store)
{
    write_file(temporary.path("project/velmar.ini"), "before=1\n");
    const std::string project = temporary.path("project");
    const auto load_with_appended_file = [&](const std::string& path)
    {
        environment.set("APPENDED_VELMAR_INI", path);
        cfg_read_ini_file(project + "/velmar.ini");
    };
    EXPECT_IN_FRESH_PROCESS(read_while_the_writer_uses_the_store(load_with_appended_file, pipe));
    EXPECT_EQ(::mkfifo(temporary.path("project/regtest.ini").c_str(), 0600), 0);
    const auto load_project = [&](const std::string&) { cfg_read_project_ini_file(project.c_str(), true); };
    EXPECT_IN_FRESH_PROCESS(read_while_the_writer_uses_the_store(load_project, project + "/regtest.ini"));
}

// --- Writers that the reader waits for with the lock held ---

// The writer opens the pipe, and so the reader is past its own opening of it, and then uses the store. Never returns.
void use_the_store_as_the_writer(const std::function<void()>& read, const std::string& pipe)
{
    std::thread(read).detach();
    const PIPE_WRITER writer(pipe);
    limit_to_seconds(long_enough_to_see_a_hang);
    cfg_get_value("before");
    std::_Exit(0); // not reached
}

TEST_F(SETTINGS_PIPES_TEST, the_writer_of_a_main_file_waits_for_itself)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(use_the_store_as_the_writer([this] { cfg_read_ini_file(pipe); }, pipe),
                testing::KilledBySignal(SIGALRM), "");
}

TEST_F(SETTINGS_PIPES_TEST, the_writer_of_any_file_of_a_first_load_waits_for_itself)
{
    environment.set("APPENDED_VELMAR_INI", pipe);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(use_the_store_as_the_writer([] { cfg_get_value("before"); }, pipe), testing::KilledBySignal(SIGALRM),
                "");
}

// --- Signals ---

std::atomic<int> signals_handled = 0;

// Notes itself and nothing else; without SA_RESTART, so that it interrupts what the thread waits in.
class INTERRUPTING_SIGNAL
{
public:
    INTERRUPTING_SIGNAL()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) { ++signals_handled; };
        EXPECT_EQ(::sigaction(SIGUSR1, &action, &previous), 0);
        signals_handled = 0;
    }

    ~INTERRUPTING_SIGNAL()
    {
        ::sigaction(SIGUSR1, &previous, nullptr);
    }

    INTERRUPTING_SIGNAL(const INTERRUPTING_SIGNAL&) = delete;
    INTERRUPTING_SIGNAL& operator=(const INTERRUPTING_SIGNAL&) = delete;

private:
    struct sigaction previous = {};
};

// The number of the system call that the thread of this process waits in; -1 while it runs.
long waits_in(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/syscall");
    long number = -1;
    file >> number;
    return file ? number : -1;
}

class SIGNALLED_READER
{
public:
    SIGNALLED_READER(const READER& read, const std::string& path)
        : thread(
              [this, read, path]
              {
                  id = static_cast<pid_t>(::syscall(SYS_gettid));
                  read(path);
              })
    {
    }

    // Interrupts the reader once it waits in that system call.
    void interrupt_in(long call)
    {
        const int handled = signals_handled;
        while (waits_in(id) != call)
            std::this_thread::yield();
        EXPECT_EQ(::pthread_kill(thread.native_handle(), SIGUSR1), 0);
        while (signals_handled == handled)
            std::this_thread::yield();
    }

    void join()
    {
        thread.join();
    }

private:
    std::atomic<pid_t> id = 0;
    std::thread thread;
};

// An emulator's process is seen in the calls of the machine below, which have other numbers.
bool system_calls_can_be_seen()
{
    std::ifstream file("/proc/self/syscall");
    long number_of_read = -1;
    file >> number_of_read;
    return file && number_of_read == SYS_read;
}

void read_a_pipe_under_signals(const READER& read, const std::string& pipe)
{
    limit_to_seconds(far_too_long);
    const INTERRUPTING_SIGNAL interrupting;
    cfg_process_ini_string("before=1", true);
    SIGNALLED_READER reader(read, pipe);
    reader.interrupt_in(SYS_openat);
    {
        const PIPE_WRITER writer(pipe);
        reader.interrupt_in(SYS_read);
        writer.write("a=1\nhalf=");
        reader.interrupt_in(SYS_read);
        writer.write("whole\nb=2\n");
        reader.interrupt_in(SYS_read);
        writer.write("last=3");
    }
    reader.join();
    EXPECT_EQ(signals_handled, 4);
    EXPECT_EQ(cfg_get_value("a"), "1");
    EXPECT_EQ(cfg_get_value("half"), "whole");
    EXPECT_EQ(cfg_get_value("b"), "2");
    EXPECT_EQ(cfg_get_value("last"), "3");
}

TEST_F(SETTINGS_PIPES_TEST, signals_cost_no_line_of_a_main_file)
{
    if (!system_calls_can_be_seen())
        GTEST_SKIP() << "the system does not show what a thread waits in";
    const auto load = [](const std::string& path) { cfg_read_ini_file(path); };
    EXPECT_IN_FRESH_PROCESS(read_a_pipe_under_signals(load, pipe));
}

TEST_F(SETTINGS_PIPES_TEST, signals_cost_no_line_of_a_file_applied_on_top)
{
    if (!system_calls_can_be_seen())
        GTEST_SKIP() << "the system does not show what a thread waits in";
    EXPECT_IN_FRESH_PROCESS(read_a_pipe_under_signals(cfg_read_regtest_ini_file, pipe));
}

// --- Ends ---

TEST_F(SETTINGS_PIPES_TEST, a_pipe_ends_with_its_writer_though_another_comes)
{
    auto writer = std::make_unique<PIPE_WRITER>(pipe, O_RDWR); // waits for no reader
    writer->write("a=1\nb=2");
    zon_cfg::SETTINGS_LINES lines(pipe);
    EXPECT_EQ(lines.status().st_size, 0);
    std::string_view line;
    EXPECT_TRUE(lines.next(line));
    EXPECT_EQ(line, "a=1");
    writer.reset();
    EXPECT_TRUE(lines.next(line));
    EXPECT_EQ(line, "b=2");
    const PIPE_WRITER other(pipe);
    other.write("c=3\n");
    EXPECT_FALSE(lines.next(line));
}
}
