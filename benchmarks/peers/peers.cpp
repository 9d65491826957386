#include "benchmarks/peers/peers.h"

#include "benchmarks/rows.h"

void add_rows_of_peers([[maybe_unused]] bool long_files)
{
#ifdef ZON_PEER_GLIB
    add_rows_of_glib_key_file(long_files);
#endif
#ifdef ZON_PEER_INIH
    add_rows_of_inih_reader(long_files);
#endif
#ifdef ZON_PEER_SIMPLEINI
    add_rows_of_simple_ini(long_files);
#endif
#ifdef ZON_PEER_BOOST
    add_rows_of_boost_property_tree(long_files);
#endif
#ifdef ZON_PEER_QT
    add_rows_of_qt_settings(long_files);
#endif
#ifdef ZON_PEER_ABSEIL
    add_rows_of_abseil_flags();
#endif
}
