// Cached variables under racing threads. Linked to the plain services, so that the thread sanitizer sees only the order
// that the library and the header themselves make.
#include <atomic>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "cfg_ini/cfg_cached_value.h"
#include "tests/support/isolated_test.h"

namespace
{
constexpr int readers = 3;
constexpr int rounds = 2000;

class CACHED_VALUE_THREADS : public ISOLATED_TEST
{
protected:
    CACHED_VALUE_THREADS()
    {
        cfg_read_ini_file("");
    }

    ~CACHED_VALUE_THREADS() override
    {
        cfg_close_ini_file();
    }

    // Runs `read` over and over on several threads while `write` runs on another, each reader at least once.
    template <typename READ, typename WRITE>
    void race(READ read, WRITE write)
    {
        std::latch start(readers + 1);
        std::atomic<bool> written = false;
        std::vector<std::thread> threads;
        for (int i = 0; i < readers; ++i)
        {
            threads.emplace_back(
                [&]
                {
                    auto reader = read();
                    start.arrive_and_wait();
                    do
                        reader();
                    while (!written.load());
                });
        }
        start.arrive_and_wait();
        write();
        written = true;
        for (std::thread& thread : threads)
            thread.join();
    }
};

// A reader never goes back to an older value, and once a store has returned everybody has the new one.
template <typename T>
class CACHED_TYPE_THREADS : public CACHED_VALUE_THREADS
{
};

using TYPES = testing::Types<int, unsigned int, double>;
TYPED_TEST_SUITE(CACHED_TYPE_THREADS, TYPES);

TYPED_TEST(CACHED_TYPE_THREADS, AnswersNeverGoBack)
{
    const CFG_CACHED_VALUE<TypeParam> counter("counter", TypeParam{});
    std::atomic<int> went_back = 0;
    this->race(
        [&]
        {
            return [&counter, &went_back, last = TypeParam{}]() mutable
            {
                const TypeParam now = counter.get();
                if (now < last)
                    ++went_back;
                last = now;
            };
        },
        [&]
        {
            for (int i = 1; i <= rounds; ++i)
            {
                cfg_set_int_value("counter", i);
                ASSERT_EQ(static_cast<TypeParam>(i), counter.get());
            }
        });
    EXPECT_EQ(0, went_back.load());
    EXPECT_EQ(static_cast<TypeParam>(rounds), counter.get());
}

TEST_F(CACHED_VALUE_THREADS, TextsAreNeverTornAndNeverOld)
{
    const CFG_CACHED_VALUE<std::string> text("text", "none");
    std::vector<std::string> texts;
    for (int i = 0; i < 10; ++i)
        texts.push_back(std::string(60, static_cast<char>('a' + i)));
    std::atomic<int> torn = 0;
    race(
        [&]
        {
            return [&]
            {
                const std::string now = text.get();
                if (now != "none" && (now.size() != 60 || now.find_first_not_of(now[0]) != std::string::npos))
                    ++torn;
            };
        },
        [&]
        {
            for (int i = 0; i < rounds; ++i)
            {
                const std::string& stored = texts[static_cast<std::size_t>(i) % texts.size()];
                cfg_set_value("text", stored);
                ASSERT_EQ(stored, text.get());
            }
        });
    EXPECT_EQ(0, torn.load());
}

// Whoever asks while the settings are reread gets the value of the file, never the default of a store half-way.
TEST_F(CACHED_VALUE_THREADS, RereadingIsNeverSeenHalfDone)
{
    std::string lines;
    for (int i = 0; i < 50; ++i)
        lines += "filler" + std::to_string(i) + " = 1\n";
    const std::string path = temporary.path("main.ini");
    write_file(path, lines + "effort = 7\n");
    cfg_read_ini_file(path);

    const CFG_CACHED_VALUE<int> effort("effort", 1);
    std::atomic<int> wrong = 0;
    race(
        [&]
        {
            return [&]
            {
                if (effort.get() != 7)
                    ++wrong;
            };
        },
        [&]
        {
            for (int i = 0; i < 50; ++i)
                cfg_read_ini_file(path);
        });
    EXPECT_EQ(0, wrong.load());
}

// The very first answers, asked for by several threads at once while another stores: whatever the order, the answer
// after the store has returned is the stored one.
TEST_F(CACHED_VALUE_THREADS, FirstAnswersRacingWithAStoreLeaveNothingStale)
{
    for (int round = 0; round < 300; ++round)
    {
        cfg_read_ini_file("");
        const CFG_CACHED_VALUE<bool> flag("flag", false);
        const CFG_CACHED_VALUE<std::string> text("flag", "none");
        std::latch start(3);
        const auto ask = [&]
        {
            start.arrive_and_wait();
            static_cast<void>(flag.get());
            static_cast<void>(text.get());
        };
        std::thread first(ask);
        std::thread second(ask);
        start.arrive_and_wait();
        cfg_set_on("flag");
        EXPECT_TRUE(flag.get());
        first.join();
        second.join();
        ASSERT_TRUE(flag.get());
        ASSERT_EQ("on", text.get());
    }
}

// A notification that asks holds the store's lock; readers that ask want it. Neither may wait for the other.
TEST_F(CACHED_VALUE_THREADS, AskingFromNotificationsDoesNotBlock)
{
    class LISTENER : public CFG_INI_CALLBACK
    {
    public:
        LISTENER(const CFG_CACHED_VALUE<std::string>& cached_text, const CFG_CACHED_VALUE<int>& cached_number)
            : CFG_INI_CALLBACK("text"), text(cached_text), number(cached_number)
        {
        }

        void refresh() override
        {
            heard = text.get();
            static_cast<void>(number.get());
        }

        const CFG_CACHED_VALUE<std::string>& text;
        const CFG_CACHED_VALUE<int>& number;
        std::string heard;
    };
    const CFG_CACHED_VALUE<std::string> text("text", "none");
    const CFG_CACHED_VALUE<int> number("number", 0);
    const LISTENER listener(text, number);
    race(
        [&]
        {
            return [&]
            {
                static_cast<void>(text.get());
                static_cast<void>(number.get());
            };
        },
        [&]
        {
            for (int i = 0; i < rounds; ++i)
            {
                cfg_set_int_value("number", i);
                cfg_set_int_value("text", i);
            }
        });
    EXPECT_EQ(std::to_string(rounds - 1), listener.heard);
}
}
