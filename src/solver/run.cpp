#include "run.h"

#include "guard.h"
#include "log.h"
#include "optimize.h"
#include "params.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <utility>

namespace korvex {
namespace {

constexpr double reportInterval = 0.05; // seconds between reports of progress

// Background runs use statics of this library: when the process exits they are told to stop and
// given a moment, not more, since a callback may be unable to return then.
std::atomic<int> backgroundRuns{0};
std::atomic<bool> exiting{false};
struct Exit {
    ~Exit() {
        exiting = true;
        for (int i = 0; i < 40 && backgroundRuns > 0; i++)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
};

Run &begin(KVXmodel &model) {
    model.run = std::make_shared<Run>(model);
    model.runStart = std::chrono::steady_clock::now();
    model.running = true;
    return *model.run;
}

// The run's failure is the caller's. A request to terminate that came meanwhile has been served.
void end(KVXmodel &model) {
    std::shared_ptr<Run> run = std::exchange(model.run, nullptr);
    model.terminate = false;
    model.running = false;
    if (run->result)
        throw Failure{run->result, run->error};
}

// The callback of models that are solved inside a run.
int pollOuter(KVXmodel *inner, void *, int, void *outer) {
    return static_cast<Run *>(outer)->poll() ? KVXterminate(inner) : KVX_OK;
}

} // namespace

std::string shown(double value) {
    char text[32];
    auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 8).ptr;
    return std::abs(value) >= KVX_INFINITY ? "-" : std::string(text, end);
}

double relativeGap(double objective, double bound) {
    double difference = std::abs(objective - bound);
    return difference == 0 ? 0 : difference / std::max(std::abs(objective), 1e-10);
}

Run::Run(KVXmodel &model)
    : model(model), settings(model.env), sense(model.objsense), bestObjective(sense * KVX_INFINITY),
      bound(-sense * KVX_INFINITY) {
    readLimits();
    nextLine = logInterval;
}

void Run::readLimits() {
    timeLimit = dblParam(settings, "TimeLimit");
    nodeLimit = dblParam(settings, "NodeLimit");
    iterationLimit = dblParam(settings, "IterationLimit");
    gap = dblParam(settings, "MIPGap");
    absoluteGap = dblParam(settings, "MIPGapAbs");
    logInterval = dblParam(settings, "LogInterval");
    solutionLimit = intParam(settings, "SolutionLimit");
}

double Run::elapsed() const {
    auto now = std::chrono::steady_clock::now();
    return std::chrono::duration<double>(now - model.runStart).count();
}

void Run::stop(int status) {
    stopStatus = stopStatus ? stopStatus : status;
}

void Run::goOn() {
    stopStatus = callbackStatus ? KVX_STATUS_INTERRUPTED : 0;
}

bool Run::hasWatcher() const {
    return model.callback && model.callback != pollOuter;
}

bool Run::poll() {
    return progress(lastWhere, {});
}

bool Run::progress(int where, std::vector<Datum> data) {
    double now = elapsed();
    if (model.terminate || exiting)
        stop(KVX_STATUS_INTERRUPTED);
    else if (now >= timeLimit)
        stop(KVX_STATUS_TIME_LIMIT);
    else if (iterations >= iterationLimit)
        stop(KVX_STATUS_ITERATION_LIMIT);
    else if (now >= nextLine) {
        nextLine = now + logInterval;
        say("%8.0f s  %.0f iterations, %.0f nodes  best %s  bound %s", now, iterations, nodes,
            shown(bestObjective).c_str(), shown(bound).c_str());
    }
    double patience = data.empty() ? 5 * reportInterval : reportInterval;
    if (!stopStatus && (where != lastWhere || now >= lastReport + patience)) {
        int reported = data.empty() ? KVX_CB_POLLING : where;
        report(reported, std::move(data));
        lastWhere = where;
        lastReport = elapsed();
    }
    return stopStatus != 0;
}

void Run::say(const char *format, ...) {
    if (isQuiet)
        return;
    char line[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    settings.log->line(settings, line);
    report(KVX_CB_MESSAGE, {}, nullptr, line);
}

void Run::report(int where, std::vector<Datum> data, const std::vector<double> *vector,
                 const char *text) {
    if (!model.callback || callbackStatus || occasion.where >= 0 || isQuiet)
        return;
    data.push_back({KVX_CB_RUNTIME, elapsed()});
    occasion = {where, std::move(data), vector, text};
    callbackStatus = model.callback(&model, this, where, model.callbackData);
    occasion = {};
    if (callbackStatus)
        stop(KVX_STATUS_INTERRUPTED);
    if (where != KVX_CB_MIPSOL)
        offerProposals();
}

void Run::offerProposals() {
    for (auto &[x, value] : std::exchange(proposals, {}))
        offer(x, value);
}

double Run::tolerance() const {
    return 10 * dblParam(settings, "FeasibilityTol");
}

bool Run::satisfiesLazies(const std::vector<double> &x) const {
    return std::all_of(lazies.begin(), lazies.end(),
                       [&](const Constraint &row) { return violation(row, x) <= tolerance(); });
}

void Run::addLazy(Constraint row) {
    lazies.push_back(std::move(row));
    if (!best.empty() && !satisfiesLazies(best)) {
        best.clear();
        solutions = 0;
        bestObjective = sense * KVX_INFINITY;
        stop(again);
    }
}

void Run::offer(const std::vector<double> &x, double value) {
    if (!better(value, bestObjective))
        return;
    if (satisfiesLazies(x))
        report(KVX_CB_MIPSOL,
               {{KVX_CB_MIPSOL_OBJ, value},
                {KVX_CB_MIPSOL_OBJBEST, value},
                {KVX_CB_MIPSOL_OBJBOUND, bound},
                {KVX_CB_MIPSOL_NODES, nodes},
                {KVX_CB_MIPSOL_SOLCOUNT, 1.0 * solutions}},
               &x);
    // A callback that failed or gave up may not have come to the constraint that the solution
    // lacks.
    if (callbackStatus || (model.terminate && intParam(settings, "LazyConstraints")))
        return;
    if (satisfiesLazies(x)) {
        best = x;
        bestObjective = value;
        if (++solutions >= solutionLimit)
            stop(KVX_STATUS_SOLUTION_LIMIT);
    } else {
        stop(again);
    }
    offerProposals(); // that came meanwhile and may be better still
}

void Run::conduct(const std::function<void(Run &)> &operation) {
    conductor = std::this_thread::get_id();
    result = guarded(error, [&] { operation(*this); });
    if (callbackStatus) {
        result = callbackStatus;
        error = "the callback ended the run with status " + std::to_string(callbackStatus);
    }
    finished = true;
}

int perform(KVXmodel *model, const std::function<void(Run &)> &operation) {
    return guarded(model, [&] {
        begin(*model).conduct(operation);
        end(*model);
    });
}

void endRun(KVXmodel &model, bool terminate) {
    if (!model.run)
        return;
    if (model.run->conductor.load() == std::this_thread::get_id())
        fail(KVX_ERROR_IN_PROGRESS, "the run goes on: it can't be waited for in its own thread");
    if (terminate)
        model.terminate = true;
    model.run->thread.join();
    end(model);
}

int currentStatus(const KVXmodel &model) {
    return !model.running || model.run->finished ? model.solution.status : KVX_STATUS_IN_PROGRESS;
}

std::unique_ptr<KVXmodel> makeInnerModel(const KVXenv &env, const ModelData &data) {
    auto model = makeModel(env, data);
    model->env.log = std::make_shared<Log>();
    setParam(model->env, "LogToConsole", 0);
    setParam(model->env, "LogFile", "");
    setParam(model->env, "ResultFile", "");
    return model;
}

int solveInside(Run &run, KVXmodel &model, double seconds) {
    seconds = std::min(seconds, run.timeLimit - run.elapsed());
    setParam(model.env, "TimeLimit", std::max(seconds, 0.0));
    model.callbackData = &run;
    model.callback = pollOuter;
    if (int status = perform(&model, optimize))
        throw Failure{status, model.env.error.get()};
    run.poll();
    return model.solution.status;
}

int findPoint(Run &run, KVXmodel &model, double nodeLimit) {
    clearObjective(model);
    model.hasBasis = false;
    setParam(model.env, "IterationLimit", KVX_INFINITY);
    setParam(model.env, "NodeLimit", nodeLimit);
    setParam(model.env, "SolutionLimit", 1);
    return solveInside(run, model);
}

} // namespace korvex

using namespace korvex;

int KVXoptimize(KVXmodel *model) {
    return perform(model, optimize);
}

int KVXoptimizeasync(KVXmodel *model) {
    return guarded(model, [&] {
        static const Exit exit; // is destroyed before what the runs use
        Run &run = begin(*model);
        backgroundRuns++;
        try {
            run.thread = std::thread([&run] {
                run.conduct(optimize);
                backgroundRuns--;
            });
        } catch (...) {
            backgroundRuns--;
            end(*model);
            throw;
        }
    });
}

int KVXsync(KVXmodel *model) {
    return guardedRead(model, [&] { endRun(*model, false); });
}

int KVXterminate(KVXmodel *model) {
    if (!model)
        return KVX_ERROR_INVALID_ARGUMENT;
    model->terminate = true;
    return KVX_OK;
}

int KVXsetcallbackfuncadv(KVXmodel *model, KVXcallback callback, void *userdata, int flags) {
    return guarded(model, [&] {
        if (flags != 0 || (!callback && userdata))
            fail(KVX_ERROR_INVALID_ARGUMENT, "%s",
                 flags ? "the flags of a callback must be 0" : "user data without a callback");
        model->callback = callback;
        model->callbackData = userdata;
    });
}

int KVXsetcallbackfunc(KVXmodel *model, KVXcallback callback, void *userdata) {
    return KVXsetcallbackfuncadv(model, callback, userdata, 0);
}
