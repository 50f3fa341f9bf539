// The development solver beside Clp: building, reading and solving models, and how a step repeated
// compares with all of it in one call. What is compared is measured in a process of its own.
//
// solver_bench building | patterns: a table each
// solver_bench steps N: N and 2N steps of each pattern, for callgrind, in a dump each
// solver_bench convert FILE FILE: rewrites a model in another format
// solver_bench solve FILE | watch FILE: solves a model, without or with a callback
#include "korvex.h"

#include <ClpSimplex.hpp>
#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

double seconds() {
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

struct Result {
    double seconds, memory, peak; // bytes
};

double allocated() {
    auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double highest() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return 1024.0 * static_cast<double>(usage.ru_maxrss);
}

// The least time of three processes, from the call of start on.
using Start = std::function<void()>;
Result measured(const std::function<void(const Start &start)> &work) {
    Result best{1e9, 0, 0};
    for (int round = 0; round < 3; round++) {
        int ends[2];
        if (pipe(ends) != 0)
            std::abort();
        std::fflush(stdout);
        const pid_t child = fork();
        if (child == 0) {
            double began = 0, before = 0, base = 0;
            work([&] {
                base = highest();
                before = allocated();
                began = seconds();
            });
            Result result{seconds() - began, allocated() - before, highest() - base};
            _exit(write(ends[1], &result, sizeof result) != sizeof result);
        }
        Result result;
        close(ends[1]);
        if (read(ends[0], &result, sizeof result) != sizeof result)
            std::exit(1); // the child has told why
        close(ends[0]);
        waitpid(child, nullptr, 0);
        if (result.seconds < best.seconds)
            best = result;
    }
    return best;
}

KVXenv *const env = [] {
    KVXenv *made = nullptr;
    if (KVXloadenvadv(&made, nullptr, KVX_INTERFACE_JAVA, KVX_VERSION_MAJOR, 0, 0, nullptr, nullptr,
                      nullptr, nullptr, KVX_LOADENV_KEY, 1, nullptr, nullptr, nullptr, nullptr,
                      nullptr, nullptr) != KVX_OK)
        std::abort();
    return made;
}();

void check(int status, KVXmodel *model = nullptr) {
    if (status != KVX_OK) {
        std::fprintf(stderr, "%d: %s\n", status,
                     model ? KVXgetmerrormsg(model) : KVXgeterrormsg(env));
        std::exit(1);
    }
}

KVXmodel *emptyModel() {
    KVXmodel *model = nullptr;
    check(KVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    return model;
}

// As many rows as variables, five nonzeros in each.
struct Data {
    int count;
    std::vector<int> begin, ind;
    std::vector<double> val, zeros, ones, infinite, lower;
    std::vector<char> senses;

    explicit Data(int count) : count(count) {
        const auto size = static_cast<size_t>(count);
        unsigned random = 1;
        for (int i = 0; i < count; i++) {
            begin.push_back(5 * i);
            for (int k = 0; k < 5; k++) { // one entry in each fifth of the columns
                random = random * 1664525 + 1013904223;
                const auto fifth = static_cast<unsigned>(count) / 5;
                ind.push_back(static_cast<int>(static_cast<unsigned>(k) * fifth + random % fifth));
            }
        }
        begin.push_back(5 * count);
        val.assign(ind.size(), 1.5);
        zeros.assign(size, 0);
        ones.assign(size, 1);
        infinite.assign(size, 1e100);
        lower.assign(size, -COIN_DBL_MAX);
        senses.assign(size, '<');
    }
    void addVars(KVXmodel *model, bool withColumns = false) const {
        check(KVXaddvars(model, count, withColumns ? 5 * count : 0, begin.data(), ind.data(),
                         val.data(), ones.data(), zeros.data(), infinite.data(), nullptr, nullptr),
              model);
    }
    void addRows(KVXmodel *model, bool withEntries = true) const {
        check(KVXaddconstrs(model, count, withEntries ? 5 * count : 0, begin.data(), ind.data(),
                            val.data(), senses.data(), ones.data(), nullptr),
              model);
    }
};

void compareBuilding() {
    std::puts("| Nonzeros | Building, reading | ms | ns/nonzero | bytes/nonzero | peak/nonzero |\n"
              "|---:|---|---:|---:|---:|---:|");
    for (int count : {20000, 100000, 1000000}) {
        const Data data(count);
        auto show = [&](const char *what, const std::function<void(const Start &)> &work) {
            const Result r = measured(work);
            const double nonzeros = 5.0 * count;
            std::printf("| %.0f | %s | %.1f | %.1f | %.1f | %.1f |\n", nonzeros, what,
                        1e3 * r.seconds, 1e9 * r.seconds / nonzeros, r.memory / nonzeros,
                        r.peak / nonzeros);
        };
        show("Clp, `addRows`", [&](auto &start) {
            auto &lp = *new ClpSimplex;
            start();
            lp.resize(0, count);
            for (int j = 0; j < count; j++) {
                lp.setObjectiveCoefficient(j, 1);
                lp.setColumnBounds(j, 0, COIN_DBL_MAX);
            }
            lp.addRows(count, data.lower.data(), data.ones.data(), data.begin.data(),
                       data.ind.data(), data.val.data());
        });
        show("Clp, `loadProblem`", [&](auto &start) {
            auto &lp = *new ClpSimplex;
            start();
            CoinPackedMatrix matrix(false, count, count, 5 * count, data.val.data(),
                                    data.ind.data(), data.begin.data(), nullptr);
            lp.loadProblem(matrix, data.zeros.data(), data.infinite.data(), data.ones.data(),
                           data.lower.data(), data.ones.data());
        });
        show("variables, then rows", [&](auto &start) {
            KVXmodel *model = emptyModel();
            start();
            data.addVars(model);
            data.addRows(model);
        });
        show("rows, then variables", [&](auto &start) {
            KVXmodel *model = emptyModel();
            start();
            data.addRows(model, false);
            data.addVars(model, true);
        });
        const char *file = "solver_bench.mps";
        KVXmodel *model = emptyModel();
        data.addVars(model);
        data.addRows(model);
        check(KVXwrite(model, file), model);
        check(KVXfreemodel(model));
        show("Clp, `readMps`", [&](auto &start) {
            auto &lp = *new ClpSimplex;
            lp.setLogLevel(0);
            start();
            lp.readMps(file);
        });
        show("`KVXreadmodel`", [&](auto &start) {
            start();
            check(KVXreadmodel(env, file, &model));
        });
        unlink(file);
    }
}

constexpr int most = 100000; // steps
int num, begins[most + 1], index[10 * most], all[most];
double value, values[10 * most], ones[most];
const char *texts[most];

// A step for each k, and what does them all at once, on a model with n variables and n + 1 rows, of
// which row 0 has all variables.
const struct {
    const char *name;
    int (*step)(KVXmodel *, int k);
    int (*whole)(KVXmodel *, int n);
} patterns[] = {
    {"getvars", [](KVXmodel *m, int k) { return KVXgetvars(m, &num, begins, index, values, k, 1); },
     [](KVXmodel *m, int n) { return KVXgetvars(m, &num, begins, index, values, 0, n); }},
    {"getvarbyname",
     [](KVXmodel *m, int k) { return KVXgetvarbyname(m, ("C" + std::to_string(k)).c_str(), &num); },
     [](KVXmodel *m, int n) { return KVXgetstrattrarray(m, "VarName", 0, n, texts); }},
    {"getconstrbyname",
     [](KVXmodel *m, int k) {
         return KVXgetconstrbyname(m, ("R" + std::to_string(k)).c_str(), &num);
     },
     [](KVXmodel *m, int n) { return KVXgetstrattrarray(m, "ConstrName", 0, n, texts); }},
    {"delvars", [](KVXmodel *m, int) { return KVXdelvars(m, 1, begins); },
     [](KVXmodel *m, int n) { return KVXdelvars(m, n, all); }},
    {"delconstrs", [](KVXmodel *m, int) { return KVXdelconstrs(m, 1, begins); },
     [](KVXmodel *m, int n) { return KVXdelconstrs(m, n, all); }},
    {"chgcoeffs", [](KVXmodel *m, int k) { return KVXchgcoeffs(m, 1, begins, &k, ones); },
     [](KVXmodel *m, int n) { return KVXchgcoeffs(m, n, begins, all, ones); }},
    {"getcoeff", [](KVXmodel *m, int k) { return KVXgetcoeff(m, 0, k, &value); },
     [](KVXmodel *m, int) { return KVXgetconstrs(m, &num, begins, index, values, 0, 1); }},
    {"NumNZs", // after each added row
     [](KVXmodel *m, int k) {
         int status = KVXaddconstrs(m, 1, 1, begins, &k, ones, "<", ones, nullptr);
         return status ? status : KVXgetintattr(m, "NumNZs", &num);
     },
     [](KVXmodel *m, int n) {
         const std::string senses(static_cast<size_t>(n), '<');
         return KVXaddconstrs(m, n, n, all, all, ones, senses.data(), ones, nullptr);
     }},
    {"FSolve", // at every 1000th step only, since the result alone is as long as the model
     [](KVXmodel *m, int k) {
         SparseVector b{1, &k, &ones[0]}, x{10 * most, index, values};
         return k % 1000 ? KVX_OK : KVXFSolve(m, &b, &x);
     },
     [](KVXmodel *m, int) { return KVXgetBasisHead(m, index); }},
};

KVXmodel *prepared(int n) {
    KVXmodel *model = emptyModel();
    const Data data(n);
    data.addVars(model);
    check(KVXaddconstrs(model, 1, n, begins, all, ones, "<", ones, nullptr), model);
    data.addRows(model);
    const std::vector<int> nonbasic(static_cast<size_t>(n), KVX_NONBASIC_LOWER);
    check(KVXsetintattrarray(model, "VarBasis", 0, n, nonbasic.data()), model);
    return model;
}

void stepOneByOne(const decltype(*patterns) &pattern, KVXmodel *model, int n) {
    for (int k = 0; k < n; k++)
        check(pattern.step(model, k), model);
    check(KVXgetintattr(model, "NumNZs", &num), model); // by which deletions have been done
}

void countSteps(int n) {
    for (const auto &pattern : patterns)
        for (int steps : {n, 2 * n}) {
            const std::string name = pattern.name + (" " + std::to_string(steps / n));
            KVXmodel *model = prepared(steps);
            CALLGRIND_ZERO_STATS;
            stepOneByOne(pattern, model, steps);
            CALLGRIND_DUMP_STATS_AT(name.c_str());
            check(KVXfreemodel(model));
        }
}

void compareSteps() {
    std::printf("| %d steps | one by one, ms | in one call, ms | ratio |\n|---|---:|---:|---:|\n",
                most);
    for (const auto &pattern : patterns) {
        auto time = [&](auto work) {
            return 1e3 * measured([&](const Start &start) {
                             KVXmodel *model = prepared(most);
                             start();
                             work(model);
                         }).seconds;
        };
        const double single = time([&](auto model) { stepOneByOne(pattern, model, most); });
        const double whole = time([&](auto model) {
            check(pattern.whole(model, most), model);
            check(KVXgetintattr(model, "NumNZs", &num), model);
        });
        std::printf("| `%s` | %.2f | %.2f | %.1f |\n", pattern.name, single, whole, single / whole);
    }
}

KVXmodel *modelOf(const char *file) {
    KVXmodel *model = nullptr;
    check(KVXreadmodel(env, file, &model));
    return model;
}

void solve(const char *file, KVXcallback callback) {
    KVXmodel *model = modelOf(file);
    double objective;
    check(KVXsetdblparam(KVXgetenv(model), "TimeLimit", std::atof(std::getenv("LIMIT"))), model);
    check(KVXsetcallbackfunc(model, callback, nullptr), model);
    check(KVXoptimize(model), model);
    if (KVXgetdblattr(model, "ObjVal", &objective) == KVX_OK)
        std::printf("Objective value: %.8g\n", objective);
}

} // namespace

int main(int argc, char **argv) {
    for (int k = 0; k < most; k++) {
        all[k] = k;
        ones[k] = 1;
    }
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "building")
        compareBuilding();
    else if (command == "patterns")
        compareSteps();
    else if (command == "steps" && argc == 3)
        countSteps(std::atoi(argv[2]));
    else if (command == "solve" && argc == 3)
        solve(argv[2], nullptr);
    else if (command == "watch" && argc == 3)
        solve(argv[2], [](KVXmodel *, void *, int, void *) { return 0; });
    else if (command == "convert" && argc == 4)
        check(KVXwrite(modelOf(argv[2]), argv[3]));
    else
        return 2;
}
