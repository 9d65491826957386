// Collects the answer in a buffer of 64 KiB and writes all of it, whatever the descriptor takes at a time: where it
// does not block, poll() waits for room. Once the reader has gone (EPIPE; the program ignores SIGPIPE), everything is
// dropped.
#include "tools/velmar-cfg/base/output.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"

namespace
{
constexpr std::size_t buffer_size = std::size_t{64} * 1024;

bool environment_allows_color()
{
    const char* const no_color = std::getenv("NO_COLOR");
    if (no_color != nullptr && *no_color != '\0')
        return false;
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

const char* escape_sequence(STYLE style)
{
    switch (style)
    {
    case STYLE::STRONG:
        return "\x1b[1m";
    case STYLE::FAINT:
        return "\x1b[2m";
    case STYLE::GOOD:
        return "\x1b[32m";
    case STYLE::WARNING:
        return "\x1b[33m";
    case STYLE::BAD:
        return "\x1b[31m";
    case STYLE::PLAIN:
        break;
    }
    return "";
}
}

void OUTPUT::choose_color(std::string_view choice)
{
    colored = choice == "always" || (choice == "auto" && is_terminal() && environment_allows_color());
}

bool OUTPUT::is_terminal() const
{
    return isatty(descriptor) == 1;
}

std::size_t OUTPUT::width() const
{
    constexpr std::size_t usual = 80;
    std::size_t columns = 0;
    const char* const named = std::getenv("COLUMNS");
    const std::string_view digits = named == nullptr ? "" : named;
    std::from_chars(digits.data(), digits.data() + digits.size(), columns);
    winsize terminal{};
    if (columns == 0 && ioctl(descriptor, TIOCGWINSZ, &terminal) == 0)
        columns = terminal.ws_col;
    return columns == 0 ? usual : columns;
}

void OUTPUT::write(std::string_view text)
{
    if (has_hidden_parts(text))
        buffer += with_hidden_parts_named(text);
    else
        buffer += text;
    if (buffer.size() >= buffer_size)
        finish();
}

std::string OUTPUT::painted(STYLE style, std::string text) const
{
    if (!colored || style == STYLE::PLAIN || text.empty())
        return text;
    return escape_sequence(style) + text + "\x1b[0m";
}

void OUTPUT::finish()
{
    std::string_view rest = buffer;
    while (!rest.empty() && !reader_has_gone)
    {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EPIPE)
            reader_has_gone = true;
        else if (errno == EAGAIN)
        {
            pollfd writable{descriptor, POLLOUT, 0};
            poll(&writable, 1, -1);
        }
        else if (errno != EINTR)
            throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, std::string("standard output: ") + std::strerror(errno) +
                                                         "; send it somewhere that can take it");
    }
    buffer.clear();
}
