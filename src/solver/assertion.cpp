#include "assertion.h"

#include "guard.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csetjmp>
#include <cstring>
#include <utility>

namespace korvex {
namespace {

// What a library says when it gives up: texts of its own, which live as long as it does.
struct Reason {
    const char *text, *file;
    unsigned line;
};

struct Protection;
thread_local Protection *innermost = nullptr;
thread_local Reason lastReason;

struct Protection {
    std::jmp_buf start;
    Protection *outer = std::exchange(innermost, this);
    ~Protection() { innermost = outer; }
};

void leave(const Reason &reason) {
    if (!innermost)
        return;
    lastReason = reason;
    std::longjmp(innermost->start, 1);
}

// What COIN calls in place of the C library's functions. Those don't throw, by their declarations,
// and an exception would end the process at the first frame that has something to destruct.
void assertFail(const char *assertion, const char *file, unsigned line, const char *function) {
    leave({assertion, file, line});
    __assert_fail(assertion, file, line, function);
}
void abortProcess() {
    leave({"abort", nullptr, 0});
    std::abort();
}
void exitProcess(int status) {
    leave({"exit", nullptr, 0});
    std::exit(status);
}

const struct {
    const char *name;
    ElfW(Addr) function;
} replacements[] = {{"__assert_fail", reinterpret_cast<ElfW(Addr)>(assertFail)},
                    {"abort", reinterpret_cast<ElfW(Addr)>(abortProcess)},
                    {"exit", reinterpret_cast<ElfW(Addr)>(exitProcess)}};

bool isCoin(std::string_view path) {
    const std::string_view file = path.substr(path.rfind('/') + 1);
    for (std::string_view name : {"libClp.", "libCbc.", "libCbcSolver.", "libCgl.", "libCoinUtils.",
                                  "libOsi.", "libOsiClp."})
        if (file.substr(0, name.size()) == name)
            return true;
    return false;
}

// Writes the replacements to where a library keeps the addresses of what it calls.
int replaceCalls(dl_phdr_info *library, size_t, void *) {
    if (!isCoin(library->dlpi_name))
        return 0;
    const auto base = library->dlpi_addr;
    ElfW(Addr) tables[DT_JMPREL + 1] = {}; // by their tags
    char *readOnly = nullptr;              // since the library was loaded
    size_t readOnlySize = 0;
    for (int i = 0; i < library->dlpi_phnum; i++) {
        const ElfW(Phdr) &segment = library->dlpi_phdr[i];
        if (segment.p_type == PT_DYNAMIC)
            for (auto entry = reinterpret_cast<ElfW(Dyn) *>(base + segment.p_vaddr);
                 entry->d_tag != DT_NULL; entry++)
                if (entry->d_tag <= DT_JMPREL)
                    tables[entry->d_tag] = entry->d_un.d_ptr;
        if (segment.p_type == PT_GNU_RELRO) {
            const auto page = static_cast<ElfW(Addr)>(sysconf(_SC_PAGESIZE));
            const auto start = (base + segment.p_vaddr) / page * page;
            readOnly = reinterpret_cast<char *>(start);
            readOnlySize = (base + segment.p_vaddr + segment.p_memsz) / page * page - start;
        }
    }
    // Some loaders leave the addresses relative.
    auto address = [&](int tag) { return tables[tag] < base ? base + tables[tag] : tables[tag]; };
    const auto names = reinterpret_cast<const char *>(address(DT_STRTAB));
    const auto symbols = reinterpret_cast<const ElfW(Sym) *>(address(DT_SYMTAB));
    if (tables[DT_PLTREL] != DT_RELA || mprotect(readOnly, readOnlySize, PROT_READ | PROT_WRITE))
        return 0; // What COIN asserts ends the process, then.
    for (auto [table, size] : {std::pair(DT_RELA, DT_RELASZ), std::pair(DT_JMPREL, DT_PLTRELSZ)}) {
        const auto first = reinterpret_cast<const ElfW(Rela) *>(address(table));
        for (auto entry = first; entry < first + tables[size] / sizeof *first; entry++)
            for (const auto &[name, function] : replacements)
                if (std::strcmp(names + symbols[ELF64_R_SYM(entry->r_info)].st_name, name) == 0)
                    *reinterpret_cast<ElfW(Addr) *>(base + entry->r_offset) = function;
    }
    mprotect(readOnly, readOnlySize, PROT_READ);
    return 0;
}

} // namespace

bool comesToItsEnd(const std::function<void()> &work) {
    static const int once = dl_iterate_phdr(replaceCalls, nullptr);
    static_cast<void>(once);
    Protection protection;
    if (setjmp(protection.start))
        return false;
    work();
    return true;
}

void failByAssertion() {
    const auto [text, file, line] = lastReason;
    const char *slash = file ? std::strrchr(file, '/') : nullptr;
    if (file)
        fail(KVX_ERROR_INTERNAL, "COIN gave up: %s (%s:%u)", text, slash ? slash + 1 : file, line);
    fail(KVX_ERROR_INTERNAL, "COIN gave up: %s", text);
}

CalledByCoin::CalledByCoin() : protection(std::exchange(innermost, nullptr)) {}

CalledByCoin::~CalledByCoin() {
    innermost = static_cast<Protection *>(protection);
}

} // namespace korvex
