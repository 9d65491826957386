// Prints where it stands: copied about by the tests of the well-known directories.
#include <cstdio>

#include "platform/gen/gen.h"

int main()
{
    std::printf("%s\n%s\n", gen_get_module_path().c_str(), gen_get_velmar_path().c_str());
}
