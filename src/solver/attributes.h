// The table of attributes: how each is read and set.
#ifndef KORVEX_SOLVER_ATTRIBUTES_H
#define KORVEX_SOLVER_ATTRIBUTES_H

#include "input.h"

namespace korvex {

// A setter checks the value and, in a second round with commit set, stores it: so a list of values
// is stored only when all of them are good.
template <class T>
struct Access {
    std::function<T(KVXmodel &, size_t)> get;
    std::function<void(KVXmodel &, size_t, T, bool commit)> set; // empty: read-only
};

// What must be there for an attribute to be read.
enum class Needs { Nothing, Result, X, Duals, Basis, Iis };

struct Attribute {
    const char *name;
    int element;                                                                          // KVX_OF_
    std::variant<Access<int>, Access<double>, Access<const char *>, Access<char>> access; // by type
    Needs needs = Needs::Nothing;
    bool changesOptimum = true; // when it is set
};

const std::vector<Attribute> &attributeTable();

} // namespace korvex

#endif
