#define SI_NO_CONVERSION // bytes, as in the other stores
#include <SimpleIni.h>

#include <memory>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

namespace
{
struct SIMPLE_INI
{
    static void load(const std::string& path)
    {
        file = std::make_unique<CSimpleIniA>();
        file->LoadFile(path.c_str());
    }
    static void clear()
    {
        file.reset();
    }
    static bool read_bool(const auto& name)
    {
        return file->GetBoolValue(section, characters(name), false);
    }
    static int read_int(const auto& name)
    {
        return static_cast<int>(file->GetLongValue(section, characters(name), 0));
    }
    static const char* read_text(const auto& name)
    {
        return file->GetValue(section, characters(name), "");
    }
    static double read_double(const auto& name)
    {
        return file->GetDoubleValue(section, characters(name), 0.0);
    }
    static void set(const std::string& name, const std::string& value)
    {
        file->SetValue(section, name.c_str(), value.c_str());
    }

private:
    static constexpr const char* section = "settings";
    static inline std::unique_ptr<CSimpleIniA> file;
};
}

void add_rows_of_simple_ini(bool long_files)
{
    add_store_rows<SIMPLE_INI>("SimpleIni", long_files);
}
