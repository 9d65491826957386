// Forks beside threads that are within the services which keep something: their children must be able to use them.
#include <string>
#include <unistd.h>

#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "tests/platform/thread_conditions.h"
#include "tests/support/threads.h"

namespace
{
class SERVICES_FORK_TEST : public testing::Test
{
protected:
    SERVICES_FORK_TEST()
    {
        alarm(seconds_until_hung);
    }
    ~SERVICES_FORK_TEST() override
    {
        alarm(0);
    }
    SERVICES_FORK_TEST(const SERVICES_FORK_TEST&) = delete;
    SERVICES_FORK_TEST& operator=(const SERVICES_FORK_TEST&) = delete;
};

constexpr int forks = 200;

TEST_F(SERVICES_FORK_TEST, search_paths_can_be_handed_over_and_read)
{
    if (!children_can_allocate)
        GTEST_SKIP() << "the address sanitizer's allocator is not for children of processes with threads";
    const std::string one(100'000, '1');
    const std::string two(100'000, '2');
    gen_set_user_library_paths(one);
    run_while({[&]
               {
                   gen_set_user_library_paths(two);
                   gen_set_user_library_paths(one);
               }},
              [&]
              {
                  for (int i = 0; i < forks; ++i)
                  {
                      const int status = status_of_child(
                          [&]
                          {
                              const std::string before = gen_get_user_library_paths();
                              gen_set_user_library_paths("3");
                              return (before == one || before == two) && gen_get_user_library_paths() == "3" ? 7 : 8;
                          });
                      ASSERT_EQ(status, 7) << i;
                  }
              });
    gen_set_user_library_paths("");
}

TEST_F(SERVICES_FORK_TEST, modules_can_be_registered)
{
    run_while({[] { const MEM_INITIALIZER module("OTHER"); }},
              []
              {
                  for (int i = 0; i < forks; ++i)
                  {
                      const int status = status_of_child(
                          []
                          {
                              const MEM_INITIALIZER module("OWN");
                              return MEM_INITIALIZER::is_registered("OWN") ? 7 : 8;
                          });
                      ASSERT_EQ(status, 7) << i;
                  }
              });
}
}
