// Defines all functions of korvex.h as Double<NAME, TYPE>::call, which the including source has.
// An indirect function gets its type, whatever its arguments, from the header's declaration.
#define SOLVER(function)                                                                           \
    namespace {                                                                                    \
    struct function##Name {                                                                        \
        static constexpr const char *text = #function;                                             \
    };                                                                                             \
    }                                                                                              \
    extern "C" {                                                                                   \
    __attribute__((no_sanitize("all"))) decltype(&function) resolve_##function();                  \
    decltype(&function) resolve_##function() {                                                     \
        return &Double<function##Name, decltype(function)>::call;                                  \
    }                                                                                              \
    decltype(function) function __attribute__((ifunc("resolve_" #function)));                      \
    }
#include "solver_functions.inc"
