// Batches: copies of models that are solved on threads of their own. They live until they are
// discarded or the process ends.
#include "input.h"
#include "run.h"
#include "textfile.h"

#include <cmath>
#include <cstring>
#include <ctime>
#include <map>
#include <unistd.h>

namespace korvex {
namespace {

struct State {
    int status = KVX_BATCH_RUNNING, errorCode = 0;
    std::string errorMessage, submitTime, endTime;
};

struct Request {
    std::string id;
    std::unique_ptr<KVXmodel> model;
    State state = {};
    std::time_t started = 0;
};

std::mutex mutex; // guards what follows and the requests

// Never destroyed, since runs may go on when the process ends.
std::map<std::string, std::shared_ptr<Request>> &requests() {
    static auto &all = *new std::map<std::string, std::shared_ptr<Request>>;
    return all;
}

std::string timeText(std::time_t time) {
    std::tm parts;
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&time, &parts));
    return text;
}

void start(Request &request) {
    if (int status = KVXoptimizeasync(request.model.get()))
        throw Failure{status, request.model->env.error.get()};
    request.started = std::time(nullptr);
    request.state = {};
    request.state.submitTime = timeText(request.started);
}

// Waits for the end.
void finish(Request &request) {
    KVXmodel &model = *request.model;
    State &state = request.state;
    state.errorCode = KVXsync(&model);
    state.errorMessage = state.errorCode ? model.env.error.get() : "";
    state.status = state.errorCode                                   ? KVX_BATCH_FAILED
                   : model.solution.status == KVX_STATUS_INTERRUPTED ? KVX_BATCH_ABORTED
                                                                     : KVX_BATCH_COMPLETED;
    state.endTime = timeText(request.started + std::lround(model.solution.runtime));
}

void require(bool isAllowed, const char *what) {
    if (!isAllowed)
        fail(KVX_ERROR_INVALID_ARGUMENT, "a batch in this state can't be %s", what);
}

std::string solutionOf(const Request &request) {
    if (request.state.status != KVX_BATCH_COMPLETED)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the batch isn't completed");
    return solutionAsJson(*request.model);
}

} // namespace
} // namespace korvex

using namespace korvex;

struct KVXbatch {
    KVXenv *env; // for error texts
    std::shared_ptr<Request> request;
    State state; // as of the last update
};

// The body gets the request in its present state.
template <class Body>
static int guarded(KVXbatch *batch, Body body) noexcept {
    return guardedRead(batch ? batch->env : nullptr, [&] {
        std::lock_guard lock(mutex);
        Request &request = *batch->request;
        if (request.state.status == KVX_BATCH_RUNNING &&
            currentStatus(*request.model) != KVX_STATUS_IN_PROGRESS)
            finish(request);
        body(request);
    });
}

int KVXoptimizebatch(KVXmodel *model, char *id) {
    return guarded(model, [&] {
        needed(id, "id");
        std::lock_guard lock(mutex);
        static int count = 0;
        auto request = std::make_shared<Request>();
        request->id = "KVX-" + std::to_string(getpid()) + "-" + std::to_string(++count);
        request->model = makeInnerModel(model->env, *model);
        request->model->objectiveEnvs = model->objectiveEnvs;
        start(*request);
        requests()[request->id] = request;
        std::strcpy(id, request->id.c_str());
    });
}

int KVXgetbatch(KVXenv *env, const char *id, KVXbatch **batchP) {
    return guardedRead(env, [&] {
        needed(batchP, "batchP");
        std::lock_guard lock(mutex);
        auto found = requests().find(needed(id, "id"));
        if (found == requests().end())
            fail(KVX_ERROR_NOT_FOUND, "there is no batch with the ID \"%s\"", id);
        auto batch = std::make_unique<KVXbatch>(KVXbatch{env, found->second, found->second->state});
        *batchP = batch.release();
    });
}

int KVXfreebatch(KVXbatch *batch) {
    delete batch;
    return KVX_OK;
}

int KVXupdatebatch(KVXbatch *batch) {
    return guarded(batch, [&](Request &request) { batch->state = request.state; });
}

int KVXgetbatchintattr(KVXbatch *batch, const char *name, int *value) {
    return guarded(batch, [&](Request &) {
        bool isStatus = equalIgnoringCase(needed(name, "name"), "BatchStatus");
        if (!isStatus && !equalIgnoringCase(name, "BatchErrorCode"))
            fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "a batch has no integer attribute \"%s\"", name);
        *needed(value, "value") = isStatus ? batch->state.status : batch->state.errorCode;
    });
}

int KVXgetbatchstrattr(KVXbatch *batch, const char *name, const char **value) {
    return guarded(batch, [&](Request &request) {
        needed(name, "name");
        needed(value, "value");
        const std::pair<const char *, const std::string &> attributes[] = {
            {"BatchID", request.id},
            {"BatchErrorMessage", batch->state.errorMessage},
            {"SubmitTime", batch->state.submitTime},
            {"EndTime", batch->state.endTime}};
        for (auto &[known, text] : attributes)
            if (equalIgnoringCase(known, name)) {
                *value = text.c_str();
                return;
            }
        fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "a batch has no text attribute \"%s\"", name);
    });
}

int KVXretrybatch(KVXbatch *batch) {
    return guarded(batch, [&](Request &request) {
        int status = request.state.status;
        require(status == KVX_BATCH_FAILED || status == KVX_BATCH_ABORTED, "retried");
        start(request);
    });
}

int KVXabortbatch(KVXbatch *batch) {
    return guarded(batch, [&](Request &request) {
        require(request.state.status == KVX_BATCH_RUNNING, "aborted");
        KVXterminate(request.model.get());
        finish(request);
    });
}

int KVXdiscardbatch(KVXbatch *batch) {
    return guarded(batch, [&](Request &request) {
        int status = request.state.status;
        require(status != KVX_BATCH_RUNNING && status != KVX_BATCH_DISCARDED, "discarded");
        request.state.status = KVX_BATCH_DISCARDED;
        request.model.reset();
        requests().erase(request.id);
    });
}

int KVXgetbatchjsonsolution(KVXbatch *batch, char **textP) {
    return guarded(batch, [&](Request &request) {
        *needed(textP, "textP") = copyForCaller(solutionOf(request));
    });
}

int KVXwritebatchjsonsolution(KVXbatch *batch, const char *filename) {
    return guarded(batch, [&](Request &request) {
        if (!isJsonFile(needed(filename, "filename")))
            fail(KVX_ERROR_FILE_WRITE, "%s: the name of a JSON file ends in .json", filename);
        writeFile(filename, solutionOf(request));
    });
}
