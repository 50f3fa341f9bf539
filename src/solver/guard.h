// The guard that every exported function runs in: it refuses null handles and calls that a run
// forbids, and turns what is thrown inside into a status and an error text. Nothing leaves the
// library as an exception. A call that succeeds leaves the error text as it was.
#ifndef KORVEX_SOLVER_GUARD_H
#define KORVEX_SOLVER_GUARD_H

#include "model.h"

namespace korvex {

// A failure: thrown inside the solver, turned into status and error text by the guard. An empty
// text leaves the text that is there.
struct Failure {
    int status;
    std::string text;
};

// printf into a Failure; a '%' in an argument has no meaning. Numbers that aren't integers go
// through toText.
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

// A call on an environment that reads.
template <class Body>
int guardedRead(KVXenv *env, Body &&body) noexcept {
    return env ? guarded(env->error, body) : KVX_ERROR_INVALID_ARGUMENT;
}

// A call on an environment that changes it: refused while a run of the model that owns it goes on.
template <class Body>
int guarded(KVXenv *env, Body &&body) noexcept {
    return guardedRead(env, [&] {
        if (env->owner)
            refuseDuringRun(*env->owner);
        body();
    });
}

// A call on a model that reads what a run doesn't change: allowed while one goes on.
template <class Body>
int guardedRead(KVXmodel *model, Body &&body) noexcept {
    return model ? guarded(model->env.error, body) : KVX_ERROR_INVALID_ARGUMENT;
}

// Any other call on a model.
template <class Body>
int guarded(KVXmodel *model, Body &&body) noexcept {
    return guardedRead(model, [&] {
        refuseDuringRun(*model);
        body();
    });
}

} // namespace korvex

#endif
