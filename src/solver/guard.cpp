#include "guard.h"

#include <CoinError.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>

namespace korvex {

void fail(int status, const char *format, ...) {
    char text[2 * KVX_TEXT_SIZE]; // Longer texts are cut off.
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throw Failure{status, validUtf8(text)};
}

void refuseDuringRun(const KVXmodel &model) {
    if (model.running)
        fail(KVX_ERROR_IN_PROGRESS, "a run of this model is going on");
}

int caught(std::string &error) noexcept {
    try {
        try {
            throw;
        } catch (Failure &failure) {
            error.swap(failure.text);
            return failure.status;
        } catch (const std::bad_alloc &) {
            error = "out of memory";
            return KVX_ERROR_OUT_OF_MEMORY;
        } catch (CoinError &problem) {
            error = problem.className() + "::" + problem.methodName() + ": " + problem.message();
        } catch (const std::exception &problem) {
            error = problem.what();
        }
        return KVX_ERROR_INTERNAL;
    } catch (...) { // No memory is left for the text.
        return KVX_ERROR_OUT_OF_MEMORY;
    }
}

void ErrorText::set(std::string text) noexcept {
    std::string unused;
    guarded(unused, [&] {
        std::lock_guard lock(mutex);
        texts[std::this_thread::get_id()].swap(text);
    });
}

const char *ErrorText::get() noexcept {
    std::lock_guard lock(mutex);
    auto found = texts.find(std::this_thread::get_id());
    return found == texts.end() ? "" : found->second.c_str();
}

std::string toText(double value) {
    char buffer[40];
    double shown = std::isinf(value) ? std::copysign(KVX_INFINITY, value) : value;
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, shown).ptr};
}

template <class Number>
bool parse(std::string_view text, Number &value) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    const char *last = text.data() + text.size();
    auto [end, error] = std::from_chars(text.data(), last, value);
    return error == std::errc() && end == last && !std::isnan(value);
}
template bool parse(std::string_view text, int &value);
template bool parse(std::string_view text, double &value);
template bool parse(std::string_view text, long double &value);

bool isName(std::string_view text) {
    for (size_t i = 0, length; i < text.size(); i += length) {
        auto byte = [&](size_t k) {
            return i + k < text.size() ? static_cast<unsigned char>(text[i + k]) : 0;
        };
        auto follows = [&](size_t k) { return (byte(k) & 0xC0) == 0x80; };
        length = byte(0) < 0x80 ? 1 : byte(0) < 0xE0 ? 2 : 3;
        bool isGood = length == 1   ? byte(0) >= 0x20 && byte(0) != 0x7F
                      : length == 2 ? byte(0) >= 0xC2 && follows(1)
                                    : byte(0) < 0xF0 && follows(1) && follows(2) &&
                                          (byte(0) != 0xE0 || byte(1) >= 0xA0) && // shortest form
                                          (byte(0) != 0xED || byte(1) < 0xA0);    // no surrogate
        if (!isGood)
            return false;
    }
    return true;
}

std::string validUtf8(std::string_view text) {
    std::string result(text);
    if (!isName(text))
        for (char &c : result)
            c = (c < 0x20 && c != '\t') || c == 0x7F ? '?' : c; // Bytes above ASCII are negative.
    return result;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

} // namespace korvex
