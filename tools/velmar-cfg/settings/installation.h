// The installation that the tool looks at. This program brings its own path services (platform/gen/gen.h), which answer
// for the installation that is set and otherwise as the defaults do.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H
#define TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H

#include <string>

// Directories that end in "/"; both empty for those of this program.
struct INSTALLATION
{
    std::string programs; // in which the executable is
    std::string root;
};

// Programs are in `root`/bin.
INSTALLATION installation_of_root(const std::string& root);

// That of the executables in this directory.
INSTALLATION installation_of_programs(const std::string& directory);

// The services answer for this one from now on. Returns what they answered for before.
INSTALLATION set_installation(INSTALLATION installation);

#endif
