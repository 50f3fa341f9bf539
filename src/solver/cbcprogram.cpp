#include "cbcprogram.h"

#include "assertion.h"

#include <CbcSolver.hpp>

#include <chrono>
#include <mutex>

namespace korvex {
namespace {

// The program reads its command line by way of variables that all threads share, so one at a time
// does that. It is left after the search, before it reads on; only when it sees early that there
// are no solutions it reads on, to no effect.
std::timed_mutex commandLine;

struct Conduct {
    CbcProgram &program;
    std::unique_lock<std::timed_mutex> lock{commandLine, std::defer_lock};
    bool isDone = false;

    explicit Conduct(CbcProgram &program) : program(program) {}
    ~Conduct() { program.holdUp(false); }

    // Returns whether it is this program's turn.
    bool begin() {
        while (!lock.try_lock_for(std::chrono::milliseconds(10)))
            if (program.isToEnd())
                return false;
        program.holdUp(true);
        return true;
    }

    // Returns whether the program ends.
    static int stage(CbcModel *model, int number) {
        CalledByCoin here;
        enum { isRelaxed = 1, isPreprocessed, beforeSearch, afterSearch, isPostprocessed };
        Conduct &conduct = *static_cast<Conduct *>(model->getApplicationData());
        switch (number) {
        case isRelaxed:
            if (!conduct.lock.owns_lock()) // The command has been read a second time.
                return 1;
            conduct.lock.unlock();
            conduct.program.holdUp(false);
            return 0;
        case isPreprocessed:
            return model->status() == 0; // There is nothing to search.
        case beforeSearch:
            conduct.program.begin(*model);
            return 0;
        case afterSearch:
            conduct.program.afterSearch();
            return 0;
        case isPostprocessed:
            conduct.program.end(*model);
            conduct.isDone = true;
        }
        return 1;
    }
};

} // namespace

CbcProgram::Result CbcProgram::conduct(std::unique_ptr<CbcModel> &model) {
    Conduct conduct(*this);
    if (!conduct.begin())
        return failed;
    auto data = std::make_unique<CbcSolverUsefulData>();
    data->useSignalHandler_ = false;
    data->noPrinting_ = true;
    model->setApplicationData(&conduct);
    std::vector<const char *> arguments = options;
    arguments.insert(arguments.begin(), "cbc");
    arguments.insert(arguments.end(), {"-solve", "-quit"});
    const int count = static_cast<int>(arguments.size());
    auto solve = [&] {
        CbcMain0(*model, *data);
        CbcMain1(count, arguments.data(), *model, Conduct::stage, *data);
    };
    protect(solve, model, data);
    constexpr int seenInfeasible = 1;
    return conduct.isDone                                                       ? searched
           : model->status() == 0 && model->secondaryStatus() == seenInfeasible ? infeasible
                                                                                : failed;
}

} // namespace korvex
