// Loads the preference file in use by the library, and does nothing else: what checking the file is measured against.
#include "cfg_ini/cfg_ini.h"

int main()
{
    return cfg_get_user_ini_value(HDL_PREFERENCE).empty() ? 1 : 0;
}
