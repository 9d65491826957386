// A program that knows the run report library only: that one finds the library that it stands on.
#include <iostream>

#include "cfg_run_report/cfg_run_report.h"

int main()
{
    const CFG_RUN_REPORT_RESULT result = cfg_write_run_report("/dev/null", "reporter");
    std::cout << (result.written ? "written" : result.error) << '\n';
}
