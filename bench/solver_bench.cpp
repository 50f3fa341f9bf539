// What building and reading models costs in the development solver, and in Clp to compare with:
// time and memory by the number of nonzeros, and how a step repeated compares with all of it in one
// call. Every measurement is a process of its own.
#include "korvex.h"

#include <ClpSimplex.hpp>

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

// The least time of three processes.
Result measured(const std::function<void(const std::function<void()> &start)> &work) {
    Result best{1e9, 0, 0};
    for (int round = 0; round < 3; round++) {
        int ends[2];
        if (pipe(ends) != 0)
            std::abort();
        if (fork() == 0) {
            double began = 0, before = 0, base = 0;
            work([&] {
                base = highest();
                before = allocated();
                began = seconds();
            });
            Result result{seconds() - began, allocated() - before, highest() - base};
            _exit(write(ends[1], &result, sizeof result) != sizeof result);
        }
        Result result{1e9, 0, 0};
        close(ends[1]);
        if (read(ends[0], &result, sizeof result) != sizeof result)
            std::abort();
        close(ends[0]);
        wait(nullptr);
        if (result.seconds < best.seconds)
            best = result;
    }
    return best;
}

void check(int status, KVXmodel *model) {
    if (status != KVX_OK) {
        std::fprintf(stderr, "%d: %s\n", status, KVXgetmerrormsg(model));
        std::exit(1);
    }
}

KVXmodel *emptyModel() {
    KVXenv *env = nullptr;
    KVXmodel *model = nullptr;
    check(KVXloadenvadv(&env, nullptr, KVX_INTERFACE_JAVA, KVX_VERSION_MAJOR, 0, 0, nullptr,
                        nullptr, nullptr, nullptr, KVX_LOADENV_KEY, 1, nullptr, nullptr, nullptr,
                        nullptr, nullptr, nullptr),
          nullptr);
    check(KVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr), model);
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
        begin.reserve(size + 1);
        ind.reserve(5 * size);
        unsigned random = 1;
        for (int i = 0; i < count; i++) {
            begin.push_back(5 * i);
            for (int k = 0; k < 5; k++) {
                random = random * 1664525 + 1013904223;
                const int block = count / 5; // one entry in each fifth of the columns
                ind.push_back(k * block + static_cast<int>(random % static_cast<unsigned>(block)));
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
    void addVars(KVXmodel *model) const {
        check(KVXaddvars(model, count, 0, nullptr, nullptr, nullptr, ones.data(), zeros.data(),
                         infinite.data(), nullptr, nullptr),
              model);
    }
    void addRows(KVXmodel *model) const {
        check(KVXaddconstrs(model, count, 5 * count, begin.data(), ind.data(), val.data(),
                            senses.data(), ones.data(), nullptr),
              model);
    }
};

void compareBuilding() {
    std::printf("%10s  %-22s %9s %9s %9s %9s\n", "nonzeros", "building", "ms", "ns/nz", "bytes/nz",
                "peak/nz");
    for (int count : {20000, 100000, 1000000}) {
        const Data data(count);
        auto show = [&](const char *what, const Result &r) {
            const double nonzeros = 5.0 * count;
            std::printf("%10.0f  %-22s %9.1f %9.1f %9.1f %9.1f\n", nonzeros, what, 1e3 * r.seconds,
                        1e9 * r.seconds / nonzeros, r.memory / nonzeros, r.peak / nonzeros);
        };
        show("Clp, addRows", measured([&](auto &start) {
                 auto &lp = *new ClpSimplex;
                 start();
                 lp.resize(0, count);
                 for (int j = 0; j < count; j++) {
                     lp.setObjectiveCoefficient(j, 1);
                     lp.setColumnBounds(j, 0, COIN_DBL_MAX);
                 }
                 lp.addRows(count, data.lower.data(), data.ones.data(), data.begin.data(),
                            data.ind.data(), data.val.data());
             }));
        show("Clp, loadProblem", measured([&](auto &start) {
                 auto &lp = *new ClpSimplex;
                 start();
                 CoinPackedMatrix matrix(false, count, count, 5 * count, data.val.data(),
                                         data.ind.data(), data.begin.data(), nullptr);
                 lp.loadProblem(matrix, data.zeros.data(), data.infinite.data(), data.ones.data(),
                                data.lower.data(), data.ones.data());
             }));
        show("variables, then rows", measured([&](auto &start) {
                 KVXmodel *model = emptyModel();
                 start();
                 data.addVars(model);
                 data.addRows(model);
             }));
        show("rows, then variables", measured([&](auto &start) {
                 KVXmodel *model = emptyModel();
                 start();
                 check(KVXaddconstrs(model, count, 0, nullptr, nullptr, nullptr, data.senses.data(),
                                     data.ones.data(), nullptr),
                       model);
                 check(KVXaddvars(model, count, 5 * count, data.begin.data(), data.ind.data(),
                                  data.val.data(), nullptr, nullptr, nullptr, nullptr, nullptr),
                       model);
             }));
    }
}

// A step for each k, and what does all of them at once, on a model with n variables and rows. Row 0
// has all variables.
struct Pattern {
    const char *name;
    std::function<void(KVXmodel *, int k)> step;
    std::function<void(KVXmodel *, int n)> whole;
};

void compareSteps() {
    constexpr int n = 100000;
    static std::vector<int> all(n), zeros(n), begins(n + 1), index(10 * n);
    static std::vector<double> values(10 * n, 2), ones(n, 1);
    for (int k = 0; k < n; k++)
        all[static_cast<size_t>(k)] = k;
    static int num, pair[2];
    static double val;
    auto name = [](char letter, int k) { return letter + std::to_string(k); };
    const Pattern patterns[] = {
        {"getvars",
         [](auto m, int k) {
             check(KVXgetvars(m, &num, begins.data(), index.data(), values.data(), k, 1), m);
         },
         [](auto m, int) {
             check(KVXgetvars(m, &num, begins.data(), index.data(), values.data(), 0, n), m);
         }},
        {"getvarbyname",
         [=](auto m, int k) { check(KVXgetvarbyname(m, name('C', k).c_str(), &num), m); },
         [](auto m, int) {
             std::vector<const char *> names(n);
             check(KVXgetstrattrarray(m, "VarName", 0, n, names.data()), m);
         }},
        {"getconstrbyname",
         [=](auto m, int k) { check(KVXgetconstrbyname(m, name('R', k).c_str(), &num), m); },
         [](auto m, int) {
             std::vector<const char *> names(n);
             check(KVXgetstrattrarray(m, "ConstrName", 0, n, names.data()), m);
         }},
        {"delvars",
         [](auto m, int) {
             const int first = 0;
             check(KVXdelvars(m, 1, &first), m);
         },
         [](auto m, int) {
             check(KVXdelvars(m, n, all.data()), m);
             check(KVXgetintattr(m, "NumNZs", &num), m);
         }},
        {"delconstrs",
         [](auto m, int) {
             const int first = 0;
             check(KVXdelconstrs(m, 1, &first), m);
         },
         [](auto m, int) { check(KVXdelconstrs(m, n, all.data()), m); }},
        {"chgcoeffs in a row",
         [](auto m, int k) { check(KVXchgcoeffs(m, 1, zeros.data(), &k, ones.data()), m); },
         [](auto m, int) { check(KVXchgcoeffs(m, n, zeros.data(), all.data(), ones.data()), m); }},
        {"getcoeff in a row", [](auto m, int k) { check(KVXgetcoeff(m, 0, k, &val), m); },
         [](auto m, int) {
             check(KVXgetconstrs(m, &num, pair, index.data(), values.data(), 0, 1), m);
         }},
        {"a row, then NumNZs",
         [](auto m, int k) {
             const int begin = 0;
             check(KVXaddconstrs(m, 1, 1, &begin, &k, ones.data(), "<", ones.data(), nullptr), m);
             check(KVXgetintattr(m, "NumNZs", &num), m);
         },
         [](auto m, int) {
             std::string senses(n, '<');
             check(KVXaddconstrs(m, n, n, all.data(), all.data(), ones.data(), senses.data(),
                                 ones.data(), nullptr),
                   m);
         }},
    };
    std::printf("\n%-22s %12s %12s %8s\n", "100,000 steps", "one by one", "in one call", "ratio");
    auto prepared = [&] {
        KVXmodel *model = emptyModel();
        const Data data(n);
        data.addVars(model);
        check(KVXaddconstrs(model, 1, n, zeros.data(), all.data(), ones.data(), "<", ones.data(),
                            nullptr),
              model);
        data.addRows(model);
        return model;
    };
    for (const Pattern &pattern : patterns) {
        double single = measured([&](auto &start) {
                            KVXmodel *model = prepared();
                            start();
                            for (int k = 0; k < n; k++)
                                pattern.step(model, k);
                            check(KVXgetintattr(model, "NumNZs", &num), model);
                        }).seconds,
               whole = measured([&](auto &start) {
                           KVXmodel *model = prepared();
                           start();
                           pattern.whole(model, n);
                       }).seconds;
        std::printf("%-22s %9.2f ms %9.2f ms %8.1f\n", pattern.name, 1e3 * single, 1e3 * whole,
                    single / whole);
    }
}

} // namespace

int main() {
    compareBuilding();
    compareSteps();
}
