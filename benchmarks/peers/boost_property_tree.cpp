#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>

#include "benchmarks/peers/peers.h"
#include "benchmarks/store_workloads.h"

namespace
{
struct BOOST_PROPERTY_TREE
{
    static void load(const std::string& path)
    {
        boost::property_tree::read_ini(path, tree);
        section = &tree.get_child("settings");
    }
    static void clear()
    {
        tree.clear();
    }
    static bool read_bool(const auto& name)
    {
        return section->get(name, false);
    }
    static int read_int(const auto& name)
    {
        return section->get(name, 0);
    }
    static std::string read_text(const auto& name)
    {
        return section->get(name, std::string());
    }
    static double read_double(const auto& name)
    {
        return section->get(name, 0.0);
    }
    static void set(const std::string& name, const std::string& value)
    {
        section->put(name, value);
    }

private:
    static inline boost::property_tree::ptree tree;
    static inline boost::property_tree::ptree* section = nullptr;
};
}

void add_rows_of_boost_property_tree(bool long_files)
{
    add_store_rows<BOOST_PROPERTY_TREE>("Boost property tree", long_files);
}
