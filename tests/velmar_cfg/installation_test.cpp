// The installation that the tool looks at: the tree that was named, and the places of the search in it. Each in a
// process of its own, since other tests rely on the default one.
#include "tools/velmar-cfg/settings/installation.h"

#include <gtest/gtest.h>

#include "platform/gen/gen.h"
#include "tests/support/isolated_test.h"
#include "tools/velmar-cfg/settings/file_candidates.h"
#include "tools/velmar-cfg/settings/library_rules.h"

namespace
{
class INSTALLATION_ROOT : public ISOLATED_TEST
{
};

void expect_paths(const std::string& root, const std::string& module, const std::string& installation)
{
    set_installation(installation_of_root(root));
    EXPECT_EQ(gen_get_module_path(), module) << root;
    EXPECT_EQ(gen_get_velmar_path(), installation) << root;
}

TEST_F(INSTALLATION_ROOT, has_the_programs_in_bin)
{
    EXPECT_IN_FRESH_PROCESS({
        const std::string default_module = gen_get_module_path();
        EXPECT_TRUE(default_module.ends_with("/"));
        expect_paths("/opt/velmar", "/opt/velmar/bin/", "/opt/velmar/");
        EXPECT_NE(gen_get_module_path(), default_module);
        expect_paths("/opt/velmar/", "/opt/velmar/bin/", "/opt/velmar/");
        expect_paths("/", "/bin/", "/");
        expect_paths("relative", "relative/bin/", "relative/");
    });
}

TEST_F(INSTALLATION_ROOT, is_where_the_search_ends)
{
    EXPECT_IN_FRESH_PROCESS({
        write_file("root/bin/velmar.ini", "a=1\n");
        set_installation(installation_of_root("root"));
        EXPECT_EQ(settings_file_of("", false), "root/bin/velmar.ini");
        const std::vector<FILE_CANDIDATE> candidates = settings_candidates({}, false);
        EXPECT_EQ(candidates.size(), 6U);
        EXPECT_EQ(candidates.at(4).place, "beside the program");
        EXPECT_EQ(candidates.at(4).path, "root/bin/velmar.ini");
        EXPECT_EQ(candidates.at(4).state, FILE_STATE::READ);
        EXPECT_EQ(candidates.at(5).place, "installation");
        EXPECT_EQ(candidates.at(5).path, "root/bin/velmar.ini");
        EXPECT_EQ(candidates.at(5).state, FILE_STATE::SHADOWED);
    });
}
}
