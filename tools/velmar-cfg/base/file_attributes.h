// Copies what belongs to a file besides its bytes.
#ifndef TOOLS_VELMAR_CFG_BASE_FILE_ATTRIBUTES_H
#define TOOLS_VELMAR_CFG_BASE_FILE_ATTRIBUTES_H

#include <string>

// Gives the open file `to` the owner, the group, the mode, the access control list and the extended attributes of
// `from`. Removes what `to` has beyond them, such as entries of its directory's default access control list. Leaves
// security labels to the system. Returns the empty text, or what could not be kept, as in "its owner 'lea' cannot be
// kept".
std::string take_over_attributes(int from, int to);

#endif
