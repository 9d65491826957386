// The two entry points. The whole text is made first and then written, so that nothing is written of a report that
// cannot be made. Exceptions become the result's error.
#include "cfg_run_report/cfg_run_report.h"

#include <exception>
#include <new>

#include "cfg_run_report/run_report_text.h"
#include "cfg_run_report/whole_file.h"

namespace
{
// Where there is no memory for the whole message, it is cut short to one that needs none.
CFG_RUN_REPORT_RESULT failure(const std::string& path, const char* why) noexcept
{
    try
    {
        return {false, "cannot write the run report " + path + ": " + why};
    }
    catch (const std::bad_alloc&)
    {
        return {false, "out of memory"};
    }
}
}

CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path, const std::string& run) noexcept
{
    try
    {
        CFG_RUN_REPORT_OPTIONS options;
        options.run = run;
        return cfg_write_run_report(path, options);
    }
    catch (const std::exception& error)
    {
        return failure(path, error.what());
    }
}

CFG_RUN_REPORT_RESULT cfg_write_run_report(const std::string& path, const CFG_RUN_REPORT_OPTIONS& options) noexcept
{
    try
    {
        const std::string text = run_report_text(options);
        const FILE_READERS readers = options.only_owner_may_read ? FILE_READERS::OWNER : FILE_READERS::AS_USUAL;
        const std::string error = write_whole_file(path, text, readers);
        return error.empty() ? CFG_RUN_REPORT_RESULT{true, {}} : failure(path, error.c_str());
    }
    catch (const std::exception& error)
    {
        return failure(path, error.what());
    }
    catch (...) // of a host's own function, which may throw anything
    {
        return failure(path, "an exception that is no std::exception");
    }
}
