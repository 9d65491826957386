// Assignments by the program: the two store operations beneath the public setters (cfg_ini/cfg_ini.h).
#ifndef CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H
#define CFG_INI_CFG_INI_READER_VARIABLE_ASSIGNMENT_H

#include <string>

// Each loads the settings first if there is no store, takes the lock, makes the record if need be, stores and converts
// the text, clears the mark of a valid read, notifies the callbacks of exactly this name with the lock held, and marks
// the settings as changed. No access is counted. An exception out of a callback leaves the lock held.
void cfg_ini_insert_element(const std::string& name, const std::string& value);

// The same, and marks the record external; the first form never touches that mark.
void cfg_ini_insert_element_external_ini(const std::string& name, const std::string& value);

#endif
