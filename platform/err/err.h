// Error service: where broken preconditions are reported.
//
// What the library expects. The reporter is called without the store's lock, unless a callback made the failing call.
// It may return, throw or end the process: where a call cannot go on after its report (an enumeration out of range),
// the library aborts if the reporter returns; everywhere else it takes the safe course that its own declaration states.
// The texts are constants of the library.
#ifndef PLATFORM_ERR_ERR_H
#define PLATFORM_ERR_ERR_H

// `condition` is the text of what should have held, `module` the module tag ("CFG_INI"), `source_file` and `line` name
// the check.
void err_report_internal_error(const char* condition, const char* module, const char* source_file, int line);

#endif
