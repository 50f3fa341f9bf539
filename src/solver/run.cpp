#include "run.h"

#include "attributes.h"
#include "guard.h"
#include "log.h"
#include "optimize.h"
#include "params.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <set>
#include <utility>

namespace korvex {
namespace {

constexpr double reportInterval = 0.05; // seconds between reports of progress

// Background runs that haven't ended. The process may exit while there are any: they are told to
// stop and given a moment, because they use statics of this library. It isn't waited for longer,
// since a callback may be unable to return at that point.
class BackgroundRuns {
  public:
    static BackgroundRuns &instance() {
        static BackgroundRuns runs;
        return runs;
    }

    void add(KVXmodel &model) {
        std::lock_guard lock(mutex);
        models.insert(&model);
    }

    void remove(KVXmodel &model) {
        std::lock_guard lock(mutex);
        models.erase(&model);
        changed.notify_all();
    }

    ~BackgroundRuns() {
        std::unique_lock lock(mutex);
        for (KVXmodel *model : models)
            model->terminate = true;
        changed.wait_for(lock, std::chrono::seconds(2), [this] { return models.empty(); });
    }

  private:
    // What a callback may use must be older than this object to live longer.
    BackgroundRuns() { attributeTable(); }

    std::mutex mutex;
    std::condition_variable changed;
    std::set<KVXmodel *> models;
};

void begin(KVXmodel &model) {
    model.run = std::make_shared<Run>(model);
    model.runStart = std::chrono::steady_clock::now();
    model.running = true;
}

// A request to terminate that came during the run has been served with it.
void end(KVXmodel &model) {
    model.run.reset();
    model.terminate = false;
    model.running = false;
}

} // namespace

std::string shown(double value) {
    if (std::abs(value) >= KVX_INFINITY)
        return "-";
    char text[32];
    auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 8).ptr;
    return {text, end};
}

double relativeGap(double objective, double bound) {
    double difference = std::abs(objective - bound);
    return difference == 0 ? 0 : difference / std::max(std::abs(objective), 1e-10);
}

Run::Run(KVXmodel &model)
    : model(model), settings(model.env), sense(model.objsense), objective(0),
      bestObjective(sense * KVX_INFINITY), bound(-sense * KVX_INFINITY) {
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
    int none = 0;
    stopStatus.compare_exchange_strong(none, status);
}

void Run::goOn() {
    stopStatus = callbackStatus ? KVX_STATUS_INTERRUPTED : 0;
}

bool Run::poll() {
    if (model.terminate)
        stop(KVX_STATUS_INTERRUPTED);
    if (!stopStatus && onSolvingThread() && !insideCallback()) {
        double now = elapsed();
        if (now >= timeLimit)
            stop(KVX_STATUS_TIME_LIMIT);
        else if (iterations >= iterationLimit)
            stop(KVX_STATUS_ITERATION_LIMIT);
        else
            progress(now);
    }
    return stopStatus != 0;
}

void Run::enter(int newPhase) {
    presentPhase = newPhase;
    nextReport = 0;
    poll();
}

void Run::progress(double now) {
    if (now >= nextLine) {
        nextLine = now + logInterval;
        if (presentPhase == KVX_CB_MIP)
            say("%8.0f s  %.0f nodes, %.0f open  best %s  bound %s  gap %s %%", now, nodes,
                openNodes, shown(bestObjective).c_str(), shown(bound).c_str(),
                !best.empty() ? shown(100 * relativeGap(bestObjective, bound)).c_str() : "-");
        else
            say("%8.0f s  %.0f iterations  objective %s", now, iterations,
                shown(objective).c_str());
    }
    if (now < nextReport)
        return;
    switch (presentPhase) {
    case KVX_CB_PRESOLVE:
        report(presentPhase,
               {{KVX_CB_PRE_COLDEL, 1.0 * columnsRemoved}, {KVX_CB_PRE_ROWDEL, 1.0 * rowsRemoved}});
        break;
    case KVX_CB_SIMPLEX:
        report(presentPhase, {{KVX_CB_SPX_ITERATIONS, iterations},
                              {KVX_CB_SPX_OBJVAL, objective},
                              {KVX_CB_SPX_PRIMINF, primalInfeasibility},
                              {KVX_CB_SPX_DUALINF, dualInfeasibility}});
        break;
    case KVX_CB_MIP:
        report(presentPhase, {{KVX_CB_MIP_OBJBEST, bestObjective},
                              {KVX_CB_MIP_OBJBOUND, bound},
                              {KVX_CB_MIP_NODES, nodes},
                              {KVX_CB_MIP_SOLCOUNT, 1.0 * solutions},
                              {KVX_CB_MIP_OPENNODES, openNodes},
                              {KVX_CB_MIP_ITERATIONS, iterations}});
        break;
    default:
        report(presentPhase, {});
    }
    nextReport = elapsed() + reportInterval;
}

void Run::say(const char *format, ...) {
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
    if (!model.callback || callbackStatus || insideCallback())
        return;
    data.push_back({KVX_CB_RUNTIME, elapsed()});
    occasion = {where, std::move(data), vector, text};
    callbackThread = std::this_thread::get_id();
    callbackStatus = model.callback(&model, this, where, model.callbackData);
    callbackThread = std::thread::id();
    occasion = {};
    if (callbackStatus)
        stop(KVX_STATUS_INTERRUPTED);
    for (auto &[x, value] : std::exchange(proposals, {}))
        offer(x, value);
}

bool Run::satisfiesLazies(const std::vector<double> &x) const {
    double tolerance = dblParam(settings, "FeasibilityTol");
    return std::all_of(lazies.begin(), lazies.end(),
                       [&](const Row &row) { return row.violation(x) <= tolerance; });
}

void Run::addLazy(Row row) {
    lazies.push_back(std::move(row));
    if (!best.empty() && !satisfiesLazies(best)) {
        best.clear();
        bestObjective = sense * KVX_INFINITY;
        stop(again);
    }
}

void Run::offer(const std::vector<double> &x, double value) {
    if (!best.empty() && !better(value, bestObjective))
        return;
    if (!satisfiesLazies(x))
        return stop(again);
    report(KVX_CB_MIPSOL,
           {{KVX_CB_MIPSOL_OBJ, value},
            {KVX_CB_MIPSOL_OBJBEST, value},
            {KVX_CB_MIPSOL_OBJBOUND, bound},
            {KVX_CB_MIPSOL_NODES, nodes},
            {KVX_CB_MIPSOL_SOLCOUNT, 1.0 * solutions}},
           &x);
    if (!satisfiesLazies(x))
        return stop(again);
    best = x;
    bestObjective = value;
    if (++solutions >= solutionLimit)
        stop(KVX_STATUS_SOLUTION_LIMIT);
}

void Run::conduct(const std::function<void(Run &)> &operation) {
    solvingThread = std::this_thread::get_id();
    result = guarded(error, [&] { operation(*this); });
    if (callbackStatus) {
        result = callbackStatus;
        error = "the callback ended the run with status " + std::to_string(callbackStatus);
    }
    finished = true;
}

int perform(KVXmodel *model, const std::function<void(Run &)> &operation) {
    return guarded(model, [&] {
        begin(*model);
        std::shared_ptr<Run> run = model->run;
        run->conduct(operation);
        end(*model);
        if (run->result)
            throw Failure{run->result, run->error};
    });
}

int currentStatus(const KVXmodel &model) {
    return !model.running || model.run->finished ? model.solution.status : KVX_STATUS_IN_PROGRESS;
}

void endRun(KVXmodel &model) {
    std::shared_ptr<Run> run = model.run;
    if (!run)
        return;
    if (run->insideCallback())
        fail(KVX_ERROR_IN_PROGRESS, "the run is still inside a callback on the calling thread");
    if (!run->thread.joinable())
        fail(KVX_ERROR_IN_PROGRESS, "a run of this model is going on");
    model.terminate = true;
    run->thread.join();
    end(model);
}

} // namespace korvex

using namespace korvex;

int KVXoptimize(KVXmodel *model) {
    return perform(model, optimize);
}

int KVXoptimizeasync(KVXmodel *model) {
    return guarded(model, [&] {
        begin(*model);
        BackgroundRuns::instance().add(*model);
        try {
            model->run->thread = std::thread([run = model->run] {
                run->conduct(optimize);
                BackgroundRuns::instance().remove(run->model);
            });
        } catch (...) {
            BackgroundRuns::instance().remove(*model);
            end(*model);
            throw;
        }
    });
}

int KVXsync(KVXmodel *model) {
    return guardedRead(model, [&] {
        std::shared_ptr<Run> run = model->run;
        if (!run)
            return;
        if (run->insideCallback())
            fail(KVX_ERROR_IN_PROGRESS, "the run is still inside a callback on the calling thread");
        if (!run->thread.joinable())
            fail(KVX_ERROR_IN_PROGRESS, "a run of this model is going on");
        run->thread.join();
        end(*model);
        if (run->result)
            throw Failure{run->result, run->error};
    });
}

int KVXterminate(KVXmodel *model) {
    if (!model)
        return KVX_ERROR_INVALID_ARGUMENT;
    model->terminate = true;
    return KVX_OK;
}

int KVXsetcallbackfuncadv(KVXmodel *model, KVXcallback callback, void *userdata, int flags) {
    return guarded(model, [&] {
        if (flags != 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the flags of a callback are reserved and must be 0");
        if (!callback && userdata)
            fail(KVX_ERROR_INVALID_ARGUMENT, "user data without a callback");
        model->callback = callback;
        model->callbackData = userdata;
    });
}

int KVXsetcallbackfunc(KVXmodel *model, KVXcallback callback, void *userdata) {
    return KVXsetcallbackfuncadv(model, callback, userdata, 0);
}
