#include "guard.h"

#include <CoinError.hpp>

#include <cstdarg>
#include <cstdio>

namespace korvex {

void fail(int status, const char *format, ...) {
    std::va_list arguments, again;
    va_start(arguments, format);
    va_copy(again, arguments);
    int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    throw Failure{status, std::move(text)};
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
            if (!failure.text.empty())
                error.swap(failure.text);
            return failure.status;
        } catch (const std::bad_alloc &) {
            error = "out of memory";
            return KVX_ERROR_OUT_OF_MEMORY;
        } catch (CoinError &problem) {
            error = problem.className() + "::" + problem.methodName() + ": " + problem.message();
            return KVX_ERROR_INTERNAL;
        } catch (const std::exception &problem) {
            error = problem.what();
            return KVX_ERROR_INTERNAL;
        } catch (...) {
            error = "an unknown exception";
            return KVX_ERROR_INTERNAL;
        }
    } catch (...) { // No memory is left for the text.
        return KVX_ERROR_OUT_OF_MEMORY;
    }
}

} // namespace korvex
