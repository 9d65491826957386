#include "platform/err/err.h"

#include <cstdio>

void err_report_internal_error(const char* condition, const char* module, const char* source_file, int line)
{
    std::fprintf(stderr, "Internal Error: %s: %s, file %s, line %d\n", module, condition, source_file, line);
}
