#include "solver_double.h"

#include "ledger.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <type_traits>

Solver solver;

namespace {
// Contents of larger blocks are not shown or stored: they have no memory behind them.
constexpr std::size_t shownLimit = 1 << 16;

std::string show(int value) {
    return std::to_string(value);
}
std::string show(double value) {
    return showDouble(value);
}
std::string show(char value) {
    char text[8];
    std::snprintf(text, sizeof text, value >= ' ' ? "'%c'" : "x%02X", value & 0xFF);
    return text;
}
std::string quoted(const char *text) {
    std::string shown;
    for (const char *c = text; c && *c; ++c)
        shown += *c == '\n' ? "\\n" : std::string(1, *c);
    return text ? '"' + shown + '"' : "null";
}

// A heap buffer that the solver only reads is shown by what is in it; so is one that came filled or
// zeroed and is changed in place. One that is merely filled is shown by its name.
template <class T, class ShowElement>
std::string showBuffer(T *buffer, ShowElement each) {
    const Block *block = ledger.blockOf(buffer);
    bool shown = block && (std::is_const_v<T> || block->filled || block->zeroed);
    if (!shown || block->size > shownLimit)
        return ledger.place(buffer);
    return listOf(buffer, block->size / sizeof(T), each);
}

template <class T>
std::string show(T *pointer) {
    using Element = std::remove_const_t<T>;
    if constexpr (std::is_same_v<Element, int> || std::is_same_v<Element, double>)
        return showBuffer(pointer, [](Element value) { return show(value); });
    else if constexpr (std::is_same_v<T, const char>)
        return ledger.blockOf(pointer) ? showBuffer(pointer, [](char c) { return show(c); })
                                       : quoted(pointer);
    else if constexpr (std::is_same_v<T, const char *const>)
        return showBuffer(pointer, quoted);
    else if constexpr (std::is_same_v<T, SparseVector>)
        return "{" + show(pointer->len) + " " + show(pointer->ind) + " " + show(pointer->val) + "}";
    else if constexpr (std::is_function_v<T>)
        return pointer ? "callback" : "null";
    else if constexpr (std::is_pointer_v<T> && !std::is_same_v<T, const char *>)
        // What receives a handle or an owned text must have been set to null before.
        return pointer && *pointer ? "&set" : ledger.place(pointer);
    else
        return showPointer(pointer);
}

// Single ints and doubles are numbered, buffers get 7, 8, 9 and so on.
template <class T>
void store(T value) {
    using Element = std::remove_pointer_t<T>;
    if constexpr (std::is_pointer_v<T> && std::is_scalar_v<Element> && !std::is_const_v<Element>) {
        const Block *block = ledger.blockOf(value);
        if (!value || (block && (block->filled || block->size > shownLimit)))
            return;
        std::size_t count = block ? block->size / sizeof *value : 1;
        for (std::size_t i = 0; i < count; ++i) {
            if constexpr (std::is_same_v<Element, int>)
                value[i] = block ? 7 + static_cast<int>(i) : solver.nextInt();
            else if constexpr (std::is_same_v<Element, double>)
                value[i] = block ? 7.5 + static_cast<double>(i) : solver.nextDouble();
            else if constexpr (std::is_same_v<Element, char>)
                value[i] = static_cast<char>(i % 2 ? '>' : 0xE9);
            else if constexpr (std::is_same_v<Element, const char *>)
                value[i] = block ? &"t0\0t1\0t2"[3 * (i % 3)] : solver.text;
            else if constexpr (std::is_same_v<Element, char *>)
                value[i] = const_cast<char *>(solver.text);
            else if constexpr (std::is_pointer_v<Element> &&
                               !std::is_function_v<std::remove_pointer_t<Element>>)
                value[i] = handle<std::remove_pointer_t<Element>>(0);
        }
    }
}

template <class Name, class Function>
struct Double;
template <class Name, class R, class... A>
struct Double<Name, R(A...)> {
    static R call(A... arguments) {
        ++solver.calls;
        solver.intsStored = 0;
        solver.doubles = 0;
        std::string event;
        ((event += (event.empty() ? "" : ", ") + show(arguments)), ...);
        bool fails = std::is_same_v<R, int> && ledger.solverFails();
        ledger.note(std::string(Name::text) + "(" + event + ")" + (fails ? " fails" : ""));
        auto hook = solver.hooks.find(Name::text);
        if (!fails && hook != solver.hooks.end())
            return std::any_cast<const std::function<R(A...)> &>(hook->second)(arguments...);
        if (!fails || solver.storesOnFailure)
            (store(arguments), ...);
        if constexpr (std::is_same_v<R, int>)
            return fails ? ledger.plan.status : 0;
        else if constexpr (std::is_same_v<R, const char *>)
            return solver.text;
        else if constexpr (!std::is_void_v<R>)
            return handle<std::remove_pointer_t<R>>(0);
    }
};

int solve(SparseVector *x) {
    x->len = solver.nextInt();
    for (int i = 0; i < x->len; ++i) {
        x->ind[i] = 7 + i;
        x->val[i] = 7.5 + i;
    }
    return 0;
}

// The type of the datum asked for is the one that the last type check answered.
int getDatum(int what, void *result) {
    if (!result)
        return 0;
    if (const Block *block = ledger.blockOf(result))
        std::fill_n(static_cast<double *>(result), block->size / sizeof(double), 7.5);
    else if (what == KVX_CB_MSG_STRING)
        *static_cast<const char **>(result) = solver.text;
    else if (!solver.ints.empty() && solver.ints[0][0] == KVX_TYPE_DOUBLE)
        *static_cast<double *>(result) = solver.nextDouble();
    else
        *static_cast<int *>(result) = 9;
    return 0;
}

int installCallback(KVXcallback callback, void *data) {
    solver.callback = callback;
    solver.callbackData = data;
    return 0;
}
} // namespace

#include "solver_functions.h"

void Solver::begin() {
    ints.clear();
    text = "text";
    storesOnFailure = false;
    hooks.clear();
    callback = nullptr;
    logCallback = nullptr;
    callbackData = logData = nullptr;
    calls = doubles = 0;
    intsStored = 0;
    SOLVER_DOES(KVXFSolve, [](auto, auto, SparseVector *x) { return solve(x); });
    SOLVER_DOES(KVXBSolve, [](auto, auto, SparseVector *x) { return solve(x); });
    SOLVER_DOES(KVXBinvColj, [](auto, auto, SparseVector *x) { return solve(x); });
    SOLVER_DOES(KVXBinvRowi, [](auto, auto, SparseVector *x) { return solve(x); });
    SOLVER_DOES(KVXcbget,
                [](auto, auto, int what, void *result) { return getDatum(what, result); });
    SOLVER_DOES(KVXgetlongstrparam, [](auto, auto, char *buffer, auto, int *length) {
        std::strcpy(buffer, solver.text);
        *length = solver.nextInt();
        return 0;
    });
    SOLVER_DOES(KVXgetstrparaminfo, [](auto, auto, char *current, char *standard) {
        std::memset(current, 'c', KVX_TEXT_SIZE);
        std::memset(standard, 's', KVX_TEXT_SIZE);
        std::strcpy(current, "current");
        std::strcpy(standard, "standard");
        return 0;
    });
    SOLVER_DOES(KVXoptimizebatch, [](auto, char *id) {
        std::memset(id, 'i', KVX_TEXT_SIZE);
        std::strcpy(id, "id");
        return 0;
    });
    SOLVER_DOES(KVXsetcallbackfuncadv, [](auto, KVXcallback function, void *data, auto) {
        return installCallback(function, data);
    });
    SOLVER_DOES(KVXsetcallbackfunc, [](auto, KVXcallback function, void *data) {
        return installCallback(function, data);
    });
    SOLVER_DOES(KVXsetlogcallbackfuncenv, [](auto, KVXlogcallback function, void *data) {
        solver.logCallback = function;
        solver.logData = data;
        return 0;
    });
    SOLVER_DOES(KVXgetlogcallbackfuncenv, [](auto, auto, void **data) {
        *data = solver.logData;
        return 0;
    });
}

int Solver::nextInt() {
    static const std::vector<int> usual{2, 3, 4, 5};
    const auto &row =
        ints.empty() ? usual : ints[std::min(static_cast<std::size_t>(calls), ints.size()) - 1];
    return row[std::min(intsStored++, row.size() - 1)];
}

std::string showPointer(const void *pointer) {
    for (int k = 0; k < 16; ++k)
        if (pointer == handle<const void>(k))
            return k ? "h" + std::to_string(k) : "new";
    return ledger.place(pointer);
}

std::string showDouble(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}
