// Loading has two halves. The first reads the file into maps and publishes them, and cannot be done in part. The second
// hands each search path over to the host, which may fail half-way: a lookup allocates, it may carry a value over, and
// the host's function may throw whatever it likes.
//
// Invariants:
// - From the moment of publishing, each path is owed until it was handed over. As long as this fails, the next use of
//   the preferences tries again, and gets the exception if it fails again. Loading hands no path over twice. But if the
//   value is carried over, its assignment hands it over as well.
// - Nothing is owed while a hand-over runs. So a host's function that asks for a preference, which it should not, gets
//   an answer and does not call itself for ever.
#include "cfg_ini/cfg_user_ini_reader/preference_loading.h"

#include <iterator>
#include <string>
#include <utility>

#include "cfg_ini/cfg_user_ini_enums.h"
#include "cfg_ini/cfg_user_ini_reader/preference_catalogue.h"
#include "cfg_ini/cfg_user_ini_reader/preference_file.h"
#include "cfg_ini/cfg_user_ini_reader/preference_values.h"
#include "platform/fio/fio.h"
#include "platform/ver/ver.h"

using namespace zon_cfg;

namespace zon_cfg
{
constinit std::size_t search_paths_owed = 0;

namespace
{
void hand_over(CFG_USER_INI_ENUMS preference)
{
    const std::size_t position = preference_position(preference);
    const NAMED_PREFERENCE named{preference, cfg_user_ini_ini_names[position], preference_sections[position],
                                 ver_get_version()};
    if (const std::string value = value_of(named, true); !value.empty())
        taker_of(preference)(value);
}
}

void hand_over_owed_search_paths()
{
    std::size_t owed = std::exchange(search_paths_owed, 0);
    try
    {
        for (; owed > 0; --owed)
            hand_over(*(std::end(search_paths) - owed));
    }
    catch (...)
    {
        search_paths_owed = owed;
        throw;
    }
}
}

void cfg_read_user_ini_file()
{
    search_paths_owed = 0;
    const std::string path = cfg_generate_user_ini_file_path();
    if (!FIO_FILE_SYSTEM::exists(path.c_str()))
    {
        publish_preferences(make_preference_maps());
        return;
    }
    publish_preferences(read_preferences(path));
    search_paths_owed = std::size(search_paths);
    hand_over_owed_search_paths();
}
