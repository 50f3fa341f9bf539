// What the solver's tests share: owners of environments and models, models from data and as text,
// random numbers, enumeration, files.
#ifndef KORVEX_TESTS_SOLVER_CASE_H
#define KORVEX_TESTS_SOLVER_CASE_H

#include "korvex.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

using Vector = std::vector<double>;
constexpr double inf = KVX_INFINITY;

// A started environment that writes nothing to the console.
struct Env {
    KVXenv *env = nullptr;
    Env() { EXPECT_EQ(KVX_OK, load(env, KVX_VERSION_MAJOR, KVX_LOADENV_KEY)); }
    Env(const Env &) = delete;
    Env &operator=(const Env &) = delete;
    ~Env() { KVXfreeenv(env); }
    operator KVXenv *() const { return env; }

    static int load(KVXenv *&env, int major, int key);
};

struct FreeModel {
    void operator()(KVXmodel *model) const { EXPECT_EQ(KVX_OK, KVXfreemodel(model)); }
};
using Model = std::unique_ptr<KVXmodel, FreeModel>;

// A call on the model that must succeed; shows the error text otherwise.
#define MUST(model, call) ASSERT_EQ(KVX_OK, call) << KVXgetmerrormsg(&*(model))

// Attributes that must be there; an array has one element for each variable or constraint.
int intAttr(const Model &model, const char *name);
double dblAttr(const Model &model, const char *name);
std::vector<int> intAttrs(const Model &model, const char *name, size_t count);
Vector dblAttrs(const Model &model, const char *name, size_t count);

// The status of a call that before fails by every single one of its allocations, each time leaving
// the model as it was.
int inScarceMemory(const Model &model, const std::function<int(KVXmodel *)> &call);

// A parameter of the model's own environment, as text.
void setParam(const Model &model, const char *name, const std::string &value);

// A callback that may hold on to things; it has to live as long as the model is used.
using Callback = std::function<int(void *cbdata, int where)>;
void setCallback(const Model &model, Callback &callback);

// Solves a model: its status, and the objective value when it is optimal.
std::pair<int, double> solved(const Model &model);

// A model derived from another one by one of the functions that do.
Model derived(const Model &model, int (*derive)(KVXmodel *, KVXmodel **));

struct Random {
    std::mt19937 engine;
    explicit Random(unsigned seed) : engine(seed) {}
    int operator()(int low, int high) {
        return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
    }
};

// A row with a coefficient for every variable.
struct Row {
    Vector val;
    double lower, upper;
};

// The entries of a row or column that aren't 0.
struct Sparse {
    std::vector<int> ind;
    Vector val;
    explicit Sparse(const Vector &dense);
    int size() const { return static_cast<int>(ind.size()); }
};

// A model to be built. Bounds and types may be left empty.
struct Data {
    Vector obj, lb, ub;
    std::string types;
    std::vector<Row> rows;
    int sense = KVX_MINIMIZE;
    double constant = 0;

    Model build(KVXenv *env) const;
    bool holds(const Vector &x, double tolerance = 0) const;
    Data within(double low, double high) const; // with bounds that are at least as narrow
};

// Rows and bounds of all shapes around a point of integers from -3 to 3; the rows are then shifted
// by up to so much. Types are picked from a text.
Data randomData(Random &random, int vars, int rows, const std::string &types, int shift = 0);

// Splits the numbers of each row into two halves of equal sum; leaves as little over as possible.
// With 40 columns and 5 rows no solver comes to an end.
Model marketSplit(KVXenv *env, size_t columns, size_t rows, unsigned seed = 1);

double product(const Vector &a, const Vector &b);

// Calls use(x) for all points of integers from low to high.
template <class Use>
void forPoints(size_t vars, int low, int high, Use use) {
    Vector x(vars, low);
    for (size_t j = 0; j < vars;) {
        use(x);
        for (j = 0; j < vars && ++x[j] > high; j++)
            x[j] = low;
    }
}

// The path of a file in a folder that goes away with the process, and what such a file holds.
std::string temporary(const std::string &name);
std::string contents(const std::string &path);
void store(const std::string &path, const std::string &text);

// A file that goes with these sources.
std::string caseFile(const std::string &name);

// Some have texts, each below a line that begins with "== " and a title.
struct TextCase {
    std::string title, text;
};
std::vector<TextCase> readCases(const std::string &name);

// The model of a text in LP format.
Model fromText(KVXenv *env, const std::string &text);

// A general constraint as text: its variables, number and sense, and its arrays.
std::string describedGeneral(KVXmodel *model, int constr);

// The data of a model, all that can be read through the interface, as text.
std::string described(KVXmodel *model);

#endif
