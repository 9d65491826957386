// Makes a completion script at build time: a template with the walk and the tables in it.
// Usage: velmar_cfg_completion TEMPLATE WALK OUTPUT
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tools/velmar-cfg/completion/completion_tables.h"

namespace
{
// Neither file is ever empty.
std::string content_of(const char* path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    if (!bytes)
        throw std::runtime_error(std::string(path) + ": cannot be read, or is empty");
    return std::move(bytes).str();
}

void put_in_place(std::string& script, const std::string& mark, const std::string& text)
{
    const std::size_t location = script.find(mark);
    if (location == std::string::npos)
        throw std::runtime_error("no " + mark + " in the template");
    script.replace(location, mark.size(), text);
}
}

int main(int argc, char** argv)
{
    if (argc != 4)
    {
        std::cerr << "usage: velmar_cfg_completion TEMPLATE WALK OUTPUT\n";
        return 2;
    }
    try
    {
        std::string script = content_of(argv[1]);
        put_in_place(script, "@WALK@\n", content_of(argv[2]));
        put_in_place(script, "@TABLES@\n", completion_tables());
        std::ofstream output(argv[3], std::ios::binary);
        output << script;
        output.close();
        if (output)
            return 0;
        std::cerr << argv[3] << ": not written\n";
    }
    catch (const std::exception& error)
    {
        std::cerr << "velmar_cfg_completion: " << error.what() << "\n";
    }
    return 1;
}
