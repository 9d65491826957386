// Storing an assignment: the one way by which a value gets into a record.
#ifndef CFG_INI_CFG_INI_READER_VALUE_STORING_H
#define CFG_INI_CFG_INI_READER_VALUE_STORING_H

#include <string>
#include <string_view>

// Each reads the settings files first if there is no store, takes the lock, makes the record if need be, stores and
// converts the text, clears the mark of a valid read, tells the callbacks of exactly this name with the lock held, and
// marks the settings as changed. No access is counted. An exception out of a callback leaves the lock held.
void cfg_ini_insert_element(const std::string& name, const std::string& value);

// The same, and marks the record external; the first form never touches that mark.
void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value);

// Either of the two, for texts that are no strings. They need not end in a zero byte.
void store_setting(std::string_view name, std::string_view value, bool external);

#endif
