// A small host of the user preference store: asks for preferences, assigns some, and saves them.
//
// Usage: example_preferences, with VELMAR2_INI naming the directory of the velmar2.ini to be read and rewritten
#include <cstdio>
#include <string>

#include "cfg_ini/cfg_ini.h"

namespace
{
void print_row(const std::string& key, const std::string& text)
{
    std::printf("  %-33s %s\n", key.c_str(), text.c_str());
}

void print_answer(CFG_USER_INI_ENUMS preference)
{
    const std::string value = cfg_get_user_ini_value(preference);
    print_row(cfg_get_user_ini_ini_string(preference), value.empty() ? "(none)" : value);
}

void ask_for_preferences()
{
    std::puts("From this release's section");
    print_answer(PROXY_SETTINGS);
    print_answer(PROXY_USER1);

    std::puts("\nCarried over from older releases");
    for (const CFG_USER_INI_ENUMS preference :
         {HDL_PREFERENCE, GENERATE_JSON_REPORT_FILES, GENERATE_HTML_REPORT_FILES, NUM_PARALLEL_PROCESSORS,
          USER_LIBRARIES, DISPLAY_WARNING_MESSAGES, SHOW_MESSAGE_ID, COMMAND_LINE_ERROR_MESSAGE_COLOR,
          EDA_TOOL_PATH_MODELSIM})
        print_answer(preference);

    std::puts("\nBy the catalogue's default");
    print_answer(PGMW_OVERWRITE_START_UP_DELAY_US);
    print_row("CLOUD_SEND_REPORTS", cfg_user_ini_is_on(CLOUD_SEND_REPORTS, false) ? "is on" : "is off");
}

void assign(const char* key, const char* value)
{
    const bool stored = cfg_set_user_ini_value(key, value);
    print_row(key, std::string(value) + (stored ? "" : " (refused: not one of the allowed values)"));
}

void assign_preferences()
{
    std::puts("\nAssigned");
    assign("HDL_PREFERENCE", "VHDL");
    assign("SHOW_MESSAGE_ID", "sometimes");
    assign("SHOW_MESSAGE_ID", "ON");
    if (cfg_set_user_ini_int_value(PGMW_OVERWRITE_START_UP_DELAY_US, 5000))
        print_answer(PGMW_OVERWRITE_START_UP_DELAY_US);
}
}

int main()
{
    ask_for_preferences();
    assign_preferences();
    if (!cfg_write_and_close_user_ini_file())
    {
        std::fputs("the preferences could not be saved\n", stderr);
        return 1;
    }
    std::puts("\nSaved, and read again");
    print_answer(HDL_PREFERENCE);
    print_answer(SHOW_MESSAGE_ID);
    return 0;
}
