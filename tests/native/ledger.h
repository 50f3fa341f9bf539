// What the doubles of the virtual machine, the solver and the allocator share: one log of events in
// the order in which they happened, the heap blocks alive, and the failures that are planned.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

struct Block {
    std::string name; // a letter, in order of allocation
    std::size_t size;
    bool mapped; // too large to be real: reserved addresses only
    bool zeroed;
    bool filled = false; // a region copy was made into it
};

// Which allocation, text fetch and solver call fail, counted from 1; 0: none.
struct Plan {
    int allocation = 0;
    int fetch = 0;
    int solverCall = 0;
    int status = 77;
    bool dirtyCalloc = false; // zero-filled memory isn't
};

class Ledger {
  public:
    void begin(const Plan &plan);
    // Stops recording and complains about every block that is still alive.
    void end();

    void note(const std::string &event) { events.push_back(event); }
    // The block that an address points into, or null.
    Block *blockOf(const void *address, std::size_t *offset = nullptr);
    // "a" or "a+4" for an address in a block, "null", "&" for everything else.
    std::string place(const void *address);

    void *allocate(const std::string &event, std::size_t size, bool zeroed);
    void release(void *address);

    bool fetchFails() { return isPlanned(fetches, plan.fetch); }
    bool solverFails() { return isPlanned(solverCalls, plan.solverCall); }

    std::vector<std::string> events;
    Plan plan;
    bool recording = false;
    bool failed = false; // a planned failure has come about

  private:
    bool isPlanned(int &count, int planned) {
        bool now = ++count == planned;
        failed |= now;
        return now;
    }

    std::map<char *, Block> blocks;
    int allocations = 0, fetches = 0, solverCalls = 0;
};

extern Ledger ledger;

// Joins shown elements with a blank.
template <class Iterator, class Show>
std::string listOf(Iterator first, std::size_t count, Show show) {
    std::string text = "[";
    for (std::size_t i = 0; i < count; ++i, ++first)
        text += (i ? " " : "") + show(*first);
    return text + "]";
}
