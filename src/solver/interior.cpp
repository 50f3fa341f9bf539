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

// One of the finite bounds of a quantity: w is the distance from it, z its multiplier.
struct Side {
    int of;
    double sign; // 1: lower, -1: upper
    double bound;
    double w, z = 1, dw = 0, dz = 0;
    double beyond(const Dense &v) const { return sign * (v[of] - bound) - w; }
};

// Minimises x'Qx / 2 + c'x over bounds of the quantities (x, Ax): the columns that aren't fixed and
// the rows that have sides, all of them scaled.
class InteriorPoint {
  public:
    explicit InteriorPoint(const Problem &problem);

    // Goes on until it comes no nearer to an optimum, or the run has to end.
    void solve(Run &run);

    std::vector<double> x, multipliers; // the best found, of the problem's columns and rows

  private:
    void select();
    void scale();
    void analyze();
    void begin(double distance);
    void approach(Run &run, bool isCautious);
    void report(Run &run, int iteration);
    double measure();
    bool factorize();
    Dense solveSystem(const Dense &right) const;
    template <class Target>
    double direction(Target target);
    double gap(double step) const;
    void keep();

    const Problem &problem;
    std::vector<int> columns, rows; // of the problem
    int n = 0, m = 0;               // their numbers
    Sparse Q, A;
    Dense c, lower, upper, scales; // c of the columns, the others of columns and rows
    double costScale = 1, regularization = 0;
    double least = COIN_DBL_MAX; // the best point's distance from an optimum

    std::vector<Side> sides;
    Dense v, y, dv, dy;      // quantities, multipliers of the rows, and their steps
    Dense dual, primal;      // residuals
    Sparse system;           // Q and A, without what the sides add to the diagonal
    Dense weights, diagonal; // Sums of z / w; what they add
    Factors factors;
};

InteriorPoint::InteriorPoint(const Problem &given)
    : x(given.cost.size()), multipliers(given.rowLower.size()), problem(given) {
    select();
    scale();
    analyze();
}

// A row for each of those that are picked, with a 1 at its place.
Sparse picking(const std::vector<int> &picked, size_t size) {
    Sparse result(intSize(picked.size()), intSize(size));
    for (size_t k = 0; k < picked.size(); k++)
        result.insert(intSize(k), picked[k]) = 1;
    return result;
}

Eigen::Map<const Dense> dense(const std::vector<double> &values) {
    return {values.data(), intSize(values.size())};
}

// Leaves out fixed columns, at their value, and rows without sides.
void InteriorPoint::select() {
    constexpr double nearlyFixed = 1e-10; // There has to be something between two bounds.
    auto isFixed = [](double low, double high) {
        return high - low <= nearlyFixed * std::max(1.0, std::abs(low));
    };
    for (size_t j = 0; j < x.size(); j++)
        if (isFixed(problem.lower[j], problem.upper[j]))
            x[j] = problem.lower[j];
        else
            columns.push_back(intSize(j));
    for (size_t i = 0; i < multipliers.size(); i++)
        if (problem.rowLower[i] > -COIN_DBL_MAX || problem.rowUpper[i] < COIN_DBL_MAX)
            rows.push_back(intSize(i));
    n = intSize(columns.size());
    m = intSize(rows.size());
    const Sparse ofColumns = picking(columns, x.size()), ofRows = picking(rows, multipliers.size());
    const CoinPackedMatrix &all = problem.matrix;
    const Eigen::Map<const Sparse> coefficients(
        all.getNumRows(), all.getNumCols(), all.getNumElements(), all.getVectorStarts(),
        all.getIndices(), all.getElements(), all.getVectorLengths());
    Q = ofColumns * hessian(problem) * ofColumns.transpose();
    A = ofRows * coefficients * ofColumns.transpose();
    const std::vector<double> gradient = problem.gradient(x);
    const Dense activity = coefficients * dense(x);
    c = ofColumns * dense(gradient);
    lower.resize(n + m);
    upper.resize(n + m);
    lower << ofColumns * dense(problem.lower), ofRows * (dense(problem.rowLower) - activity);
    upper << ofColumns * dense(problem.upper), ofRows * (dense(problem.rowUpper) - activity);
    for (int k = n; k < n + m; k++)
        if (isFixed(lower[k], upper[k]))
            upper[k] = lower[k];
}

// Brings the largest number of every row and column of the system near to 1.
void InteriorPoint::scale() {
    scales = Dense::Ones(n + m);
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
    c = ofColumns * c;
    double largest = n > 0 ? c.cwiseAbs().maxCoeff() : 0;
    for (int k = 0; k < Q.nonZeros(); k++)
        largest = std::max(largest, std::abs(Q.valuePtr()[k]));
    costScale = largest > 0 ? 1 / largest : 1;
    Q *= costScale;
    c *= costScale;
    for (int k = 0; k < n + m; k++) {
        const double factor = k < n ? 1 / scales[k] : scales[k];
        for (double *bound : {&lower[k], &upper[k]})
            *bound = std::abs(*bound) < COIN_DBL_MAX / 2 ? *bound * factor : *bound;
    }
}

void InteriorPoint::analyze() {
    std::vector<Entry3> entries;
    for (int j = 0; j < n; j++) {
        for (Sparse::InnerIterator entry(Q, j); entry; ++entry)
            if (entry.row() >= j)
                entries.emplace_back(entry.row(), j, entry.value());
        for (Sparse::InnerIterator entry(A, j); entry; ++entry)
            entries.emplace_back(n + entry.row(), j, entry.value());
    }
    for (int k = 0; k < n + m; k++)
        entries.emplace_back(k, k, 0);
    system.resize(n + m, n + m);
    system.setFromTriplets(entries.begin(), entries.end());
    factors.analyzePattern(system);
}

// All sides are that far away, or further.
void InteriorPoint::begin(double distance) {
    sides.clear();
    v.resize(n + m);
    y = Dense::Zero(m);
    for (int k = 0; k < n + m; k++)
        v[k] = std::clamp(0.0, lower[k], upper[k]);
    for (int k = 0; k < n + m; k++)
        if (lower[k] < upper[k])
            for (double sign : {1.0, -1.0})
                if (const double bound = sign > 0 ? lower[k] : upper[k];
                    std::abs(bound) < COIN_DBL_MAX / 2)
                    sides.push_back(
                        {k, sign, bound, std::max(distance, sign * (v[k] - bound)), distance});
}

// How far the point is from an optimum: the largest residual or the gap.
double InteriorPoint::measure() {
    const Dense x = v.head(n), Qx = Q * x;
    dual.resize(n + m);
    dual << Qx + c - A.transpose() * y, y;
    primal = A * x - v.tail(m);
    double worst = 0;
    for (const Side &side : sides) {
        dual[side.of] -= side.sign * side.z;
        worst = std::max(worst, std::abs(side.beyond(v)) / (1 + std::abs(side.bound)));
    }
    for (int i = 0; i < m; i++) {
        if (lower[n + i] == upper[n + i])
            dual[n + i] = 0;
        worst = std::max(worst, std::abs(primal[i]) / (1 + std::abs(v[n + i])));
    }
    for (int k = 0; k < n + m; k++)
        worst = std::max(worst, std::abs(dual[k]) / (1 + (k < n ? std::abs(Qx[k]) : 0)));
    return std::max(worst, gap(0) / (1 + std::abs(x.dot(Qx) / 2 + c.dot(x))));
}

// The sum of the products w z after a step.
double InteriorPoint::gap(double step) const {
    double sum = 0;
    for (const Side &side : sides)
        sum += (side.w + step * side.dw) * (side.z + step * side.dz);
    return sum;
}

bool InteriorPoint::factorize() {
    weights = diagonal = Dense::Zero(n + m);
    for (const Side &side : sides)
        weights[side.of] += side.z / side.w;
    for (int k = 0; k < n + m; k++)
        diagonal[k] = k < n ? weights[k] : weights[k] > 0 ? -1 / weights[k] : 0;
    for (double extra = regularization; extra < mostRegularization; extra *= 100) {
        Sparse whole = system;
        for (int k = 0; k < n + m; k++)
            whole.coeffRef(k, k) += diagonal[k] + (k < n ? extra : -extra);
        factors.factorize(whole);
        if (factors.info() == Eigen::Success)
            return true;
    }
    return false; // A pivot has been 0 each time.
}

// Refines the solution of the regularised system to one of the system itself, as far as it comes.
Dense InteriorPoint::solveSystem(const Dense &right) const {
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

// Newton's direction towards products w z that change by what the target says, and the largest
// step in it.
template <class Target>
double InteriorPoint::direction(Target target) {
    Dense push = -dual;
    for (const Side &side : sides)
        push[side.of] += side.sign * (target(side) - side.z * side.beyond(v)) / side.w;
    Dense right(n + m);
    right << push.head(n), -primal - diagonal.tail(m).cwiseProduct(push.tail(m));
    const Dense solution = solveSystem(right);
    dv.resize(n + m);
    dv << solution.head(n), A * solution.head(n) + primal;
    dy = -solution.tail(m);
    for (int i = 0; i < m; i++)
        if (lower[n + i] == upper[n + i])
            dv[n + i] = 0;
    double step = 1e10;
    for (Side &side : sides) {
        side.dw = side.sign * dv[side.of] + side.beyond(v);
        side.dz = (target(side) - side.z * side.dw) / side.w;
        if (side.dw < 0)
            step = std::min(step, -side.w / side.dw);
        if (side.dz < 0)
            step = std::min(step, -side.z / side.dz);
    }
    return step;
}

// Where the predictor leads nowhere, short steps in the middle of the way come to the optimum.
// Which regularization the factors can do with differs.
void InteriorPoint::solve(Run &run) {
    const struct {
        double regularization, distance;
        bool isCautious;
    } attempts[] = {{1e-10, 1, false}, {1e-7, 1, false},   {1e-10, 10, false}, {1e-10, 100, false},
                    {1e-8, 100, true}, {1e-11, 100, true}, {1e-6, 100, true}};
    for (auto [smallest, distance, isCautious] : attempts)
        if (least > enough && !run.stopped()) {
            regularization = smallest;
            begin(distance);
            approach(run, isCautious);
        }
}

void InteriorPoint::approach(Run &run, bool isCautious) {
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
        const double mean = sides.empty() ? 0 : gap(0) / static_cast<double>(sides.size());
        auto towards = [&](double aim) {
            return direction([&](const Side &side) { return aim - side.w * side.z; });
        };
        const double reach = std::min(1.0, towards(0));
        const double ratio = sides.empty() ? 0 : gap(reach) / gap(0);
        const double aim = mean * ratio * ratio * ratio;
        const std::vector<Side> predicted = sides;
        double step = isCautious ? 0 : direction([&](const Side &side) {
            const Side &p = predicted[static_cast<size_t>(&side - sides.data())];
            return aim - side.w * side.z - p.dw * p.dz;
        });
        if (step < 0.1)
            step = towards(std::max(aim, 0.3 * mean));
        step = std::min(1.0, (isCautious ? 0.9 : 0.995) * step);
        v += step * dv;
        y += step * dy;
        for (Side &side : sides) {
            side.w += step * side.dw;
            side.z += step * side.dz;
        }
    }
}

void InteriorPoint::report(Run &run, int iteration) {
    run.iterations = run.earlierIterations + iteration;
    run.progress(KVX_CB_SIMPLEX, {{KVX_CB_SPX_ITERATIONS, run.iterations},
                                  {KVX_CB_SPX_OBJVAL, problem.objective(x)},
                                  {KVX_CB_SPX_PRIMINF, primal.lpNorm<1>()},
                                  {KVX_CB_SPX_DUALINF, dual.lpNorm<1>() / costScale}});
}

// Keeps the point as the problem's, within its bounds.
void InteriorPoint::keep() {
    for (int k = 0; k < n; k++) {
        const size_t j = at(columns[at(k)]);
        x[j] = std::clamp(v[k] * scales[k], problem.lower[j], problem.upper[j]);
    }
    for (int k = 0; k < m; k++)
        multipliers[at(rows[at(k)])] = y[k] * scales[n + k] / costScale;
}

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
        Constraint row;
        row.lower = row.upper = 0;
        double largest = 0;
        for (Sparse::InnerIterator entry(Q, j); entry; ++entry)
            largest = std::max(largest, std::abs(entry.value()));
        for (Sparse::InnerIterator entry(Q, j); entry; ++entry)
            row.row.push_back({static_cast<int>(entry.row()), entry.value() / largest});
        if (largest > 0)
            ray.addRow(row);
    }
    const double size =
        std::abs(*std::max_element(ray.cost.begin(), ray.cost.end(),
                                   [](double a, double b) { return std::abs(a) < std::abs(b); }));
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
    Outcome outcome;
    const int feasible = solveLp(run, linear).status;
    const bool isRay = feasible == KVX_STATUS_OPTIMAL && isUnbounded(run, problem);
    outcome.status = isRay ? KVX_STATUS_UNBOUNDED : feasible;
    if (run.stopped())
        outcome.status = run.stopped();
    if (outcome.status != KVX_STATUS_OPTIMAL)
        return outcome;
    outcome.status = KVX_STATUS_NUMERIC;
    run.say("The linear constraints have solutions: interior-point method");
    InteriorPoint method(problem);
    method.solve(run);
    if (run.stopped()) {
        outcome.status = run.stopped();
    } else if (problem.violation(method.x) <= run.tolerance() &&
               problem.isOptimal(method.x, method.multipliers.data(), run.tolerance())) {
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
