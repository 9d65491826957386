#include "benchmarks/rows.h"

void add_rows_of_peers(bool) {}
