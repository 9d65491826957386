// The library and the plain store, as the shared workloads see them.
#ifndef BENCHMARKS_STORES_H
#define BENCHMARKS_STORES_H

#include <string>

#include "benchmarks/plain_store.h"
#include "cfg_ini/cfg_ini.h"

struct OURS
{
    static void load(const std::string& path)
    {
        cfg_read_ini_file(path);
    }
    static void reread(const std::string& path)
    {
        cfg_read_ini_file(path);
    }
    static void clear()
    {
        cfg_close_ini_file();
    }
    static bool read_bool(const auto& name)
    {
        return cfg_is_on(name, false);
    }
    static int read_int(const auto& name)
    {
        return cfg_get_int_value(name, 0);
    }
    static unsigned int read_uint(const auto& name)
    {
        return cfg_get_uint_value(name, 0);
    }
    static std::string read_text(const auto& name)
    {
        return cfg_get_value(name);
    }
    static double read_double(const auto& name)
    {
        return cfg_get_double_value(name, 0.0);
    }
    static void set(const std::string& name, const std::string& value)
    {
        cfg_set_value(name, value);
    }
};

struct PLAIN
{
    static void load(const std::string& path)
    {
        plain_read_ini_file(path);
    }
    static void reread(const std::string& path)
    {
        plain_read_ini_file(path);
    }
    static void clear()
    {
        plain_close_ini_file();
    }
    static bool read_bool(const std::string& name)
    {
        return plain_is_on(name, false);
    }
    static int read_int(const std::string& name)
    {
        return plain_get_int_value(name, 0);
    }
    static std::string read_text(const std::string& name)
    {
        return plain_get_value(name);
    }
    static double read_double(const std::string& name)
    {
        return plain_get_double_value(name, 0.0);
    }
    static void set(const std::string& name, const std::string& value)
    {
        plain_set_value(name, value);
    }
};

#endif
