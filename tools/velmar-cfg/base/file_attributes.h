// What belongs to a file beside its bytes.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_ATTRIBUTES_H
#define TOOLS_VELMAR_CFG_BASE_FILE_ATTRIBUTES_H

#include <string>

// Gives the open file `to` the owner, the group, the mode, the access control list and the extended attributes of
// `from`, and takes away what it has beyond them, such as what its directory's default list gave it. Security labels
// are left to the system. Returns the empty text, or what could not be kept, as in "its owner 'lea' cannot be kept".
std::string take_over_attributes(int from, int to);

#endif
