#include "tools/velmar-cfg/output.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "tools/velmar-cfg/json_values.h"
#include "tools/velmar-cfg/tool.h"

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

void OUTPUT::choose_color(std::string_view choice)
{
    colored = choice == "always" || (choice == "auto" && isatty(STDOUT_FILENO) == 1 && environment_allows_color());
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

void OUTPUT::flush()
{
    std::string_view rest = bytes;
    while (!rest.empty())
    {
        const ssize_t written = ::write(STDOUT_FILENO, rest.data(), rest.size());
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

std::string printable(std::string_view text)
{
    std::string result;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7f)
            result += c;
        else if (c == '\n')
            result += "\\n";
        else if (c == '\t')
            result += "\\t";
        else
        {
            std::array<char, 5> escaped;
            std::snprintf(escaped.data(), escaped.size(), "\\x%02x", byte);
            result += escaped.data();
        }
    }
    return result;
}

void complain(std::string_view text)
{
    const std::string line = "velmar-cfg: " + printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}
