// Checks of what callers hand in: every function here fails with a text when something is wrong, so
// that a model is only changed after all of its new data have been read.
#ifndef KORVEX_SOLVER_INPUT_H
#define KORVEX_SOLVER_INPUT_H

#include "guard.h"

#include <algorithm>
#include <tuple>

namespace korvex {

// A count that isn't negative.
size_t readCount(int count, const char *what);

// An index below the limit.
size_t readIndex(int index, size_t limit, const char *what);

// count items from start on.
void readRange(int start, int count, size_t limit, const char *what);

// A number that isn't a NaN and not infinite.
double readFinite(double value, const char *what);

// A name; "" for null.
std::string readName(const char *name);

// An array of count entries may be null only when the count is 0.
template <class T>
T *readArray(int count, T *array, const char *what) {
    return readCount(count, what) ? needed(array, what) : array;
}

// The domain of a variable or the two sides of a row, and its type or sense character.
struct Range {
    double lower, upper;
    char kind;
    auto tuple() const { return std::tuple(lower, upper, kind); }
};

// Known types, no NaN, no contradiction; the bounds of a binary variable lie within 0 and 1, those
// beyond +-KVX_INFINITY at it.
Range readDomain(Range domain, size_t index);
Range readSides(Range sides, size_t index);

// The sides of a row of that sense.
Range sidesOf(char sense, double rhs, size_t index);

int readObjSense(int sense);

// Whether an index is there twice from an entry on.
bool hasTwins(const std::vector<Entry> &entries, size_t begin = 0);

// A sparse list: sums entries of equal index at the place of the first, drops zeros.
std::vector<Entry> readList(int count, const int *ind, const double *val, size_t limit,
                            const char *what);

// The begins of count lists in compressed sparse layout, and the total behind them.
std::vector<int> readBegins(int count, int total, const int *beg);

// count such lists.
Lists readLists(int count, int total, const int *beg, const int *ind, const double *val,
                size_t limit, const char *what);

// Appends another one to lists.
void readList(Lists &lists, int count, const int *ind, const double *val, size_t limit,
              const char *what);

// Terms with a product of two variables, those with the same two summed; drops zeros.
Products readProducts(int count, const int *row, const int *col, const double *val, size_t limit);

// Breakpoints, by non-decreasing x.
void readPoints(int count, const double *x, const double *y);

// Stores data where the caller wants them.
template <class T>
void store(T *target, const T &value) {
    if (target)
        *target = value;
}
template <class T>
void storeAll(T *target, const std::vector<T> &values) {
    if (target)
        std::copy(values.begin(), values.end(), target);
}
template <class List>
void storeEntries(int *ind, double *val, const List &entries) {
    for (size_t k = 0; k < entries.size(); k++) {
        store(ind ? ind + k : nullptr, entries[k].index);
        store(val ? val + k : nullptr, entries[k].value);
    }
}

// Undoes what a call has done when it fails.
template <class Undo>
struct OnFailure {
    Undo undo;
    const int failures = std::uncaught_exceptions();
    ~OnFailure() {
        if (std::uncaught_exceptions() > failures)
            undo();
    }
};
template <class Undo>
OnFailure(Undo) -> OnFailure<Undo>;

} // namespace korvex

#endif
