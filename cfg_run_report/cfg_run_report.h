// The run report: it lists the internal variables that a run depended on, as JSON for velmar-cfg and for farms of runs.
//
// Example, at the end of a run:
//
//     const CFG_RUN_REPORT_RESULT result = cfg_write_run_report("run.json", "nightly/cpu");
//     if (!result.written)
//         warn(result.error);
//
// "velmar-cfg run-report run.json" shows such a report. The function is in a library of its own, libzon_cfg_run_report,
// which uses only public functions of the configuration library. The header compiles as C++17.
//
// The document has the schema "velmar-run-report", version 1. A reader refuses a higher version. Its members:
//
//     schema, schema_version   the two above
//     run                      the caller's name for the run
//     release                  the running release
//     files                    main, appended and regtest: the path of the settings file that was opened last, or
//                              null; a path stays if a later load finds no such file
//     read                     the variables that were looked up, in the order of the ranked usage report; for each of
//                              them
//         name                 its name as it was first spelt
//         count                its counted accesses; for an unset variable one less than the number of lookups
//         value                its text; null if the usage reports do not contain it, because the variable is unset, or
//                              was set by the program and never gave a value of the type asked for
//         external             whether the value came from the main settings file or from VELMAR_INI_VARS
//         used                 whether a caller got a usable value
//     external_never_read      name and value of each external variable that the run never looked up
//     uncounted                the names of the other variables without a counted access: they were unset and asked for
//                              once; or the program, regtest.ini or the appended file set them, and nothing read them
//
// Bytes that are not valid UTF-8 are replaced by U+FFFD.
#ifndef CFG_RUN_REPORT_CFG_RUN_REPORT_H
#define CFG_RUN_REPORT_CFG_RUN_REPORT_H

#include <string>

#define CFG_RUN_REPORT_API __attribute__((visibility("default")))

// Whether a report was written, and if not, why not.
struct CFG_RUN_REPORT_RESULT
{
    // True if the whole document is in the file.
    bool written;

    // One line that names the file and the problem; empty if the document was written.
    std::string error;
};

// Writes a report of this process up to now to the file `path`. `run` is the caller's name for the run; any text will
// do. The function writes the whole document or nothing, and replaces an existing file. It writes to a device or a pipe
// directly. It throws nothing.
//
// Effects on the store. The usage reports are complete only while "cfg_min_accessed_to_report" is 0 and
// "cfg_max_to_report" is negative. So the function sets these two variables, under these spellings, and afterwards sets
// them back to the host's texts. Their external marks, and whether they count as used, are as before. These effects
// remain:
// - their access counts are higher; the report leaves out its own accesses, also those of earlier reports;
// - they have empty records if they had none;
// - cfg_check_debug_ini_values reads its variables again at its next call.
//
// No other variable is read or set. If the process has not used a variable yet, the function loads the settings.
//
// Call the function from one thread at a time and never from a notification, best at the end of the run. Other threads
// may use variables meanwhile, but their lookups may or may not be in the report, and a value that they give to one of
// the two variables above may be lost.
CFG_RUN_REPORT_API CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path,
                                                              const std::string& run = {}) noexcept;

#endif
