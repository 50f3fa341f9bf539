// Batches: requests that a worker thread of the process solves one after the other. They live until
// they are discarded or the process ends.
#include "guard.h"
#include "inner.h"
#include "log.h"
#include "optimize.h"
#include "params.h"
#include "text.h"
#include "textfile.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <unistd.h>

namespace korvex {
namespace {

// What the attributes show.
struct State {
    int status = KVX_BATCH_SUBMITTED, errorCode = 0;
    std::string errorMessage, submitTime, endTime;
};

struct Request {
    std::string id;
    std::unique_ptr<KVXmodel> model; // the worker's while the request is running
    State state;
    bool aborting = false;
    std::string json; // of a completed request
};

std::string now() {
    std::time_t time = std::time(nullptr);
    std::tm parts;
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&time, &parts));
    return text;
}

class Batches {
  public:
    static Batches &instance() {
        static Batches batches;
        return batches;
    }

    // At the end of the process the worker is told to stop and waited for: it uses statics of this
    // library.
    ~Batches() {
        {
            std::lock_guard guard(mutex);
            ending = true;
            for (auto &[id, request] : requests)
                request->model->terminate = true;
            changed.notify_all();
        }
        if (worker.joinable())
            worker.join();
    }

    std::string submit(std::unique_ptr<KVXmodel> model) {
        std::lock_guard guard(mutex);
        auto request = std::make_shared<Request>();
        request->id = "KVX-" + std::to_string(getpid()) + "-" + std::to_string(++count);
        request->model = std::move(model);
        enqueue(request);
        requests[request->id] = request;
        return request->id;
    }

    std::shared_ptr<Request> find(const std::string &id) {
        std::lock_guard guard(mutex);
        auto found = requests.find(id);
        if (found == requests.end())
            fail(KVX_ERROR_NOT_FOUND, "there is no batch with the ID \"%s\"",
                 validUtf8(id).c_str());
        return found->second;
    }

    State state(const Request &request) {
        std::lock_guard guard(mutex);
        return request.state;
    }

    void retry(const std::shared_ptr<Request> &request) {
        std::lock_guard guard(mutex);
        require(*request, {KVX_BATCH_FAILED, KVX_BATCH_ABORTED}, "retried");
        request->state = {};
        enqueue(request);
    }

    // When this returns the request has ended.
    void abort(const std::shared_ptr<Request> &request) {
        std::unique_lock lock(mutex);
        require(*request, {KVX_BATCH_SUBMITTED, KVX_BATCH_RUNNING}, "aborted");
        if (request->state.status == KVX_BATCH_SUBMITTED) {
            waiting.erase(std::find(waiting.begin(), waiting.end(), request));
            request->state.status = KVX_BATCH_ABORTED;
            request->state.endTime = now();
            return;
        }
        request->aborting = true;
        request->model->terminate = true;
        changed.wait(lock, [&] { return request->state.status != KVX_BATCH_RUNNING; });
    }

    void discard(Request &request) {
        std::lock_guard guard(mutex);
        require(request, {KVX_BATCH_COMPLETED, KVX_BATCH_FAILED, KVX_BATCH_ABORTED}, "discarded");
        request.state.status = KVX_BATCH_DISCARDED;
        request.json.clear();
        request.model.reset();
        requests.erase(request.id);
    }

    std::string json(const Request &request) {
        std::lock_guard guard(mutex);
        if (request.state.status != KVX_BATCH_COMPLETED)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the batch is %s, not completed",
                 word(request.state.status));
        return request.json;
    }

  private:
    static const char *word(int status) {
        static const char *const words[] = {"submitted", "running", "completed",
                                            "failed",    "aborted", "discarded"};
        return words[status - KVX_BATCH_SUBMITTED];
    }

    static void require(const Request &request, std::initializer_list<int> allowed,
                        const char *what) {
        if (std::count(allowed.begin(), allowed.end(), request.state.status) == 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "a batch that is %s can't be %s",
                 word(request.state.status), what);
    }

    void enqueue(const std::shared_ptr<Request> &request) {
        if (!worker.joinable())
            worker = std::thread([this] { work(); });
        request->state.submitTime = now();
        waiting.push_back(request);
        changed.notify_all();
    }

    void work() {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return ending || !waiting.empty(); });
            if (ending)
                return;
            std::shared_ptr<Request> request = waiting.front();
            waiting.pop_front();
            State &state = request->state;
            state.status = KVX_BATCH_RUNNING;
            lock.unlock();
            KVXmodel &model = *request->model;
            std::string json, error;
            int status = perform(&model, optimize);
            if (status == KVX_OK)
                status = guarded(error, [&] { json = solutionAsJson(model); });
            else
                error = model.env.error;
            lock.lock();
            state.status = status != KVX_OK ? KVX_BATCH_FAILED
                           : request->aborting && model.solution.status == KVX_STATUS_INTERRUPTED
                               ? KVX_BATCH_ABORTED
                               : KVX_BATCH_COMPLETED;
            state.errorCode = status;
            state.errorMessage = error;
            state.endTime = now();
            request->json = json;
            request->aborting = false;
            changed.notify_all();
        }
    }

    std::mutex mutex; // guards the requests too, except for the model of a running one
    std::condition_variable changed;
    std::map<std::string, std::shared_ptr<Request>> requests;
    std::deque<std::shared_ptr<Request>> waiting;
    std::thread worker;
    int count = 0;
    bool ending = false;
};

} // namespace
} // namespace korvex

using namespace korvex;

struct KVXbatch {
    KVXenv *env; // for error texts
    std::shared_ptr<Request> request;
    State state; // as of the last update
};

namespace {

template <class Body>
int guarded(KVXbatch *batch, Body &&body) noexcept {
    return batch ? korvex::guarded(batch->env->error, body) : KVX_ERROR_INVALID_ARGUMENT;
}

std::string solutionOf(KVXbatch &batch) {
    return Batches::instance().json(*batch.request);
}

} // namespace

int KVXoptimizebatch(KVXmodel *model, char *id) {
    return guarded(model, [&] {
        needed(id, "id");
        std::string text = Batches::instance().submit(makeInnerModel(model->env, *model));
        std::strcpy(id, text.c_str());
    });
}

int KVXgetbatch(KVXenv *env, const char *id, KVXbatch **batchP) {
    return guardedRead(env, [&] {
        needed(batchP, "batchP");
        auto request = Batches::instance().find(needed(id, "id"));
        *batchP = new KVXbatch{env, request, Batches::instance().state(*request)};
    });
}

int KVXfreebatch(KVXbatch *batch) {
    delete batch;
    return KVX_OK;
}

int KVXupdatebatch(KVXbatch *batch) {
    return guarded(batch, [&] { batch->state = Batches::instance().state(*batch->request); });
}

int KVXgetbatchintattr(KVXbatch *batch, const char *name, int *value) {
    return guarded(batch, [&] {
        needed(value, "value");
        if (equalIgnoringCase(needed(name, "name"), "BatchStatus"))
            *value = batch->state.status;
        else if (equalIgnoringCase(name, "BatchErrorCode"))
            *value = batch->state.errorCode;
        else
            fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "a batch has no integer attribute \"%s\"",
                 validUtf8(name).c_str());
    });
}

int KVXgetbatchstrattr(KVXbatch *batch, const char *name, const char **value) {
    return guarded(batch, [&] {
        needed(name, "name");
        needed(value, "value");
        const std::pair<const char *, const std::string &> attributes[] = {
            {"BatchID", batch->request->id},
            {"BatchErrorMessage", batch->state.errorMessage},
            {"SubmitTime", batch->state.submitTime},
            {"EndTime", batch->state.endTime}};
        for (auto &[known, text] : attributes)
            if (equalIgnoringCase(known, name)) {
                *value = text.c_str();
                return;
            }
        fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "a batch has no text attribute \"%s\"",
             validUtf8(name).c_str());
    });
}

int KVXretrybatch(KVXbatch *batch) {
    return guarded(batch, [&] { Batches::instance().retry(batch->request); });
}

int KVXabortbatch(KVXbatch *batch) {
    return guarded(batch, [&] { Batches::instance().abort(batch->request); });
}

int KVXdiscardbatch(KVXbatch *batch) {
    return guarded(batch, [&] { Batches::instance().discard(*batch->request); });
}

int KVXgetbatchjsonsolution(KVXbatch *batch, char **textP) {
    return guarded(batch, [&] {
        needed(textP, "textP");
        *textP = copyForCaller(solutionOf(*batch));
    });
}

int KVXwritebatchjsonsolution(KVXbatch *batch, const char *filename) {
    return guarded(batch, [&] {
        if (!isJsonFile(needed(filename, "filename")))
            fail(KVX_ERROR_FILE_WRITE,
                 "%s: the name doesn't end in .json, with or without .gz or .bz2 behind it",
                 filename);
        writeFile(filename, solutionOf(*batch));
    });
}
