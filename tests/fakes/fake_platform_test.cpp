#include "platform/err/err.h"
#include "platform/fio/fio.h"
#include "platform/gen/gen.h"
#include "platform/mem/mem.h"
#include "platform/thr/thr.h"
#include "platform/ver/ver.h"
#include "tests/support/faked_test.h"

namespace
{
using FAKE_PLATFORM_TEST = FAKED_TEST;

void emit(const char* format, ...) __attribute__((format(printf, 1, 2)));
void emit(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("TAG", format, args);
    va_end(args);
}

TEST_F(FAKE_PLATFORM_TEST, counts_locks_and_knows_the_depth)
{
    static THR_MUTEX* const mutex = thr_mutex_create(); // there is no way to destroy one
    thr_mutex_lock(mutex);
    thr_mutex_lock(mutex);
    EXPECT_EQ(fake::thr::depth(), 2);
    thr_mutex_unlock(mutex);
    EXPECT_EQ(fake::thr::depth(), 1);
    thr_mutex_unlock(mutex);
    EXPECT_EQ(fake::thr::depth(), 0);
    EXPECT_EQ(fake::thr::creations(), 1);
    EXPECT_EQ(fake::thr::locks(), 2);
    EXPECT_EQ(fake::thr::unlocks(), 2);
    fake::thr::before_creation(1, fake::out_of_memory);
    EXPECT_THROW(thr_mutex_create(), std::bad_alloc);
}

TEST_F(FAKE_PLATFORM_TEST, runs_a_hook_once_before_the_nth_call)
{
    int runs = 0;
    fake::fio::before_exists(2, [&] { ++runs; });
    FIO_FILE_SYSTEM::exists("/a");
    EXPECT_EQ(runs, 0);
    FIO_FILE_SYSTEM::exists("/b");
    EXPECT_EQ(runs, 1);
    FIO_FILE_SYSTEM::exists("/c");
    EXPECT_EQ(runs, 1);
}

TEST_F(FAKE_PLATFORM_TEST, forces_and_denies_existence)
{
    write_file(temporary.path("there"), "");
    fake::fio::force_exists("/not/there", true);
    fake::fio::force_exists(temporary.path("hidden"), false);
    write_file(temporary.path("hidden"), "");
    fake::fio::deny_exists(3);
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists("/not/there"));
    EXPECT_TRUE(FIO_FILE_SYSTEM::exists(FIO_PATH(temporary.path("there").c_str())));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(temporary.path("there").c_str()));
    EXPECT_FALSE(FIO_FILE_SYSTEM::exists(temporary.path("hidden").c_str()));
    EXPECT_EQ(fake::fio::asked(), (std::vector<std::string>{"/not/there", temporary.path("there"),
                                                            temporary.path("there"), temporary.path("hidden")}));
}

TEST_F(FAKE_PLATFORM_TEST, records_reports_and_throws_when_told_to)
{
    err_report_internal_error("a != b", "TAG", "some/dir", 12);
    fake::err::throw_from_now_on();
    EXPECT_THROW(err_report_internal_error("c", "TAG", "some/dir", 13), fake::err::REPORTED);
    EXPECT_EQ(fake::err::reports(),
              (std::vector<fake::err::REPORT>{{"a != b", "TAG", "some/dir", 12}, {"c", "TAG", "some/dir", 13}}));
}

TEST_F(FAKE_PLATFORM_TEST, records_messages_and_whether_they_were_silenced)
{
    environment.set("ZON_MSG_DEBUG", "1");
    testing::internal::CaptureStderr();
    emit("%d-%s", 1, "a");
    {
        const MEM_TBB_NO_MSG_DEBUG_UNTIL_SCOPE_EXIT silence;
        emit("%d-%s", 2, "b");
        EXPECT_EQ(fake::mem::silencing_scopes(), 1);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Debug: TAG: 1-a\n");
    EXPECT_EQ(fake::mem::silencing_scopes(), 0);
    EXPECT_EQ(fake::mem::messages(), (std::vector<fake::mem::MESSAGE>{{"TAG", "1-a", false}, {"TAG", "2-b", true}}));
}

TEST_F(FAKE_PLATFORM_TEST, overrides_directories_and_releases)
{
    EXPECT_EQ(gen_get_module_path(), temporary.path("module/"));
    EXPECT_EQ(gen_get_velmar_path(), temporary.path("install/"));
    fake::gen::set_user_profile_directory("/home/someone");
    EXPECT_EQ(gen_get_user_profile_directory(), "/home/someone");
    gen_set_user_library_paths("/lib");
    gen_set_user_ip_search_paths("/ip");
    EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), std::vector<std::string>{"/ip"});
    EXPECT_EQ(gen_get_user_library_paths(), "/lib");

    fake::ver::set_product_filename("other");
    fake::ver::set_version("9.9");
    fake::ver::set_all_versions({"9.9", "9.8"});
    EXPECT_STREQ(ver_get_kestrin_product_filename(), "other");
    EXPECT_EQ(ver_get_version(), "9.9");
    EXPECT_EQ(ver_get_all_versions(), (std::vector<std::string>{"9.9", "9.8"}));
    EXPECT_EQ(fake::ver::version_calls(), 1);

    fake::reset();
    EXPECT_STREQ(ver_get_kestrin_product_filename(), "velmar");
    EXPECT_NE(gen_get_module_path(), temporary.path("module/"));
    EXPECT_EQ(gen_get_user_library_paths(), "");
}
}
