// The installation that the tool looks at. This program replaces the path services (platform/gen/gen.h). They answer
// for the installation that is set; if none is set, they answer as the default services do.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H
#define TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H

#include <string>

// Directories that end in "/". Both are empty for the installation of this program.
struct INSTALLATION
{
    std::string programs; // the directory of the executable
    std::string root;
};

// The installation in `root`, with its programs in `root`/bin.
INSTALLATION installation_of_root(const std::string& root);

// The installation of the executables in this directory.
INSTALLATION installation_of_programs(const std::string& directory);

// Makes the services answer for this installation from now on. Returns the previous one.
INSTALLATION set_installation(INSTALLATION installation);

#endif
