#include "solver_case.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <numeric>
#include <sstream>
#include <unistd.h>

// Allocations until one fails; negative: none does.
static thread_local int allowed = -1;

__attribute__((noinline)) void *operator new(std::size_t size) {
    if (allowed >= 0 && allowed-- == 0)
        throw std::bad_alloc();
    if (void *memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
__attribute__((noinline)) void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return std::malloc(size ? size : 1);
}
__attribute__((noinline)) void operator delete(void *memory) noexcept {
    std::free(memory);
}
__attribute__((noinline)) void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}

int inScarceMemory(const Model &model, const std::function<int(KVXmodel *)> &call) {
    const std::string before = described(model.get());
    for (int count = 0; count < 1000; count++) {
        allowed = count;
        const int status = call(model.get());
        allowed = -1;
        if (status != KVX_ERROR_OUT_OF_MEMORY)
            return status;
        EXPECT_EQ(before, described(model.get())) << count;
    }
    return KVX_ERROR_OUT_OF_MEMORY;
}

int Env::load(KVXenv *&env, int major, int key) {
    return KVXloadenvadv(&env, nullptr, KVX_INTERFACE_JAVA, major, 0, 0, nullptr, nullptr, nullptr,
                         nullptr, key, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

int intAttr(const Model &model, const char *name) {
    int value = 0;
    EXPECT_EQ(KVX_OK, KVXgetintattr(model.get(), name, &value)) << KVXgetmerrormsg(model.get());
    return value;
}

double dblAttr(const Model &model, const char *name) {
    double value = 0;
    EXPECT_EQ(KVX_OK, KVXgetdblattr(model.get(), name, &value)) << KVXgetmerrormsg(model.get());
    return value;
}

Vector dblAttrs(const Model &model, const char *name, size_t count) {
    Vector result(count);
    EXPECT_EQ(KVX_OK,
              KVXgetdblattrarray(model.get(), name, 0, static_cast<int>(count), result.data()))
        << KVXgetmerrormsg(model.get());
    return result;
}

std::vector<int> intAttrs(const Model &model, const char *name, size_t count) {
    std::vector<int> result(count);
    EXPECT_EQ(KVX_OK,
              KVXgetintattrarray(model.get(), name, 0, static_cast<int>(count), result.data()))
        << KVXgetmerrormsg(model.get());
    return result;
}

void setParam(const Model &model, const char *name, const std::string &value) {
    EXPECT_EQ(KVX_OK, KVXsetparam(KVXgetenv(model.get()), name, value.c_str())) << name;
}

void setCallback(const Model &model, Callback &callback) {
    auto call = [](KVXmodel *, void *cbdata, int where, void *function) {
        return (*static_cast<Callback *>(function))(cbdata, where);
    };
    EXPECT_EQ(KVX_OK, KVXsetcallbackfunc(model.get(), call, &callback));
}

std::pair<int, double> solved(const Model &model) {
    EXPECT_EQ(KVX_OK, KVXoptimize(model.get())) << KVXgetmerrormsg(model.get());
    int status = intAttr(model, "Status");
    return {status, status == KVX_STATUS_OPTIMAL ? dblAttr(model, "ObjVal") : 0};
}

Model derived(const Model &model, int (*derive)(KVXmodel *, KVXmodel **)) {
    KVXmodel *result = nullptr;
    EXPECT_EQ(KVX_OK, derive(model.get(), &result)) << KVXgetmerrormsg(model.get());
    return Model(result);
}

Sparse::Sparse(const Vector &dense) {
    for (size_t j = 0; j < dense.size(); j++)
        if (dense[j] != 0) {
            ind.push_back(static_cast<int>(j));
            val.push_back(dense[j]);
        }
}

Model Data::build(KVXenv *env) const {
    KVXmodel *model = nullptr;
    auto orNull = [](const auto &values) { return values.empty() ? nullptr : values.data(); };
    EXPECT_EQ(KVX_OK, KVXnewmodel(env, &model, "m", static_cast<int>(obj.size()), orNull(obj),
                                  orNull(lb), orNull(ub), orNull(types), nullptr));
    for (const auto &[dense, lower, upper] : rows) {
        const Sparse entries(dense);
        const int begin = 0, length = entries.size(), *const ind = entries.ind.data();
        const double *const val = entries.val.data();
        const char sense = lower == upper ? '=' : upper < inf ? '<' : '>';
        const bool isRange = lower != upper && (lower > -inf) == (upper < inf);
        EXPECT_EQ(KVX_OK, isRange ? KVXaddrangeconstrs(model, 1, length, &begin, ind, val, &lower,
                                                       &upper, nullptr)
                                  : KVXaddconstrs(model, 1, length, &begin, ind, val, &sense,
                                                  sense == '>' ? &lower : &upper, nullptr));
    }
    EXPECT_EQ(KVX_OK, KVXsetintattr(model, "ModelSense", sense));
    EXPECT_EQ(KVX_OK, KVXsetdblattr(model, "ObjCon", constant));
    return Model(model);
}

bool Data::holds(const Vector &x, double tolerance) const {
    bool result = true;
    auto check = [&](double value, double lower, double upper) {
        result &= value >= lower - tolerance && value <= upper + tolerance;
    };
    for (size_t j = 0; j < lb.size(); j++)
        check(x[j], lb[j], ub[j]);
    for (const Row &row : rows)
        check(product(row.val, x), row.lower, row.upper);
    return result;
}

Data Data::within(double low, double high) const {
    Data result = *this;
    for (double &bound : result.lb)
        bound = std::max(bound, low);
    for (double &bound : result.ub)
        bound = std::min(bound, high);
    return result;
}

Data randomData(Random &random, int vars, int rows, const std::string &types, int shift) {
    Data data;
    Vector point;
    auto around = [&](double value) -> std::pair<double, double> {
        const double low = value - random(0, 3), high = value + random(0, 3);
        const std::pair<double, double> shapes[] = {
            {low, high}, {low, inf}, {-inf, high}, {value, value}};
        return shapes[random(0, 3)];
    };
    for (int j = 0; j < vars; j++) {
        point.push_back(random(-3, 3));
        auto [low, high] = around(point.back());
        const bool isFree = random(0, 4) == 0;
        data.lb.push_back(isFree ? -inf : low);
        data.ub.push_back(isFree ? inf : high);
        data.obj.push_back(random(-4, 4));
        data.types += types[static_cast<size_t>(random(0, static_cast<int>(types.size()) - 1))];
    }
    for (int i = 0; i < rows; i++) {
        Vector val;
        for (int j = 0; j < vars; j++)
            val.push_back(random(-3, 3));
        auto [lower, upper] = around(product(val, point) + random(-shift, shift));
        data.rows.push_back({val, lower, upper});
    }
    data.sense = random(0, 1) ? KVX_MINIMIZE : KVX_MAXIMIZE;
    data.constant = random(-5, 5);
    return data;
}

Model marketSplit(KVXenv *env, size_t columns, size_t rows, unsigned seed) {
    Random random(seed);
    Data data{Vector(columns), {}, {}, std::string(columns, KVX_BINARY), {}};
    data.obj.resize(columns + 2 * rows, 1);
    data.types.resize(columns + 2 * rows, KVX_CONTINUOUS);
    for (size_t i = 0; i < rows; i++) {
        Vector val(columns + 2 * rows);
        for (size_t j = 0; j < columns; j++)
            val[j] = random(0, 99);
        const double half = std::floor(std::accumulate(val.begin(), val.end(), 0.0) / 2);
        val[columns + 2 * i] = 1;
        val[columns + 2 * i + 1] = -1;
        data.rows.push_back({val, half, half});
    }
    return data.build(env);
}

double product(const Vector &a, const Vector &b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

std::string temporary(const std::string &name) {
    static const struct Folder {
        const std::string path = testing::TempDir() + "korvex-" + std::to_string(getpid()) + "/";
        Folder() { std::filesystem::create_directory(path); }
        ~Folder() { std::filesystem::remove_all(path); }
    } folder;
    return folder.path + name;
}

std::string contents(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void store(const std::string &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::string caseFile(const std::string &name) {
    return CASES_DIRECTORY "/" + name;
}

std::vector<TextCase> readCases(const std::string &name) {
    std::vector<TextCase> cases;
    std::ifstream file(caseFile(name));
    for (std::string line; std::getline(file, line);)
        if (line.rfind("== ", 0) == 0)
            cases.push_back({line.substr(3), ""});
        else if (!cases.empty() && !line.empty())
            cases.back().text += line + '\n';
    EXPECT_FALSE(cases.empty()) << name;
    return cases;
}

Model fromText(KVXenv *env, const std::string &text) {
    const std::string path = temporary("text.lp");
    store(path, text);
    KVXmodel *model = nullptr;
    EXPECT_EQ(KVX_OK, KVXreadmodel(env, path.c_str(), &model)) << KVXgeterrormsg(env) << text;
    return Model(model);
}

template <class T>
static std::ostream &operator<<(std::ostream &out, const std::vector<T> &values) {
    for (const T &value : values)
        out << ' ' << value;
    return out << '\n';
}

std::string describedGeneral(KVXmodel *model, int g) {
    int first = -1, second = -1, num = 0, ind[10], parents[10];
    double number = -1, x[10], y[10];
    char sense = ' ';
    enum { vars = 1, xs = 2, ys = 4, tree = 8 };
    auto anyOf = [&](auto... gets) { return (!gets(model, g, &first, &second) || ...); };
    auto anyOfNumber = [&](auto... gets) {
        return (!gets(model, g, &first, &second, &number) || ...);
    };
    auto anyOfList = [&](auto... gets) {
        return (!gets(model, g, &first, &num, ind, &number) || ...);
    };
    const int arrays =
        anyOf(KVXgetgenconstrAbs, KVXgetgenconstrExp, KVXgetgenconstrLog, KVXgetgenconstrSin,
              KVXgetgenconstrCos, KVXgetgenconstrTan, KVXgetgenconstrLogistic) ||
                anyOfNumber(KVXgetgenconstrExpA, KVXgetgenconstrLogA, KVXgetgenconstrPow)
            ? 0
        : anyOfList(KVXgetgenconstrMax, KVXgetgenconstrMin, KVXgetgenconstrNorm) ||
                !KVXgetgenconstrAnd(model, g, &first, &num, ind) ||
                !KVXgetgenconstrOr(model, g, &first, &num, ind)
            ? vars
        : !KVXgetgenconstrIndicator(model, g, &first, &second, &num, ind, x, &sense, &number)
            ? vars + xs
        : !KVXgetgenconstrPWL(model, g, &first, &second, &num, x, y)  ? xs + ys
        : !KVXgetgenconstrPoly(model, g, &first, &second, &num, x)    ? xs
        : !KVXgetgenconstrNL(model, g, &first, &num, ind, x, parents) ? vars + xs + tree
                                                                      : -1;
    EXPECT_GE(arrays, 0);
    std::ostringstream out;
    out << first << ' ' << second << ' ' << number << sense;
    for (int k = 0; k < num; k++) {
        out << ';';
        if (arrays & vars)
            out << ' ' << ind[k];
        if (arrays & xs)
            out << ' ' << x[k];
        if (arrays & ys)
            out << ' ' << y[k];
        if (arrays & tree)
            out << ' ' << parents[k];
    }
    const char *options = "";
    EXPECT_EQ(KVX_OK, KVXgetstrattrelement(model, "GenConstrOptions", g, &options));
    return out.str() + options;
}

std::string described(KVXmodel *model) {
    std::ostringstream out;
    out.precision(17);
    auto count = [&](const char *name) {
        int value = 0;
        EXPECT_EQ(KVX_OK, KVXgetintattr(model, name, &value));
        out << name << ' ' << value << '\n';
        return value;
    };
    for (const char *name : {"ModelSense", "NumIntVars", "NumBinVars", "NumObj", "IsQP"})
        count(name);
    const int vars = count("NumVars"), constrs = count("NumConstrs"), sos = count("NumSOS"),
              genconstrs = count("NumGenConstrs"), qconstrs = count("NumQConstrs"),
              products = count("NumQNZs");
    auto attrs = [&](auto get, auto sample, int size, std::vector<const char *> names) {
        for (const char *name : names) {
            std::vector<decltype(sample)> values(static_cast<size_t>(size));
            EXPECT_EQ(KVX_OK, get(model, name, 0, size, values.data())) << name;
            out << name << values;
        }
    };
    const char *const text = nullptr;
    double constant = 0;
    EXPECT_EQ(KVX_OK, KVXgetdblattr(model, "ObjCon", &constant));
    out << constant << '\n';
    attrs(KVXgetdblattrarray, 0.0, vars, {"LB", "UB", "Obj", "ObjN", "Start"});
    attrs(KVXgetcharattrarray, ' ', vars, {"VarType"});
    attrs(KVXgetstrattrarray, text, vars, {"VarName"});
    attrs(KVXgetdblattrarray, 0.0, constrs, {"RHS", "RowLower", "RowUpper"});
    attrs(KVXgetcharattrarray, ' ', constrs, {"Sense"});
    attrs(KVXgetstrattrarray, text, constrs, {"ConstrName"});
    attrs(KVXgetintattrarray, 0, genconstrs, {"GenConstrType"});
    attrs(KVXgetstrattrarray, text, genconstrs, {"GenConstrName"});
    attrs(KVXgetdblattrarray, 0.0, qconstrs, {"QConstrRHS"});
    attrs(KVXgetcharattrarray, ' ', qconstrs, {"QConstrSense"});
    attrs(KVXgetstrattrarray, text, qconstrs, {"QConstrName"});

    std::vector<int> begin(200), ind(500), types(static_cast<size_t>(sos));
    Vector val(500), y(500);
    int num = 0;
    auto list = [&](int items, int status) {
        EXPECT_EQ(KVX_OK, status);
        out << "list" << std::vector<int>(begin.begin(), begin.begin() + items)
            << std::vector<int>(ind.begin(), ind.begin() + num)
            << Vector(val.begin(), val.begin() + num) << Vector(y.begin(), y.begin() + num);
    };
    int *const b = begin.data(), *const i = ind.data();
    double *const v = val.data();
    list(vars, KVXgetvars(model, &num, b, i, v, 0, vars));
    list(constrs, KVXgetconstrs(model, &num, b, i, v, 0, constrs));
    list(sos, KVXgetsos(model, &num, types.data(), b, i, v, 0, sos));
    out << "types" << types;
    for (int j = 0; j < vars; j++)
        list(0, KVXgetpwlobj(model, j, &num, v, y.data()));
    for (int g = 0; g < genconstrs; g++)
        out << describedGeneral(model, g) << '\n';
    EXPECT_EQ(KVX_OK, KVXgetq(model, &num, b, i, v));
    list(num, num == products ? KVX_OK : KVX_ERROR_INTERNAL);
    for (int q = 0; q < qconstrs; q++) {
        int numLinear = 0;
        list(0, KVXgetqconstr(model, q, &num, i, v, &numLinear, nullptr, nullptr, nullptr));
        list(num, KVXgetqconstr(model, q, nullptr, nullptr, nullptr, &num, b, i, v));
    }
    return out.str();
}

// Some of COIN's presolve actions don't give everything back. The sanitizer looks for this
// function.
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions();
const char *__lsan_default_suppressions() {
    return "leak:implied_free_action::presolve\nleak:presolve_dupmajor\n"
           "leak:CbcModel::chooseBranch\n";
}
