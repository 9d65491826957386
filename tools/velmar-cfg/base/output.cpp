#include "tools/velmar-cfg/base/output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/json_values.h"

namespace
{
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

void OUTPUT::choose_color(std::string_view choice, int descriptor)
{
    colored = choice == "always" || (choice == "auto" && isatty(descriptor) == 1 && environment_allows_color());
}

OUTPUT& OUTPUT::operator<<(std::string_view text)
{
    bytes += text;
    return *this;
}

void OUTPUT::json(const nlohmann::ordered_json& document)
{
    bytes += document_as_text(document);
}

std::string OUTPUT::painted(STYLE style, std::string_view text) const
{
    if (!colored || style == STYLE::PLAIN || text.empty())
        return std::string(text);
    return escape_sequence(style) + std::string(text) + "\x1b[0m";
}

void OUTPUT::write_to(int descriptor)
{
    std::string_view rest = bytes;
    while (!rest.empty())
    {
        const ssize_t written = ::write(descriptor, rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EPIPE)
            break;
        else if (errno != EINTR)
            throw TOOL_ERROR(EXIT_CODE::NOT_WRITTEN, std::string("standard output: ") + std::strerror(errno) +
                                                         "; send it somewhere that can take it");
    }
    bytes.clear();
}
