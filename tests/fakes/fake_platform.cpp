#include "tests/fakes/fake_platform.h"

#include "tests/fakes/fake_services.h"

void fake::reset()
{
    thr::reset();
    err::reset();
    mem::reset();
    fio::reset();
    gen::reset();
    ver::reset();
}
