#include "input.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <unordered_map>
#include <utility>

namespace korvex {

size_t readCount(int count, const char *what) {
    if (count < 0)
        fail(KVX_ERROR_INVALID_ARGUMENT, "%s: the count %d is negative", what, count);
    return at(count);
}

size_t readIndex(int index, size_t limit, const char *what) {
    if (index < 0 || at(index) >= limit)
        fail(KVX_ERROR_INDEX_OUT_OF_RANGE, "%s %d: there are %zu", what, index, limit);
    return at(index);
}

void readRange(int start, int count, size_t limit, const char *what) {
    if (readCount(count, what) > 0 && at(count) > limit - readIndex(start, limit, what))
        fail(KVX_ERROR_INDEX_OUT_OF_RANGE, "%d %s from %d on: there are %zu", count, what, start,
             limit);
}

double readFinite(double value, const char *what) {
    if (!std::isfinite(value))
        fail(KVX_ERROR_INVALID_ARGUMENT, "%s must be a finite number", what);
    return value;
}

std::string readName(const char *name) {
    if (name && !isName(name))
        fail(KVX_ERROR_INVALID_ARGUMENT, "a name must be UTF-8 text without control characters");
    return name ? name : "";
}

static Range readBounds(Range range, const char *what, size_t index) {
    if (std::isnan(range.lower) || std::isnan(range.upper))
        fail(KVX_ERROR_INVALID_ARGUMENT, "%s %zu: a bound isn't a number", what, index);
    range.lower = std::max(range.lower, -KVX_INFINITY);
    range.upper = std::min(range.upper, KVX_INFINITY);
    if (range.lower > range.upper || range.lower >= KVX_INFINITY || range.upper <= -KVX_INFINITY)
        fail(KVX_ERROR_INVALID_ARGUMENT, "%s %zu: the bounds %s and %s contradict each other", what,
             index, toText(range.lower).c_str(), toText(range.upper).c_str());
    return range;
}

Range readDomain(Range domain, size_t index) {
    if (!std::memchr("CBISN", domain.kind, 5))
        fail(KVX_ERROR_INVALID_ARGUMENT, "variable %zu: unknown type (character code %d)", index,
             domain.kind);
    if (domain.kind == KVX_BINARY) {
        domain.lower = domain.lower < 0 ? 0 : domain.lower;
        domain.upper = domain.upper > 1 ? 1 : domain.upper;
    }
    return readBounds(domain, "variable", index);
}

Range readSides(Range sides, size_t index) {
    return readBounds(sides, "constraint", index);
}

Range sidesOf(char sense, double rhs, size_t index) {
    if (!std::memchr("<>=", sense, 3))
        fail(KVX_ERROR_INVALID_ARGUMENT, "unknown constraint sense (character code %d)", sense);
    return readSides({sense == KVX_LESS_EQUAL ? -KVX_INFINITY : rhs,
                      sense == KVX_GREATER_EQUAL ? KVX_INFINITY : rhs, sense},
                     index);
}

int readObjSense(int sense) {
    if (sense != KVX_MINIMIZE && sense != KVX_MAXIMIZE)
        fail(KVX_ERROR_INVALID_ARGUMENT, "unknown objective sense %d", sense);
    return sense;
}

// The cost doesn't depend on how large the indices are, since models are built row by row.
bool hasTwins(const std::vector<Entry> &entries, size_t begin) {
    const Entry *first = entries.data() + begin, *last = entries.data() + entries.size();
    auto isIncreasing = [](const Entry &a, const Entry &b) { return a.index < b.index; };
    if (std::adjacent_find(first, last, std::not_fn(isIncreasing)) == last)
        return false;
    if (last - first <= 16) {
        for (const Entry *entry = first; entry != last; entry++)
            for (const Entry *other = first; other != entry; other++)
                if (other->index == entry->index)
                    return true;
        return false;
    }
    std::vector<Entry> sorted(first, last);
    std::sort(sorted.begin(), sorted.end(), isIncreasing);
    return std::adjacent_find(sorted.begin(), sorted.end(), std::not_fn(isIncreasing)) !=
           sorted.end();
}

void readList(Lists &lists, int count, const int *ind, const double *val, size_t limit,
              const char *what) {
    readArray(count, ind, "indices");
    readArray(count, val, "coefficients");
    std::vector<Entry> &entries = lists.entries;
    const size_t begin = entries.size(), length = at(count);
    grow(entries, length);
    entries.resize(begin + length);
    Entry *const list = entries.data() + begin;
    bool hasZeros = false;
    for (size_t k = 0; k < length; k++) {
        if (ind[k] < 0 || at(ind[k]) >= limit || !std::isfinite(val[k])) {
            readIndex(ind[k], limit, what);
            readFinite(val[k], "a coefficient");
        }
        list[k] = {ind[k], val[k]};
        hasZeros |= val[k] == 0;
    }
    if (hasTwins(entries, begin)) {
        std::unordered_map<int, size_t> places;
        for (size_t k = 0; k < length; k++)
            if (auto [place, isNew] = places.emplace(list[k].index, k); !isNew)
                list[place->second].value += std::exchange(list[k].value, 0);
        hasZeros = true;
    }
    if (hasZeros) {
        auto isZero = [](const Entry &entry) { return entry.value == 0; };
        entries.resize(
            static_cast<size_t>(std::remove_if(list, list + length, isZero) - entries.data()));
    }
    lists.begin.push_back(entries.size());
}

std::vector<Entry> readList(int count, const int *ind, const double *val, size_t limit,
                            const char *what) {
    Lists lists;
    readList(lists, count, ind, val, limit, what);
    return std::move(lists.entries);
}

std::vector<int> readBegins(int count, int total, const int *beg) {
    size_t lists = readCount(count, "lists");
    std::vector<int> begins(lists + 1, 0);
    if (readCount(total, "entries") && lists)
        std::copy_n(needed(beg, "begins"), lists, begins.begin());
    else if (total > 0)
        fail(KVX_ERROR_INVALID_ARGUMENT, "%d entries for no list", total);
    begins.back() = total;
    for (size_t k = 0; k < lists; k++)
        if (begins[k] < 0 || begins[k] > begins[k + 1])
            fail(KVX_ERROR_INVALID_ARGUMENT, "begin %zu, %d, isn't between 0 and its successor, %d",
                 k, begins[k], begins[k + 1]);
    return begins;
}

Lists readLists(int count, int total, const int *beg, const int *ind, const double *val,
                size_t limit, const char *what) {
    std::vector<int> begins = readBegins(count, total, beg);
    readArray(total, ind, "indices");
    readArray(total, val, "coefficients");
    Lists lists;
    lists.begin.reserve(begins.size());
    lists.entries.reserve(at(total));
    for (size_t k = 0; k + 1 < begins.size(); k++)
        readList(lists, begins[k + 1] - begins[k], ind ? ind + begins[k] : nullptr,
                 val ? val + begins[k] : nullptr, limit, what);
    return lists;
}

Products readProducts(int count, const int *row, const int *col, const double *val, size_t limit) {
    readArray(count, row, "first indices");
    readArray(count, col, "second indices");
    readArray(count, val, "coefficients");
    Products products;
    for (int k = 0; k < count; k++) {
        readIndex(row[k], limit, "variable");
        readIndex(col[k], limit, "variable");
        products[std::minmax(row[k], col[k])] += readFinite(val[k], "a coefficient");
    }
    for (auto product = products.begin(); product != products.end();)
        product = product->second == 0 ? products.erase(product) : std::next(product);
    return products;
}

void readPoints(int count, const double *x, const double *y) {
    readArray(count, x, "x");
    readArray(count, y, "y");
    for (int k = 0; k < count; k++) {
        readFinite(x[k], "a breakpoint");
        readFinite(y[k], "a breakpoint");
        if (k > 0 && x[k] < x[k - 1])
            fail(KVX_ERROR_INVALID_ARGUMENT, "breakpoint %d: x decreases", k);
    }
}

} // namespace korvex
