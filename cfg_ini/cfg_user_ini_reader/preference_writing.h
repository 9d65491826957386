// Saving and unloading the preferences. What the public header leaves out.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_WRITING_H

// Frees every record and both maps: nothing is loaded afterwards, and assignments that were not saved are lost. A null
// record, which the store itself never makes, is reported and passed over.
void cfg_close_user_ini_file();

#endif
