// A host that is not linked to the library: it loads it, looks the late-bound entry points up, and unloads it again.
#include <dlfcn.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/thr/thr.h"
#include "tests/shared_library/late_bound_caller.h"
#include "tests/support/isolated_test.h"

// The host's own thread service: it goes before the default one. The library never gives its lock back (exit handlers
// may still look variables up), so that each loading leaves one behind; this service knows them all.
struct THR_MUTEX
{
    std::recursive_mutex mutex;
};

namespace
{
std::vector<std::unique_ptr<THR_MUTEX>>& mutexes()
{
    static std::vector<std::unique_ptr<THR_MUTEX>> made;
    return made;
}
}

THR_MUTEX* thr_mutex_create()
{
    return mutexes().emplace_back(std::make_unique<THR_MUTEX>()).get();
}

void thr_mutex_lock(THR_MUTEX* mutex)
{
    mutex->mutex.lock();
}

void thr_mutex_unlock(THR_MUTEX* mutex)
{
    mutex->mutex.unlock();
}

namespace
{
using IS_ON = bool(const char* name, bool default_value);
using GET_INT_VALUE = void(const char* name, int* value, int default_value);
using GET_VALUE = void(const char* name, std::string* value);
using GET_VALUE_FOR_ZANTH = int(void* ignored, const char* const* name, char* buffer, unsigned int buffer_size);

class LOADING_TEST : public ISOLATED_TEST
{
protected:
    LOADING_TEST()
    {
        load();
    }

    ~LOADING_TEST() override
    {
        unload();
        mutexes().clear();
    }

    void load()
    {
        library = dlopen(ZON_TEST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(library, nullptr) << dlerror();
    }

    void unload()
    {
        if (library != nullptr)
        {
            EXPECT_EQ(dlclose(library), 0);
        }
        library = nullptr;
    }

    template <typename FUNCTION>
    FUNCTION* entry_point(const char* name)
    {
        void* const address = dlsym(library, name);
        if (address == nullptr)
            throw std::runtime_error(name);
        return reinterpret_cast<FUNCTION*>(address);
    }

    void* library = nullptr;
};

TEST_F(LOADING_TEST, the_late_bound_entry_points_are_found_by_their_plain_names)
{
    write_file(temporary.path("cwd/velmar.ini"), "a = 12\nb = on\n");
    EXPECT_TRUE(entry_point<IS_ON>("cfg_dyn_is_on")("b", false));
    int number = 0;
    entry_point<GET_INT_VALUE>("cfg_dyn_get_int_value")("a", &number, 0);
    EXPECT_EQ(number, 12);
    std::string text;
    entry_point<GET_VALUE>("cfg_dyn_get_value")("a", &text);
    EXPECT_EQ(text, "12");
    const char* const name = "a";
    char buffer[3];
    EXPECT_EQ(entry_point<GET_VALUE_FOR_ZANTH>("cfg_ini_get_value_for_zanth")(nullptr, &name, buffer, 2), 0);
    EXPECT_STREQ(buffer, "12");
}

TEST_F(LOADING_TEST, a_caller_written_in_c_gets_the_same_answers)
{
    unload();
    write_file(temporary.path("cwd/velmar.ini"), "switch = on\nnumber = -12\ntext = a text\n");
    LATE_BOUND_ANSWERS answers = {-1, -1, -1, -2, -1, -1, ""};
    ASSERT_EQ(ask_from_c(ZON_TEST_LIBRARY, &answers), 0);
    EXPECT_EQ(answers.on, 1);
    EXPECT_EQ(answers.off_by_default, 0);
    EXPECT_EQ(answers.number, -12);
    EXPECT_EQ(answers.number_by_default, -1);
    EXPECT_EQ(answers.short_buffer_status, 6) << "the room that it takes";
    EXPECT_EQ(answers.text_status, 0);
    EXPECT_STREQ(answers.text, "a text");
    EXPECT_EQ(dlopen(ZON_TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still there";
}

TEST_F(LOADING_TEST, an_exception_reaches_the_host)
{
    EXPECT_THROW(entry_point<IS_ON>("cfg_dyn_is_on")(nullptr, false), std::logic_error);
}

TEST_F(LOADING_TEST, internal_names_are_not_found)
{
    for (const char* const name :
         {"cfg_ini_file", "cfg_ini_mutex", "cfg_ini_dirty", "s_ini_callbacks", "cfg_ini_initializer",
          "cfg_current_velmar_ini_path_name", "cfg_enum_based_defaults", "_Z12discard_storev", "_Z15reset_callbacksv"})
        EXPECT_EQ(dlsym(library, name), nullptr) << name;
    EXPECT_NE(dlsym(library, "_Z18cfg_close_ini_filev"), nullptr); // an exported one is
}

TEST_F(LOADING_TEST, loading_reads_nothing)
{
    EXPECT_TRUE(mutexes().empty());
    write_file(temporary.path("cwd/velmar.ini"), "a = written after loading\n");
    std::string text;
    entry_point<GET_VALUE>("cfg_dyn_get_value")("a", &text);
    EXPECT_EQ(text, "written after loading");
    EXPECT_EQ(mutexes().size(), 1U);
}

TEST_F(LOADING_TEST, unloading_lets_go_and_loading_again_starts_afresh)
{
    write_file(temporary.path("cwd/velmar.ini"), "a = a text that is too long to be kept in place\n");
    std::string text;
    entry_point<GET_VALUE>("cfg_dyn_get_value")("a", &text);
    entry_point<GET_VALUE>("cfg_dyn_get_value")("unknown", &text);
    unload();
    EXPECT_EQ(dlopen(ZON_TEST_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still there";

    write_file(temporary.path("cwd/velmar.ini"), "a = changed meanwhile\n");
    load();
    entry_point<GET_VALUE>("cfg_dyn_get_value")("a", &text);
    EXPECT_EQ(text, "changed meanwhile");
}
}
