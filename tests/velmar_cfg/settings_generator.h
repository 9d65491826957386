// Settings texts made of pieces that matter to the rules for lines, items, names and values.
#ifndef TESTS_VELMAR_CFG_SETTINGS_GENERATOR_H
#define TESTS_VELMAR_CFG_SETTINGS_GENERATOR_H

#include <algorithm>
#include <random>
#include <string>
#include <vector>

class SETTINGS_GENERATOR
{
public:
    explicit SETTINGS_GENERATOR(unsigned int seed) : random(seed) {}

    // A distribution of the standard library would give other numbers with another library.
    std::size_t below(std::size_t bound)
    {
        return random() % bound;
    }

    std::string pick(const std::vector<std::string>& pieces)
    {
        return pieces[below(pieces.size())];
    }

    // The operands of a sum would be picked in the order that the compiler chooses.
    std::string one_of_each(const std::vector<std::vector<std::string>>& columns)
    {
        std::string text;
        for (const std::vector<std::string>& pieces : columns)
            text += pick(pieces);
        return text;
    }

    std::string with_one_of(const std::string& text, const std::vector<std::string>& ends)
    {
        return text + pick(ends);
    }

    // A line that is often an assignment to one of a few names, and sometimes anything.
    std::string line()
    {
        static const std::vector<std::string> names = {"a",          "A", "b",  "fan out",          "Fanout",
                                                       "msg_sqlite", "",  " c", "cfg_max_to_report"};
        static const std::vector<std::string> values = {"1",          "on",  "\"x;y\"", "x // y", "2.5ms", "",
                                                        "http://h#p", "#ff", "=",       "\"open", "-7"};
        static const std::vector<std::string> pieces = {"a", "=",  ";", "#", "//", "\"", " ",
                                                        "b", "\t", "1", "/", "\r", ":"};
        if (below(4) == 0)
            return some_of(pieces, 7);
        return one_of_each({names, {"=", " = ", "  ="}, values, {"", "", " ; note", ";b=2", " # x", "\r"}});
    }

    // The same with bytes that files hardly have: zero bytes, bytes above ASCII, white space of all kinds, and with
    // values at the borders of the types.
    std::string hostile_line()
    {
        static const std::vector<std::string> names = {"a",
                                                       "A",
                                                       "b",
                                                       "fan out",
                                                       "F anOut",
                                                       "msg_sqlite",
                                                       "MSG_SQLITE",
                                                       "",
                                                       " c",
                                                       "\xc3",
                                                       "\xe9=\xc9",
                                                       "\x01",
                                                       "/",
                                                       ":",
                                                       "\"a",
                                                       "debug_msg",
                                                       "\t x\v",
                                                       "longer_than_sixteen_letters",
                                                       std::string("a\0b", 3),
                                                       std::string("\0", 1),
                                                       "Longer_Than_Sixteen_Letters",
                                                       "cfg_min_accessed_to_report"};
        static const std::vector<std::string> values = {"1",
                                                        "on",
                                                        "TRUE",
                                                        "off",
                                                        "0",
                                                        "00",
                                                        "-0",
                                                        "+5",
                                                        "0x10",
                                                        "inf",
                                                        "nan",
                                                        "-nan",
                                                        "1e400",
                                                        "2147483647",
                                                        "2147483648",
                                                        "-2147483648",
                                                        "-2147483649",
                                                        "4294967295",
                                                        "4294967296",
                                                        "007",
                                                        "2.5ms",
                                                        "",
                                                        " ",
                                                        "\"\"",
                                                        "\"x;y\"",
                                                        "a//b",
                                                        "\xff\xfe",
                                                        "\xe2\x82\xac",
                                                        std::string("1\0x", 3),
                                                        std::string("\0", 1),
                                                        "a\rb",
                                                        "\v7\f"};
        static const std::vector<std::string> pieces = {
            "a", "=",    ";",    "#",  "//", "\"", " ",  "b",    "\t", "1", "/", "\r", ":", std::string("\0", 1),
            "B", "\x80", "\xa0", "\v", "\f", "on", "of", "ffff", "-",  "."};
        if (below(3) == 0)
            return some_of(pieces, 9);
        return one_of_each(
            {names, {"=", " = ", "  =", "\t=\t"}, values, {"", "", "", " ; note", ";b=2", " # x", "\r", "//"}});
    }

    template <typename LINE>
    std::string file(LINE next_line, std::size_t most_lines = 12)
    {
        std::string text;
        for (std::size_t i = below(most_lines); i > 0; --i)
            text += next_line() + "\n";
        if (below(2) == 0)
            text += next_line();
        return text;
    }

    // For the environment, which holds no zero byte.
    template <typename LINE>
    std::string inline_text(LINE next_line)
    {
        std::string text;
        for (std::size_t i = below(6); i > 0; --i)
        {
            text += next_line();
            text += pick({";", ":"});
        }
        std::erase(text, '\0');
        return text;
    }

private:
    std::string some_of(const std::vector<std::string>& pieces, std::size_t below_number)
    {
        std::string text;
        for (std::size_t i = below(below_number); i > 0; --i)
            text += pick(pieces);
        return text;
    }

    std::mt19937 random;
};

#endif
