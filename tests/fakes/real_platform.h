// The default services under the names that the build gives them where they are compiled to be decorated
// (tests/CMakeLists.txt): the declarations of platform/ with "real" in front.
#ifndef TESTS_FAKES_REAL_PLATFORM_H
#define TESTS_FAKES_REAL_PLATFORM_H

#include <cstdarg>
#include <string>
#include <vector>

struct THR_MUTEX;
class FIO_PATH;
struct stat;

THR_MUTEX* real_thr_mutex_create();
void real_thr_mutex_lock(THR_MUTEX* mutex);
void real_thr_mutex_unlock(THR_MUTEX* mutex);
void real_thr_mutex_call_if_lost(THR_MUTEX* mutex, void (*lost)());

void real_err_report_internal_error(const char* condition, const char* module, const char* source_file, int line);

void real_mem_msg_local_vdebug(const char* module_tag, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));

class REAL_FIO_FILE_SYSTEM
{
public:
    static bool exists(const FIO_PATH& path);
    static bool exists(const char* path);
    static bool status(const char* path, struct stat* result);
    static std::string get_current_directory();
};

std::string real_gen_get_module_path();
std::string real_gen_get_velmar_path();
std::string real_gen_get_user_profile_directory();
void real_gen_set_user_library_paths(const std::string& paths);
void real_gen_set_user_ip_search_paths(const std::string& paths);
std::string real_gen_get_user_library_paths();
std::string real_gen_get_user_ip_search_paths();

const char* real_ver_get_kestrin_product_filename();
std::string real_ver_get_version();
std::vector<std::string> real_ver_get_all_versions();

#endif
