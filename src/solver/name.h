// Names of variables and constraints: one that nobody gave is kept as its letter and number.
#ifndef KORVEX_SOLVER_NAME_H
#define KORVEX_SOLVER_NAME_H

#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace korvex {

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
    std::string text() const {
        return given() ? given() : empty() ? "" : letter() + std::to_string(number());
    }
    operator std::string() const { return text(); }

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
    return name.given() ? std::string_view(name.given()) == text : text.compare(name.text()) == 0;
}
inline std::string operator+(std::string text, const Name &name) {
    return std::move(text) + name.text();
}
inline std::string operator+(const Name &name, const char *text) {
    return name.text() + text;
}
inline std::string operator+(const Name &name, char c) {
    return name.text() + c;
}

// Texts of names for callers: those that nobody gave are made when they are asked for, and stay.
class NameTexts {
  public:
    const char *of(const Name &name);

  private:
    struct Text {
        char text[16];
    };
    std::mutex mutex;
    std::map<char, std::deque<Text>> made; // by letter and number
};

} // namespace korvex

#endif
