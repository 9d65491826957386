// Error service: where broken preconditions are reported.
//
// What the library expects. The library calls the reporter without the store's lock, unless a callback made the failing
// call. Any thread may be the caller, and several may be at once. The reporter may return, throw or end the process. If
// it returns, the library does what the comment of the failing function states. If that function cannot go on (an
// enumerator out of range), it aborts the process. The texts are constants of the library.
//
// The default writes one line to standard error and returns.
//
// Example of an implementation, which turns a report into an exception:
//
//     void err_report_internal_error(const char* condition, const char* module, const char* source_file, int line)
//     {
//         throw std::logic_error(std::string(module) + ": " + condition + ", " + source_file + ":" +
//                                std::to_string(line));
//     }
#ifndef PLATFORM_ERR_ERR_H
#define PLATFORM_ERR_ERR_H

// Reports that a precondition does not hold. `condition` is the text of the condition, and `module` the module tag
// ("CFG_INI"). `source_file` and `line` name the check.
void err_report_internal_error(const char* condition, const char* module, const char* source_file, int line);

#endif
