// Counts the calls that write to files. In an executable that links counted_writes.cpp, the C library's write and
// writev are replaced, or with libc++ its fwrite. The C++ library's streams are linked dynamically, so their calls
// count as well.
#ifndef TESTS_SUPPORT_COUNTED_WRITES_H
#define TESTS_SUPPORT_COUNTED_WRITES_H

// How often this process has written since it began, to whatever descriptor.
long write_calls();

#endif
