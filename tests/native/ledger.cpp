#include "ledger.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

Ledger ledger;

extern "C" {
void *__real_malloc(std::size_t size);
void __real_free(void *address);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void __wrap_free(void *address);
int __wrap_madvise(void *address, std::size_t size, int advice);
}

namespace {
// Above this a block is reserved without memory behind it, above the second limit it's refused.
constexpr std::size_t realLimit = std::size_t{1} << 28, addressLimit = std::size_t{1} << 40;
} // namespace

void Ledger::begin(const Plan &newPlan) {
    events.clear();
    plan = newPlan;
    allocations = fetches = solverCalls = 0;
    failed = false;
    recording = true;
}

void Ledger::end() {
    for (const auto &[address, block] : blocks)
        ADD_FAILURE() << "leaked block " << block.name << " of " << block.size << " bytes";
    while (!blocks.empty())
        release(blocks.begin()->first);
    recording = false;
}

Block *Ledger::blockOf(const void *address, std::size_t *offset) {
    auto *byte = static_cast<char *>(const_cast<void *>(address));
    auto after = blocks.upper_bound(byte);
    if (after == blocks.begin())
        return nullptr;
    auto &[start, block] = *--after;
    std::size_t distance = static_cast<std::size_t>(byte - start);
    if (distance > block.size)
        return nullptr;
    if (offset)
        *offset = distance;
    return &block;
}

std::string Ledger::place(const void *address) {
    std::size_t offset = 0;
    const Block *block = blockOf(address, &offset);
    if (!block)
        return address ? "&" : "null";
    return block->name + (offset ? "+" + std::to_string(offset) : "");
}

void *Ledger::allocate(const std::string &event, std::size_t size, bool zeroed) {
    std::string name(1, static_cast<char>('a' + allocations));
    bool mapped = size > realLimit;
    if (isPlanned(allocations, plan.allocation) || size > addressLimit) {
        note(event + " fails");
        return nullptr;
    }
    void *address = mapped ? mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)
                           : __real_malloc(size);
    // Whoever relies on zeros that nobody promised shall notice.
    if (!mapped)
        std::memset(address, zeroed && !plan.dirtyCalloc ? 0 : 0xEE, size);
    blocks[static_cast<char *>(address)] = {name, size, mapped, zeroed};
    note(name + "=" + event);
    return address;
}

void Ledger::release(void *address) {
    auto found = blocks.find(static_cast<char *>(address));
    if (found == blocks.end()) {
        ADD_FAILURE() << "free of " << (address ? "something that isn't allocated" : "null");
        return;
    }
    Block block = found->second;
    blocks.erase(found);
    note("free " + block.name);
    if (block.mapped)
        munmap(address, block.size);
    else
        __real_free(address);
}

void *__wrap_malloc(std::size_t size) {
    return ledger.recording ? ledger.allocate("malloc " + std::to_string(size), size, false)
                            : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
    std::string event = "calloc " + std::to_string(count) + " " + std::to_string(size);
    return ledger.allocate(event, count * size, true);
}

void __wrap_free(void *address) {
    if (ledger.recording)
        ledger.release(address);
    else
        __real_free(address);
}

// All whole pages of a block are expected to be advised, and none that others share.
int __wrap_madvise(void *address, std::size_t size, int advice) {
    constexpr std::size_t page = 4096;
    std::size_t offset = 0;
    const Block *block = ledger.blockOf(address, &offset);
    bool whole = block && reinterpret_cast<std::uintptr_t>(address) % page == 0 &&
                 size % page == 0 && offset < page && offset + size <= block->size &&
                 offset + size + page > block->size;
    ledger.note((advice == MADV_HUGEPAGE && whole ? "huge " : "advises wrongly ") +
                ledger.place(address).substr(0, 1));
    return 0;
}
