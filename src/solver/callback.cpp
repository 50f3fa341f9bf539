// What a callback can ask a run for and tell it.
#include "input.h"
#include "params.h"
#include "run.h"
#include "text.h"

#include <algorithm>

using namespace korvex;

namespace {

struct DatumType {
    int type;
    bool vector;
};

// What can be asked for, by the type in which it comes.
constexpr int ints[] = {KVX_CB_PRE_COLDEL,      KVX_CB_PRE_ROWDEL,     KVX_CB_MIP_SOLCOUNT,
                        KVX_CB_MIPSOL_SOLCOUNT, KVX_CB_MIPNODE_STATUS, KVX_CB_MIPNODE_SOLCOUNT,
                        KVX_CB_IIS_CONSTRS,     KVX_CB_IIS_UNDECIDED,  KVX_CB_MULTIOBJ_SOLVED,
                        KVX_CB_TUNE_TRIAL,      KVX_CB_TUNE_TRIALS};
constexpr int doubles[] = {KVX_CB_RUNTIME,          KVX_CB_SPX_ITERATIONS, KVX_CB_SPX_OBJVAL,
                           KVX_CB_SPX_PRIMINF,      KVX_CB_SPX_DUALINF,    KVX_CB_MIP_OBJBEST,
                           KVX_CB_MIP_OBJBOUND,     KVX_CB_MIP_NODES,      KVX_CB_MIP_OPENNODES,
                           KVX_CB_MIP_ITERATIONS,   KVX_CB_MIPSOL_OBJ,     KVX_CB_MIPSOL_OBJBEST,
                           KVX_CB_MIPSOL_OBJBOUND,  KVX_CB_MIPSOL_NODES,   KVX_CB_MIPNODE_OBJBEST,
                           KVX_CB_MIPNODE_OBJBOUND, KVX_CB_MIPNODE_NODES,  KVX_CB_MULTIOBJ_OBJVAL};
constexpr int vectors[] = {KVX_CB_MIPSOL_SOL, KVX_CB_MIPNODE_REL, KVX_CB_MULTIOBJ_SOL};

DatumType datumType(int what) {
    auto isIn = [&](auto &codes) {
        return std::find(std::begin(codes), std::end(codes), what) != std::end(codes);
    };
    if (what == KVX_CB_MSG_STRING)
        return {KVX_TYPE_STRING, false};
    if (isIn(ints))
        return {KVX_TYPE_INT, false};
    if (isIn(doubles) || isIn(vectors))
        return {KVX_TYPE_DOUBLE, isIn(vectors)};
    fail(KVX_ERROR_INVALID_ARGUMENT, "there is no what code %d", what);
}

// Runs body with the run that is calling its callback on this thread.
template <class Body>
int guardedCallback(void *cbdata, Body &&body) noexcept {
    if (!cbdata)
        return KVX_ERROR_INVALID_ARGUMENT;
    Run &run = *static_cast<Run *>(cbdata);
    return guardedRead(&run.model, [&] {
        if (!run.insideCallback())
            fail(KVX_ERROR_INVALID_ARGUMENT, "not called from inside the callback");
        body(run);
    });
}

// Refuses what the present reason for the callback doesn't allow.
void requireWhere(const Run &run, std::initializer_list<int> allowed, const char *what) {
    if (std::count(allowed.begin(), allowed.end(), run.occasion.where) == 0)
        fail(KVX_ERROR_INVALID_ARGUMENT, "%s isn't possible where the code is %d", what,
             run.occasion.where);
}

// A parameter of the run itself, out of those that can change while it goes on.
int setRunParam(void *cbdata, const char *name, const ParameterValue &value) {
    return guardedCallback(cbdata, [&](Run &run) {
        static const char *const changeable[] = {"TimeLimit", "NodeLimit",   "MIPGap",
                                                 "MIPGapAbs", "LogInterval", "LogToConsole"};
        needed(name, "the parameter name");
        if (std::none_of(std::begin(changeable), std::end(changeable),
                         [&](const char *known) { return equalIgnoringCase(known, name); }))
            fail(KVX_ERROR_NOT_SUPPORTED, "parameter \"%s\" can't be changed during a run",
                 validUtf8(name).c_str());
        setParam(run.settings, name, value);
        run.readLimits();
    });
}

Row readRow(const Run &run, int length, const int *ind, const double *val, char sense, double rhs) {
    Range sides = sidesOf(sense, rhs, 0);
    return {readList(length, ind, val, run.model.vars.size(), "variable"), sides.lower,
            sides.upper};
}

} // namespace

int KVXgetcbwhatinfo(void *cbdata, int what, int *type, int *vector) {
    return guardedCallback(cbdata, [&](Run &) {
        const DatumType datum = datumType(what);
        *needed(type, "type") = datum.type;
        *needed(vector, "vector") = datum.vector;
    });
}

int KVXcbget(void *cbdata, int where, int what, void *result) {
    return guardedCallback(cbdata, [&](Run &run) {
        const Occasion &occasion = run.occasion;
        if (where != occasion.where)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the callback was called for the code %d, not %d",
                 occasion.where, where);
        const DatumType type = datumType(what);
        if (what >= 1000 && what / 1000 != where)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "what code %d doesn't belong to where code %d", what,
                 where);
        if (type.vector) {
            if (!occasion.vector)
                fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no solution for code %d", what);
            if (size_t count = run.model.vars.size())
                std::copy_n(occasion.vector->begin(), count,
                            static_cast<double *>(needed(result, "result")));
            return;
        }
        needed(result, "result");
        if (type.type == KVX_TYPE_STRING) {
            *static_cast<const char **>(result) = occasion.text;
            return;
        }
        for (const Datum &datum : occasion.data)
            if (datum.what == what) {
                if (type.type == KVX_TYPE_INT)
                    *static_cast<int *>(result) = static_cast<int>(datum.value);
                else
                    *static_cast<double *>(result) = datum.value;
                return;
            }
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "code %d isn't known now", what);
    });
}

int KVXcbcut(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIPNODE}, "adding a cut");
        run.cuts.push_back(readRow(run, length, ind, val, sense, rhs));
    });
}

int KVXcblazy(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIPSOL, KVX_CB_MIPNODE}, "adding a lazy constraint");
        if (!intParam(run.settings, "LazyConstraints"))
            fail(KVX_ERROR_INVALID_ARGUMENT, "the parameter LazyConstraints isn't set");
        run.addLazy(readRow(run, length, ind, val, sense, rhs));
    });
}

int KVXcbsolution(void *cbdata, const double *solution, double *objective) {
    return guardedCallback(cbdata, [&](Run &run) {
        requireWhere(run, {KVX_CB_MIP, KVX_CB_MIPSOL, KVX_CB_MIPNODE}, "proposing a solution");
        size_t count = run.model.vars.size();
        needed(objective, "objective");
        std::vector<double> x;
        if (count > 0)
            x.assign(needed(solution, "solution"), solution + count);
        double value = KVX_INFINITY;
        if (run.complete && run.complete(x, value))
            run.proposals.emplace_back(std::move(x), value);
        *objective = value;
    });
}

int KVXcbsetintparam(void *cbdata, const char *name, int value) {
    return setRunParam(cbdata, name, value);
}

int KVXcbsetdblparam(void *cbdata, const char *name, double value) {
    return setRunParam(cbdata, name, value);
}

int KVXcbsetstrparam(void *cbdata, const char *name, const char *) {
    return guardedCallback(cbdata, [&](Run &) {
        fail(KVX_ERROR_NOT_SUPPORTED, "parameter \"%s\" can't be changed during a run",
             validUtf8(needed(name, "the parameter name")).c_str());
    });
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
        const std::vector<int> &present = run.present;
        if (model != &run.model ||
            std::find(present.begin(), present.end(), objnumber) == present.end())
            fail(KVX_ERROR_INVALID_ARGUMENT, "objective %d isn't being optimised", objnumber);
        run.stop(Run::next);
    });
}
