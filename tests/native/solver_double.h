// The solver's double: all functions of korvex.h, each noting its call with its arguments and
// storing recognisable outputs when it succeeds.
#pragma once

#include "korvex.h"

#include <any>
#include <functional>
#include <map>
#include <string>
#include <vector>

class Solver {
  public:
    void begin();
    int nextInt();
    double nextDouble() { return 2.5 + doubles++; }

    // The ints that the k-th call stores into single ints, in order; the last row and its last
    // number stay.
    std::vector<std::vector<int>> ints;
    const char *text;
    bool storesOnFailure;
    std::map<std::string, std::any> hooks;

    // The installed callbacks, as the bridge left them.
    KVXcallback callback;
    void *callbackData;
    KVXlogcallback logCallback;
    void *logData;

    int calls;
    int doubles;
    std::size_t intsStored;
};

extern Solver solver;

// What a solver function does, instead of storing its outputs, while no failure is planned.
#define SOLVER_DOES(name, ...) solver.hooks[#name] = std::function<decltype(name)>(__VA_ARGS__)

// Handles are small numbers: h1 is the first that a test passes; "new" is what the solver makes.
template <class T>
T *handle(int k) {
    return reinterpret_cast<T *>(0x1000L + 16L * k);
}
std::string showPointer(const void *pointer);
std::string showDouble(double value);
