// The installation that the tool looks at. This program brings its own path services (platform/gen/gen.h), which answer
// for the tree given with --root and otherwise as the defaults do.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H
#define TOOLS_VELMAR_CFG_SETTINGS_INSTALLATION_H

#include <string>

// From now on the programs stand in `root`/bin and the installation is `root`.
void set_installation_root(const std::string& root);

#endif
