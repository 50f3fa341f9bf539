// Irreducible infeasible subsystems: a deletion filter over constraints, bounds and SOS. What isn't
// among these (integrality, the bounds of semi-continuous variables, general constraints) stays.
#include "guard.h"
#include "inner.h"
#include "optimize.h"
#include "params.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

// A member of a subsystem.
struct Member {
    enum Kind { constr, lower, upper, sos } kind;
    size_t index;
};

class Filter {
  public:
    explicit Filter(Run &run) : run(run), model(run.model), free(model) {
        free.constrs.clear();
        free.sos.clear();
        free.quadratic.clear();
        free.objectives.clear();
        free.hasBasis = false;
        for (Variable &var : free.vars) {
            var.name.clear();
            var.obj = 0;
            var.start = KVX_UNDEFINED;
            var.pwlX.clear();
            var.pwlY.clear();
            if (isSemi(var))
                continue;
            var.lb = -KVX_INFINITY;
            var.ub = KVX_INFINITY;
            if (var.type == KVX_BINARY)
                var.type = KVX_INTEGER;
        }
    }

    void find() {
        std::vector<Member> members = all();
        if (int status = solve(members); status == KVX_STATUS_NUMERIC)
            fail(KVX_ERROR_NUMERIC, "it can't be told whether the model is feasible");
        else if (!isInfeasible(status))
            fail(KVX_ERROR_INVALID_ARGUMENT, "the model is feasible");
        std::vector<Member> core = fromRay(members);
        size_t chunk = (members.size() + 3) / 4;
        if (!core.empty() && isInfeasible(solve(core))) {
            members = core;
            chunk = 1;
        }
        // Members before the position belong to the result: without one of them the present rest
        // is feasible, or at least it can't be told that it isn't. Several are tried at once while
        // that goes well.
        for (size_t position = 0; position < members.size();) {
            auto begin = members.begin() + static_cast<long>(position);
            chunk = std::min(chunk, members.size() - position);
            run.report(KVX_CB_IIS,
                       {{KVX_CB_IIS_CONSTRS, static_cast<double>(position)},
                        {KVX_CB_IIS_UNDECIDED, static_cast<double>(members.size() - position)}});
            std::vector<Member> rest(members.begin(), begin);
            rest.insert(rest.end(), begin + static_cast<long>(chunk), members.end());
            if (isInfeasible(solve(rest))) {
                members = rest;
                chunk *= 2;
            } else if (chunk > 1) {
                chunk /= 2;
            } else {
                position++;
            }
        }
        store(members);
    }

  private:
    static bool isSemi(const Variable &var) {
        return var.type == KVX_SEMICONT || var.type == KVX_SEMIINT;
    }

    std::vector<Member> all() const {
        std::vector<Member> members;
        for (size_t i = 0; i < model.constrs.size(); i++)
            members.push_back({Member::constr, i});
        for (size_t k = 0; k < model.sos.size(); k++)
            members.push_back({Member::sos, k});
        for (size_t j = 0; j < model.vars.size(); j++)
            addBounds(members, j);
        return members;
    }

    void addBounds(std::vector<Member> &members, size_t j) const {
        const Variable &var = model.vars[j];
        if (var.lb > -KVX_INFINITY && !isSemi(var))
            members.push_back({Member::lower, j});
        if (var.ub < KVX_INFINITY && !isSemi(var))
            members.push_back({Member::upper, j});
    }

    ModelData subsystem(const std::vector<Member> &members) const {
        ModelData data = free;
        for (auto [kind, index] : members) {
            if (kind == Member::constr)
                data.constrs.push_back(model.constrs[index]);
            else if (kind == Member::sos)
                data.sos.push_back(model.sos[index]);
            else if (kind == Member::lower)
                data.vars[index].lb = model.vars[index].lb;
            else
                data.vars[index].ub = model.vars[index].ub;
        }
        makeColumns(data);
        return data;
    }

    static bool isInfeasible(int status) {
        return status == KVX_STATUS_INFEASIBLE || status == KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
    }

    int solve(const std::vector<Member> &members) {
        auto inner = makeInnerModel(run.settings, subsystem(members));
        for (const char *limit : {"NodeLimit", "IterationLimit"})
            setParam(inner->env, limit, KVX_INFINITY);
        setParam(inner->env, "SolutionLimit", 1);
        int status = solveInside(run, *inner);
        if (run.stopped())
            fail(KVX_ERROR_DATA_NOT_AVAILABLE,
                 "the search for an infeasible subsystem was ended early");
        return status;
    }

    // The constraints and bounds that a proof of the linear relaxation's infeasibility uses; none
    // when there is no such proof.
    std::vector<Member> fromRay(const std::vector<Member> &members) {
        ModelData data = subsystem(members);
        Problem problem(data);
        ClpSimplex lp;
        problem.load(lp);
        SimplexWatch watch(run, false);
        lp.passInEventHandler(&watch);
        lp.dual();
        std::unique_ptr<double[]> ray(lp.status() == 1 ? lp.infeasibilityRay() : nullptr);
        if (!ray)
            return {};
        constexpr double tolerance = 1e-9;
        std::vector<Member> core;
        for (size_t i = 0; i < data.constrs.size(); i++)
            if (std::abs(ray[i]) > tolerance)
                core.push_back({Member::constr, i});
        for (size_t j = 0; j < data.vars.size(); j++) {
            double sum = 0;
            for (auto [row, value] : data.vars[j].column)
                sum += value * ray[static_cast<size_t>(row)];
            if (std::abs(sum) > tolerance)
                addBounds(core, j);
        }
        return core;
    }

    void store(const std::vector<Member> &members) {
        for (Constraint &constr : model.constrs)
            constr.iis = 0;
        for (Sos &sos : model.sos)
            sos.iis = 0;
        for (Variable &var : model.vars)
            var.iisLb = var.iisUb = 0;
        for (auto [kind, index] : members) {
            int &mark = kind == Member::constr  ? model.constrs[index].iis
                        : kind == Member::sos   ? model.sos[index].iis
                        : kind == Member::lower ? model.vars[index].iisLb
                                                : model.vars[index].iisUb;
            mark = 1;
        }
        model.hasIis = true;
        run.say("Irreducible infeasible subsystem: %zu constraints, bounds and sets",
                members.size());
    }

    Run &run;
    KVXmodel &model;
    ModelData free; // without what a subsystem is made of
};

} // namespace
} // namespace korvex

using namespace korvex;

int KVXcomputeIIS(KVXmodel *model) {
    return perform(model, [](Run &run) { Filter(run).find(); });
}
