// The names of the variables that control the library itself, for code that must know all of them. Those in the
// catalogue are elsewhere (variable_catalogue.h).
#ifndef CFG_INI_CFG_INI_READER_OWN_VARIABLES_H
#define CFG_INI_CFG_INI_READER_OWN_VARIABLES_H

namespace zon_cfg::OWN_VARIABLE
{
inline constexpr const char* jtag_auto_config = "jtag_auto_config";
inline constexpr const char* jtag_server_mode = "jtag_server_mode";
inline constexpr const char* enable_benchmarking_mode = "enable_benchmarking_mode";
inline constexpr const char* disable_vexe_mode = "disable_vexe_mode";
inline constexpr const char* disable_vexe_cmd_mode = "disable_vexe_cmd_mode";
inline constexpr const char* disable_vexe_rpt_mode = "disable_vexe_rpt_mode";
inline constexpr const char* debug_msg = "debug_msg";
inline constexpr const char* msg_debug_per_subsystem = "msg_debug_per_subsystem";
inline constexpr const char* debug_msg_level = "debug_msg_level";
inline constexpr const char* cfg_min_accessed_to_report = "cfg_min_accessed_to_report";
inline constexpr const char* cfg_max_to_report = "cfg_max_to_report";

inline constexpr const char* switches[] = {
    jtag_auto_config,      jtag_server_mode, enable_benchmarking_mode, disable_vexe_mode, disable_vexe_cmd_mode,
    disable_vexe_rpt_mode, debug_msg,        msg_debug_per_subsystem,
};
inline constexpr const char* integers[] = {debug_msg_level, cfg_min_accessed_to_report, cfg_max_to_report};
}

#endif
