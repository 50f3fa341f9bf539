// Convex quadratic objectives on continuous variables, by a primal-dual interior-point method with
// Mehrotra's predictor and corrector. Clp's own method for them misses optima and may not end. Clp
// decides before whether there is an optimum at all: the method meets problems with one only.
#define EIGEN_MPL2_ONLY
#define EIGEN_NO_DEBUG
#include "guard.h"
#include "optimize.h"

#include <Eigen/SparseCholesky>

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

using Dense = Eigen::VectorXd;
using Array = Eigen::ArrayXd;
using Sparse = Eigen::SparseMatrix<double>;
using Entry3 = Eigen::Triplet<double>;
using Factors =
    Eigen::SimplicialLDLT<Sparse>; // of a lower triangle, in an order that keeps it sparse

constexpr int mostIterations = 200, patience = 30; // iterations in all, and without progress
constexpr double enough = 1e-8, accuracy = 1e-11;  // aimed at; relative to the scaled numbers
constexpr double mostRegularization = 1e-4;        // of the scaled system
constexpr double tolerance = 1e-10;                // of a convex form's negative curvature

// The matrix Q of x'Qx / 2.
Sparse hessian(const Problem &problem) {
    std::vector<Entry3> entries;
    for (auto [pair, value] : problem.products) {
        entries.emplace_back(pair.first, pair.second, value);
        entries.emplace_back(pair.second, pair.first, value);
    }
    Sparse result(intSize(problem.cost.size()), intSize(problem.cost.size()));
    result.setFromTriplets(entries.begin(), entries.end());
    return result;
}

Eigen::Map<const Dense> dense(const std::vector<double> &values) {
    return {values.data(), intSize(values.size())};
}

// Minimises x'Qx / 2 + c'x over bounds of the quantities (x, Ax), columns and rows, all of them
// scaled. What mustn't move or count has the scale 0 and no bounds.
class InteriorPoint {
  public:
    explicit InteriorPoint(const Problem &problem)
        : x(problem.cost.size()), multipliers(problem.rowLower.size()), problem(problem) {
        select();
        scale();
        analyze();
    }

    // Goes on until it comes no nearer to an optimum, or the run has to end. Where the predictor
    // leads nowhere, short steps in the middle of the way come to the optimum. Which regularization
    // the factors can do with differs. Bounds that leave no room between them, since they imply an
    // equation, are loosened at last, by far less than solutions may be beyond them.
    void solve(Run &run) {
        const struct {
            double regularization, distance;
            bool isCautious;
            double room = 0;
        } attempts[] = {{1e-10, 1, false},   {1e-7, 1, false},        {1e-10, 10, false},
                        {1e-10, 100, false}, {1e-8, 100, true},       {1e-11, 100, true},
                        {1e-6, 100, true},   {1e-10, 1, false, 1e-9}, {1e-8, 100, true, 1e-8}};
        const Dense exact = bounds;
        for (auto [smallest, distance, isCautious, room] : attempts)
            if (least > enough && !run.stopped()) {
                regularization = smallest;
                bounds = exact - room * (1 + exact.array().abs()).matrix();
                begin(distance);
                approach(run, isCautious);
            }
    }

    std::vector<double> x, multipliers; // the best found, of the problem's columns and rows

  private:
    static bool isFinite(double bound) { return std::abs(bound) < COIN_DBL_MAX / 2; }

    // Fixed columns stay at their value, and rows without sides don't count.
    void select() {
        constexpr double nearlyFixed = 1e-10; // There has to be something between two bounds.
        auto isFixed = [&](int k) {
            return upper[k] - lower[k] <= nearlyFixed * std::max(1.0, std::abs(lower[k]));
        };
        const CoinPackedMatrix &matrix = problem.matrix;
        A = Eigen::Map<const Sparse>(m, n, matrix.getNumElements(), matrix.getVectorStarts(),
                                     matrix.getIndices(), matrix.getElements(),
                                     matrix.getVectorLengths());
        lower << dense(problem.lower), dense(problem.rowLower);
        upper << dense(problem.upper), dense(problem.rowUpper);
        for (int j = 0; j < n; j++)
            if (isFixed(j)) {
                x[at(j)] = lower[j];
                scales[j] = 0;
                lower[j] = -COIN_DBL_MAX;
                upper[j] = COIN_DBL_MAX;
            }
        fixed = dense(x);
        c = dense(problem.gradient(x));
        lower.tail(m) -= A * fixed;
        upper.tail(m) -= A * fixed;
        for (int k = n; k < n + m; k++) {
            if (isFixed(k))
                moves[k] = 0;
            scales[k] = isFinite(lower[k]) || isFinite(upper[k]) ? 1 : 0;
        }
    }

    // Brings the largest number of every row and column of the system near to 1.
    void scale() {
        for (int round = 0; round < 10; round++) {
            Dense largest = Dense::Zero(n + m);
            auto see = [&](const Sparse &matrix, int first) {
                for (int j = 0; j < n; j++)
                    for (Sparse::InnerIterator entry(matrix, j); entry; ++entry) {
                        const int i = first + static_cast<int>(entry.row());
                        const double size = std::abs(entry.value()) * scales[i] * scales[j];
                        largest[i] = std::max(largest[i], size);
                        largest[j] = std::max(largest[j], size);
                    }
            };
            see(Q, 0);
            see(A, n);
            for (int k = 0; k < n + m; k++)
                if (largest[k] > 0)
                    scales[k] /= std::sqrt(largest[k]);
        }
        const auto ofColumns = scales.head(n).asDiagonal();
        Q = ofColumns * Q * ofColumns;
        A = scales.tail(m).asDiagonal() * A * ofColumns;
        Q.prune(0.0);
        A.prune(0.0);
        c = ofColumns * c;
        double largest = c.lpNorm<Eigen::Infinity>();
        for (int k = 0; k < Q.nonZeros(); k++)
            largest = std::max(largest, std::abs(Q.valuePtr()[k]));
        costScale = largest > 0 ? 1 / largest : 1;
        Q *= costScale;
        c *= costScale;
    }

    void analyze() {
        std::vector<Entry3> entries, signs;
        for (int j = 0; j < n; j++) {
            for (Sparse::InnerIterator entry(Q, j); entry; ++entry)
                if (entry.row() >= j)
                    entries.emplace_back(entry.row(), j, entry.value());
            for (Sparse::InnerIterator entry(A, j); entry; ++entry)
                entries.emplace_back(n + entry.row(), j, entry.value());
        }
        std::vector<double> ends;
        for (int k = 0; k < n + m; k++) {
            entries.emplace_back(k, k, 0);
            for (auto [sign, bound] : {std::pair(1.0, &lower[k]), std::pair(-1.0, &upper[k])}) {
                if (!isFinite(*bound))
                    continue;
                *bound *= k < n ? 1 / scales[k] : scales[k];
                if (moves[k] == 0)
                    continue;
                signs.emplace_back(intSize(ends.size()), k, sign);
                ends.push_back(sign * *bound);
            }
        }
        system.resize(n + m, n + m);
        system.setFromTriplets(entries.begin(), entries.end());
        factors.analyzePattern(system);
        sides.resize(intSize(ends.size()), n + m);
        sides.setFromTriplets(signs.begin(), signs.end());
        bounds = dense(ends);
    }

    // All sides are that far away, or further.
    void begin(double distance) {
        v = lower.cwiseMax(0).cwiseMin(upper);
        y.setZero(m);
        w = (sides * v - bounds).cwiseMax(distance);
        z.setConstant(bounds.size(), distance);
    }

    // How far the point is from an optimum: the gap and the largest residual.
    double measure() {
        auto relative = [](const Dense &residual, const Dense &size) {
            return residual.cwiseQuotient((1 + size.array().abs()).matrix())
                .lpNorm<Eigen::Infinity>();
        };
        const Dense x = v.head(n), Qx = Q * x;
        beyond = (sides * v - bounds).array() - w;
        primal = A * x - v.tail(m);
        dual << Qx + c - A.transpose() * y, y;
        dual = moves.cwiseProduct(dual - sides.transpose() * z.matrix());
        return (w * z).sum() / (1 + std::abs(x.dot(Qx) / 2 + c.dot(x))) +
               std::max({relative(beyond, bounds), relative(primal, v.tail(m)),
                         relative(dual.head(n), Qx), dual.tail(m).lpNorm<Eigen::Infinity>()});
    }

    bool factorize() {
        diagonal = sides.cwiseAbs().transpose() * (z / w).matrix();
        for (double &entry : diagonal.tail(m))
            entry = entry > 0 ? -1 / entry : 0;
        Dense signs = Dense::Ones(n + m);
        signs.tail(m) *= -1;
        for (double extra = regularization; extra < mostRegularization; extra *= 100) {
            Sparse whole = system;
            whole.diagonal() += diagonal + extra * signs;
            factors.factorize(whole);
            if (factors.info() == Eigen::Success)
                return true;
        }
        return false; // A pivot has been 0 each time.
    }

    // Refines the solution of the regularised system to one of the system itself, as far as it
    // comes.
    Dense solveSystem(const Dense &right) const {
        Dense best = Dense::Zero(n + m), rest = right;
        for (int round = 0; round < 8; round++) {
            Dense next = best + factors.solve(rest);
            Dense left =
                right - system.selfadjointView<Eigen::Lower>() * next - diagonal.cwiseProduct(next);
            if (!(left.lpNorm<Eigen::Infinity>() < 0.9 * rest.lpNorm<Eigen::Infinity>()))
                break;
            best.swap(next);
            rest.swap(left);
        }
        return best;
    }

    // Newton's direction towards products w z that change by so much, and the largest step in it.
    double direction(const Array &change) {
        const Dense push = sides.transpose() * ((change - z * beyond) / w).matrix() - dual;
        Dense right(n + m);
        right << push.head(n), -primal - diagonal.tail(m).cwiseProduct(push.tail(m));
        const Dense solution = solveSystem(right);
        dy = -solution.tail(m);
        dv << solution.head(n), A * solution.head(n) + primal;
        dv = dv.cwiseProduct(moves);
        dw = (sides * dv).array() + beyond;
        dz = (change - z * dw) / w;
        double step = 1e10;
        for (int k = 0; k < w.size(); k++) {
            if (dw[k] < 0)
                step = std::min(step, -w[k] / dw[k]);
            if (dz[k] < 0)
                step = std::min(step, -z[k] / dz[k]);
        }
        return step;
    }

    void approach(Run &run, bool isCautious) {
        double nearest = COIN_DBL_MAX;
        for (int k = 0, bestK = 0; k < mostIterations && k < bestK + patience; k++) {
            const double error = measure();
            if (!(error < COIN_DBL_MAX))
                break;
            if (error < nearest) {
                nearest = error;
                bestK = k;
            }
            if (error < least) {
                least = error;
                keep();
            }
            report(run, k);
            if (run.stopped() || error <= accuracy || !factorize())
                break;
            auto towards = [&](double aim) { return direction(aim - w * z); };
            auto meanAfter = [&](double step) {
                return w.size() > 0 ? ((w + step * dw) * (z + step * dz)).mean() : 0;
            };
            const double reach = std::min(1.0, towards(0)), mean = meanAfter(0),
                         aim = mean > 0 ? mean * std::pow(meanAfter(reach) / mean, 3) : 0;
            double step = isCautious ? 0 : direction(aim - w * z - dw * dz);
            if (step < 0.1)
                step = towards(std::max(aim, 0.3 * mean));
            step = std::min(1.0, (isCautious ? 0.9 : 0.995) * step);
            v += step * dv;
            y += step * dy;
            w += step * dw;
            z += step * dz;
        }
    }

    void report(Run &run, int iteration) {
        run.iterations = run.earlierIterations + iteration;
        run.progress(KVX_CB_SIMPLEX, {{KVX_CB_SPX_ITERATIONS, run.iterations},
                                      {KVX_CB_SPX_OBJVAL, problem.objective(x)},
                                      {KVX_CB_SPX_PRIMINF, primal.lpNorm<1>()},
                                      {KVX_CB_SPX_DUALINF, dual.lpNorm<1>() / costScale}});
    }

    // Keeps the point as the problem's, within its bounds.
    void keep() {
        for (int j = 0; j < n; j++)
            x[at(j)] =
                std::clamp(fixed[j] + v[j] * scales[j], problem.lower[at(j)], problem.upper[at(j)]);
        for (int i = 0; i < m; i++)
            multipliers[at(i)] = y[i] * scales[n + i] / costScale;
    }

    const Problem &problem;
    const int n = intSize(x.size()), m = intSize(multipliers.size()); // columns and rows
    Sparse Q = hessian(problem), A;
    Dense c, fixed; // of columns: costs, and the values of those that stay there
    // Of columns and rows:
    Dense lower{n + m}, upper{n + m}, scales = Dense::Ones(n + m);
    Dense moves = Dense::Ones(n + m); // 0 for a row whose sides are equal
    double costScale = 1, regularization = 0;
    double least = COIN_DBL_MAX; // the best point's distance from an optimum

    Sparse sides;              // which quantity has each finite bound: 1 for a lower one, -1 for
    Dense bounds;              // an upper one; and the bounds with these signs
    Array w, z, dw, dz;        // distances from the bounds, their multipliers, and their steps
    Dense v, y, dv{n + m}, dy; // quantities, multipliers of the rows, and their steps
    Dense dual{n + m}, primal; // residuals
    Array beyond;              // those of the distances
    Sparse system;             // Q and A, without what the sides add to the diagonal
    Dense diagonal;            // which is this
    Factors factors;
};

} // namespace

// Whether there is a direction that leads to ever better points. Along it the form is 0.
static bool isUnbounded(Run &run, const Problem &problem) {
    Problem ray = problem;
    ray.products.clear();
    ray.constant = 0;
    auto recede = [](std::vector<double> &lower, std::vector<double> &upper, double most) {
        for (double &bound : lower)
            bound = bound > -COIN_DBL_MAX ? 0 : -most;
        for (double &bound : upper)
            bound = bound < COIN_DBL_MAX ? 0 : most;
    };
    recede(ray.lower, ray.upper, 1);
    recede(ray.rowLower, ray.rowUpper, COIN_DBL_MAX);
    const Sparse Q = hessian(problem);
    for (int j = 0; j < Q.outerSize(); j++) {
        Constraint row{{"", 0, 0}};
        const double size = Q.col(j).norm();
        for (Sparse::InnerIterator entry(Q, j); entry; ++entry)
            row.row.push_back({static_cast<int>(entry.row()), entry.value() / size});
        if (size > 0)
            ray.addRow(row);
    }
    const double size = dense(ray.cost).lpNorm<Eigen::Infinity>();
    const Outcome found = solveLp(run, ray);
    return found.status == KVX_STATUS_OPTIMAL && ray.sense * found.objective < -1e-7 * size;
}

void refuseUnlessConvex(const ModelData &model, const Problem &problem) {
    if (!problem.sets.empty())
        fail(KVX_ERROR_NOT_SUPPORTED, "a quadratic objective can't be solved with sets, or what "
                                      "becomes sets");
    for (size_t j = 0; j < problem.integer.size(); j++)
        if (problem.integer[j])
            fail(KVX_ERROR_NOT_SUPPORTED,
                 "a quadratic objective can't be solved with integers like %s",
                 j < model.vars.size() ? model.vars[j].name.text().c_str()
                                       : "those of a reformulation");
    const Sparse Q = hessian(problem);
    const Dense diagonal = Q.diagonal();
    auto refuse = [&](int j) {
        fail(KVX_ERROR_NOT_SUPPORTED,
             "the quadratic objective isn't %s, which the terms of variable %s show: it can't be "
             "solved",
             problem.sense > 0 ? "convex" : "concave", model.vars[at(j)].name.text().c_str());
    };
    Dense scales = diagonal;
    for (int j = 0; j < Q.outerSize(); j++) {
        if (diagonal[j] < 0 || (diagonal[j] == 0 && Sparse::InnerIterator(Q, j)))
            refuse(j);
        scales[j] = diagonal[j] > 0 ? 1 / std::sqrt(diagonal[j]) : 0;
    }
    Sparse scaled = scales.asDiagonal() * Q * scales.asDiagonal(), unit(Q.rows(), Q.cols());
    unit.setIdentity();
    scaled += tolerance * unit;
    const Factors factors(scaled);
    const Dense pivots = factors.vectorD();
    for (int k = 0; k < pivots.size(); k++)
        if (!(pivots[k] > 0))
            refuse(factors.permutationPinv().indices()[k]);
}

Outcome solveQuadratic(Run &run, const Problem &problem) {
    run.model.hasBasis = false; // Nothing of it would say where this optimum is.
    Problem linear = problem;
    linear.products.clear();
    std::fill(linear.cost.begin(), linear.cost.end(), 0.0);
    const int feasible = solveLp(run, linear).status;
    const bool isRay = feasible == KVX_STATUS_OPTIMAL && isUnbounded(run, problem);
    if (run.stopped())
        return {run.stopped()};
    if (isRay || feasible != KVX_STATUS_OPTIMAL)
        return {isRay ? KVX_STATUS_UNBOUNDED : feasible};
    run.say("The linear constraints have solutions: interior-point method");
    InteriorPoint method(problem);
    method.solve(run);
    Outcome outcome;
    if (run.stopped()) {
        outcome.status = run.stopped();
    } else if (problem.isOptimal(method.x, method.multipliers.data(), run.tolerance())) {
        outcome.status = KVX_STATUS_OPTIMAL;
        outcome.x = method.x;
        outcome.objective = problem.objective(method.x);
        std::vector<double> reduced = problem.gradient(method.x), priced(reduced.size());
        problem.matrix.transposeTimes(method.multipliers.data(), priced.data());
        for (size_t j = 0; j < reduced.size(); j++)
            outcome.reducedCosts.push_back(problem.sense * (reduced[j] - priced[j]) + 0.0);
        for (double multiplier : method.multipliers)
            outcome.duals.push_back(problem.sense * multiplier + 0.0);
    }
    return outcome;
}

} // namespace korvex
