// The configuration library's public header: the internal variable store and the user preference store.
//
// Internal variables are developer and tuning switches, read from layered velmar.ini settings, found by name without
// regard to the case of the letters A to Z. User preferences are the choices a user keeps in velmar2.ini, validated
// against a compiled-in catalogue and carried over between releases. The two stores share nothing.
//
// Text is bytes; the library neither checks nor converts an encoding. Paths are POSIX paths. All strings handed in are
// copied where they are kept, but for the name of a CFG_INI_CALLBACK. The header compiles as C++17.
//
// Threads: every function of the internal variable store may be called from any thread, at any time after load, unless
// its comment says otherwise; none may be called from a signal handler. The user preference store takes no lock and is
// meant for one thread at a time.
//
// fork: a thread may fork at any moment outside a signal handler, also within a notification. The child can use
// everything here. If another thread held the store's lock for longer than fork waits (some 80 ms: it was loading from
// a pipe, or a callback had thrown), the child starts without a store and loads the settings anew. Values that the
// program had set are gone there. Callbacks stay registered, unless that thread was registering one at that moment, and
// are reset by the load. A host's own fork handler may take a lock under which other threads use the library if it is
// registered once the library is loaded. See platform/thr/thr.h.
//
// Errors: absence is not an error (defaults, empty texts and empty optionals stand for it). A broken precondition is
// reported through err_report_internal_error of platform/err/err.h; what follows the report stands at the function. The
// library throws nothing of its own; std::bad_alloc, and std::logic_error for a null name, pass through. A load that
// std::bad_alloc ends keeps what it has stored so far; load again to get the rest.
#ifndef CFG_INI_CFG_INI_H
#define CFG_INI_CFG_INI_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#define CFG_INI_API __attribute__((visibility("default")))

// ---------------------------------------------------------------------------------------------------------------------
// Internal variables
// ---------------------------------------------------------------------------------------------------------------------

// The catalogued internal variables, by position. Each has a name (the enumerator's in lower case, without the prefix)
// and a default text, "on" or "off". Any other value handed to a function that takes this type is a broken
// precondition: it is reported and the call does not return (the process is aborted should the reporter return).
enum CFG_INI_VAR_ENUM : int
{
    CFG_INI_VAR_BEGIN = 0,
    CFG_INI_VAR_VTAN_STA_MODE = 0,
    CFG_INI_VAR_HDB_ENABLE_INTERNAL_VSF = 1,
    CFG_INI_VAR_HCNU_REVERSIBLE_NAMES = 2,
    CFG_INI_VAR_HCNU_FORCE_DISABLE_REVERSIBLE_NAMES = 3,
    CFG_INI_VAR_CUT_CREATE_ANCIENT_ABO_DUMPS = 4,
    CFG_INI_VAR_TAWV_ENABLE_LOCATION = 5,
    CFG_INI_VAR_TAWV_OPEN_FILE_IN_QT = 6,
    CFG_INI_VAR_VGV_ENABLE_RPWV = 7,
    CFG_INI_VAR_ENHANCED_HTML_REPORTS = 8,
    CFG_INI_VAR_VUI_SHOW_CLASSIC_NLVIEW = 9,
    CFG_INI_VAR_IPMAN_SHOW_ENTITY_ONLY = 10,
    CFG_INI_VAR_VUI_SHOW_NEW_SM_VIEWER = 11,
    CFG_INI_VAR_MSG_DISABLE_CRASH_REPORTER = 12,
    CFG_INI_VAR_ENABLE_PLATFORM_AWARE = 13,
    CFG_INI_VAR_GUI_USES_HDB_POINTERS = 14,
    CFG_INI_VAR_GUI_USES_DOCKABLE_FIND = 15,
    CFG_INI_VAR_GUI_USES_DOCKABLE_OPTIONS = 16,
    CFG_INI_VAR_GUI_USES_HELP_ICON = 17,
    CFG_INI_VAR_MSG_SQLITE = 18,
    CFG_INI_VAR_NEW_DOCK_WIDGET_LAYOUT = 19,
    CFG_INI_VAR_ZANTH_FLOW = 20,
    CFG_INI_VAR_TMWV_COMBOBOX_COLUMN = 21,
    CFG_INI_VAR_OAWV_USE_QML = 22,
    CFG_INI_VAR_EPEV_USE_DETAILED_POWER_SUMMARY = 23,
    CFG_INI_VAR_VELMAR_ENABLE_BOARD = 24,
    CFG_INI_VAR_VELMAR_ENABLE_BOARD_FOR_ZP = 25,
    CFG_INI_VAR_ENABLE_BSG_SGATE_DIRECT = 26,
    CFG_INI_VAR_DNI_INCLUDE_ASSEMBLER_IN_FLOW = 27,
    CFG_INI_VAR_GUI_ENABLE_TCL_COMMAND_MODE = 28,
    CFG_INI_VAR_GUI_ENABLE_LOGGING_USER_ACTION = 29,
    CFG_INI_VAR_END = 30
};

// --- Reading a variable ---
//
// Every reader first loads the settings files if that has not happened yet (see cfg_read_ini_file). Every reader counts
// the access, but for the one that meets a name for the first time: that one leaves an empty record behind, so that the
// usage reports see what was asked for. A text converts as follows, once, when it is stored:
//   boolean   "on", "1", "true" and "off", "0", "false" in any letter case, nothing else, no blanks;
//   int       an optional "-" and decimal digits, the whole text, -2147483648 to 2147483647;
//   unsigned  decimal digits, the whole text, 0 to 4294967295.
// A name is a std::string, or characters: a literal, an array or a pointer to a zero-terminated text, a
// std::string_view, or an object that converts to one of these two and not to std::string. Characters answer as the
// std::string of them does, zero bytes included, without a string being built when the variable exists. A null name, or
// a view that is null, throws std::logic_error and reads nothing.

// The characters of a name, its length known to the compiler when the name is a literal; null for null.
inline std::string_view cfg_ini_name_view(const char* name)
{
    return name != nullptr ? std::string_view(name) : std::string_view();
}

// A name as characters. The readers by std::string_view are declared as friends of this class and are found through an
// argument of it alone. In sight for every call, they would compete with the forms by std::string for arguments such as
// {"name", 2}, and make them ambiguous.
class CFG_INI_NAME_VIEW : public std::string_view
{
public:
    explicit CFG_INI_NAME_VIEW(std::string_view name) : std::string_view(name) {}

    friend CFG_INI_API bool cfg_is_on(std::string_view name, bool default_value);
    friend CFG_INI_API bool cfg_is_on(std::string_view name);
    friend CFG_INI_API int cfg_get_int_value(std::string_view name, int default_value);
    friend CFG_INI_API unsigned int cfg_get_uint_value(std::string_view name, unsigned int default_value);
    friend CFG_INI_API double cfg_get_double_value(std::string_view name, double default_value);
    friend CFG_INI_API std::string cfg_get_value(std::string_view name);
    template <typename T>
    friend std::optional<T> cfg_get_value_as(std::string_view name); // the library has the instances for each T below
};

// Whether a NAME converts, be it a constant, changeable or a temporary.
template <typename NAME, typename TO>
constexpr bool cfg_ini_converts()
{
    return std::is_convertible_v<const NAME&, TO> || std::is_convertible_v<NAME&, TO> ||
           std::is_convertible_v<NAME, TO>;
}

// Whether a NAME is a name as characters and nothing that the other forms take.
template <typename NAME>
constexpr bool cfg_ini_is_characters()
{
    constexpr bool is_characters =
        std::is_convertible_v<const NAME&, const char*> || std::is_convertible_v<const NAME&, std::string_view>;
    // Pointers, arrays and nullptr also convert to std::string.
    constexpr bool is_object = std::is_class_v<NAME> || std::is_union_v<NAME>;
    return is_characters && !std::is_same_v<NAME, CFG_INI_NAME_VIEW> &&
           !(is_object && (cfg_ini_converts<NAME, std::string>() || cfg_ini_converts<NAME, CFG_INI_VAR_ENUM>()));
}

template <typename NAME>
using CFG_INI_IF_CHARACTERS = std::enable_if_t<cfg_ini_is_characters<NAME>(), int>;

// Names come by a reference to a constant: no other one can name a member of a packed structure.
template <typename NAME>
CFG_INI_NAME_VIEW cfg_ini_name_of(const NAME& name)
{
    if constexpr (std::is_class_v<NAME> && std::is_convertible_v<const NAME&, std::string_view>)
        return CFG_INI_NAME_VIEW(name);
    else
        return CFG_INI_NAME_VIEW(cfg_ini_name_view(name));
}

// The variable as a boolean, or `default_value` when it has none.
CFG_INI_API bool cfg_is_on(const std::string& name, bool default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
bool cfg_is_on(const NAME& name, bool default_value)
{
    return cfg_is_on(cfg_ini_name_of(name), default_value);
}

// As above; the default is true exactly for a catalogued name (spelt exactly) whose default text is "on".
CFG_INI_API bool cfg_is_on(const std::string& name);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
bool cfg_is_on(const NAME& name)
{
    return cfg_is_on(cfg_ini_name_of(name));
}

// The catalogued variable as a boolean, else its default text read as a boolean.
CFG_INI_API bool cfg_is_on(CFG_INI_VAR_ENUM ini_enum);

// The variable as a signed 32-bit integer, or `default_value` when it has none.
CFG_INI_API int cfg_get_int_value(const std::string& name, int default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
int cfg_get_int_value(const NAME& name, int default_value)
{
    return cfg_get_int_value(cfg_ini_name_of(name), default_value);
}

// The catalogued variable as an integer, else the number its default text begins with (0 for "on" and "off").
CFG_INI_API int cfg_get_int_value(CFG_INI_VAR_ENUM ini_enum);

// The variable as an unsigned 32-bit integer, or `default_value` when it has none.
CFG_INI_API unsigned int cfg_get_uint_value(const std::string& name, unsigned int default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
unsigned int cfg_get_uint_value(const NAME& name, unsigned int default_value)
{
    return cfg_get_uint_value(cfg_ini_name_of(name), default_value);
}

// The value of cfg_get_value_as<double>, or `default_value` when the variable's text is empty.
CFG_INI_API double cfg_get_double_value(const std::string& name, double default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
double cfg_get_double_value(const NAME& name, double default_value)
{
    return cfg_get_double_value(cfg_ini_name_of(name), default_value);
}

// The variable's text as stored, quotes included; the empty text when it has none. Marks the variable as validly read
// whatever its text, also when this very call created its record.
CFG_INI_API std::string cfg_get_value(const std::string& name);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
std::string cfg_get_value(const NAME& name)
{
    return cfg_get_value(cfg_ini_name_of(name));
}

// The catalogued variable's text; its default text when that is empty.
CFG_INI_API std::string cfg_get_value(CFG_INI_VAR_ENUM ini_enum);

// The variable as a T, for T = bool, int, std::string, double and float; empty when it has no usable value.
//   bool, int     engaged when the text converts;
//   std::string   engaged when the text is not empty;
//   double        engaged when the text is not empty: the number that strtod reads at its start, in the current locale.
//                 Text left over behind the number ("2.5ms" is 2.5, "fast" is 0.0) brings a debug message, and the
//                 variable is then not marked as validly read;
//   float         the double, narrowed by ordinary rounding.
// The floating forms convert at each call. There is no unsigned form.
template <typename T>
std::optional<T> cfg_get_value_as(const std::string& name);
template <typename T, typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
std::optional<T> cfg_get_value_as(const NAME& name)
{
    return cfg_get_value_as<T>(cfg_ini_name_of(name));
}

template <>
CFG_INI_API std::optional<bool> cfg_get_value_as<bool>(const std::string& name);
template <>
CFG_INI_API std::optional<int> cfg_get_value_as<int>(const std::string& name);
template <>
CFG_INI_API std::optional<std::string> cfg_get_value_as<std::string>(const std::string& name);
template <>
CFG_INI_API std::optional<double> cfg_get_value_as<double>(const std::string& name);
template <>
CFG_INI_API std::optional<float> cfg_get_value_as<float>(const std::string& name);

// --- Setting a variable ---
//
// A setter stores the text, converts it once, clears the mark of a valid read, notifies the CFG_INI_CALLBACK objects of
// exactly this name and marks the settings as changed; it counts no access. It first loads the settings files if that
// has not happened yet. The value lasts until the settings are reloaded. A null name or value throws std::logic_error
// and sets nothing.

CFG_INI_API void cfg_set_value(const std::string& name, const std::string& value);
CFG_INI_API void cfg_set_value(CFG_INI_VAR_ENUM ini_enum, const char* value);

// Stores the number in decimal.
CFG_INI_API void cfg_set_int_value(const char* name, int value);
CFG_INI_API void cfg_set_int_value(const std::string& name, int value);
CFG_INI_API void cfg_set_int_value(CFG_INI_VAR_ENUM ini_enum, int value);

// Store "on" and "off".
CFG_INI_API void cfg_set_on(const std::string& name);
CFG_INI_API void cfg_set_on(CFG_INI_VAR_ENUM ini_enum);
CFG_INI_API void cfg_set_off(const std::string& name);
CFG_INI_API void cfg_set_off(CFG_INI_VAR_ENUM ini_enum);

// Stores every assignment of an inline text "name=value;name=value". The separator is the first ":" or ";" of the text
// and holds for all of it. Items without "=", without a name or without a value are skipped. Blanks are removed at both
// ends of name and value; there are no comments and no quotes. With `internal` false the variables are marked external.
CFG_INI_API void cfg_process_ini_string(const std::string& text, bool internal);

// Whether the variable's value came from the main settings file or from VELMAR_INI_VARS. Never reads the settings
// files: false for an unknown name and before the first read. A later assignment by the program does not clear the
// mark.
CFG_INI_API bool cfg_ini_is_external(const std::string& name);

// --- Entry points to be looked up by symbol name ---
//
// They still take and throw C++ types. A null name throws std::logic_error; a null `value` makes the call do nothing.

extern "C" CFG_INI_API bool cfg_dyn_is_on(const char* name, bool default_value);
extern "C" CFG_INI_API void cfg_dyn_get_int_value(const char* name, int* value, int default_value);
extern "C" CFG_INI_API void cfg_dyn_get_value(const char* name, std::string* value);

// Copies the text of the variable named by *name, with its terminating zero, into `buffer`.
// Returns 0 when copied; -1 for an empty name, with nothing read; else the text's length in bytes, with the buffer left
// as it was, when `buffer_size` is less than that length. A buffer_size equal to the length is accepted and receives
// length + 1 bytes: callers pass the room without the terminating zero. `ignored` is never read.
extern "C" CFG_INI_API int cfg_ini_get_value_for_zanth(void* ignored, const char* const* name, char* buffer,
                                                       unsigned int buffer_size);

// --- The catalogue ---

// The default text of a catalogued variable, "on" or "off".
CFG_INI_API std::string cfg_get_default_value(CFG_INI_VAR_ENUM ini_enum);

// Name to position, names spelt exactly; built at the first call, destroyed at process exit, never changed in between.
CFG_INI_API const std::unordered_map<std::string, CFG_INI_VAR_ENUM>& cfg_ini_get_string_to_id_map();

// The position of a catalogued name, spelt exactly (letter case counts); empty for any other name. A null name throws
// std::logic_error.
CFG_INI_API std::optional<CFG_INI_VAR_ENUM> cfg_get_ini_var_enum_from_string(const char* name);

// --- Notification of changes ---

// Base of host objects that keep something derived from one internal variable. Constructing registers the object,
// destroying it unregisters it; several objects may share a name.
//
// Both notifications run on the thread that stored or emptied, with the store's (recursive) lock held, and may read and
// set variables. They must not construct or destroy a CFG_INI_CALLBACK, must not empty or reload the store, and
// refresh() must not set the variable that it is notified of. A reset_to_default() that reads a variable loads the
// settings there and then: objects whose turn comes later are refreshed by that load first and reset afterwards.
//
// Neither notification should throw. An exception out of one passes through to the caller that stored or emptied, and
// leaves the lock held by its thread, for good: the thread itself can go on using the store, and every other thread
// that uses it waits for ever. Other threads wait also in exit(), which empties the store. Such a process can still end
// in these ways:
//   - the thread that threw calls exit() or returns from main();
//   - any thread calls _exit(), quick_exit() or abort().
//
// An object is registered before its derived part is made and until after that is gone. Construct and destroy it while
// no other thread stores under the name, empties or reloads, or the notification may find half an object; holding a
// lock in the derived class does not help.
class CFG_INI_API CFG_INI_CALLBACK
{
public:
    // Registers under exactly this spelling: a store under another letter case reaches the same variable but does not
    // notify. Only the pointer is kept: the characters must outlive the object unchanged. `name` must not be null. A
    // null name throws std::logic_error and a lack of memory std::bad_alloc; either registers nothing and leaves the
    // lock held, with the consequences that an exception out of a notification has.
    explicit CFG_INI_CALLBACK(const char* name);
    virtual ~CFG_INI_CALLBACK();

    CFG_INI_CALLBACK(const CFG_INI_CALLBACK&) = delete;
    CFG_INI_CALLBACK& operator=(const CFG_INI_CALLBACK&) = delete;

    // Called after each store under the name, also when the text did not change.
    virtual void refresh();

    // Called for every registered object after the store has been emptied, whether or not its variable was ever set.
    virtual void reset_to_default();

private:
    const char* name;
};

// --- Mode questions ---
//
// Each is answered from a variable at its first call and remembered for the life of the process; later changes of the
// variable are not seen.

// "jtag_auto_config", "jtag_server_mode" and "enable_benchmarking_mode" is on. Racing first callers may each compute
// the answer.
CFG_INI_API bool cfg_jtag_auto_config();
CFG_INI_API bool cfg_is_jtag_server_mode();
CFG_INI_API bool cfg_is_benchmarking_mode();

// On unless "disable_vexe_mode", "disable_vexe_cmd_mode", "disable_vexe_rpt_mode" is on, computed once; and off from
// the moment cfg_force_vexe_mode_off() was called, which nothing takes back.
CFG_INI_API bool cfg_is_vexe_mode();
CFG_INI_API bool cfg_is_vexe_cmd_mode();
CFG_INI_API bool cfg_is_vexe_rpt_mode();
CFG_INI_API void cfg_force_vexe_mode_off();

// A mark that the host keeps here; the library makes no use of it.
CFG_INI_API void cfg_vexe_ini_applied();
CFG_INI_API bool cfg_is_vexe_ini_applied();

// The debug-message settings: "debug_msg", "msg_debug_per_subsystem" (both off by default) and "debug_msg_level" (2 by
// default), reread whenever a variable was stored or the store was emptied since the last call. Each pointer may be
// null; what it points to is written after the lock was released.
CFG_INI_API void cfg_check_debug_ini_values(bool* global, bool* per_subsystem, int* global_level);

// --- Settings files ---
//
// A text handed in is copied: a callback that runs during the call may change or free the caller's. A relative path
// stays one, and is resolved against the current directory whenever the file is asked for or opened.
//
// A call to open or read a file that a signal interrupts is repeated. Another failed read is tried once more; two
// failures in a row end the file, and the line that this cuts short is dropped.
//
// A path may name a pipe. Its writer may use the store, with two exceptions, in which the lock is held while the file
// is opened and read, so that the writer would wait for itself and every other user of the store for the writer: the
// main file, and all files of the first load, which the first use of a variable triggers.

// Looks for velmar.ini, or for regtest.ini when `regtest` is true, in the current directory, the directory VELMAR_INI,
// HOME, HOME/.kestrin.velmar, the module's directory and the installation's bin directory, in this order. Returns the
// path of the first that exists; empty when there is none, or when VELMAR_INI_DISABLED is exactly "1".
CFG_INI_API std::string cfg_get_default_ini_file(bool regtest);

// Replaces the store: drops every value, calls reset_to_default() of every CFG_INI_CALLBACK if there was a store, and
// loads the file `path` (none when it is empty or missing). Then it applies the file APPENDED_VELMAR_INI and the inline
// assignments VELMAR_INI_VARS on top. Other threads see the old store or the whole main file, never a part of it; the
// sources on top become visible one assignment at a time. If another thread empties the store meanwhile, the sources
// not yet applied are dropped, and the next use of a variable loads the settings anew.
CFG_INI_API void cfg_read_ini_file(const std::string& path);

// The same for the file that cfg_get_default_ini_file(false) finds. The first use of any variable does this by itself,
// with the lock held to the end: racing first users wait, and see all sources.
CFG_INI_API void cfg_read_ini_file();
CFG_INI_API void cfg_read_default_ini_file();

// Apply the lines of `path` on top of the store, without holding the lock across the file; nothing happens when the
// file is missing. Variables that the file creates are not external. Without a store the first form loads the settings
// at the first assignment; the second form needs a store, and without one reports an internal error and reads nothing.
// If another thread empties the store meanwhile, the next assignment loads the settings first.
CFG_INI_API void cfg_read_regtest_ini_file(const std::string& path);
CFG_INI_API void cfg_read_and_append_environment_ini_file(const std::string& path);

// Loads velmar.ini of the directory `proj_dirpath` (with or without a final "/"), or the default file when that
// directory has none, as cfg_read_ini_file does; then, if `regtest`, applies regtest.ini of that directory, or else the
// default one, on top. VELMAR_INI_DISABLED has no effect on the directory's own files. A null `proj_dirpath` is
// reported and nothing is read.
CFG_INI_API void cfg_read_project_ini_file(const char* proj_dirpath, bool regtest);

// Empties the store and calls reset_to_default() of every CFG_INI_CALLBACK; the next use of a variable reloads the
// settings. Without a store nobody is notified. The library does this as well when it is unloaded, at the latest in
// exit().
CFG_INI_API void cfg_close_ini_file();

// The path of the last main, regression-test and appended file that was opened, cut at 1024 bytes; empty before the
// first. Never cleared. The buffers belong to the library and must not be written or freed; reading one while another
// thread loads settings files is a race. The spelling of the last name is what hosts link to.
CFG_INI_API char* cfg_get_ini_file_path_name();
CFG_INI_API char* cfg_get_regtest_ini_file_path_name();
CFG_INI_API char* cfg_get_appended_envrionment_ini_file_path_name();

// --- Usage reports ---
//
// Outputs are added to; a null output pointer makes the call do nothing more. But for the first, no report loads the
// settings files: before the first load they come out empty.

// Appends (name, access count in decimal) pairs, highest count first, equal counts in descending byte order of the
// names. Lists variables with at least "cfg_min_accessed_to_report" accesses (default 0; a negative number lists
// nothing), at most "cfg_max_to_report" of them (default 10; a negative number lists all). Reads both variables by
// ordinary counted lookups, also when `out` is null.
CFG_INI_API void cfg_get_most_accessed(std::vector<std::pair<std::string, std::string>>* out);

// The variable with the highest access count, skipping names that end in "_debug_msg" or "_debug_msg_level" with
// something before it. Returns the count; 0, with the outputs untouched, when nothing was accessed.
CFG_INI_API std::uint64_t cfg_get_single_most_accessed_ini(std::string& name, std::string& value);

// Adds the variables, with their values, that were read, gave a usable value and are not empty.
CFG_INI_API void cfg_get_used_variable_value_map(std::map<std::string, std::string>* out);

// Adds the external variables, with their values, that are not empty, whether read or not.
CFG_INI_API void cfg_get_external_variable_value_map(std::map<std::string, std::string>* out);

// ---------------------------------------------------------------------------------------------------------------------
// User preferences
// ---------------------------------------------------------------------------------------------------------------------

// The user preferences. An enumerator's name is the key as velmar2.ini holds it, misspellings included. Numbers that
// are skipped belong to no preference: their key and texts are empty. A number outside 0 to CFG_USER_INI_ENUMS_END is a
// programming error that is not checked for.
enum CFG_USER_INI_ENUMS : int
{
    DISPLAY_WARNING_MESSAGES = 0,
    DISPLAY_INFORMATION_MESSAGES = 1,
    DISPLAY_EXTRA_INFORMATION_MESSAGES = 2,
    DISPLAY_CRITICAL_WARNING_MESSAGES = 3,
    PROMOTE_CRITCAL_WARNING_TO_ERROR_MESSAGE = 4,
    DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR = 5,
    COMMAND_LINE_INFORMATION_MESSAGE_COLOR = 6,
    COMMAND_LINE_EXTRA_INFORMATION_MESSAGE_COLOR = 7,
    COMMAND_LINE_WARNING_MESSAGE_COLOR = 8,
    COMMAND_LINE_CRITICAL_WARNING_MESSAGE_COLOR = 9,
    COMMAND_LINE_ERROR_MESSAGE_COLOR = 10,
    COMMAND_LINE_INTERNAL_ERROR_MESSAGE_COLOR = 11,
    RUN_PROCESS_AT_LOWER_PRIORITY = 12,
    GENERATE_HTML_REPORT_FILES = 13,
    GENERATE_JSON_REPORT_FILES = 14,
    GENERATE_SINGLE_REPORT_FILE = 15,
    COMPACT_REPORT_TABLE_FORMAT = 16,
    GENERATE_EQUATION_FILES = 17,
    SOUND_WHEN_PROCESS_DONE = 18,
    DISPLAY_MESSAGE_WHEN_PROCESS_DONE = 19,
    VANTREL_ENABLED = 20,
    VANTREL_IE_ENABLED = 21,
    VANTREL_COMPANY_NAME = 22,
    VANTREL_FAE_NAME = 23,
    VANTREL_SAVE_XML_FILES = 24,
    VANTREL_SAVE_XML_FILES_LOCATION = 25,
    VANTREL2_USER_ID = 26,
    SEND_CRASH_REPORT = 27,
    CLOUD_SEND_END_FLOW_NOTIFICATIONS = 28,
    CLOUD_USER_ID = 29,
    CLOUD_USERNAME = 30,
    CLOUD_TOKEN = 31,
    CLOUD_SERVER = 32,
    CLOUD_LOGGING = 33,
    CLOUD_SEND_REPORTS = 34,
    CLOUD_SEND_ERROR_MESSAGES = 35,
    CLOUD_SEND_WARNING_MESSAGES = 36,
    CLOUD_UPLOAD_REPORTS = 37,
    READ_WRITE_HEX_FILES_TO_WORD_BOUNDARY = 38,
    AUTO_RECOMPILE_BEFORE_SIM = 43,
    OVERWRITE_WAVEFORM_INPUTS_WITH_SIMULATION_OUTPUTS = 44,
    GENERATE_SIMULATION_OUTPUTS_IN_CVWF_FORMAT = 45,
    SIMULATION_OUTPUTS_FORMAT = 46,
    MAXIMUM_VECTOR_COMPARISON_MISMATCHES = 47,
    VANTREL_SAVE_XML_FILES_IN_PROJECT_DIRECTORY = 48,
    WEB_BROWSER = 49,
    PROXY_ENABLED = 50,
    PROXY_SETTINGS = 51,
    PROXY_USER1 = 52,
    PROXY_USER2 = 53,
    USER_LIBRARIES = 54,
    DELAY_VSF_UPDATES = 55,
    USE_64BIT = 56,
    SHOW_MESSAGE_ID = 57,
    EDA_TOOL_PATH_ACTIVEHDL = 58,
    EDA_TOOL_PATH_RIVIERAPRO = 59,
    EDA_TOOL_PATH_MODELSIM = 60,
    EDA_TOOL_PATH_QUESTASIM = 61,
    EDA_TOOL_PATH_MODELSIM_KESTRIN = 62,
    EDA_TOOL_PATH_QUESTA_DRAVON = 63,
    EDA_TOOL_PATH_NCSIM = 64,
    EDA_TOOL_PATH_XCELIUM = 65,
    EDA_TOOL_PATH_VCS = 66,
    EDA_TOOL_PATH_VCS_MX = 67,
    EDA_TOOL_PATH_LEONARDO_SPECTRUM = 68,
    EDA_TOOL_PATH_PRECISION = 69,
    EDA_TOOL_PATH_SYNPLIFY = 70,
    EDA_TOOL_PATH_SYNPLIFY_PRO = 71,
    EDA_TOOL_PATH_PRIMETIME = 72,
    EDA_TOOL_ENABLE_SIMULATION = 74,
    HDL_PREFERENCE = 75,
    EDA_TOOL_USE_VELMAR_EDA_PLUGIN_PATH_VARIABLE = 76,
    EDA_TOOL_PLUGIN_PATH = 77,
    RECENT_PROJECTS = 78,
    NUM_PARALLEL_PROCESSORS = 79,
    SHOW_MESSAGE_PARTITION_ID = 80,
    PGMW_TRV_USE_ENHANCED_IP = 81,
    PGMW_ENABLE_PR_COMPRESSION = 82,
    PGMW_TRV_USE_CRC_CHECK = 83,
    PGMW_TRV_UNPROTECT_KRDS = 84,
    PGMW_NAND_USE_ECC_CHECK = 85,
    PGMW_OVERWRITE_SERIAL_FLASH_PP_TIME = 86,
    PGMW_SERIAL_FLASH_PP_TIME = 87,
    PGMW_OVERWRITE_START_UP_DELAY_ENABLE = 88,
    PGMW_OVERWRITE_START_UP_DELAY_US = 89,
    FIDV_INJECTION_INTERVAL_TIME = 90,
    FIDV_INJECTION_SENSITIVITY_TYPE = 91,
    FIDV_INJECTION_SENSITIVITY_SINGLE_ERROR_WEIGHT = 92,
    FIDV_INJECTION_SENSITIVITY_DOUBLE_ERROR_WEIGHT = 93,
    FIDV_INJECTION_SENSITIVITY_UNCORRECTABLE_ERROR_WEIGHT = 94,
    PGMDV_INTERNAL_SETTING = 95,
    GFPDB_CUSTOM_DATABASE_DIRECTORY = 96,
    VUI_USE_EXTERNAL_TEXT_EDITOR = 97,
    VUI_EXTERNAL_TEXT_EDITOR = 98,
    VUI_EXTERNAL_TEXT_EDITOR_CLO = 99,
    VUI_EXTERNAL_TEXT_EDITOR_NAME = 100,
    VUI_EXTERNAL_TEXT_EDITOR_COMPLETE_CLO = 101,
    FIDV_COVERAGE_TEST_START_INDEX = 102,
    FIDV_COVERAGE_TEST_SIZE = 103,
    FIDV_COVERAGE_TEST_KEY = 104,
    USER_IP_SEARCH_PATHS = 105,
    MANAGED_FLOW_HDL_PREFERENCE = 106,
    MAX_ZORPAL_JVM_MEMORY = 107,
    USER_FLOW_TEMPLATE_SEARCH_PATHS = 108,
    USER_PLATFORM_SEARCH_PATHS = 109,
    USER_DESIGN_EXAMPLE_DOWNLOAD_PATH = 110,
    UNSUPPORTED_PLATFORM_INSTALLED = 111,
    DISPLAY_UNSUPPORTED_PLATFORM = 112,
    IPGEN_INCLUDE_SIMULATION_FILESET = 113,
    ENABLE_ZORPAL_PRO_MODE = 114,
    DISABLE_ZORPAL_PRO_MODE = 115,
    ENABLE_PARALLEL_IP_GEN = 116,
    IPGEN_INCLUDE_CDC_FILESET = 117,
    IPGEN_INCLUDE_SIMULATION_FILESET_FOR_MODELSIM = 118,
    IPGEN_INCLUDE_SIMULATION_FILESET_FOR_RIVIERA = 119,
    IPGEN_INCLUDE_SIMULATION_FILESET_FOR_VCS = 120,
    IPGEN_INCLUDE_SIMULATION_FILESET_FOR_VCS_MX = 121,
    IPGEN_INCLUDE_SIMULATION_FILESET_FOR_XCELIUM = 122,
    DISPLAY_KALDEN_MESSAGE_WHEN_OPENING_PROJECT = 123,
    RTL_ANALYSIS_FLOW = 124,
    DNI_COMPILATION_MODE_23_4 = 125,
    CFG_USER_INI_ENUMS_END = 126
};

// --- The catalogue of preferences ---
//
// Each returns a copy of one catalogue text, empty where the preference has none.

// The key, such as "USER_LIBRARIES".
CFG_INI_API std::string cfg_get_name_from_enum(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_ini_string(CFG_USER_INI_ENUMS preference);

// One paragraph of English for a settings dialog.
CFG_INI_API std::string cfg_get_user_ini_ini_desc(CFG_USER_INI_ENUMS preference);

// Where the preference used to live in the Windows registry: value name, branch and sub-branch (empty for all).
CFG_INI_API std::string cfg_get_user_ini_registry_string(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_registry_branch_string(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_registry_sub_branch_string(CFG_USER_INI_ENUMS preference);

// --- Reading a preference ---
//
// The first lookup or assignment reads velmar2.ini from the directory VELMAR2_INI, else from the user's profile
// directory. The answer is the value in the running release's section; else, when the file has no such section at all,
// the value of the first older release that has the key (or of the section without a release), which is then also
// assigned for the running release; else the catalogue's default. An empty value counts as none. Names match the
// catalogue without regard to letter case, but a value is found only under the spelling that the file uses.

// The value, default applied; empty for an unknown name. A null name is reported and answers the empty text.
CFG_INI_API std::string cfg_get_user_ini_value(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_value(const char* name);

// The value read by strtol in base 10; 0 when it is empty or no number.
CFG_INI_API int cfg_get_user_ini_int_value(CFG_USER_INI_ENUMS preference);

// True for "on" and "1", false for "off" and "0", in any letter case; `fallback` for every other value. The catalogue's
// default goes before the fallback.
CFG_INI_API bool cfg_user_ini_is_on(CFG_USER_INI_ENUMS preference, bool fallback);

// Whether the lookup, with or without the catalogue's default, gives a text that is not empty.
CFG_INI_API bool cfg_does_ini_variable_have_value(CFG_USER_INI_ENUMS preference, bool use_default);

// --- Assigning a preference ---
//
// An assignment changes the loaded preferences only; cfg_write_user_ini_file makes it last. True when stored; false,
// with nothing changed, for an unknown name and for a value that the catalogue does not allow (letter case does not
// count; the value is stored as written). A null name or value is reported and answers false. An exception, such as one
// of a host's function that takes search paths, leaves everything as it was.

CFG_INI_API bool cfg_set_user_ini_value(const char* name, const char* value);
CFG_INI_API bool cfg_set_user_ini_value(CFG_USER_INI_ENUMS preference, const std::string& value);
CFG_INI_API bool cfg_set_user_ini_int_value(CFG_USER_INI_ENUMS preference, int value);
CFG_INI_API bool cfg_set_user_ini_on(CFG_USER_INI_ENUMS preference);
CFG_INI_API bool cfg_set_user_ini_off(CFG_USER_INI_ENUMS preference);

// --- Saving ---

// Rewrites velmar2.ini in place from the loaded preferences, normalised: comments, malformed lines and empty values are
// not kept. True when nothing was loaded (the file is then left alone) or when the file could be opened for writing;
// later write errors are not noticed. There is no backup: a caller that cannot lose the file keeps its bytes first.
CFG_INI_API bool cfg_write_user_ini_file();

// The same, and unloads the preferences whatever the result: the next access reads the file again.
CFG_INI_API bool cfg_write_and_close_user_ini_file();

#endif
