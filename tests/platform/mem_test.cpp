#include <memory>
#include <thread>

#include "platform/mem/mem.h"
#include "tests/support/isolated_test.h"

namespace
{
using MEM_MESSAGES_TEST = ISOLATED_TEST;

__attribute__((format(printf, 1, 2))) void emit(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("SOME_MODULE", format, args);
    va_end(args);
}

template <typename ACTION>
std::string printed_by(ACTION action)
{
    testing::internal::CaptureStderr();
    action();
    return testing::internal::GetCapturedStderr();
}

TEST_F(MEM_MESSAGES_TEST, are_off_unless_asked_for)
{
    const auto message = [] { emit("hello"); };
    EXPECT_EQ(printed_by(message), "");
    for (const char* const off : {"", "0"})
    {
        environment.set("ZON_MSG_DEBUG", off);
        EXPECT_EQ(printed_by(message), "") << off;
    }
    for (const char* const on : {"1", "00", "off", " "})
    {
        environment.set("ZON_MSG_DEBUG", on);
        EXPECT_EQ(printed_by(message), "Debug: SOME_MODULE: hello\n") << on;
    }
}

TEST_F(MEM_MESSAGES_TEST, are_formatted_as_printf_does)
{
    environment.set("ZON_MSG_DEBUG", "1");
    EXPECT_EQ(printed_by([] { emit("%s=(%s) %d%%", "name", "2.5ms", -7); }), "Debug: SOME_MODULE: name=(2.5ms) -7%\n");
}

TEST_F(MEM_MESSAGES_TEST, are_cut_when_too_long)
{
    environment.set("ZON_MSG_DEBUG", "1");
    const std::string text(5000, 'x');
    EXPECT_EQ(printed_by([&] { emit("%s", text.c_str()); }), "Debug: SOME_MODULE: " + std::string(4095, 'x') + "\n");
}

TEST_F(MEM_MESSAGES_TEST, are_silent_until_the_outermost_silencing_scope_ends)
{
    environment.set("ZON_MSG_DEBUG", "1");
    const auto messages = []
    {
        {
            const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT outer;
            emit("1");
            {
                const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT inner;
                emit("2");
            }
            emit("3");
        }
        emit("4");
    };
    EXPECT_EQ(printed_by(messages), "Debug: SOME_MODULE: 4\n");
}

TEST_F(MEM_MESSAGES_TEST, are_silenced_for_the_calling_thread_only)
{
    environment.set("ZON_MSG_DEBUG", "1");
    const auto messages = []
    {
        const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT silence;
        std::thread([] { emit("other thread"); }).join();
        emit("this thread");
    };
    EXPECT_EQ(printed_by(messages), "Debug: SOME_MODULE: other thread\n");
}

TEST(MEM_REGISTRATION_TEST, lasts_as_long_as_the_object)
{
    EXPECT_FALSE(MEM_INITIALIZER::is_registered("MODULE_A"));
    auto first = std::make_unique<MEM_INITIALIZER>("MODULE_A");
    auto second = std::make_unique<MEM_INITIALIZER>("MODULE_B");
    auto third = std::make_unique<MEM_INITIALIZER>("MODULE_A");
    EXPECT_TRUE(MEM_INITIALIZER::is_registered("MODULE_A"));
    EXPECT_TRUE(MEM_INITIALIZER::is_registered("MODULE_B"));
    EXPECT_FALSE(MEM_INITIALIZER::is_registered("MODULE"));

    second.reset();
    EXPECT_FALSE(MEM_INITIALIZER::is_registered("MODULE_B"));
    EXPECT_TRUE(MEM_INITIALIZER::is_registered("MODULE_A"));
    first.reset();
    EXPECT_TRUE(MEM_INITIALIZER::is_registered("MODULE_A"));
    third.reset();
    EXPECT_FALSE(MEM_INITIALIZER::is_registered("MODULE_A"));
}

TEST(MEM_FORMAT_TEST, gives_the_text_that_printf_writes)
{
    const SCOPED_POINT_LOCALE locale;
    EXPECT_EQ(MEM_DETAIL::stl_raw_sprintf("%s", ""), "");
    EXPECT_EQ(MEM_DETAIL::stl_raw_sprintf("%d", -2147483647 - 1), "-2147483648");
    EXPECT_EQ(MEM_DETAIL::stl_raw_sprintf("%llu", 18446744073709551615ULL), "18446744073709551615");
    EXPECT_EQ(MEM_DETAIL::stl_raw_sprintf("[%s] %5.2f%%", "a", 1.5), "[a]  1.50%");
}

TEST(MEM_FORMAT_TEST, has_room_for_any_length)
{
    for (const std::size_t length : {15U, 16U, 1023U, 1024U, 1025U, 100000U})
    {
        const std::string text(length, 'x');
        EXPECT_EQ(MEM_DETAIL::stl_raw_sprintf("%s", text.c_str()), text) << length;
    }
}
}
