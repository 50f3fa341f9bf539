// The solution as JSON.
#include "guard.h"
#include "run.h"
#include "text.h"
#include "textfile.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace korvex {
namespace {

const char *statusWord(int status) {
    static const char *const words[] = {
        "loaded",     "optimal",    "infeasible",      "unbounded",      "infeasible_or_unbounded",
        "time_limit", "node_limit", "iteration_limit", "solution_limit", "interrupted",
        "numeric",    "in_progress"};
    return words[status - KVX_STATUS_LOADED];
}

// JSON has no infinities: null stands for them.
nlohmann::ordered_json finite(double value) {
    if (!(std::fabs(value) < KVX_INFINITY))
        return nullptr;
    return value;
}

} // namespace

// After any run; a variable that isn't listed is 0.
std::string solutionAsJson(const KVXmodel &model) {
    const Solution &solution = model.solution;
    if (solution.status == KVX_STATUS_LOADED)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the model has not been solved");
    nlohmann::ordered_json result = {
        {"status", statusWord(solution.status)},
        {"objective", solution.hasX ? finite(solution.objval) : nullptr},
        {"bound", finite(solution.bound)},
        {"gap", solution.hasX ? finite(relativeGap(solution.objval, solution.bound)) : nullptr},
        {"solutions", solution.solutions},
        {"nodes", solution.nodes},
        {"iterations", solution.iterations},
        {"runtime", solution.runtime},
        {"variables", nlohmann::ordered_json::array()},
    };
    for (size_t j = 0; solution.hasX && j < solution.x.size(); j++)
        if (solution.x[j] != 0)
            result["variables"].push_back({{"name", validUtf8(varName(model, static_cast<int>(j)))},
                                           {"value", finite(solution.x[j])}});
    return result.dump(2) + "\n";
}

char *copyForCaller(const std::string &text) {
    char *copy = strdup(text.c_str());
    if (!copy)
        throw std::bad_alloc();
    return copy;
}

} // namespace korvex

using namespace korvex;

int KVXgetjsonsolution(KVXmodel *model, char **textP) {
    return guarded(model, [&] {
        needed(textP, "textP");
        *textP = copyForCaller(solutionAsJson(*model));
    });
}

void KVXfree(void *text) {
    std::free(text);
}
