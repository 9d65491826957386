// The beginning of a state's name determines its kind. For a path, it depends on whether a directory is there.
#include "tools/velmar-cfg/states/state_name.h"

#include <charconv>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
constexpr std::string_view process_prefix = "pid:";
constexpr std::string_view executable_prefix = "exe:";

bool is_directory(const std::string& path)
{
    struct stat found = {};
    return stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

pid_t process_number(const std::string& text)
{
    const std::string_view digits = std::string_view(text).substr(process_prefix.size());
    pid_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number <= 0)
        throw TOOL_ERROR(EXIT_CODE::USAGE, text +
                                               ": give the number of a process, such as pid:4711; a file of that "
                                               "name is ./" +
                                               text);
    return number;
}
}

STATE_NAME state_name(const std::string& text)
{
    if (text.empty())
        throw TOOL_ERROR(EXIT_CODE::USAGE,
                         "the name of a state is empty; give a directory, a document, pid:NUMBER or exe:PATH");
    if (text.starts_with(process_prefix))
        return {STATE_NAME::KIND::PROCESS, text, {}, process_number(text)};
    if (text == executable_prefix)
        throw TOOL_ERROR(EXIT_CODE::USAGE, "exe: wants the path of an executable; a file of that name is ./exe:");
    if (text.starts_with(executable_prefix))
        return {STATE_NAME::KIND::EXECUTABLE, text, text.substr(executable_prefix.size())};
    const bool is_project = text != "-" && is_directory(text);
    return {is_project ? STATE_NAME::KIND::PROJECT : STATE_NAME::KIND::DOCUMENT, text, text};
}
