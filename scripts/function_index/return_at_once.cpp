// Preloaded into a test program, makes one function of it or of its libraries return at once, with the empty value of
// its type. ZON_RETURN_AT_ONCE names the function's symbol and what it returns: "_Z9cfg_is_on16CFG_INI_VAR_ENUM zero".
//
// The constructor looks for the symbol in the symbol tables of the program and of every library that is loaded by then,
// so that functions of static libraries and calls within a library are found, too. It overwrites the beginning of the
// function: with instructions that set the result registers to zero and return, or, for a result that is an object,
// with a jump to a function of here that makes one. x86-64 only.
//
// A program that lacks the symbol runs as it is. A function that is too short for the jump ends the program with a
// message and exit code 99.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <vector>

#include "cfg_ini/cfg_ini.h"
#include "cfg_ini/cfg_settings_sources.h"
#include "cfg_run_report/cfg_run_report.h"
#include "platform/fio/fio.h"

namespace
{
// Functions that return such an object are called with its address in place of the first argument. The others are left
// alone by what stands in for them, so that it needs no parameters.
template <typename RESULT>
RESULT empty_object()
{
    return {};
}

template <typename RESULT>
RESULT& empty_object_elsewhere()
{
    static RESULT object;
    return object;
}

struct RESULT_KIND
{
    const char* name;
    void* stand_in; // null for results in registers, and for none
};

const RESULT_KIND result_kinds[] = {
    {"zero", nullptr},
    {"text", reinterpret_cast<void*>(&empty_object<std::string>)},
    {"texts", reinterpret_cast<void*>(&empty_object<std::vector<std::string>>)},
    {"optional-text", reinterpret_cast<void*>(&empty_object<std::optional<std::string>>)},
    {"report-result", reinterpret_cast<void*>(&empty_object<CFG_RUN_REPORT_RESULT>)},
    {"sources", reinterpret_cast<void*>(&empty_object<CFG_SETTINGS_SOURCES>)},
    {"map-reference",
     reinterpret_cast<void*>(&empty_object_elsewhere<std::unordered_map<std::string, CFG_INI_VAR_ENUM>>)},
    {"path-reference", reinterpret_cast<void*>(&empty_object_elsewhere<FIO_PATH>)},
};

[[noreturn]] void give_up(const char* what)
{
    std::fprintf(stderr, "return_at_once: %s\n", what);
    _exit(99);
}

struct WANTED
{
    std::string_view symbol;
    void* stand_in;
};

void overwrite(char* function, std::uint64_t size, void* stand_in)
{
    unsigned char code[12] = {0x31, 0xc0, 0x0f, 0x57, 0xc0, 0xc3}; // xor eax,eax; xorps xmm0,xmm0; ret
    std::size_t length = 6;
    if (stand_in != nullptr)
    {
        const unsigned char jump[12] = {0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xe0}; // mov rax,address; jmp rax
        std::memcpy(code, jump, sizeof jump);
        std::memcpy(code + 2, &stand_in, sizeof stand_in);
        length = sizeof jump;
    }
    if (size < length)
        give_up("the function is too short");
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(function) & ~(page - 1);
    const std::size_t bytes = reinterpret_cast<std::uintptr_t>(function) + length - first;
    if (mprotect(reinterpret_cast<void*>(first), bytes, PROT_READ | PROT_WRITE | PROT_EXEC) != 0)
        give_up("the function cannot be overwritten");
    std::memcpy(function, code, length);
    mprotect(reinterpret_cast<void*>(first), bytes, PROT_READ | PROT_EXEC);
}

void overwrite_in(const char* file, std::uintptr_t loaded_at, const WANTED& wanted)
{
    const int descriptor = open(file, O_RDONLY | O_CLOEXEC);
    struct stat found;
    if (descriptor < 0 || fstat(descriptor, &found) != 0 || found.st_size == 0)
        return; // the kernel's own object has no file
    const auto size = static_cast<std::size_t>(found.st_size);
    void* const mapped = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    close(descriptor);
    if (mapped == MAP_FAILED)
        give_up("a file cannot be mapped");
    const char* const bytes = static_cast<const char*>(mapped);
    const auto* const header = reinterpret_cast<const ElfW(Ehdr)*>(bytes);
    const auto* const sections = reinterpret_cast<const ElfW(Shdr)*>(bytes + header->e_shoff);
    for (int i = 0; i < header->e_shnum; ++i)
    {
        if (sections[i].sh_type != SHT_SYMTAB)
            continue;
        const auto* const symbols = reinterpret_cast<const ElfW(Sym)*>(bytes + sections[i].sh_offset);
        const char* const names = bytes + sections[sections[i].sh_link].sh_offset;
        for (std::size_t s = 0; s < sections[i].sh_size / sizeof(ElfW(Sym)); ++s)
        {
            const ElfW(Sym)& symbol = symbols[s];
            if (ELF64_ST_TYPE(symbol.st_info) == STT_FUNC && symbol.st_shndx != SHN_UNDEF &&
                wanted.symbol == names + symbol.st_name)
                overwrite(reinterpret_cast<char*>(loaded_at + symbol.st_value), symbol.st_size, wanted.stand_in);
        }
    }
    munmap(mapped, size);
}

int overwrite_in_object(dl_phdr_info* object, std::size_t, void* wanted)
{
    const char* const file = object->dlpi_name[0] == '\0' ? "/proc/self/exe" : object->dlpi_name;
    overwrite_in(file, object->dlpi_addr, *static_cast<const WANTED*>(wanted));
    return 0;
}

__attribute__((constructor)) void overwrite_function()
{
    const char* const text = std::getenv("ZON_RETURN_AT_ONCE");
    const char* const space = text == nullptr ? nullptr : std::strchr(text, ' ');
    if (space == nullptr)
        give_up("ZON_RETURN_AT_ONCE is to name a symbol and a kind of result");
    for (const RESULT_KIND& kind : result_kinds)
    {
        if (std::string_view(space + 1) == kind.name)
        {
            WANTED wanted{{text, static_cast<std::size_t>(space - text)}, kind.stand_in};
            dl_iterate_phdr(overwrite_in_object, &wanted);
            return;
        }
    }
    give_up("there is no such kind of result");
}
}
