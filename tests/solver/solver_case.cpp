#include "solver_case.h"

#include <sstream>

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

Model derived(const Model &model, int (*derive)(KVXmodel *, KVXmodel **)) {
    KVXmodel *result = nullptr;
    EXPECT_EQ(KVX_OK, derive(model.get(), &result)) << KVXgetmerrormsg(model.get());
    return Model(result);
}

namespace {

template <class T>
std::ostream &operator<<(std::ostream &out, const std::vector<T> &values) {
    for (const T &value : values)
        out << ' ' << value;
    return out << '\n';
}

template <class T, class Get>
void describeAttrs(std::ostream &out, KVXmodel *model, std::vector<const char *> names, int size,
                   Get get) {
    for (const char *name : names) {
        std::vector<T> values(static_cast<size_t>(size));
        EXPECT_EQ(KVX_OK, get(model, name, 0, size, values.data())) << name;
        out << name << values;
    }
}

// read(numP, beg, ind, val): one of the readers of sparse lists.
template <class Read>
void describeLists(std::ostream &out, int count, Read read) {
    int num = 0;
    EXPECT_EQ(KVX_OK, read(&num, nullptr, nullptr, nullptr));
    auto size = static_cast<size_t>(num);
    std::vector<int> beg(static_cast<size_t>(count) + 1), ind(size);
    std::vector<double> val(size);
    EXPECT_EQ(KVX_OK, read(&num, beg.data(), ind.data(), val.data()));
    out << "lists" << beg << ind << val;
}

} // namespace

std::string described(KVXmodel *model) {
    std::ostringstream out;
    auto count = [&](const char *name) {
        int value = 0;
        EXPECT_EQ(KVX_OK, KVXgetintattr(model, name, &value));
        out << name << ' ' << value << '\n';
        return value;
    };
    for (const char *name : {"ModelSense", "NumIntVars", "NumBinVars", "NumObj"})
        count(name);
    const int vars = count("NumVars"), constrs = count("NumConstrs"), sos = count("NumSOS"),
              genconstrs = count("NumGenConstrs");
    describeAttrs<double>(out, model, {"LB", "UB", "Obj", "ObjN", "Start"}, vars,
                          KVXgetdblattrarray);
    describeAttrs<char>(out, model, {"VarType"}, vars, KVXgetcharattrarray);
    describeAttrs<const char *>(out, model, {"VarName"}, vars, KVXgetstrattrarray);
    describeAttrs<double>(out, model, {"RHS", "RowLower", "RowUpper"}, constrs, KVXgetdblattrarray);
    describeAttrs<char>(out, model, {"Sense"}, constrs, KVXgetcharattrarray);
    describeAttrs<const char *>(out, model, {"ConstrName"}, constrs, KVXgetstrattrarray);
    describeAttrs<int>(out, model, {"GenConstrType"}, genconstrs, KVXgetintattrarray);
    describeAttrs<const char *>(out, model, {"GenConstrName"}, genconstrs, KVXgetstrattrarray);
    describeLists(out, vars, [&](int *num, int *beg, int *ind, double *val) {
        return KVXgetvars(model, num, beg, ind, val, 0, vars);
    });
    describeLists(out, constrs, [&](int *num, int *beg, int *ind, double *val) {
        return KVXgetconstrs(model, num, beg, ind, val, 0, constrs);
    });
    std::vector<int> types(static_cast<size_t>(sos));
    describeLists(out, sos, [&](int *num, int *beg, int *ind, double *val) {
        return KVXgetsos(model, num, types.data(), beg, ind, val, 0, sos);
    });
    out << "types" << types;
    for (int j = 0; j < vars; j++) {
        int num = 0;
        double x[32], y[32];
        EXPECT_EQ(KVX_OK, KVXgetpwlobj(model, j, &num, x, y));
        out << "pwl" << std::vector<double>(x, x + num) << std::vector<double>(y, y + num);
    }
    for (int g = 0; g < genconstrs; g++) {
        int first = 0, second = 0, num = 0, ind[32] = {};
        double val[32] = {}, y[32] = {}, number = 0;
        char sense = ' ';
        EXPECT_TRUE(
            !KVXgetgenconstrIndicator(model, g, &first, &second, &num, ind, val, &sense, &number) ||
            !KVXgetgenconstrMax(model, g, &first, &num, ind, &number) ||
            !KVXgetgenconstrAbs(model, g, &first, &second) ||
            !KVXgetgenconstrPWL(model, g, &first, &second, &num, val, y));
        out << first << ' ' << second << ' ' << sense << number << std::vector<int>(ind, ind + num)
            << std::vector<double>(val, val + num) << std::vector<double>(y, y + num);
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
