// An isolated test whose platform services are the fakes.
#ifndef TESTS_SUPPORT_FAKED_TEST_H
#define TESTS_SUPPORT_FAKED_TEST_H

#include "tests/fakes/fake_platform.h"
#include "tests/support/isolated_test.h"

// The module's directory is "module" and the installation "install" in the temporary directory; neither exists.
class FAKED_TEST : public ISOLATED_TEST
{
protected:
    FAKED_TEST()
    {
        fake::reset();
        fake::gen::set_module_path(temporary.path("module/"));
        fake::gen::set_velmar_path(temporary.path("install/"));
    }

    ~FAKED_TEST() override
    {
        fake::reset();
    }
};

#endif
