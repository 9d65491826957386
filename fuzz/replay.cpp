// Runs a fuzz target once for every file of the directories that are given: inputs kept from earlier runs, as a test
// for any compiler.
#include <filesystem>
#include <set>

#include "fuzz/fuzz_support.h"

int main(int argc, char** argv)
{
    std::set<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i)
    {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            inputs.insert(std::filesystem::absolute(entry.path()));
    }
    for (const std::filesystem::path& input : inputs)
    {
        std::printf("%s\n", input.c_str());
        std::fflush(stdout); // the last one printed is the one that failed
        const std::string bytes = fuzz::read_file(input);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
