// A program that keeps a choice of its user. Run twice, it finds the second time what it saved the first time.
#include <iostream>

#include "cfg_ini/cfg_ini.h"

int main()
{
    std::cout << "refused " << !cfg_set_user_ini_value(HDL_PREFERENCE, "COBOL") << '\n'
              << "stored " << cfg_set_user_ini_value(HDL_PREFERENCE, "VHDL") << '\n'
              << "saved " << cfg_write_and_close_user_ini_file() << '\n'
              << "read again " << cfg_get_user_ini_value("HDL_PREFERENCE") << '\n'
              << "default " << cfg_get_user_ini_value("GENERATE_EQUATION_FILES") << '\n';
}
