// The run report: it lists the internal variables that a run depended on, and the origins of their values. It is JSON,
// for velmar-cfg and for programs that evaluate the reports of many runs.
//
// Example, at the end of a run:
//
//     CFG_RUN_REPORT_OPTIONS options;
//     options.run = "nightly/cpu";
//     options.outcome = CFG_RUN_OUTCOME::FAIL;
//     const CFG_RUN_REPORT_RESULT result = cfg_write_run_report("run.json", options);
//     if (!result.written)
//         warn(result.error);
//
// "velmar-cfg run-report run.json" shows such a report. The function is in a library of its own, libzon_cfg_run_report,
// which uses the public functions of the configuration library and its rules for lines. The header compiles as C++17.
//
// A report holds values of variables, the text of VELMAR_INI_VARS and of other inline texts as they were applied, and
// paths, which may name users. It masks no secrets; velmar-cfg does when it shows a report. A new file has the
// permissions that the umask gives, and a replaced one keeps its own, unless the options say otherwise.
//
// The document has the schema "velmar-run-report", version 2. A reader refuses a higher version. A text that is not
// valid UTF-8 is an object instead: {"hex": "<two digits a byte>"}. Times are UTC, as in 2026-11-22T08:25:00Z; only
// `modified` has nanoseconds, as in 2026-11-22T08:25:00.123456789Z.
//
//     schema, schema_version   "velmar-run-report" and 2
//     run                      the caller's name for the run
//     release                  the running release
//     outcome                  "pass", "fail" or a number, as the caller gives it (the texts "nan", "inf" and "-inf",
//                              since JSON has no such numbers); null when it gives none
//     host, process            the machine's name (null when not known), and the process's number there
//     directory, executable    the current directory when the report is written, and the program's file; null when not
//                              known
//     started, ended           when the process was started (null when not known), and when the report was written
//     environment              name and value of the six variables that decide what is read (VELMAR_INI, HOME,
//                              VELMAR_INI_DISABLED, APPENDED_VELMAR_INI, VELMAR_INI_VARS, VELMAR2_INI), as they are
//                              when the report is written; the value is null when the variable is not set
//     sources_complete         whether the list of sources is complete (see cfg_ini/cfg_settings_sources.h)
//     sources                  the files and texts that were applied, in that order, each with
//         layer                "main", "appended", "inline" or "regtest"; "program" for a text that the program applied
//         external             whether its variables count as external
//         path, size, modified of a file: its path, its size in bytes and the time of its last change, each as it was
//                              when the file was read
//         state                of a file: "same", "changed", "gone", "unreadable", "no file" (a pipe, a device),
//                              "directory" (which has no lines) or "partly applied". Only files that are still the
//                              same and were applied whole have been read again, and only these give lines below.
//                              Of a text: "same" or "partly applied".
//         text                 of an inline text
//     read                     the variables with a counted access, in the order of the ranked usage report, each with
//         name                 its name as first spelt
//         count                its counted accesses; for an unset variable, one less than the lookups of the run
//         value                its text; null when it has none, and when the usage reports leave it out, because it
//                              was set without being external and never gave a value of the type asked for
//         external             whether the variable counts as external (see cfg_ini_is_external)
//         used                 whether some caller got a usable value from it
//         source, line, item   where the value came from: the source's index in the list, from 0, and the line of a
//                              file or the item of a text, from 1
//         origin               instead of these: "program" if the value is not that of the winning assignment; "unset"
//                              for a variable without a text; "unknown" if the value or the assignments are not
//                              known. With "program", `source` and `item` may name a text that the program applied.
//         perhaps              for "unknown": where the value may have come from, sources and lines as above, without
//                              a line for a source that could not be read again
//         overridden           the other assignments to the variable, in the order of the sources, each with `source`,
//                              `line` or `item`, and `value`; only if there are any
//     external_never_read      the external variables that the run never looked up: name, value, and where from
//     asked_once               the names of variables that are unset and were asked for once, or that the program set
//                              to the empty text and nothing asked for
//     set_never_read           the names of those that the program, regtest.ini or the appended file set, and that were
//                              never looked up; their values are not known
//
// If the program sets a variable to the value of the winning assignment, the value counts as that assignment's. If it
// sets a variable to the empty text, the variable counts as unset. The first lookup of an unknown name is not counted:
// a variable that was looked up once, and set only afterwards, is listed as never looked up.
//
// Version 1 held less, and lost bytes that are not valid UTF-8.
#ifndef CFG_RUN_REPORT_CFG_RUN_REPORT_H
#define CFG_RUN_REPORT_CFG_RUN_REPORT_H

#include <string>

#define CFG_RUN_REPORT_API __attribute__((visibility("default")))

// Whether a report was written, and if not, why not.
struct CFG_RUN_REPORT_RESULT
{
    // True if the whole document is in the file.
    bool written;

    // One line that names the file and the problem. It names only the problem if there is no memory for more. Empty if
    // the document was written.
    std::string error;
};

// How the run went, as its caller sees it.
enum class CFG_RUN_OUTCOME : int
{
    NOT_GIVEN = 0,
    PASS = 1,
    FAIL = 2,
    NUMBER = 3, // a figure of merit, such as a run time
};

// What a report says besides what the library knows, and who may read it.
struct CFG_RUN_REPORT_OPTIONS
{
    // What the caller calls the run. Any bytes.
    std::string run;

    // How the run went, for readers of many reports.
    CFG_RUN_OUTCOME outcome = CFG_RUN_OUTCOME::NOT_GIVEN;

    // With NUMBER: the figure, in the caller's unit.
    double number = 0;

    // If true, only the file's owner may read it, even if others may read the file that it replaces. If false, whoever
    // may read the replaced file may read this one; if there is none, the umask decides.
    bool only_owner_may_read = false;
};

// Writes a report of this process up to now to the file `path`. `run` is the caller's name for the run; any text will
// do. The function writes the whole document or nothing, and replaces an existing file. It first writes a new file into
// the same directory, so the process must be allowed to write there. It writes to a device or a pipe directly: it waits
// for a reader of the pipe, and the signal SIGPIPE may end the process. It throws nothing; an
// exception of one of the host's own functions becomes the result's error.
//
// The function works out the origins of the values when it is called. It reads again the settings files that have not
// changed since they were applied, and no others. As in a load, the program's present locale decides which characters
// of a line are white space.
//
// Effects on the store. The usage reports are complete only while "cfg_min_accessed_to_report" is 0 and
// "cfg_max_to_report" is negative. So the function sets these two variables, under these spellings, and afterwards sets
// them back to the host's texts. Their external marks stay, and so does whether they count as used. These effects
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

// The same with more options.
CFG_RUN_REPORT_API CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path,
                                                              const CFG_RUN_REPORT_OPTIONS& options) noexcept;

#endif
