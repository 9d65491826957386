// The public header of the configuration library. It declares two stores, which share nothing:
//
// - Internal variables are switches and tuning values for developers. They come from layered velmar.ini settings, and
//   are found by name. The case of the letters A to Z is ignored.
// - User preferences are choices that a user keeps in velmar2.ini. A compiled-in catalogue validates them, and they are
//   carried over from release to release.
//
// Example:
//
//     if (cfg_is_on("new_router", false))                              // a variable, with a default
//         route(cfg_get_int_value("max_fanout", 12));
//     const std::string browser = cfg_get_user_ini_value(WEB_BROWSER); // a preference
//
// Text. Texts are bytes; the library neither checks nor converts an encoding. Paths are POSIX paths. The library copies
// every string that it keeps, except the name of a CFG_INI_CALLBACK. The header compiles as C++17.
//
// Threads. Any thread may call any function of the internal variable store, at any time after load, unless the
// function's comment says otherwise. No function may be called from a signal handler. The user preference store takes
// no lock: use it from one thread at a time.
//
// fork. A thread may fork at any moment outside a signal handler, even within a notification. The child can use
// everything here. There is one case to know. If another thread holds the store's lock for longer than fork waits (some
// 80 ms), for example while it loads from a pipe or because a callback threw, the child starts without a store. Then:
// - the child loads the default settings when it first uses a variable. The settings of a project and values that the
//   program had set are lost;
// - callbacks stay registered, and the load resets them. But if that thread was registering or unregistering one at
//   that moment, none stays registered.
//
// A host's own fork handler may take a lock under which other threads use the library, if the handler is registered
// after the library was loaded. See platform/thr/thr.h.
//
// Errors. Absence is not an error: defaults, empty texts and empty optionals stand for it. A broken precondition is
// reported through err_report_internal_error of platform/err/err.h; the function's comment says what happens after the
// report. The library throws std::logic_error for a null name or value of a variable. It lets std::bad_alloc and the
// exceptions of the host's own functions pass. It throws nothing else. A load that std::bad_alloc ends keeps what it
// has stored so far; load again to get the rest.
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

#include "cfg_ini/cfg_ini_var_enum.h"   // IWYU pragma: export
#include "cfg_ini/cfg_user_ini_enums.h" // IWYU pragma: export

#define CFG_INI_API __attribute__((visibility("default")))

// ---------------------------------------------------------------------------------------------------------------------
// Internal variables
// ---------------------------------------------------------------------------------------------------------------------

// --- Reading a variable ---
//
// Every reader first loads the settings files if nothing has loaded them yet (see cfg_read_ini_file). Every reader
// counts the access, with one exception: the first reader of an unknown name creates an empty record instead, so that
// the usage reports can list the name. A reader that gets a usable value also marks the variable as validly read;
// cfg_get_used_variable_value_map lists the marked variables.
//
// A text is converted once, when it is stored, as far as its first zero byte:
//   boolean   "on", "1", "true" and "off", "0", "false" in any letter case; nothing else, and no white space;
//   int       an optional "-" and decimal digits, and nothing else; -2147483648 to 2147483647;
//   unsigned  decimal digits, and nothing else; 0 to 4294967295.
//
// A variable has no value of a type if its text does not convert to it.
//
// A name is a std::string or characters. Characters are a literal, an array, a pointer to a zero-terminated text, a
// std::string_view, or an object that converts to a pointer or a view but not to std::string. A name as characters
// gives the same answer as the std::string of these characters, zero bytes included. Two names that agree up to the
// first zero byte of each are the same variable. If the variable exists, no string is built for it. A null name, or a
// view that is null, throws std::logic_error and reads nothing.
//
// Example:
//
//     const bool incremental = cfg_is_on("incremental", true);         // true unless the variable has a boolean value
//     const int fanout = cfg_get_int_value("max_fanout", 12);          // 12 if it is unset, "3x" or "abc"
//     const unsigned int seed = cfg_get_uint_value("seed", 1);         // "-1" counts as no value
//     const double limit = cfg_get_double_value("thermal_limit", 85);  // "2.5ms" counts as 2.5
//     const std::string banner = cfg_get_value("banner");              // empty if it is unset
//     const bool sqlite = cfg_is_on(CFG_INI_VAR_MSG_SQLITE);           // the catalogue has the default
//
//     if (const std::optional<int> effort = cfg_get_value_as<int>("route_effort"))
//         route(*effort);                                              // only if the variable is a number

// The characters of a name. If the name is a literal, the compiler knows its length. Null gives a null view.
inline std::string_view cfg_ini_name_view(const char* name)
{
    return name != nullptr ? std::string_view(name) : std::string_view();
}

// A name as characters; only the templates below make one. The readers that take std::string_view are friends of this
// class, so a call finds them only if it passes an object of this class. If every call found them, a call with an
// argument such as {"name", 2} would be ambiguous between them and the readers that take std::string.
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

// Whether a NAME converts to TO as a constant, as a variable or as a temporary.
template <typename NAME, typename TO>
constexpr bool cfg_ini_converts()
{
    return std::is_convertible_v<const NAME&, TO> || std::is_convertible_v<NAME&, TO> ||
           std::is_convertible_v<NAME, TO>;
}

// Whether a NAME is a name as characters that no other overload takes. An object that also converts to std::string or
// to the enumeration belongs to that overload, so older calls keep their meaning.
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

// The class for a call with this name. It takes the name as a reference to a constant because only such a reference can
// bind to a member of a packed structure.
template <typename NAME>
CFG_INI_NAME_VIEW cfg_ini_name_of(const NAME& name)
{
    if constexpr (std::is_class_v<NAME> && std::is_convertible_v<const NAME&, std::string_view>)
        return CFG_INI_NAME_VIEW(name);
    else
        return CFG_INI_NAME_VIEW(cfg_ini_name_view(name));
}

// The variable as a boolean, or `default_value` if it has no boolean value.
CFG_INI_API bool cfg_is_on(const std::string& name, bool default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
bool cfg_is_on(const NAME& name, bool default_value)
{
    return cfg_is_on(cfg_ini_name_of(name), default_value);
}

// The same with a default from the catalogue. The default is true if the name is catalogued with the text "on", else
// false. The catalogue is searched for exactly this spelling.
CFG_INI_API bool cfg_is_on(const std::string& name);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
bool cfg_is_on(const NAME& name)
{
    return cfg_is_on(cfg_ini_name_of(name));
}

// The catalogued variable as a boolean, or its default text as a boolean if it has no boolean value.
CFG_INI_API bool cfg_is_on(CFG_INI_VAR_ENUM ini_enum);

// The variable as a signed 32-bit integer, or `default_value` if it has no such value.
CFG_INI_API int cfg_get_int_value(const std::string& name, int default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
int cfg_get_int_value(const NAME& name, int default_value)
{
    return cfg_get_int_value(cfg_ini_name_of(name), default_value);
}

// The catalogued variable as an integer, or 0 if it has no such value. The default texts of the catalogue, "on" and
// "off", are no integers.
CFG_INI_API int cfg_get_int_value(CFG_INI_VAR_ENUM ini_enum);

// The variable as an unsigned 32-bit integer, or `default_value` if it has no such value.
CFG_INI_API unsigned int cfg_get_uint_value(const std::string& name, unsigned int default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
unsigned int cfg_get_uint_value(const NAME& name, unsigned int default_value)
{
    return cfg_get_uint_value(cfg_ini_name_of(name), default_value);
}

// The number of cfg_get_value_as<double>, or `default_value` if the variable's text is empty. A text that does not
// start with a number gives 0.0, not the default.
CFG_INI_API double cfg_get_double_value(const std::string& name, double default_value);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
double cfg_get_double_value(const NAME& name, double default_value)
{
    return cfg_get_double_value(cfg_ini_name_of(name), default_value);
}

// The variable's text as stored, quotes included; empty if it has none. This reader marks the variable as validly read
// whatever its text is, even if this call created its record.
CFG_INI_API std::string cfg_get_value(const std::string& name);
template <typename NAME, CFG_INI_IF_CHARACTERS<NAME> = 0>
std::string cfg_get_value(const NAME& name)
{
    return cfg_get_value(cfg_ini_name_of(name));
}

// The catalogued variable's text, or its default text if that is empty.
CFG_INI_API std::string cfg_get_value(CFG_INI_VAR_ENUM ini_enum);

// The variable as a T, for T = bool, int, std::string, double and float; empty if it has no usable value:
//   bool, int     a value if the text converts;
//   std::string   a value if the text is not empty;
//   double        a value if the text is not empty: the number that strtod finds at its start, in the current locale.
//                 If text follows the number ("2.5ms" gives 2.5, "fast" gives 0.0), the library emits a debug message
//                 and does not mark the variable as validly read;
//   float         the double, rounded to float.
// The floating-point forms convert at each call. There is no form for unsigned.
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
// A setter first loads the settings files if nothing has loaded them yet. Then it
// - stores the text and converts it once,
// - clears the mark of a valid read,
// - notifies the CFG_INI_CALLBACK objects of exactly this name, and
// - marks the settings as changed.
//
// It counts no access. The value lasts until the settings are reloaded. A null pointer as a name or value throws
// std::logic_error and sets nothing. There is one exception. If the parameter is a std::string, the program makes
// one of the pointer before the call: libstdc++ throws std::logic_error there too, but with libc++ the behaviour is
// undefined.
//
// Example:
//
//     cfg_set_value("report_dir", "reports/nightly");
//     cfg_set_int_value("max_fanout", 16);       // the text "16"
//     cfg_set_off(CFG_INI_VAR_MSG_SQLITE);       // the text "off"
//     cfg_process_ini_string("max_fanout=20;new_router=on", true);

// Stores the text. A catalogued variable is addressed by its enumerator or by its name.
CFG_INI_API void cfg_set_value(const std::string& name, const std::string& value);
CFG_INI_API void cfg_set_value(CFG_INI_VAR_ENUM ini_enum, const char* value);

// Stores the number in decimal, such as "-12".
CFG_INI_API void cfg_set_int_value(const char* name, int value);
CFG_INI_API void cfg_set_int_value(const std::string& name, int value);
CFG_INI_API void cfg_set_int_value(CFG_INI_VAR_ENUM ini_enum, int value);

// Stores "on" or "off".
CFG_INI_API void cfg_set_on(const std::string& name);
CFG_INI_API void cfg_set_on(CFG_INI_VAR_ENUM ini_enum);
CFG_INI_API void cfg_set_off(const std::string& name);
CFG_INI_API void cfg_set_off(CFG_INI_VAR_ENUM ini_enum);

// Stores every assignment of an inline text, such as "name=value;name=value". The first ":" or ";" in the text is the
// separator for all of it. Items without "=", without a name or without a value are skipped. Spaces at both ends of a
// name and of a value are removed, but no tabs; comments and quotes have no meaning here. If `internal` is false, the
// variables are marked as external. The call takes the lock for each assignment, so other threads may see some of them
// before the rest.
CFG_INI_API void cfg_process_ini_string(const std::string& text, bool internal);

// Whether the variable is external: the main settings file, VELMAR_INI_VARS or an inline text that was not internal has
// set it. No later assignment clears the mark, wherever it comes from. The function never loads the settings files: it
// returns false for an unknown name, and before the first load.
CFG_INI_API bool cfg_ini_is_external(const std::string& name);

// --- Entry points to be looked up by symbol name ---
//
// Programs that load the library at run time find these functions with dlsym. The functions have C names, but they take
// and throw C++ types. A null name throws std::logic_error. A null `value` makes the call do nothing.
//
// Example:
//
//     using IS_ON = bool (*)(const char*, bool);
//     void* const library = dlopen("libzon_cfg_ini.so.1", RTLD_NOW);
//     const auto is_on = reinterpret_cast<IS_ON>(dlsym(library, "cfg_dyn_is_on"));
//     const bool new_router = is_on("new_router", false);

// Answer as cfg_is_on, cfg_get_int_value and cfg_get_value do; the last two write the answer to *value.
extern "C" CFG_INI_API bool cfg_dyn_is_on(const char* name, bool default_value);
extern "C" CFG_INI_API void cfg_dyn_get_int_value(const char* name, int* value, int default_value);
extern "C" CFG_INI_API void cfg_dyn_get_value(const char* name, std::string* value);

// Copies the text of the variable *name, with its terminating zero, into `buffer`. Returns
//   0            if the text was copied;
//   -1           if the name is empty; nothing is read then;
//   the length   of the text in bytes, if `buffer_size` is less than that; the buffer is left as it was.
//
// `buffer_size` does not count the terminating zero: if it equals the length, length + 1 bytes are written. So `buffer`
// needs room for one byte even if `buffer_size` is 0, since the text may be empty. Neither `buffer` nor `name` may be
// null. `ignored` is never read.
//
// Example:
//
//     const char* const name = "banner";
//     char text[64];
//     if (cfg_ini_get_value_for_zanth(nullptr, &name, text, sizeof text - 1) == 0)
//         print(text);
extern "C" CFG_INI_API int cfg_ini_get_value_for_zanth(void* ignored, const char* const* name, char* buffer,
                                                       unsigned int buffer_size);

// --- The catalogue ---
//
// The catalogue holds a name and a default text for each enumerator of CFG_INI_VAR_ENUM. Names are compared exactly
// here: the letter case counts.
//
// Example:
//
//     if (const std::optional<CFG_INI_VAR_ENUM> variable = cfg_get_ini_var_enum_from_string("msg_sqlite"))
//         print(cfg_get_default_value(*variable));   // "on"
//     for (const auto& [name, variable] : cfg_ini_get_string_to_id_map())
//         print(name);                               // all names, in no particular order

// The default text of a catalogued variable, "on" or "off".
CFG_INI_API std::string cfg_get_default_value(CFG_INI_VAR_ENUM ini_enum);

// The positions of all names. The map is built at the first call and does not change. It is destroyed when the library
// is unloaded, at the latest in exit(). After that, neither use it nor call this function.
CFG_INI_API const std::unordered_map<std::string, CFG_INI_VAR_ENUM>& cfg_ini_get_string_to_id_map();

// The position of a catalogued name, or empty for any other name. A null name throws std::logic_error.
CFG_INI_API std::optional<CFG_INI_VAR_ENUM> cfg_get_ini_var_enum_from_string(const char* name);

// --- Notification of changes ---

// Base class of host objects that keep something derived from one internal variable. The constructor registers the
// object, and the destructor unregisters it. Several objects may share a name.
//
// Example:
//
//     class ROUTER : public CFG_INI_CALLBACK
//     {
//     public:
//         ROUTER() : CFG_INI_CALLBACK("route_effort") {}
//         void refresh() override { effort = cfg_get_int_value("route_effort", 2); }  // the lock is held: do not wait
//         void reset_to_default() override { effort = 2; }
//         std::atomic<int> effort = 2;
//     };
//
// What a notification may do. Both notifications run on the thread that stored or emptied, with the store's recursive
// lock held. They may read and set variables. They must not construct or destroy a CFG_INI_CALLBACK, and must not empty
// or reload the store. refresh() must not set the variable that it is notified of, nor another one whose refresh() sets
// this one again: neither would end. If a reset_to_default() reads a variable, the settings are loaded at that moment.
// This load refreshes the objects of all variables that it sets; the objects that have not been reset yet are reset
// after that.
//
// Exceptions. Neither notification should throw. An exception passes through to the caller that stored or emptied, and
// leaves the lock held by its thread, for good. That thread can go on using the store. Every other thread that uses the
// store waits for ever, even in exit(), which empties the store. Such a process can still end in two ways:
// - the thread that threw calls exit() or returns from main();
// - any thread calls _exit(), quick_exit() or abort().
//
// Construction and destruction. The object is registered before its derived part exists and until after that part is
// gone. So construct and destroy it while no other thread stores under the name, empties or reloads. Otherwise the
// notification may find half an object. A lock in the derived class does not help.
class CFG_INI_API CFG_INI_CALLBACK
{
public:
    // Registers under exactly this spelling. A store under another letter case changes the same variable but does not
    // notify this object. The object keeps only the pointer, so the characters must outlive it unchanged.
    //
    // `name` must not be null. A null name throws std::logic_error, and a lack of memory throws std::bad_alloc. Either
    // registers nothing and leaves the lock held, as an exception from a notification does.
    explicit CFG_INI_CALLBACK(const char* name);
    virtual ~CFG_INI_CALLBACK();

    CFG_INI_CALLBACK(const CFG_INI_CALLBACK&) = delete;
    CFG_INI_CALLBACK& operator=(const CFG_INI_CALLBACK&) = delete;

    // Called after each store under the name, even if the text did not change.
    virtual void refresh();

    // Called for every registered object after the store has been emptied, even if its variable was never set.
    virtual void reset_to_default();

private:
    const char* name;
};

// --- Mode questions ---
//
// A mode question reads a variable at its first call and then gives the same answer for the life of the process. Later
// changes of the variable have no effect on it.
//
// Example:
//
//     if (cfg_is_benchmarking_mode())            // asks "enable_benchmarking_mode" once
//         print("times are measured");
//     cfg_force_vexe_mode_off();
//     const bool vexe = cfg_is_vexe_mode();      // false from now on, whatever the settings
//
//     int level = 0;
//     cfg_check_debug_ini_values(nullptr, nullptr, &level);   // follows "debug_msg_level"

// Whether "jtag_auto_config", "jtag_server_mode" or "enable_benchmarking_mode", respectively, is on. If several threads
// make the first call at once, each may compute the answer.
CFG_INI_API bool cfg_jtag_auto_config();
CFG_INI_API bool cfg_is_jtag_server_mode();
CFG_INI_API bool cfg_is_benchmarking_mode();

// True unless "disable_vexe_mode", "disable_vexe_cmd_mode" or "disable_vexe_rpt_mode", respectively, is on; this is
// computed once. After a call of cfg_force_vexe_mode_off() all three are false, and nothing undoes that.
CFG_INI_API bool cfg_is_vexe_mode();
CFG_INI_API bool cfg_is_vexe_cmd_mode();
CFG_INI_API bool cfg_is_vexe_rpt_mode();
CFG_INI_API void cfg_force_vexe_mode_off();

// A flag that the host sets and reads. The library does not use it.
CFG_INI_API void cfg_vexe_ini_applied();
CFG_INI_API bool cfg_is_vexe_ini_applied();

// The debug-message settings: "debug_msg" and "msg_debug_per_subsystem", both off by default, and "debug_msg_level", 2
// by default. Unlike the mode questions they follow their variables: the call reads these again if a variable was
// stored or the store was emptied since the last call. Each pointer may be null. The results are written after the lock
// was released.
CFG_INI_API void cfg_check_debug_ini_values(bool* global, bool* per_subsystem, int* global_level);

// --- Settings files ---
//
// A load replaces the whole store. It applies the sources in a fixed order, and each overrides the ones before it: the
// main file, the file APPENDED_VELMAR_INI, the inline assignments VELMAR_INI_VARS and, if asked for, regtest.ini. Names
// in capitals, such as VELMAR_INI_VARS or HOME, are those of environment variables here. Each load reads them with
// getenv, so do not change the environment while another thread may load.
//
// The first use of a variable loads the default file, so a host needs these functions only for a project, for a
// regression run, or to reload.
//
// Example:
//
//     cfg_read_project_ini_file("designs/cpu", false);   // velmar.ini of the project
//     cfg_read_project_ini_file("designs/cpu", true);    // the same for a regression run, with regtest.ini on top
//     print(cfg_get_ini_file_path_name());               // the main file that was opened last
//     cfg_close_ini_file();                              // forget it all; the next use loads again
//
// Paths. The functions copy a path, since a callback that runs during the call may change or free the caller's text. A
// relative path stays relative: it is resolved against the current directory whenever the file is tested or opened.
//
// Failures. If a signal interrupts the opening or reading of a file, the call is repeated. Any other failed read is
// tried once more. Two failures in a row end the file, and the line that this cuts short is dropped.
//
// Pipes. A path may name a pipe, and its writer may use the store. There are two exceptions: the main file, and all
// files of the first load, which the first use of a variable triggers. The lock is held while these are opened and
// read, so the writer would wait for itself, and every other user of the store for the writer.

// Searches for velmar.ini, or for regtest.ini if `regtest` is true. The search tries, in this order, the current
// directory, the directory VELMAR_INI, HOME, HOME/.kestrin.velmar, the directory of the executable, and the
// installation's bin directory. Returns the first of these paths that exists; empty if there is none, or if
// VELMAR_INI_DISABLED is exactly "1". A directory of that name, or a file that cannot be read, also ends the search; it
// has no lines.
CFG_INI_API std::string cfg_get_default_ini_file(bool regtest);

// Replaces the store. It drops every value, calls reset_to_default() of every CFG_INI_CALLBACK if there was a store,
// and loads the file `path`; an empty or missing path loads nothing. Then it applies the file APPENDED_VELMAR_INI and
// the inline assignments VELMAR_INI_VARS on top.
//
// Other threads see the old store or the whole main file, never a part of it. There is one exception: functions that
// load nothing, such as cfg_ini_is_external, find no store while the objects are being reset.
//
// The sources on top become visible one assignment at a time. If another thread empties the store meanwhile, the
// remaining sources are dropped, and the next use of a variable loads the settings again. If another thread has
// reloaded meanwhile, the remaining sources are applied to its new store, even regtest.ini of another project. So load
// from one thread at a time.
CFG_INI_API void cfg_read_ini_file(const std::string& path);

// The same for the file that cfg_get_default_ini_file(false) finds. The first use of any variable does this without a
// call, and holds the lock to the end: threads that use a variable meanwhile wait, and then see all sources.
CFG_INI_API void cfg_read_ini_file();
CFG_INI_API void cfg_read_default_ini_file();

// Applies the lines of the file `path` on top of the store, and takes the lock for each line. Nothing happens if the
// file is missing. Variables that the file creates are not external. If another thread empties the store meanwhile, the
// next assignment loads the settings first.
//
// The two functions differ if there is no store. The first then loads the settings at the first assignment. The second
// reports an internal error and reads nothing.
CFG_INI_API void cfg_read_regtest_ini_file(const std::string& path);
CFG_INI_API void cfg_read_and_append_environment_ini_file(const std::string& path);

// Loads velmar.ini of the directory `proj_dirpath` as cfg_read_ini_file does, or the default file if the directory has
// none. The path may end in "/". If `regtest` is true, it then applies regtest.ini of the directory on top, or the
// default one if the directory has none. VELMAR_INI_DISABLED has no effect on the directory's own files. A null
// `proj_dirpath` is reported, and nothing is read.
CFG_INI_API void cfg_read_project_ini_file(const char* proj_dirpath, bool regtest);

// Empties the store and calls reset_to_default() of every CFG_INI_CALLBACK. The next use of a variable loads the
// default file, even if the settings were those of a project. If there is no store, no object is notified. The library
// also does this when it is unloaded, at the latest in exit().
CFG_INI_API void cfg_close_ini_file();

// The path of the main, regression-test or appended file that was opened last, cut at 1024 bytes. It is empty before
// the first one, and never cleared. The buffers belong to the library: do not write or free them. A caller that reads
// one while another thread loads settings files causes a data race. The misspelt name is the one that hosts link to.
CFG_INI_API char* cfg_get_ini_file_path_name();
CFG_INI_API char* cfg_get_regtest_ini_file_path_name();
CFG_INI_API char* cfg_get_appended_envrionment_ini_file_path_name();

// --- Usage reports ---
//
// The reports add to vectors and maps and remove nothing; an entry that a map already has keeps its value. Names are
// spelt as they were at the first assignment or lookup. If an output pointer is null, no report is made. Only
// cfg_get_most_accessed loads the settings files; before the first load the other reports are empty.
//
// Example:
//
//     std::vector<std::pair<std::string, std::string>> ranking;
//     cfg_get_most_accessed(&ranking);                    // {"max_fanout", "9"}, {"place_effort", "4"}, ...
//     std::map<std::string, std::string> used;
//     cfg_get_used_variable_value_map(&used);             // the settings that this run depended on
//     for (const auto& [name, value] : used)
//         print(name + " = " + value);

// Appends pairs of a name and its access count in decimal. The highest count comes first; equal counts are ordered by
// name, in descending byte order. Two variables limit the list:
//   cfg_min_accessed_to_report   the lowest count that is listed; 0 by default; a negative number lists nothing
//   cfg_max_to_report            the length of the list; 10 by default; a negative number lists all
// The call reads both by ordinary counted lookups, even if `out` is null.
CFG_INI_API void cfg_get_most_accessed(std::vector<std::pair<std::string, std::string>>* out);

// Finds the variable with the highest access count, or one of them if there are several. Writes its name and value, and
// returns the count. It skips names that end in "_debug_msg" or "_debug_msg_level", in any letter case, with something
// before it. Returns 0 and leaves the outputs untouched if nothing was accessed.
CFG_INI_API std::uint64_t cfg_get_single_most_accessed_ini(std::string& name, std::string& value);

// Adds the names and values of the variables that were read, gave a usable value and are not empty.
CFG_INI_API void cfg_get_used_variable_value_map(std::map<std::string, std::string>* out);

// Adds the names and values of the external variables that are not empty, even if nothing read them.
CFG_INI_API void cfg_get_external_variable_value_map(std::map<std::string, std::string>* out);

// ---------------------------------------------------------------------------------------------------------------------
// User preferences
// ---------------------------------------------------------------------------------------------------------------------

// --- The catalogue of preferences ---
//
// Each function returns a copy of one text of the catalogue, or the empty text if the preference has none. None of them
// reads velmar2.ini.
//
// Example, the rows of a settings dialog:
//
//     for (int number = 0; number < CFG_USER_INI_ENUMS_END; ++number)
//     {
//         const auto preference = static_cast<CFG_USER_INI_ENUMS>(number);
//         const std::string key = cfg_get_name_from_enum(preference);
//         if (!key.empty())                      // numbers that are skipped have no key
//             print(key + ": " + cfg_get_user_ini_ini_desc(preference));
//     }

// The key, such as "USER_LIBRARIES". Both functions return the same text.
CFG_INI_API std::string cfg_get_name_from_enum(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_ini_string(CFG_USER_INI_ENUMS preference);

// The description for a settings dialog: one paragraph of English.
CFG_INI_API std::string cfg_get_user_ini_ini_desc(CFG_USER_INI_ENUMS preference);

// The former location of the preference in the Windows registry: value name, branch and sub-branch. The sub-branch is
// empty for all preferences.
CFG_INI_API std::string cfg_get_user_ini_registry_string(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_registry_branch_string(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_registry_sub_branch_string(CFG_USER_INI_ENUMS preference);

// --- Reading a preference ---
//
// The first lookup or assignment loads velmar2.ini from the directory that the environment variable VELMAR2_INI names,
// or else from the user's profile directory. VELMAR2_INI is ignored if no such directory exists. A lookup takes the
// first of these values that is not empty:
// - the value in the section of the running release;
// - only if the file has no such section at all, and the program has not assigned the empty text: the value of the
//   newest older release that has the key, or of the section without a release. If the catalogue allows this value, the
//   lookup also assigns it for the running release;
// - the catalogue's default.
//
// A name matches the catalogue in any letter case. But a value in the file is found only if the file spells the key
// exactly as the call does. A call by number uses the catalogue's spelling.
//
// Example:
//
//     const std::string browser = cfg_get_user_ini_value(WEB_BROWSER);
//     const int processors = cfg_get_user_ini_int_value(NUM_PARALLEL_PROCESSORS);   // 0 if no number is there
//     if (cfg_user_ini_is_on(SHOW_MESSAGE_ID, false))
//         print(browser + " on " + std::to_string(processors));

// The value, or the catalogue's default; empty for an unknown name. A null name is reported and gives the empty text.
CFG_INI_API std::string cfg_get_user_ini_value(CFG_USER_INI_ENUMS preference);
CFG_INI_API std::string cfg_get_user_ini_value(const char* name);

// The value as strtoll converts it in base 10, of which the lower 32 bits are kept; 0 if it is empty or does not start
// with a number.
CFG_INI_API int cfg_get_user_ini_int_value(CFG_USER_INI_ENUMS preference);

// True for "on" and "1", false for "off" and "0", in any letter case; `fallback` for every other value. The catalogue's
// default comes before `fallback`: a preference with a default of "on" is on if it has no value.
CFG_INI_API bool cfg_user_ini_is_on(CFG_USER_INI_ENUMS preference, bool fallback);

// Whether a lookup gives a text that is not empty. With `use_default` false, the catalogue's default does not count.
CFG_INI_API bool cfg_does_ini_variable_have_value(CFG_USER_INI_ENUMS preference, bool use_default);

// --- Assigning a preference ---
//
// An assignment changes only the loaded preferences; cfg_write_user_ini_file makes it last. It returns true if the
// value was stored. It returns false and changes nothing if the name is unknown, or if the catalogue does not allow the
// value. The letter case of a value does not count for this check, and the value is stored as it was given, up to its
// first zero byte. A null name or value is reported and gives false. If an exception passes through, such as one of the
// host's functions for search paths, nothing has changed.
//
// An assignment by name stores the value under the name as it is passed. If this is not the catalogue's spelling, calls
// by number do not find the value.
//
// Example:
//
//     if (!cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL"))
//         warn("the catalogue does not allow this value");
//     cfg_set_user_ini_on(SHOW_MESSAGE_ID);
//     cfg_set_user_ini_int_value(NUM_PARALLEL_PROCESSORS, 4);
//     if (!cfg_write_user_ini_file())
//         warn("velmar2.ini could not be opened for writing");

// Stores a text. The number, "on" and "off" below are stored as texts too.
CFG_INI_API bool cfg_set_user_ini_value(const char* name, const char* value);
CFG_INI_API bool cfg_set_user_ini_value(CFG_USER_INI_ENUMS preference, const std::string& value);
CFG_INI_API bool cfg_set_user_ini_int_value(CFG_USER_INI_ENUMS preference, int value);
CFG_INI_API bool cfg_set_user_ini_on(CFG_USER_INI_ENUMS preference);
CFG_INI_API bool cfg_set_user_ini_off(CFG_USER_INI_ENUMS preference);

// --- Saving ---

// Rewrites velmar2.ini in place from the loaded preferences. The result is normalised: comments, malformed lines and
// empty values are lost. Returns true if nothing was loaded, and leaves the file alone then. Otherwise returns whether
// the file could be opened for writing. Later write errors are not reported. The call determines the directory again,
// as a load does.
//
// Values are written unchanged, but a load does not give all of them back unchanged. It removes white space at both
// ends, and then one pair of double quotes. A line feed ends the value; what follows it is loaded as further lines. A
// value with a "[" is lost. If a "]" follows, the line even counts as a section header, and the keys below it are lost
// to their section.
//
// There is no backup and no temporary file. A caller that must not lose the file copies it before the call.
//
// Example, after which another program may change the file:
//
//     if (!cfg_write_and_close_user_ini_file())
//         warn("velmar2.ini could not be opened for writing");
//     const std::string editor = cfg_get_user_ini_value(VUI_EXTERNAL_TEXT_EDITOR);   // loads the file again
CFG_INI_API bool cfg_write_user_ini_file();

// The same. It also unloads the preferences, whatever the result: the next access loads the file again.
CFG_INI_API bool cfg_write_and_close_user_ini_file();

#endif
