// The run report: which internal variables a run depended on, written as JSON for velmar-cfg and for farms.
//
//     if (const CFG_RUN_REPORT_RESULT result = cfg_write_run_report("run.json", "nightly/cpu"); !result.written)
//         warn(result.error);
//
// A library of its own beside the configuration library, over that one's public functions. Compiles as C++17.
//
// The document (schema "velmar-run-report", version 1; a reader refuses a higher version):
//
//     schema, schema_version   the two above
//     run                      what the caller called the run
//     release                  the running release
//     files                    main, appended, regtest: the paths of the settings files last opened, null for none; a
//                              path stays when a later reading finds no such file
//     read                     the variables that were looked up, in the order of the ranked usage report, each with
//         name                 its name as first spelt
//         count                its counted accesses: for a variable that is unset, one less than the run asked
//         value                its text; null when the usage reports do not tell it, because it is unset, or was set
//                              inside the program and never gave a value of the type asked for
//         external             whether the value came from the main settings file or from VELMAR_INI_VARS
//         used                 whether some caller got a usable value from it
//     external_never_read      name and value of the variables from outside that the run never looked up
//     uncounted                the names of the others that have no counted access: unset and asked for once, or set by
//                              the program, regtest.ini or the appended file and never read
//
// Bytes that are no UTF-8 are replaced by U+FFFD.
#ifndef CFG_RUN_REPORT_CFG_RUN_REPORT_H
#define CFG_RUN_REPORT_CFG_RUN_REPORT_H

#include <string>

#define CFG_RUN_REPORT_API __attribute__((visibility("default")))

// Whether a report was written, and if not, why.
struct CFG_RUN_REPORT_RESULT
{
    // The whole document is in the file.
    bool written;

    // One line that names the file and what is wrong; empty when it was written.
    std::string error;
};

// Writes the report of this process so far to the file `path`: the whole file or nothing, an existing one replaced, a
// device or pipe written to as it is. Throws nothing.
//
// What it does to the store. The usage reports list everything only while "cfg_min_accessed_to_report" is 0 and
// "cfg_max_to_report" is negative, so these two are set for the moment, under these spellings, and set back to the
// host's own texts; their external marks, and whether they count as used, come out as before. What stays changed: their
// access counts (the report leaves its own reads out, those of earlier reports included), empty records for them if
// they had none, and the mark that makes cfg_check_debug_ini_values read its variables once more. No other variable is
// read or set. A process that has used no variable yet has its settings read.
//
// Call it from one thread at a time and from no notification, best at the end of the run: other threads may use
// variables meanwhile, but a value that they give to the two above may be lost, and their reads fall on either side.
CFG_RUN_REPORT_API CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path,
                                                              const std::string& run = {}) noexcept;

#endif
