// What a callback can ask a run for and tell it.
#include "input.h"
#include "optimize.h"
#include "params.h"

#include <cmath>

using namespace korvex;

namespace {

// The types of the what codes of each where code: int, double, vector of doubles, text.
constexpr std::string_view types[] = {"d",      "ii", "dddd", "dddidd", "vddddi",
                                      "ivdddi", "t",  "ii",   "idv",    "ii"};

char typeOf(int what) {
    size_t where = at(what / 1000), number = at(what % 1000);
    if (what < 0 || where >= std::size(types) || number == 0 || number > types[where].size())
        fail(KVX_ERROR_INVALID_ARGUMENT, "there is no what code %d", what);
    return types[where][number - 1];
}

// Runs body with the run that is calling its callback.
template <class Body>
int guardedCallback(void *cbdata, Body &&body) noexcept {
    if (!cbdata)
        return KVX_ERROR_INVALID_ARGUMENT;
    Run &run = *static_cast<Run *>(cbdata);
    return guardedRead(&run.model, [&] {
        if (run.occasion.where < 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "not called from inside the callback");
        body(run);
    });
}

// Refuses what the present reason for the callback doesn't allow.
void requireWhere(const Run &run, std::initializer_list<int> allowed) {
    if (std::count(allowed.begin(), allowed.end(), run.occasion.where) == 0)
        fail(KVX_ERROR_INVALID_ARGUMENT, "not possible where the code is %d", run.occasion.where);
}

// Only these can change while a run goes on, and for it alone.
int setRunParam(void *cbdata, const char *name, const ParameterValue &value) {
    return guardedCallback(cbdata, [&](Run &run) {
        std::string_view wanted = needed(name, "the parameter name");
        for (const char *changeable :
             {"TimeLimit", "NodeLimit", "MIPGap", "MIPGapAbs", "LogInterval", "LogToConsole"})
            if (equalIgnoringCase(changeable, wanted)) {
                setParam(run.settings, name, value);
                return run.readLimits();
            }
        fail(KVX_ERROR_NOT_SUPPORTED, "parameter \"%s\" can't be changed during a run", name);
    });
}

Constraint readRow(const Run &run, int length, const int *ind, const double *val, char sense,
                   double rhs) {
    Constraint row;
    std::tie(row.lower, row.upper, row.sense) = sidesOf(sense, rhs, 0).tuple();
    row.row = readList(length, ind, val, run.model.vars.size(), "variable");
    if (std::abs(rhs) < KVX_INFINITY && !isSolvable(rhs))
        refuseNumber(rhs, "the right-hand side");
    for (auto [var, value] : row.row)
        if (!isSolvable(value))
            refuseNumber(value, "the coefficient of " + run.model.vars[at(var)].name.text());
    return row;
}

} // namespace

int KVXgetcbwhatinfo(void *cbdata, int what, int *type, int *vector) {
    return guardedCallback(cbdata, [&](Run &) {
        char found = typeOf(what);
        needed(type, "type");
        *needed(vector, "vector") = found == 'v';
        *type = found == 'i' ? KVX_TYPE_INT : found == 't' ? KVX_TYPE_STRING : KVX_TYPE_DOUBLE;
    });
}

int KVXcbget(void *cbdata, int where, int what, void *result) {
    return guardedCallback(cbdata, [&](Run &run) {
        const Occasion &occasion = run.occasion;
        requireWhere(run, {where});
        char type = typeOf(what);
        if (what >= 1000 && what / 1000 != where)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "code %d doesn't belong to code %d", what, where);
        size_t vars = run.model.vars.size();
        readArray(type == 'v' ? intSize(vars) : 1, result, "result");
        if (type == 'v')
            std::copy_n(occasion.vector->begin(), vars, static_cast<double *>(result));
        else if (type == 't')
            *static_cast<const char **>(result) = occasion.text;
        for (auto [code, value] : occasion.data)
            if (code == what && type == 'i')
                *static_cast<int *>(result) = static_cast<int>(value);
            else if (code == what)
                *static_cast<double *>(result) = value;
    });
}

int KVXcbcut(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIPNODE});
        run.cuts.push_back(readRow(run, length, ind, val, sense, rhs));
    });
}

int KVXcblazy(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIPSOL, KVX_CB_MIPNODE});
        if (!intParam(run.settings, "LazyConstraints"))
            fail(KVX_ERROR_INVALID_ARGUMENT, "the parameter LazyConstraints isn't set");
        run.addLazy(readRow(run, length, ind, val, sense, rhs));
    });
}

int KVXcbsolution(void *cbdata, const double *solution, double *objective) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIP, KVX_CB_MIPSOL, KVX_CB_MIPNODE});
        int count = intSize(run.model.vars.size());
        readArray(count, solution, "solution");
        std::vector<double> x(solution, solution + count);
        for (double entry : x)
            readFinite(entry, "a value of the solution");
        *needed(objective, "objective") = KVX_INFINITY;
        auto isKept = [&](double given, double found) {
            return given == KVX_UNDEFINED ||
                   std::abs(found - given) <= run.tolerance() * std::max(1.0, std::abs(given));
        };
        double value;
        if (run.complete && run.complete(x, value) && run.satisfiesLazies(x) &&
            std::equal(solution, solution + count, x.begin(), isKept)) {
            run.proposals.emplace_back(std::move(x), value);
            *objective = value;
        }
    });
}

int KVXcbsetintparam(void *cbdata, const char *name, int value) {
    return setRunParam(cbdata, name, value);
}

int KVXcbsetdblparam(void *cbdata, const char *name, double value) {
    return setRunParam(cbdata, name, value);
}

int KVXcbsetstrparam(void *cbdata, const char *name, const char *value) {
    return value ? setRunParam(cbdata, name, value) : KVX_ERROR_NULL_ARGUMENT;
}

int KVXcbproceed(void *cbdata) {
    return guardedCallback(cbdata, [&](Run &run) {
        if (!run.hasPhases)
            fail(KVX_ERROR_NOT_SUPPORTED, "the run has no phase that could be ended");
        run.stop(Run::next);
    });
}

int KVXcbstoponemultiobj(KVXmodel *model, void *cbdata, int objnumber) {
    return guardedCallback(cbdata, [&](Run &run) {
        if (model != &run.model || !std::count(run.present.begin(), run.present.end(), objnumber))
            fail(KVX_ERROR_INVALID_ARGUMENT, "objective %d isn't being optimised", objnumber);
        run.stop(Run::next);
    });
}
