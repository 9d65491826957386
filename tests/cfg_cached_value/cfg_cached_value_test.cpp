// What a cached variable answers, what it follows and what it counts. The races are tested in
// cfg_cached_value_threads_test.cpp.
#include "cfg_ini/cfg_cached_value.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/record_table.h"
#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/faked_test.h"

using namespace zon_cfg;

namespace
{
static_assert(std::is_same_v<decltype(CFG_CACHED_VALUE("a", true)), CFG_CACHED_VALUE<bool>>);
static_assert(std::is_same_v<decltype(CFG_CACHED_VALUE("a", 1)), CFG_CACHED_VALUE<int>>);
static_assert(std::is_same_v<decltype(CFG_CACHED_VALUE("a", 1U)), CFG_CACHED_VALUE<unsigned int>>);
static_assert(std::is_same_v<decltype(CFG_CACHED_VALUE("a", 1.0)), CFG_CACHED_VALUE<double>>);
static_assert(std::is_same_v<decltype(CFG_CACHED_VALUE("a", "text")), CFG_CACHED_VALUE<std::string>>);
static_assert(!std::is_copy_constructible_v<CFG_CACHED_VALUE<int>>);

// Set up when the program was loaded; one of the tests looks at what that did.
const CFG_CACHED_VALUE<int> made_at_load("made_at_load", 7);

// The counted accesses of a variable; empty when it has no record.
std::optional<std::uint64_t> accesses_of(const char* name)
{
    const STORE_LOCK lock;
    if (cfg_ini_file.load() == nullptr)
        return std::nullopt;
    const CFG_INI_RECORD* const record = cfg_ini_get_record(name);
    return record == nullptr ? std::nullopt : std::optional(record->access_count);
}

class CACHED_VALUE_TEST : public FAKED_TEST
{
protected:
    CACHED_VALUE_TEST()
    {
        cfg_read_ini_file(""); // a store without any variable
    }

    ~CACHED_VALUE_TEST() override
    {
        cfg_close_ini_file();
    }
};

using CACHED_VALUE = CACHED_VALUE_TEST;

TEST_F(CACHED_VALUE, UnsetAnswersTheDefault)
{
    EXPECT_TRUE(CFG_CACHED_VALUE<bool>("b", true).get());
    EXPECT_FALSE(CFG_CACHED_VALUE<bool>("b", false).get());
    EXPECT_EQ(-3, CFG_CACHED_VALUE<int>("i", -3).get());
    EXPECT_EQ(4000000000U, CFG_CACHED_VALUE<unsigned int>("u", 4000000000U).get());
    EXPECT_EQ(0.25, CFG_CACHED_VALUE<double>("d", 0.25).get());
    EXPECT_EQ("none", CFG_CACHED_VALUE<std::string>("s", "none").get());
}

TEST_F(CACHED_VALUE, AnswersWhatIsStored)
{
    const SCOPED_POINT_LOCALE locale;
    cfg_set_value("b", "ON");
    cfg_set_value("i", "-2147483648");
    cfg_set_value("u", "4294967295");
    cfg_set_value("d", "2.5ms");
    cfg_set_value("s", "two words");
    EXPECT_TRUE(CFG_CACHED_VALUE<bool>("b", false).get());
    EXPECT_EQ(-2147483647 - 1, CFG_CACHED_VALUE<int>("i", 0).get());
    EXPECT_EQ(4294967295U, CFG_CACHED_VALUE<unsigned int>("u", 0U).get());
    EXPECT_EQ(2.5, CFG_CACHED_VALUE<double>("d", 0.0).get());
    EXPECT_EQ("two words", CFG_CACHED_VALUE<std::string>("s", "").get());
}

TEST_F(CACHED_VALUE, TextThatDoesNotConvertAnswersTheDefault)
{
    cfg_set_value("b", "yes");
    cfg_set_value("i", "12abc");
    cfg_set_value("u", "-1");
    cfg_set_value("d", "");
    cfg_set_value("s", "");
    EXPECT_TRUE(CFG_CACHED_VALUE<bool>("b", true).get());
    EXPECT_EQ(9, CFG_CACHED_VALUE<int>("i", 9).get());
    EXPECT_EQ(9U, CFG_CACHED_VALUE<unsigned int>("u", 9U).get());
    EXPECT_EQ(9.5, CFG_CACHED_VALUE<double>("d", 9.5).get());
    EXPECT_EQ("none", CFG_CACHED_VALUE<std::string>("s", "none").get());
}

TEST_F(CACHED_VALUE, FollowsEveryStore)
{
    const CFG_CACHED_VALUE<bool> flag("flag", false);
    const CFG_CACHED_VALUE<double> number("number", 1.0);
    const CFG_CACHED_VALUE<std::string> text("text", "short");
    EXPECT_FALSE(flag.get());
    EXPECT_EQ(1.0, number.get());
    EXPECT_EQ("short", text.get());

    cfg_set_on("flag");
    cfg_set_value("number", "2");
    cfg_set_value("text", "a text that is too long for a small string to hold by itself");
    EXPECT_TRUE(flag.get());
    EXPECT_EQ(2.0, number.get());
    EXPECT_EQ("a text that is too long for a small string to hold by itself", text.get());

    cfg_process_ini_string("flag=off;number=-1e3;text=b", false);
    EXPECT_FALSE(flag.get());
    EXPECT_EQ(-1000.0, number.get());
    EXPECT_EQ("b", text.get());
}

TEST_F(CACHED_VALUE, SeveralObjectsOfOneNameAllFollow)
{
    const CFG_CACHED_VALUE<int> as_number("both", 1);
    const CFG_CACHED_VALUE<bool> as_switch("both", false);
    EXPECT_EQ(1, as_number.get());
    EXPECT_FALSE(as_switch.get());
    cfg_set_value("both", "0");
    EXPECT_EQ(0, as_number.get());
    cfg_set_value("both", "true");
    EXPECT_EQ(1, as_number.get());
    EXPECT_TRUE(as_switch.get());
}

TEST_F(CACHED_VALUE, FollowsEmptyingAndRereading)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    cfg_set_value("effort", "5");
    EXPECT_EQ(5, effort.get());

    cfg_read_ini_file("");
    EXPECT_EQ(1, effort.get());

    write_file(temporary.path("cwd/velmar.ini"), "effort = 3\n");
    cfg_close_ini_file();
    EXPECT_EQ(3, effort.get()) << "the emptied store is read again, from the file that the search finds";

    write_file(temporary.path("other.ini"), "effort = 4\n");
    cfg_read_ini_file(temporary.path("other.ini"));
    EXPECT_EQ(4, effort.get());
}

TEST_F(CACHED_VALUE, ManyAnswersCountOneAccess)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    cfg_set_value("effort", "5");
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(5, effort.get());
    EXPECT_EQ(1U, accesses_of("effort"));
}

TEST_F(CACHED_VALUE, TheFirstAnswerOfAnUnsetVariableLeavesARecordAndCountsNothing)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    EXPECT_EQ(std::nullopt, accesses_of("effort"));
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(1, effort.get());
    EXPECT_EQ(0U, accesses_of("effort"));
}

TEST_F(CACHED_VALUE, ChangesThatNobodyAsksAboutAreNotRead)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    for (int i = 0; i < 10; ++i)
        cfg_set_int_value("effort", i);
    EXPECT_EQ(0U, accesses_of("effort"));
    EXPECT_EQ(9, effort.get());
    EXPECT_EQ(1U, accesses_of("effort"));
}

TEST_F(CACHED_VALUE, StoringTheSameTextAsksAgain)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    cfg_set_value("effort", "5");
    EXPECT_EQ(5, effort.get());
    cfg_set_value("effort", "5");
    EXPECT_EQ(5, effort.get());
    EXPECT_EQ(5, effort.get());
    EXPECT_EQ(2U, accesses_of("effort"));
}

TEST_F(CACHED_VALUE, AUsableAnswerMarksTheVariableAsUsed)
{
    cfg_set_value("effort", "5");
    cfg_set_value("incremental", "maybe");
    EXPECT_EQ(5, CFG_CACHED_VALUE<int>("effort", 1).get());
    EXPECT_FALSE(CFG_CACHED_VALUE<bool>("incremental", false).get());
    std::map<std::string, std::string> used;
    cfg_get_used_variable_value_map(&used);
    EXPECT_EQ((std::map<std::string, std::string>{{"effort", "5"}}), used);
}

// What it cannot see, as its header says.
TEST_F(CACHED_VALUE, AStoreUnderAnotherLetterCaseIsSeenAtTheNextChangeOnly)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    cfg_set_value("effort", "5");
    EXPECT_EQ(5, effort.get());
    cfg_set_value("EFFORT", "6");
    EXPECT_EQ(6, cfg_get_int_value("effort", 1));
    EXPECT_EQ(5, effort.get());

    const CFG_CACHED_VALUE<int> late("effort", 1);
    EXPECT_EQ(6, late.get()) << "before the first answer there is nothing to be out of date";

    cfg_set_value("effort", "7");
    EXPECT_EQ(7, effort.get());
    cfg_set_value("EFFORT", "8");
    write_file(temporary.path("main.ini"), "EFFORT = 9\n");
    cfg_read_ini_file(temporary.path("main.ini"));
    EXPECT_EQ(9, effort.get());
}

TEST_F(CACHED_VALUE, AskedFromTheNotificationOfALaterCallbackAnswersTheNewState)
{
    class LISTENER : public CFG_INI_CALLBACK
    {
    public:
        explicit LISTENER(const CFG_CACHED_VALUE<int>& cached) : CFG_INI_CALLBACK("effort"), effort(cached) {}

        void refresh() override
        {
            heard = effort.get();
        }

        const CFG_CACHED_VALUE<int>& effort;
        int heard = 0;
    };
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    const LISTENER listener(effort);
    EXPECT_EQ(1, effort.get());
    cfg_set_value("effort", "5");
    EXPECT_EQ(5, listener.heard);
    EXPECT_EQ(5, effort.get());
    EXPECT_EQ(1U, accesses_of("effort")) << "the answer that was got within the notification is kept";
}

TEST_F(CACHED_VALUE, IsNotToldAfterItsEnd)
{
    auto effort = std::make_unique<CFG_CACHED_VALUE<std::string>>("ended", "none");
    EXPECT_EQ("none", effort->get());
    effort.reset();
    EXPECT_TRUE(s_ini_callbacks->at("ended").empty());
    cfg_set_value("ended", "5");
    cfg_close_ini_file();
}

// The variable changes between the store's answer and the moment at which the object could keep it.
TEST_F(CACHED_VALUE, AnAnswerThatWasOvertakenByAStoreIsNotKept)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    cfg_set_value("effort", "5");
    fake::thr::before_unlock(1, [] { cfg_set_value("effort", "6"); });
    EXPECT_EQ(5, effort.get()) << "the value when the store answered";
    EXPECT_EQ(6, effort.get());
}

TEST_F(CACHED_VALUE, AnAnswerThatWasOvertakenByARereadingIsNotKept)
{
    const CFG_CACHED_VALUE<std::string> text("text", "none");
    cfg_set_value("text", "old");
    fake::thr::before_unlock(1, [] { cfg_read_ini_file(""); });
    EXPECT_EQ("old", text.get());
    EXPECT_EQ("none", text.get());
}

// A cell during whose writing something happens on what another thread would be.
struct INTERRUPTED_CELL
{
    bool load(int& out) const
    {
        out = value;
        return true;
    }

    bool store(int new_value)
    {
        if (const auto interrupt = std::exchange(interruption, nullptr); interrupt != nullptr)
            interrupt();
        value = new_value;
        return true;
    }

    static inline std::function<void()> interruption;
    int value = 0;
};

TEST(KEPT_ANSWER, AWriterThatWasOvertakenDoesNotReplaceAnAnswerThatIsKnown)
{
    CFG_CACHED_VALUE_DETAIL::KEPT_ANSWER<int, INTERRUPTED_CELL> kept;
    INTERRUPTED_CELL::interruption = [&kept]
    {
        kept.forget();
        kept.keep(6, kept.changes());
    };
    kept.keep(5, kept.changes());
    int answer = 0;
    EXPECT_TRUE(!kept.load(answer) || answer == 6);

    kept.keep(7, kept.changes());
    EXPECT_TRUE(kept.load(answer));
    EXPECT_EQ(7, answer);
}

TEST(KEPT_ANSWER, ALateWriterDoesNotReplaceAnAnswerThatIsKnown)
{
    CFG_CACHED_VALUE_DETAIL::KEPT_ANSWER<int> kept;
    const std::uint64_t old = kept.changes();
    kept.forget();
    kept.keep(6, kept.changes());
    kept.keep(5, old);
    int answer = 0;
    EXPECT_TRUE(kept.load(answer));
    EXPECT_EQ(6, answer);
}

// A text during whose copying something happens, as for a fork that copies the memory in the middle of it.
struct INTERRUPTED_TEXT
{
    INTERRUPTED_TEXT() = default;
    explicit INTERRUPTED_TEXT(int number) : value(number) {}
    INTERRUPTED_TEXT(const INTERRUPTED_TEXT&) = default;
    INTERRUPTED_TEXT(INTERRUPTED_TEXT&&) = default;
    ~INTERRUPTED_TEXT() = default;

    INTERRUPTED_TEXT& operator=(const INTERRUPTED_TEXT& other)
    {
        if (const auto interrupt = std::exchange(interruption, nullptr); interrupt != nullptr)
            interrupt();
        value = other.value;
        return *this;
    }
    INTERRUPTED_TEXT& operator=(INTERRUPTED_TEXT&& other)
    {
        return *this = other;
    }

    static inline std::function<void()> interruption;
    int value = 0;
};

// What holds the cell's flag never comes back in the child of a fork: there every get() asks the store.
TEST(TEXT_CELL, ATextThatIsBeingCopiedIsNeitherWaitedForNorRead)
{
    using CELL = CFG_CACHED_VALUE_DETAIL::TEXT_CELL<INTERRUPTED_TEXT>;
    CFG_CACHED_VALUE_DETAIL::KEPT_ANSWER<INTERRUPTED_TEXT, CELL> kept;
    kept.keep(INTERRUPTED_TEXT(5), kept.changes());

    INTERRUPTED_TEXT inner;
    bool inner_loaded = true;
    INTERRUPTED_TEXT::interruption = [&] { inner_loaded = kept.load(inner); };
    INTERRUPTED_TEXT outer;
    EXPECT_TRUE(kept.load(outer));
    EXPECT_EQ(5, outer.value);
    EXPECT_FALSE(inner_loaded);
    EXPECT_TRUE(kept.load(inner)) << "the flag is released after the copy";

    INTERRUPTED_TEXT::interruption = [&] { inner_loaded = kept.load(inner); };
    kept.forget();
    kept.keep(INTERRUPTED_TEXT(6), kept.changes());
    EXPECT_FALSE(inner_loaded);
    EXPECT_TRUE(kept.load(outer));
    EXPECT_EQ(6, outer.value);
}

// A text that could not be kept is not known: the next get() asks again.
TEST(TEXT_CELL, AnAnswerThatFindsTheTextBeingCopiedIsNotKept)
{
    using CELL = CFG_CACHED_VALUE_DETAIL::TEXT_CELL<INTERRUPTED_TEXT>;
    CFG_CACHED_VALUE_DETAIL::KEPT_ANSWER<INTERRUPTED_TEXT, CELL> kept;
    kept.keep(INTERRUPTED_TEXT(5), kept.changes());
    INTERRUPTED_TEXT::interruption = [&]
    {
        kept.forget();
        kept.keep(INTERRUPTED_TEXT(6), kept.changes());
    };
    INTERRUPTED_TEXT text;
    EXPECT_TRUE(kept.load(text));
    EXPECT_EQ(5, text.value);
    EXPECT_FALSE(kept.load(text));
    kept.keep(INTERRUPTED_TEXT(7), kept.changes());
    EXPECT_TRUE(kept.load(text));
    EXPECT_EQ(7, text.value);
}

// The flag is released when there is no memory for a copy.
TEST(TEXT_CELL, AFailedCopyReleasesTheText)
{
    using CELL = CFG_CACHED_VALUE_DETAIL::TEXT_CELL<INTERRUPTED_TEXT>;
    CELL cell;
    INTERRUPTED_TEXT text;
    INTERRUPTED_TEXT::interruption = [] { throw std::bad_alloc(); };
    EXPECT_THROW(static_cast<void>(cell.load(text)), std::bad_alloc);
    EXPECT_TRUE(cell.load(text));
}

// A failed reading (here: no memory for the file's name) leaves nothing behind that a later answer could trip over.
TEST_F(CACHED_VALUE, AFailedReadingIsTriedAgain)
{
    const CFG_CACHED_VALUE<int> effort("effort", 1);
    write_file(temporary.path("cwd/velmar.ini"), "effort = 3\n");
    cfg_close_ini_file();
    fake::fio::before_current_directory(1, fake::out_of_memory);
    EXPECT_THROW(static_cast<void>(effort.get()), std::bad_alloc);
    EXPECT_EQ(3, effort.get());
}

using CACHED_VALUE_AT_LOAD = FAKED_TEST;

TEST_F(CACHED_VALUE_AT_LOAD, StaticObjectsReadNothingBeforeTheyAreAsked)
{
    write_file(temporary.path("cwd/velmar.ini"), "made_at_load = 8\n");
    EXPECT_IN_FRESH_PROCESS({
        EXPECT_EQ(nullptr, cfg_ini_file.load());
        EXPECT_STREQ("", cfg_get_ini_file_path_name());
        EXPECT_EQ(8, made_at_load.get());
        EXPECT_STRNE("", cfg_get_ini_file_path_name());
    });
}

// The first get() makes the settings be read, and the line of the file is a change that comes while it asks.
TEST_F(CACHED_VALUE_AT_LOAD, TheFirstAnswerOfAllIsAskedForTwice)
{
    write_file(temporary.path("cwd/velmar.ini"), "made_at_load = 8\n");
    EXPECT_IN_FRESH_PROCESS({
        EXPECT_EQ(8, made_at_load.get());
        EXPECT_EQ(1U, accesses_of("made_at_load"));
        EXPECT_EQ(8, made_at_load.get());
        EXPECT_EQ(8, made_at_load.get());
        EXPECT_EQ(2U, accesses_of("made_at_load"));
    });
}
}
