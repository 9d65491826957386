#include <glib.h>

#include <memory>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

namespace
{
struct GLIB_KEY_FILE
{
    static void load(const std::string& path)
    {
        file = g_key_file_new();
        g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr);
    }
    static void clear()
    {
        g_key_file_free(file);
        file = nullptr;
    }
    static bool read_bool(const auto& name)
    {
        return g_key_file_get_boolean(file, section, characters(name), nullptr) != 0;
    }
    static int read_int(const auto& name)
    {
        return g_key_file_get_integer(file, section, characters(name), nullptr);
    }
    static auto read_text(const auto& name)
    {
        return std::unique_ptr<char, decltype(&g_free)>(g_key_file_get_string(file, section, characters(name), nullptr),
                                                        g_free);
    }
    static double read_double(const auto& name)
    {
        return g_key_file_get_double(file, section, characters(name), nullptr);
    }
    static void set(const std::string& name, const std::string& value)
    {
        g_key_file_set_value(file, section, name.c_str(), value.c_str());
    }

private:
    static constexpr const char* section = "settings";
    static inline GKeyFile* file = nullptr;
};
}

void add_rows_of_glib_key_file(bool long_files)
{
    add_store_rows<GLIB_KEY_FILE>(glib_key_file, long_files);
}
