// The guard that every exported function runs in: it refuses null handles and calls that a run
// forbids, and turns what is thrown inside into a status and an error text. Nothing leaves the
// library as an exception. A call that succeeds leaves the error text as it was.
#ifndef KORVEX_SOLVER_GUARD_H
#define KORVEX_SOLVER_GUARD_H

#include "model.h"

#include <string_view>

namespace korvex {

// A failure: thrown inside the solver, turned into status and error text by the guard.
struct Failure {
    int status;
    std::string text;
};

// printf into a Failure. Numbers that aren't integers go through toText.
[[noreturn]] void fail(int status, const char *format, ...) __attribute__((format(printf, 2, 3)));

// Only inside a catch block: the status of the exception that is being handled; its text goes to
// error.
int caught(std::string &error) noexcept;

// Refuses a null pointer where an argument is needed.
template <class T>
T *needed(T *argument, const char *what) {
    if (!argument)
        fail(KVX_ERROR_NULL_ARGUMENT, "%s is null", what);
    return argument;
}

// Refuses while a run of the model goes on.
void refuseDuringRun(const KVXmodel &model);

template <class Body>
int guarded(std::string &error, Body &&body) noexcept {
    try {
        body();
        return KVX_OK;
    } catch (...) {
        return caught(error);
    }
}

template <class Body>
int guarded(ErrorText &error, Body &&body) noexcept {
    std::string text;
    int status = guarded(text, body);
    if (status != KVX_OK)
        error.set(std::move(text));
    return status;
}

// A call that reads what a run doesn't change: allowed while one goes on.
template <class Body>
int guardedRead(KVXenv *env, Body &&body) noexcept {
    return env ? guarded(env->error, body) : KVX_ERROR_INVALID_ARGUMENT;
}
template <class Body>
int guardedUnsettled(KVXmodel *model, Body &&body) noexcept { // beside deletions
    return model ? guarded(model->env.error, body) : KVX_ERROR_INVALID_ARGUMENT;
}
template <class Body>
int guardedRead(KVXmodel *model, Body &&body) noexcept {
    if (model)
        settle(*model);
    return guardedUnsettled(model, body);
}

// Any other call.
template <class Body>
int guarded(KVXmodel *model, Body &&body) noexcept {
    return guardedRead(model, [&] {
        refuseDuringRun(*model);
        model->basis.reset();
        body();
    });
}
// One after which the model's results are no longer true.
template <class Body>
int guardedChange(KVXmodel *model, Body &&body) noexcept {
    return guarded(model, [&] {
        body();
        touch(*model);
    });
}
template <class Body>
int guarded(KVXenv *env, Body &&body) noexcept {
    return guardedRead(env, [&] {
        if (env->owner)
            refuseDuringRun(*env->owner);
        body();
    });
}

// Numbers to and from text in the same way whatever the locale: a Java virtual machine sets one.
// The shortest text that reads back as the same number; infinities as 1e+100.
std::string toText(double value);
// The whole text as a number; false when it isn't one. A NaN is none.
template <class Number> // int, double or long double
bool parse(std::string_view text, Number &value);

// Whether a text may stand in a model: characters up to U+FFFF, which UTF-8 and JNI encode alike,
// and no control characters.
bool isName(std::string_view text);
// A text as it is if it may, otherwise with '?' for all but ASCII.
std::string validUtf8(std::string_view text);

bool equalIgnoringCase(std::string_view a, std::string_view b);

} // namespace korvex

#endif
