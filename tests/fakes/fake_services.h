// What the decorated services offer to fake::reset() alone.
#ifndef TESTS_FAKES_FAKE_SERVICES_H
#define TESTS_FAKES_FAKE_SERVICES_H

namespace fake::thr
{
void reset();
}

namespace fake::err
{
void reset();
}

namespace fake::mem
{
void reset();
}

namespace fake::fio
{
void reset();
}

namespace fake::gen
{
void reset();
}

namespace fake::ver
{
void reset();
}

#endif
