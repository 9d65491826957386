// Other people's stores of settings, each measured where it is installed, through its natural calls.
#ifndef BENCHMARKS_PEERS_PEERS_H
#define BENCHMARKS_PEERS_PEERS_H

inline constexpr const char* glib_key_file = "GLib key file"; // goals refer to it

void add_rows_of_glib_key_file(bool long_files);
void add_rows_of_inih_reader(bool long_files);
void add_rows_of_simple_ini(bool long_files);
void add_rows_of_boost_property_tree(bool long_files);
void add_rows_of_qt_settings(bool long_files);
void add_rows_of_abseil_flags();

#endif
