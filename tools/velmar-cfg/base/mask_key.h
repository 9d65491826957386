// The key under which this user's masks are made: the same for every process of the user, and nobody else's.
#ifndef TOOLS_VELMAR_CFG_BASE_MASK_KEY_H
#define TOOLS_VELMAR_CFG_BASE_MASK_KEY_H

#include <string>

struct MASK_KEY
{
    std::string bytes;
    std::string name;    // 16 hexadecimal digits, which tell keys apart and nothing else about them
    bool lasting;        // it is the user's; else it is gone with this process
    std::string problem; // why the user's key is not used, and what to do about it; empty when it is, or is not wanted
};

// A key of this process alone.
MASK_KEY passing_mask_key();

// Where the user's key is: $XDG_DATA_HOME/velmar-cfg/mask-key, or below .local/share of the profile directory when the
// variable is not set or no absolute path.
std::string mask_key_path();

// The user's key; made now, in a file that only the user can read, unless there is one. Of processes that make one at
// once, all get the same. A key that others may know or have chosen is not used: a link, a file of another
// user, one that grants anything to others. The key is then a passing one, with the problem.
MASK_KEY lasting_mask_key(const std::string& path);

#endif
