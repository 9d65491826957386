#include <INIReader.h>

#include <memory>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

namespace
{
struct INIH_READER
{
    static void load(const std::string& path)
    {
        reader = std::make_unique<INIReader>(path);
    }
    static void clear()
    {
        reader.reset();
    }
    static bool read_bool(const std::string& name)
    {
        return reader->GetBoolean(section, name, false);
    }
    static int read_int(const std::string& name)
    {
        return static_cast<int>(reader->GetInteger(section, name, 0));
    }
    static std::string read_text(const std::string& name)
    {
        return reader->Get(section, name, "");
    }
    static double read_double(const std::string& name)
    {
        return reader->GetReal(section, name, 0.0);
    }

private:
    static inline const std::string section = "settings";
    static inline std::unique_ptr<INIReader> reader;
};
}

void add_rows_of_inih_reader(bool long_files)
{
    add_store_rows<INIH_READER>("inih INIReader", long_files);
}
