// The solution as JSON.
#include "input.h"
#include "run.h"
#include "textfile.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstring>

namespace korvex {

// After any run; a variable that isn't listed is 0. JSON has no infinities: null stands for them.
std::string solutionAsJson(const KVXmodel &model) {
    using Json = nlohmann::ordered_json;
    static constexpr const char *words[] = {
        "loaded",     "optimal",    "infeasible",      "unbounded",      "infeasible_or_unbounded",
        "time_limit", "node_limit", "iteration_limit", "solution_limit", "interrupted",
        "numeric"};
    const Solution &solution = model.solution;
    if (solution.status == KVX_STATUS_LOADED)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the model has not been solved");
    auto number = [](bool isKnown, double value) {
        return isKnown && std::abs(value) < KVX_INFINITY ? Json(value) : Json();
    };
    double gap = relativeGap(solution.objval, solution.bound);
    Json variables = Json::array();
    for (size_t j = 0; solution.hasX && j < solution.x.size(); j++)
        if (solution.x[j] != 0)
            variables.push_back(
                {{"name", model.vars[j].name.text()}, {"value", number(true, solution.x[j])}});
    Json result = {{"status", words[solution.status - KVX_STATUS_LOADED]},
                   {"objective", number(solution.hasX, solution.objval)},
                   {"bound", number(true, solution.bound)},
                   {"gap", number(solution.hasX, gap)},
                   {"solutions", solution.solutions},
                   {"nodes", solution.nodes},
                   {"iterations", solution.iterations},
                   {"runtime", solution.runtime},
                   {"variables", variables}};
    return result.dump(2) + "\n";
}

char *copyForCaller(const std::string &text) {
    char *copy = strdup(text.c_str());
    return copy ? copy : throw std::bad_alloc();
}

} // namespace korvex

using namespace korvex;

int KVXgetjsonsolution(KVXmodel *model, char **textP) {
    return guarded(model, [&] { *needed(textP, "textP") = copyForCaller(solutionAsJson(*model)); });
}

void KVXfree(void *text) {
    std::free(text);
}
