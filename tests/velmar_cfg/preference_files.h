// Preference files for tests that compare the tool's model with the library itself.
#ifndef TESTS_VELMAR_CFG_PREFERENCE_FILES_H
#define TESTS_VELMAR_CFG_PREFERENCE_FILES_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "tests/velmar_cfg/settings_generator.h"

// A file of lines that are saved, lost and changed in every way: sections in several letter cases, keys that run
// together with their sections in two ways, old names, quotes within quotes, comments, and text where it does not
// belong.
inline std::string generated_preference_file(SETTINGS_GENERATOR& generate)
{
    static const std::vector<std::string> sections = {"General 23.4_pro",
                                                      "General 23.4_pro",
                                                      "GENERAL 23.4_pro",
                                                      "general 23.3_pro",
                                                      "General 23.3_pro",
                                                      "Messages 23.4_pro",
                                                      "Messages 23.3_pro",
                                                      "messages 23.3_pro",
                                                      "Messages",
                                                      "General",
                                                      "A",
                                                      "a",
                                                      "AB",
                                                      "",
                                                      " "};
    static const std::vector<std::string> keys = {"HDL_PREFERENCE",
                                                  "HDL_PREFERENCE",
                                                  "hdl_preference",
                                                  "SHOW_MESSAGE_ID",
                                                  "Post warning messages",
                                                  "DISPLAY_WARNING_MESSAGES",
                                                  "B",
                                                  "Bc",
                                                  "c",
                                                  "# note",
                                                  ";x",
                                                  ""};
    static const std::vector<std::string> values = {"VHDL",
                                                    "KHDL",
                                                    "on",
                                                    "off",
                                                    "1",
                                                    "\"VHDL\"",
                                                    "\"\"x\"\"",
                                                    "\"\"",
                                                    "\"",
                                                    "\" x\"",
                                                    "\"\" \"",
                                                    "",
                                                    " ",
                                                    "x]",
                                                    "[x]",
                                                    "a[b",
                                                    "a=b",
                                                    "#",
                                                    std::string("on\0x", 4)};
    static const std::vector<std::string> around = {"", "", "", "", "", " ", "# note", " ; a = 1", "x = 1", "\r"};
    static const std::vector<std::string> others = {
        "", "", "x", "a=", "# comment", ";", "# a = b", "[open", "#[open", "x = [open", "nothing at all", "\r", "\t"};
    std::string text;
    for (std::size_t i = generate.below(16); i > 0; --i)
    {
        const std::size_t kind = generate.below(10);
        // Piece by piece: compilers evaluate the operands of a sum in different orders.
        if (kind < 3)
        {
            text += generate.pick(around);
            text += "[" + generate.pick(sections) + "]";
            text += generate.pick(around);
        }
        else if (kind < 8)
        {
            text += generate.pick({"", " "});
            text += generate.pick(keys);
            text += generate.pick({"=", " = ", "= "});
            text += generate.pick(values);
        }
        else
            text += generate.pick(others);
        text += generate.pick({"\n", "\n", "\n", "\r\n"});
    }
    if (generate.below(4) == 0 && !text.empty())
        text.pop_back();
    return text;
}

// Configuration files of the system with sections, as far as there are; each with its path. No zero bytes, at most 64
// KB.
inline std::vector<std::pair<std::string, std::string>> real_files_with_sections(std::size_t most)
{
    std::vector<std::pair<std::string, std::string>> files;
    for (const char* const root : {"/etc", "/usr/lib/systemd", "/usr/lib/python3", "/usr/share"})
    {
        std::error_code error;
        auto entries = std::filesystem::recursive_directory_iterator(
            root, std::filesystem::directory_options::skip_permission_denied, error);
        for (; !error && entries != std::filesystem::recursive_directory_iterator() && files.size() < most;
             entries.increment(error))
        {
            const std::string extension = entries->path().extension();
            std::error_code ignored;
            if ((extension != ".ini" && extension != ".conf" && extension != ".cfg" && extension != ".desktop" &&
                 extension != ".service" && extension != ".toml") ||
                !entries->is_regular_file(ignored) || entries->file_size(ignored) > 65536)
                continue;
            std::ifstream file(entries->path(), std::ios::binary);
            std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
            if (bytes.find('[') != std::string::npos && bytes.find('\0') == std::string::npos)
                files.emplace_back(entries->path().string(), std::move(bytes));
        }
    }
    return files;
}

#endif
