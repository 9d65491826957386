// What a registration and a settings file leave behind when there is no more memory.
#include <filesystem>
#include <memory>
#include <utility>

#include "cfg_ini/cfg_ini_reader/change_callbacks.h"
#include "cfg_ini/cfg_ini_reader/settings_lines.h"
#include "tests/support/every_fault.h"
#include "tests/support/failing_memory.h"
#include "tests/support/store_test.h"

using namespace zon_cfg;

namespace
{
using SETTINGS_MEMORY_TEST = STORE_TEST;

const std::string long_name = "a_name_that_is_too_long_to_be_kept_within_a_string_object";

class COUNTER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;
    void refresh() override
    {
        ++refreshes;
    }
    int refreshes = 0;
};

TEST_F(SETTINGS_MEMORY_TEST, after_a_failed_registration_its_thread_can_register_and_be_notified)
{
    CFG_INI_CALLBACK_REGISTRY* const registry_of_others = std::exchange(s_ini_callbacks, nullptr);
    const auto attempt = [](long nth)
    {
        delete std::exchange(s_ini_callbacks, nullptr); // the first registration makes the registry as well
        bool reached = false;
        alignas(COUNTER) char memory[sizeof(COUNTER)]; // no allocation but those of the registration
        {
            const FAILING_ALLOCATION failing(nth);
            try
            {
                std::destroy_at(new (memory) COUNTER(long_name.c_str()));
            }
            catch (const std::bad_alloc&)
            {
            }
            reached = failing.has_failed();
        }
        COUNTER counter(long_name.c_str());
        cfg_set_value(long_name, "1");
        EXPECT_EQ(counter.refreshes, 1);
        EXPECT_EQ(s_ini_callbacks->at(long_name).size(), 1U) << "the one that failed is not there";
        EXPECT_EQ(release_lock(), reached ? 1 : 0);
        return reached;
    };
    make_empty_store();
    EXPECT_GE(for_every_fault(attempt), 4) << "the registry, the name, its entry, its list";
    delete std::exchange(s_ini_callbacks, registry_of_others);
}

TEST_F(SETTINGS_MEMORY_TEST, a_callback_goes_without_memory)
{
    auto callback = std::make_unique<COUNTER>(long_name.c_str());
    const FAILING_ALLOCATION failing(1);
    callback.reset();
    EXPECT_FALSE(failing.has_failed());
    EXPECT_TRUE(s_ini_callbacks->at(long_name).empty());
}

std::ptrdiff_t open_descriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST_F(SETTINGS_MEMORY_TEST, a_file_that_is_not_read_to_its_end_is_closed)
{
    // The second line runs over the end of a buffer of 64 KiB.
    write_file(temporary.path("velmar.ini"), "a=1\nb=" + std::string(std::size_t{100} * 1024, 'x') + "\n");
    const std::string path = temporary.path("velmar.ini");
    const std::ptrdiff_t descriptors = open_descriptors();
    fail_at_every_allocation(
        cfg_close_ini_file, [&] { cfg_read_ini_file(path); },
        [&](bool)
        {
            EXPECT_EQ(open_descriptors(), descriptors);
            EXPECT_EQ(fake::thr::depth(), 0);
        },
        WITHOUT_MEMORY::THROWS_OR_GOES_ON); // it does without a note of its source
}
}
