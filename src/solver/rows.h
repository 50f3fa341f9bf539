// The coefficients of linear constraints: all rows in one array, each in a slice of it with room to
// grow. What is derived from them for quick reading is made when it is asked for.
#ifndef KORVEX_SOLVER_ROWS_H
#define KORVEX_SOLVER_ROWS_H

#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace korvex {

// Indices are ints in the interface and sizes inside.
inline std::size_t at(int index) {
    return static_cast<std::size_t>(index);
}
inline int intSize(std::size_t size) {
    return static_cast<int>(size);
}

struct Entry {
    int index;
    double value;
};

// Entries somewhere else; valid until those change.
struct Entries {
    const Entry *first, *last;
    const Entry *begin() const { return first; }
    const Entry *end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    bool empty() const { return first == last; }
    const Entry &operator[](std::size_t k) const { return first[k]; }
};

// Lists one after the other: list k has the entries from begin[k] to begin[k + 1].
struct Lists {
    std::vector<std::size_t> begin = {0};
    std::vector<Entry> entries;

    std::size_t size() const { return begin.size() - 1; }
    Entries operator[](std::size_t k) const {
        return {entries.data() + begin[k], entries.data() + begin[k + 1]};
    }
};

// Makes room for more elements, so that adding many costs as much one by one as all at once.
template <class Element>
void grow(std::vector<Element> &elements, std::size_t more) {
    if (elements.capacity() < elements.size() + more)
        elements.reserve(elements.size() + std::max(more, elements.size()));
}

class Rows {
  public:
    std::size_t size() const { return slices.size(); }
    std::size_t nonzeros() const { return count; }

    // The entries by variable, in the order in which they were added while none is taken out.
    Entries operator[](std::size_t row) const {
        const Entry *begin = pool.data() + slices[row].begin;
        return {begin, begin + slices[row].length};
    }

    // A coefficient; 0 where there is none.
    double coefficient(std::size_t row, int var) const;

    // The entries by constraint, for that many variables.
    const Lists &columns(std::size_t vars) const;

    // These leave everything as it was when memory runs out.
    void append(Lists rows);
    void append(const std::vector<Entry> &row);
    void add(std::size_t row, Entry entry); // of a variable that the row doesn't have
    void addColumns(int firstVar, const Lists &columns);
    void reserve(std::size_t row, std::size_t more); // room for more entries

    // Sets a coefficient for which there is room.
    void change(std::size_t row, int var, double value) noexcept;

    // New numbers of rows and variables after a deletion, -1 for those that are deleted.
    void keep(const std::vector<int> &numbers) noexcept;
    void renumber(const std::vector<int> &numbers) noexcept;

  private:
    struct Slice {
        std::size_t begin;
        int length, room;
    };
    // What is derived, of which a copy has nothing. Several threads may read at once.
    struct Derived {
        Derived() = default;
        Derived(const Derived &) {}
        Derived &operator=(const Derived &);
        std::mutex mutex;
        std::unique_ptr<Lists> columns;
        // The places of the variables in long rows.
        std::unordered_map<std::size_t, std::unordered_map<int, int>> places;
    };

    int find(std::size_t row, int var) const noexcept; // the place of a variable; -1: none
    void push(Slice &slice, Entry entry);
    void forget() noexcept;
    void compact();

    std::vector<Slice> slices;
    std::vector<Entry> pool;
    std::size_t count = 0;
    mutable Derived derived;
};

} // namespace korvex

#endif
