// The text that a command answers with, as it arrives at the other end of a descriptor. How wide a terminal is, and
// descriptors that do not block, are tested beside the reader of files (input_file_test.cpp).
#include "tools/velmar-cfg/base/output.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/base/errors.h"
#include "tools/velmar-cfg/base/hidden_text.h"

namespace
{
class OUTPUT_OF_A_COMMAND : public ISOLATED_TEST
{
protected:
    OUTPUT_OF_A_COMMAND()
    {
        EXPECT_EQ(pipe(ends), 0);
    }

    ~OUTPUT_OF_A_COMMAND() override
    {
        close_end(0);
        close_end(1);
    }

    void close_end(int which)
    {
        if (ends[which] >= 0)
            close(ends[which]);
        ends[which] = -1;
    }

    // What is in the pipe now.
    std::string arrived() const
    {
        std::string text;
        EXPECT_EQ(fcntl(ends[0], F_SETFL, O_NONBLOCK), 0);
        char buffer[4096];
        for (ssize_t size = 0; (size = read(ends[0], buffer, sizeof buffer)) > 0;)
            text.append(buffer, static_cast<std::size_t>(size));
        return text;
    }

    int ends[2] = {-1, -1};
};

TEST_F(OUTPUT_OF_A_COMMAND, arrives_when_all_is_said)
{
    OUTPUT out(ends[1]);
    out << "one "
        << "two";
    EXPECT_EQ(arrived(), "");
    out.finish();
    EXPECT_EQ(arrived(), "one two");
    out.finish();
    EXPECT_EQ(arrived(), "");
    out << "\n";
    out.finish();
    EXPECT_EQ(arrived(), "\n");
}

TEST_F(OUTPUT_OF_A_COMMAND, is_dropped_unless_it_is_finished)
{
    {
        OUTPUT out(ends[1]);
        out << "one";
    }
    EXPECT_EQ(arrived(), "");
}

TEST_F(OUTPUT_OF_A_COMMAND, arrives_in_parts_of_64_kib)
{
    OUTPUT out(ends[1]);
    out << std::string(64 * 1024 - 1, 'a');
    EXPECT_EQ(arrived(), "");
    out << "b";
    EXPECT_EQ(arrived(), std::string(64 * 1024 - 1, 'a') + "b");
}

TEST_F(OUTPUT_OF_A_COMMAND, names_hidden_parts)
{
    OUTPUT out(ends[1]);
    out << "a=" + mark_of({"", "", false}) + ";b";
    out.finish();
    EXPECT_EQ(arrived(), "a=\\(masked);b");
}

TEST_F(OUTPUT_OF_A_COMMAND, is_dropped_when_the_reader_has_gone)
{
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    close_end(0);
    OUTPUT out(ends[1]);
    out << "one";
    EXPECT_NO_THROW(out.finish());
    out << std::string(1 << 20, 'x');
    EXPECT_NO_THROW(out.finish());
    std::signal(SIGPIPE, before);
}

TEST_F(OUTPUT_OF_A_COMMAND, that_cannot_be_written_is_told)
{
    const int full = open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    for (const auto& [descriptor, complaint] :
         {std::pair(full, "standard output: No space left on device; send it somewhere that can take it"),
          {-1, "standard output: Bad file descriptor; send it somewhere that can take it"}})
    {
        OUTPUT out(descriptor);
        EXPECT_NO_THROW(out.finish()); // nothing to write
        out << "one";
        try
        {
            out.finish();
            ADD_FAILURE() << complaint;
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::NOT_WRITTEN);
            EXPECT_STREQ(error.what(), complaint);
        }
    }
    close(full);
}

// --- Colours ---

TEST_F(OUTPUT_OF_A_COMMAND, has_a_style_for_each_purpose)
{
    OUTPUT out(ends[1]);
    const std::pair<STYLE, const char*> rows[] = {
        {STYLE::PLAIN, "x"},
        {STYLE::STRONG, "\x1b[1mx\x1b[0m"},
        {STYLE::FAINT, "\x1b[2mx\x1b[0m"},
        {STYLE::BAD, "\x1b[31mx\x1b[0m"},
        {STYLE::GOOD, "\x1b[32mx\x1b[0m"},
        {STYLE::WARNING, "\x1b[33mx\x1b[0m"},
    };
    for (const auto& [style, painted] : rows)
    {
        EXPECT_EQ(out.painted(style, "x"), "x");
        out.choose_color("always");
        EXPECT_EQ(out.painted(style, "x"), painted);
        EXPECT_EQ(out.painted(style, ""), "");
        out.choose_color("never");
        EXPECT_EQ(out.painted(style, "x"), "x");
    }
}

// A terminal, as a command has it.
class TERMINAL
{
public:
    TERMINAL() : control(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (control >= 0 && grantpt(control) == 0 && unlockpt(control) == 0)
            terminal = open(ptsname(control), O_RDWR | O_NOCTTY);
    }
    ~TERMINAL()
    {
        close(terminal);
        close(control);
    }
    TERMINAL(const TERMINAL&) = delete;
    TERMINAL& operator=(const TERMINAL&) = delete;

    const int control;
    int terminal = -1;
};

TEST_F(OUTPUT_OF_A_COMMAND, has_colours_of_itself_only_on_a_terminal_that_shows_them)
{
    const TERMINAL screen;
    if (screen.terminal < 0)
        GTEST_SKIP() << "no terminals here";
    struct ROW
    {
        const char* choice;
        bool on_terminal;
        const char* terminal; // TERM; null for none
        const char* no_color; // NO_COLOR; null for none
        bool colored;
    };
    const ROW rows[] = {
        {"auto", true, "xterm", nullptr, true},   {"auto", true, "xterm", "", true},
        {"auto", true, "xterm", "1", false},      {"auto", true, "dumb", nullptr, false},
        {"auto", true, nullptr, nullptr, false},  {"auto", true, "", nullptr, true},
        {"auto", false, "xterm", nullptr, false}, {"always", false, "dumb", "1", true},
        {"never", true, "xterm", nullptr, false}, {"", true, "xterm", nullptr, false},
    };
    for (const ROW& row : rows)
    {
        for (const auto& [name, value] : {std::pair("TERM", row.terminal), {"NO_COLOR", row.no_color}})
        {
            if (value == nullptr)
                environment.unset(name);
            else
                environment.set(name, value);
        }
        OUTPUT out(row.on_terminal ? screen.terminal : ends[1]);
        out.choose_color(row.choice);
        EXPECT_EQ(out.painted(STYLE::BAD, "x") != "x", row.colored)
            << row.choice << ", " << row.on_terminal << ", " << (row.terminal == nullptr ? "-" : row.terminal) << ", "
            << (row.no_color == nullptr ? "-" : row.no_color);
    }
}

TEST_F(OUTPUT_OF_A_COMMAND, has_the_width_of_columns_where_that_is_a_number)
{
    const std::pair<const char*, std::size_t> rows[] = {
        {"100", 100}, {"1", 1}, {"", 80}, {"0", 80}, {"wide", 80}, {"-5", 80}, {"99999999999999999999", 80},
    };
    for (const auto& [columns, width] : rows)
    {
        environment.set("COLUMNS", columns);
        EXPECT_EQ(OUTPUT(ends[1]).width(), width) << columns;
    }
    environment.unset("COLUMNS");
    EXPECT_EQ(OUTPUT(ends[1]).width(), 80U);
}
}
