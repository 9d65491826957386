// The key of this user's masks. All processes of the user share it, and no other user has it.
#ifndef TOOLS_VELMAR_CFG_BASE_MASK_KEY_H
#define TOOLS_VELMAR_CFG_BASE_MASK_KEY_H

#include <string>

struct MASK_KEY
{
    std::string bytes;
    std::string name;    // 16 hexadecimal digits, which tell keys apart and nothing else about them
    bool lasting;        // it is the user's key; else a key of this process alone
    std::string problem; // why the user's key is not used, and what to do about it; empty if it is used or not wanted
};

// A key of this process alone.
MASK_KEY passing_mask_key();

// The path of the user's key: $XDG_DATA_HOME/velmar-cfg/mask-key. If the variable is not set or is no absolute path,
// .local/share in the profile directory takes its place.
std::string mask_key_path();

// The user's key. If there is none, makes one in a file that only the user can read. Processes that make one at the
// same time all get the same key. A key that others may know or have chosen is not used. This is so if its file is a
// link, belongs to another user, or grants others any access. If no user's key can be used, the result is a passing one
// with the problem.
MASK_KEY lasting_mask_key(const std::string& path);

#endif
