// A process is looked at through its directory in /proc, which is opened once: its files answer for the process that it
// was opened for, and fail once that has ended, also when the number belongs to another by then.
//
// The links of the directory lead to the executable and to the directories themselves, but read as the paths that the
// kernel knows for them. Only a path that leads to the same file is believed: one that was removed is shown with a
// remark behind it, and may have been made anew. Paths mean the same to that process and to this one only while both
// have the same root directory and the same mounts.
//
// The process may start another program while it is looked at. Its environment is therefore read before and after the
// rest. While it does, it has no executable and no environment, or parts of one, for a moment: it is looked at again
// before that is believed.
#include "tools/velmar-cfg/states/other_program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/settings/installation.h"
#include "tools/velmar-cfg/settings/secrets.h"

namespace
{
bool is_same_file(const struct stat& a, const struct stat& b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The value of a line such as "Tgid:\t4711", without the blanks before it; empty when there is no such line.
std::string value_in_status(const std::string& status, const std::string& name)
{
    std::istringstream lines(status);
    for (std::string line; std::getline(lines, line);)
    {
        if (line.starts_with(name + ":"))
            return line.substr(std::min(line.find_first_not_of(" \t", name.size() + 1), line.size()));
    }
    return {};
}

// What may be so only while the process starts another program.
class UNSETTLED : public TOOL_ERROR
{
public:
    using TOOL_ERROR::TOOL_ERROR;
};

std::string directory_of(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}
}

RUNNING_PROCESS::RUNNING_PROCESS(pid_t its_number)
    : number(its_number),
      directory(open(("/proc/" + std::to_string(its_number)).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC))
{
    if (directory.get() < 0)
        throw TOOL_ERROR(EXIT_CODE::BAD_INPUT,
                         errno == ENOENT ? "there is no process " + std::to_string(number) + "; name one that runs"
                                         : "/proc/" + std::to_string(number) + ": " + std::strerror(errno) +
                                               "; /proc must be mounted");
}

void RUNNING_PROCESS::refuse(const std::string& why) const
{
    throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, "process " + std::to_string(number) + " " + why);
}

void RUNNING_PROCESS::refuse_for_now(const std::string& why) const
{
    throw UNSETTLED(EXIT_CODE::BAD_INPUT, "process " + std::to_string(number) + " " + why);
}

void RUNNING_PROCESS::refuse_error(const char* what, int error) const
{
    if (error == ESRCH || error == ENOENT)
        refuse("has ended; name one that runs");
    refuse(std::string("cannot be examined: ") + what + ": " + std::strerror(error) +
           (error == EACCES || error == EPERM ? "; it belongs to another user or has more rights than this one"
                                              : "; try again"));
}

OPEN_FILE RUNNING_PROCESS::open_member(const char* name, int flags) const
{
    OPEN_FILE file(openat(directory.get(), name, flags | O_CLOEXEC));
    if (file.get() < 0)
        refuse_error(name, errno);
    return file;
}

std::string RUNNING_PROCESS::text_of(const char* file) const
{
    const OPEN_FILE opened = open_member(file, O_RDONLY);
    std::string text;
    std::array<char, 4096> part{};
    for (;;)
    {
        const ssize_t got = read(opened.get(), part.data(), part.size());
        if (got == 0)
            return text;
        if (got > 0)
            text.append(part.data(), static_cast<std::size_t>(got));
        else if (errno != EINTR)
            refuse_error(file, errno);
    }
}

// The path that the link shows, which must lead to the open file that the link leads to.
std::string RUNNING_PROCESS::path_of(const char* link, const OPEN_FILE& file) const
{
    std::array<char, PATH_MAX> bytes{}; // the kernel shows no longer path
    const ssize_t size = readlinkat(directory.get(), link, bytes.data(), bytes.size());
    struct stat linked = {};
    if (size < 0 || fstat(file.get(), &linked) != 0)
        refuse_error(link, errno);
    const std::string path(bytes.data(), static_cast<std::size_t>(size));
    const bool is_executable = std::string_view(link) == "exe";
    const std::string what = is_executable ? "runs an executable" : "is in a directory";
    struct stat named = {};
    if (stat(path.c_str(), &named) == 0)
    {
        if (!is_same_file(named, linked))
            refuse(what + " that was replaced: " + path + "; start it anew");
    }
    else if (path.ends_with(" (deleted)"))
        refuse(what + " that was removed: " + path + "; start it anew");
    else
        refuse(what + " that cannot be reached: " + path + ": " + std::strerror(errno));
    return path;
}

void RUNNING_PROCESS::require_own_process() const
{
    const std::string status = text_of("status");
    if (const std::string state = value_in_status(status, "State"); state.starts_with('Z') || state.starts_with('X'))
        refuse("has ended; name one that runs");
    if (const std::string group = value_in_status(status, "Tgid"); group != std::to_string(number))
        refuse("is a thread; name its process, pid:" + group);
    std::istringstream users(value_in_status(status, "Uid"));
    const std::string own = std::to_string(geteuid());
    for (std::string user; users >> user;)
    {
        if (user != own)
            refuse("belongs to another user, who may read other files; run this command as that user: sudo -u '#" +
                   user + "'");
    }
}

void RUNNING_PROCESS::require_same_files() const
{
    struct stat its = {};
    struct stat own = {};
    if (fstatat(directory.get(), "root", &its, 0) != 0)
        refuse_error("root directory", errno);
    if (stat("/", &own) != 0 || !is_same_file(its, own))
        refuse("has another root directory: its paths name other files; run this command inside of it");
    if (fstatat(directory.get(), "ns/mnt", &its, 0) != 0)
        refuse_error("mounts", errno);
    if (stat("/proc/self/ns/mnt", &own) != 0 || !is_same_file(its, own))
        refuse("has other mounts, as in a container: its paths name other files; run this command inside of it");
}

std::vector<ENVIRONMENT_VARIABLE> RUNNING_PROCESS::environment_in(const std::string& bytes) const
{
    SECRETS none;
    none.show_all();
    std::vector<ENVIRONMENT_VARIABLE> variables = environment_that_matters(none);
    for (ENVIRONMENT_VARIABLE& variable : variables)
        variable.value.reset();
    for (std::size_t begin = 0; begin < bytes.size();)
    {
        const std::size_t end = bytes.find('\0', begin);
        const std::string_view assignment = std::string_view(bytes).substr(begin, end - begin);
        const std::size_t equals = assignment.find('=');
        if (end == std::string::npos || equals == std::string_view::npos)
            refuse_for_now("has overwritten its environment, or may be starting another program: its environment "
                           "at the start is not known; try again");
        const auto named = std::ranges::find(variables, assignment.substr(0, equals), &ENVIRONMENT_VARIABLE::name);
        if (named != variables.end() && !named->value) // the first counts
            named->value = assignment.substr(equals + 1);
        begin = end + 1;
    }
    return variables;
}

OTHER_PROGRAM RUNNING_PROCESS::look() const
{
    constexpr int most_looks = 10;
    constexpr std::chrono::milliseconds between_looks(5);
    for (int looks = 1;; ++looks)
    {
        try
        {
            return look_once(looks == most_looks);
        }
        catch (const UNSETTLED&)
        {
            if (looks == most_looks)
                throw;
        }
        std::this_thread::sleep_for(between_looks);
    }
}

// The last look takes an environment that is still empty for the one that the process was started with.
OTHER_PROGRAM RUNNING_PROCESS::look_once(bool is_last) const
{
    require_own_process();
    require_same_files();
    const OPEN_FILE executable(openat(directory.get(), "exe", O_PATH | O_CLOEXEC));
    if (executable.get() < 0)
    {
        const int error = errno;
        require_own_process(); // unless it has just ended
        if (error == ENOENT)
            refuse_for_now("has no executable: it belongs to the kernel");
        refuse_error("executable", error);
    }
    const std::string environment = text_of("environ");
    if (environment.empty() && !is_last)
        refuse_for_now("has no environment");
    OTHER_PROGRAM program;
    program.executable = path_of("exe", executable);
    program.perspective.directory = open_member("cwd", O_PATH | O_DIRECTORY);
    program.directory = path_of("cwd", program.perspective.directory);
    program.perspective.installation = installation_of_programs(directory_of(program.executable));
    program.perspective.environment = environment_in(environment);
    require_own_process();
    if (path_of("exe", open_member("exe", O_PATH)) != program.executable || text_of("environ") != environment)
        refuse_for_now("has just started another program; try again");
    return program;
}

OTHER_PROGRAM program_started_here(const std::string& path)
{
    const auto refuse = [&path](const std::string& why)
    { throw TOOL_ERROR(EXIT_CODE::BAD_INPUT, path + ": " + why + "; name an executable"); };
    char* const real = realpath(path.c_str(), nullptr);
    if (real == nullptr)
        refuse(std::strerror(errno));
    OTHER_PROGRAM program;
    program.executable = real;
    std::free(real);
    struct stat found = {};
    if (stat(program.executable.c_str(), &found) != 0 || !S_ISREG(found.st_mode))
        refuse("is no file");
    if (access(program.executable.c_str(), X_OK) != 0)
        refuse("may not be run");
    program.perspective.installation = installation_of_programs(directory_of(program.executable));
    return program;
}
