// Names of variables and constraints: one that nobody gave is kept as its letter and number.
#ifndef KORVEX_SOLVER_NAME_H
#define KORVEX_SOLVER_NAME_H

#include <charconv>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvex {

using Room = char[16]; // for the text of a name that nobody gave

class Name {
  public:
    Name() = default; // none
    Name(std::string_view text) : bits(text.empty() ? 0 : address(text)) {}
    Name(const char *text) : Name(std::string_view(text)) {}
    Name(const std::string &text) : Name(std::string_view(text)) {}
    Name(char letter, int number)
        : bits(static_cast<std::uint64_t>(number) << 9 | static_cast<std::uint64_t>(letter) << 1 |
               1) {}
    Name(const Name &other) : bits(other.given() ? address(other.given()) : other.bits) {}
    Name(Name &&other) noexcept : bits(std::exchange(other.bits, 0)) {}
    Name &operator=(Name other) noexcept {
        std::swap(bits, other.bits);
        return *this;
    }
    ~Name() { delete[] given(); }

    bool empty() const { return bits == 0; }
    const char *given() const { // null: a letter and a number, or none
        return bits & 1 ? nullptr : reinterpret_cast<const char *>(bits);
    }
    char letter() const { return static_cast<char>(bits >> 1); } // of a name that wasn't given
    int number() const { return static_cast<int>(bits >> 9); }
    std::string_view text(Room &room) const { // in room unless it was given
        if (given() || empty())
            return empty() ? "" : given();
        room[0] = letter();
        const char *end = std::to_chars(room + 1, std::end(room), number()).ptr;
        return {room, static_cast<std::size_t>(end - room)};
    }
    std::string text() const {
        Room room;
        return std::string(text(room));
    }

  private:
    static std::uint64_t address(std::string_view text) {
        char *copy = new char[text.size() + 1];
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        return reinterpret_cast<std::uint64_t>(copy);
    }

    std::uint64_t bits = 0; // odd: number and letter; else the address of the text
};

inline bool operator==(const Name &name, std::string_view text) {
    Room room;
    return name.text(room) == text;
}

// Texts of names for callers: those that nobody gave are made when they are asked for, and stay.
class NameTexts {
  public:
    const char *of(const Name &name);

  private:
    std::mutex mutex;
    std::map<char, std::deque<Room>> made; // by letter and number
};

// The elements of a list by their names: a hash table with open addressing, since a million names
// shall neither be copied nor have a piece of memory each.
class NameIndex {
  public:
    // The lowest index of an element with that name, or -1. Elements may have been appended, but
    // not have changed.
    template <class Element>
    int find(const std::vector<Element> &elements, std::string_view name) {
        std::lock_guard lock(mutex);
        if (places.size() < 2 * elements.size()) {
            std::size_t room = 16;
            while (room < 4 * elements.size())
                room *= 2;
            size = 0;
            std::vector<Place>(room).swap(places);
        }
        for (Room room; size < elements.size(); size++) {
            const std::string_view text = elements[size].name.text(room);
            const std::size_t hash = std::hash<std::string_view>()(text);
            Place &place = placeOf(elements, text, hash);
            if (place.index < 0)
                place = {static_cast<int>(size), static_cast<std::uint32_t>(hash)};
        }
        if (places.empty())
            return -1;
        return placeOf(elements, name, std::hash<std::string_view>()(name)).index;
    }
    void forget() noexcept {
        places.clear();
        size = 0;
    }

  private:
    struct Place {
        int index = -1; // none
        std::uint32_t hash = 0;
    };

    // Where the name is, or else belongs.
    template <class Element>
    Place &placeOf(const std::vector<Element> &elements, std::string_view name, std::size_t hash) {
        for (std::size_t k = hash;; k++) {
            Place &place = places[k & (places.size() - 1)];
            if (place.index < 0 || (place.hash == static_cast<std::uint32_t>(hash) &&
                                    elements[static_cast<std::size_t>(place.index)].name == name))
                return place;
        }
    }

    std::mutex mutex;
    std::vector<Place> places; // a power of two of them
    std::size_t size = 0;      // how many elements are in it
};

} // namespace korvex

#endif
