// Counts the calls that write to files. An executable that links counted_writes.cpp has the C library's write and
// writev replaced, or its fwrite with libc++; the C++ library's streams, which are linked dynamically, come by here as
// well.
#ifndef TESTS_SUPPORT_COUNTED_WRITES_H
#define TESTS_SUPPORT_COUNTED_WRITES_H

// How often this process has written since it began, to whatever descriptor.
long write_calls();

#endif
