#include "rows.h"

#include <algorithm>

namespace korvex {

constexpr int longRow = 64; // from which on its variables' places are kept

Rows::Derived &Rows::Derived::operator=(const Derived &) {
    columns.reset();
    places.clear();
    return *this;
}

void Rows::forget() noexcept {
    derived.columns.reset();
    derived.places.clear();
}

int Rows::find(size_t row, int var) const noexcept {
    const Entries entries = (*this)[row];
    if (slices[row].length > longRow)
        try {
            std::lock_guard lock(derived.mutex);
            auto [places, isNew] = derived.places.try_emplace(row);
            if (isNew)
                for (const Entry &entry : entries)
                    places->second.emplace(entry.index, static_cast<int>(&entry - entries.first));
            auto found = places->second.find(var);
            return found == places->second.end() ? -1 : found->second;
        } catch (const std::bad_alloc &) {
            derived.places.clear();
        }
    auto isIt = [&](const Entry &entry) { return entry.index == var; };
    auto found = std::find_if(entries.first, entries.last, isIt);
    return found == entries.last ? -1 : static_cast<int>(found - entries.first);
}

double Rows::coefficient(size_t row, int var) const {
    int place = find(row, var);
    return place < 0 ? 0 : (*this)[row][at(place)].value;
}

static Lists transposed(const Rows &rows, size_t vars) {
    Lists columns;
    columns.begin.assign(vars + 1, 0);
    columns.entries.resize(rows.nonzeros());
    for (size_t i = 0; i < rows.size(); i++)
        for (const Entry &entry : rows[i])
            columns.begin[at(entry.index)]++;
    size_t end = 0;
    for (size_t &begin : columns.begin)
        begin = end += begin;
    for (size_t i = rows.size(); i-- > 0;) // backwards: the ends become the begins
        for (const Entry &entry : rows[i])
            columns.entries[--columns.begin[at(entry.index)]] = {intSize(i), entry.value};
    return columns;
}

const Lists &Rows::columns(size_t vars) const {
    std::lock_guard lock(derived.mutex);
    if (!derived.columns || derived.columns->size() != vars)
        derived.columns = std::make_unique<Lists>(transposed(*this, vars));
    return *derived.columns;
}

void Rows::append(Lists rows) {
    grow(slices, rows.size());
    const size_t base = pool.size();
    if (base == 0) {
        pool.swap(rows.entries);
    } else {
        grow(pool, rows.entries.size());
        pool.insert(pool.end(), rows.entries.begin(), rows.entries.end());
    }
    for (size_t k = 0; k < rows.size(); k++) {
        const int length = static_cast<int>(rows.begin[k + 1] - rows.begin[k]);
        slices.push_back({base + rows.begin[k], length, length});
    }
    count += rows.begin.back();
    derived.columns.reset();
}

void Rows::append(const std::vector<Entry> &row) {
    append(Lists{{0, row.size()}, row});
}

// A slice without room moves to the end of the pool, or grows there.
void Rows::reserve(size_t row, size_t more) {
    Slice &slice = slices[row];
    const size_t length = at(slice.length), room = at(slice.room);
    if (length + more <= room)
        return;
    const size_t wanted = std::max(length + more, length + length / 2 + 2);
    const bool isLast = slice.begin + room == pool.size();
    if (isLast) {
        grow(pool, wanted - room);
        pool.resize(pool.size() + wanted - room);
    } else {
        const size_t begin = pool.size();
        grow(pool, wanted);
        pool.resize(begin + wanted);
        std::copy_n(pool.data() + slice.begin, length, pool.data() + begin);
        slice.begin = begin;
    }
    slice.room = intSize(wanted);
}

void Rows::compact() {
    std::vector<Entry> tight;
    tight.reserve(count + count / 2);
    for (Slice &slice : slices) {
        const Entry *begin = pool.data() + slice.begin;
        slice.begin = tight.size();
        slice.room = slice.length;
        tight.insert(tight.end(), begin, begin + slice.length);
    }
    pool.swap(tight);
}

void Rows::push(Slice &slice, Entry entry) {
    pool[slice.begin + at(slice.length++)] = entry;
    count++;
}

void Rows::add(size_t row, Entry entry) {
    reserve(row, 1);
    change(row, entry.index, entry.value);
}

void Rows::addColumns(int firstVar, const Lists &columns) {
    if (pool.size() > 3 * count + 1000)
        compact();
    const size_t more = columns.entries.size();
    std::vector<Slice> plan;
    std::vector<Entry> rebuilt;
    if (more > (count + size()) / 4) { // All is copied, with the new entries in their places.
        plan.assign(size(), {0, 0, 0});
        for (const Entry &entry : columns.entries)
            plan[at(entry.index)].room++;
        size_t end = 0;
        for (size_t i = 0; i < size(); i++) {
            plan[i] = {end, slices[i].length, slices[i].length + plan[i].room};
            end += at(plan[i].room);
        }
        rebuilt.resize(end);
        for (size_t i = 0; i < size(); i++)
            std::copy((*this)[i].first, (*this)[i].last, rebuilt.data() + plan[i].begin);
        slices.swap(plan);
        pool.swap(rebuilt);
    } else {
        std::vector<int> rows;
        for (const Entry &entry : columns.entries)
            rows.push_back(entry.index);
        std::sort(rows.begin(), rows.end());
        for (auto first = rows.begin(); first != rows.end();) {
            auto last = std::upper_bound(first, rows.end(), *first);
            reserve(at(*first), static_cast<size_t>(last - first));
            first = last;
        }
    }
    forget();
    for (size_t k = 0; k < columns.size(); k++)
        for (const Entry &entry : columns[k])
            push(slices[at(entry.index)], {firstVar + intSize(k), entry.value});
}

void Rows::change(size_t row, int var, double value) noexcept {
    const int place = find(row, var);
    Slice &slice = slices[row];
    Entry *const entries = pool.data() + slice.begin;
    derived.columns.reset();
    auto places = derived.places.find(row);
    const bool hasPlaces = places != derived.places.end();
    if (place >= 0 && value != 0) {
        entries[place].value = value;
    } else if (place >= 0) { // The last one takes its place.
        const Entry moved = entries[place] = entries[--slice.length];
        count--;
        if (hasPlaces) {
            places->second[moved.index] = place; // which is there
            places->second.erase(var);
        }
    } else if (value != 0) {
        push(slice, {var, value});
        try {
            if (hasPlaces)
                places->second.emplace(var, slice.length - 1);
        } catch (const std::bad_alloc &) {
            derived.places.clear();
        }
    }
}

void Rows::keep(const std::vector<int> &numbers) noexcept {
    size_t kept = 0;
    for (size_t i = 0; i < slices.size(); i++)
        if (numbers[i] >= 0)
            slices[kept++] = slices[i];
        else
            count -= at(slices[i].length);
    slices.resize(kept);
    forget();
}

void Rows::renumber(const std::vector<int> &numbers) noexcept {
    for (Slice &slice : slices) {
        Entry *const entries = pool.data() + slice.begin;
        int kept = 0;
        for (int k = 0; k < slice.length; k++)
            if (int number = numbers[at(entries[k].index)]; number >= 0)
                entries[kept++] = {number, entries[k].value};
        count -= at(slice.length - kept);
        slice.length = kept;
    }
    forget();
}

} // namespace korvex
