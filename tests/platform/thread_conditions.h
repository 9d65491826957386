// What tests of locks do to threads and processes, and see of them.
#ifndef TESTS_PLATFORM_THREAD_CONDITIONS_H
#define TESTS_PLATFORM_THREAD_CONDITIONS_H

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// What the sanitizers leave to a child whose parent has several threads: the thread sanitizer ends it when it starts a
// thread, and the address sanitizer's allocator may be locked in it for ever.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define __SANITIZE_THREAD__ 1
#endif
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#if defined(__SANITIZE_THREAD__)
constexpr bool children_can_start_threads = false;
#else
constexpr bool children_can_start_threads = true;
#endif
#if defined(__SANITIZE_ADDRESS__)
constexpr bool children_can_allocate = false;
#else
constexpr bool children_can_allocate = true;
#endif

// For alarm().
constexpr unsigned int seconds_until_hung = 60;

// What a child exits with, or 128 + the signal that ended it.
inline int status_of(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR)
    {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Ends this process at once. The thread sanitizer follows _exit, and takes what ended in the parent but was not joined
// for a leak of the child.
[[noreturn]] inline void leave(int status)
{
    for (;;)
        syscall(SYS_exit_group, status);
}

// Forks, and has the child exit with what action() answers. The child's status.
inline int status_of_child(const std::function<int()>& action)
{
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(seconds_until_hung / 2);
        leave(action());
    }
    return child == -1 ? -1 : status_of(child);
}

// Whether the thread of this process waits in the kernel.
inline bool sleeps(pid_t thread)
{
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t after_name = line.rfind(") ");
    return after_name != std::string::npos && line[after_name + 2] == 'S';
}

inline void wait_until_it_sleeps(pid_t thread)
{
    while (!sleeps(thread))
        std::this_thread::yield();
}

// From here on the kernel refuses this call to the calling thread and all that it starts.
inline void have_refused(unsigned int system_call)
{
    std::array<sock_filter, 4> program{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, system_call, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog filter{program.size(), program.data()};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
    errno = 0;
    EXPECT_EQ(syscall(static_cast<long>(system_call), 0, 0, 0), -1);
    EXPECT_EQ(errno, EPERM);
}

#endif
