// A program that was linked before the library's symbols had versions, and that now runs with the library of today.
#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <link.h>
#include <string>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "tests/support/isolated_test.h"

namespace
{
ElfW(Addr) dynamic_value(ElfW(Sxword) tag)
{
    for (const ElfW(Dyn)* entry = _DYNAMIC; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == tag)
            return entry->d_un.d_ptr;
    return 0;
}

// The libraries of which this program needs certain versions.
std::vector<std::string> libraries_needed_by_version()
{
    // The dynamic linker has put the address of the names in place, but left the other one relative to the program.
    const auto* const names = reinterpret_cast<const char*>(dynamic_value(DT_STRTAB));
    const auto* need = reinterpret_cast<const char*>(_r_debug.r_map->l_addr + dynamic_value(DT_VERNEED));
    std::vector<std::string> libraries;
    for (ElfW(Addr) left = dynamic_value(DT_VERNEEDNUM); left > 0; --left)
    {
        const auto* const library = reinterpret_cast<const ElfW(Verneed)*>(need);
        libraries.emplace_back(names + library->vn_file);
        need += library->vn_next;
    }
    return libraries;
}

class COUNTER : public CFG_INI_CALLBACK
{
public:
    using CFG_INI_CALLBACK::CFG_INI_CALLBACK;

    void refresh() override
    {
        ++refreshes;
    }

    void reset_to_default() override {}

    int refreshes = 0;
};

using SYMBOL_VERSION_TEST = ISOLATED_TEST;

TEST_F(SYMBOL_VERSION_TEST, this_program_asks_for_no_version_of_the_library)
{
    const auto libraries = libraries_needed_by_version();
    ASSERT_FALSE(libraries.empty()) << "it does ask for versions of the C library";
    for (const std::string& library : libraries)
        EXPECT_EQ(library.find("libzon"), std::string::npos) << library;
}

TEST_F(SYMBOL_VERSION_TEST, it_runs_with_the_library_whose_symbols_have_versions)
{
    Dl_info found = {};
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&cfg_dyn_is_on), &found), 0);
    EXPECT_TRUE(std::filesystem::equivalent(found.dli_fname, ZON_TEST_LIBRARY)) << found.dli_fname;
    EXPECT_NE(dlvsym(RTLD_DEFAULT, "cfg_dyn_is_on", "ZON_CFG_INI_1"), nullptr) << dlerror();
    EXPECT_EQ(dlvsym(RTLD_DEFAULT, "cfg_dyn_is_on", "ZON_CFG_INI_2"), nullptr);
}

TEST_F(SYMBOL_VERSION_TEST, functions_classes_and_type_information_are_found)
{
    COUNTER counter("max_fanout");
    cfg_set_value(std::string("max_fanout"), std::string("12"));
    EXPECT_EQ(cfg_get_int_value("max_fanout", 0), 12);
    EXPECT_EQ(cfg_get_value_as<int>(std::string("max_fanout")), 12);
    EXPECT_EQ(counter.refreshes, 1);
    const CFG_INI_CALLBACK& callback = counter;
    EXPECT_NE(dynamic_cast<const COUNTER*>(&callback), nullptr);

    cfg_set_user_ini_int_value(NUM_PARALLEL_PROCESSORS, 3);
    EXPECT_EQ(cfg_get_user_ini_int_value(NUM_PARALLEL_PROCESSORS), 3);
}
}
