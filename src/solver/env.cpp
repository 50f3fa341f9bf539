// Environments: making, starting, freeing, and those that belong to a model.
#include "input.h"
#include "log.h"
#include "params.h"

using namespace korvex;

namespace {

// Also after a failure *envP receives an environment: it holds the error text.
template <class Body>
int newEnv(KVXenv **envP, int interfacenum, int major, int minor, int technical,
           Body &&configure) noexcept {
    if (!envP)
        return KVX_ERROR_NULL_ARGUMENT;
    *envP = nullptr;
    std::string unused;
    int status = guarded(unused, [&] {
        auto env = std::make_unique<KVXenv>();
        env->parameters = defaultParameters();
        env->log = std::make_shared<Log>();
        *envP = env.release();
    });
    return status != KVX_OK ? status : guarded(*envP, [&] {
        if (interfacenum != KVX_INTERFACE_JAVA)
            fail(KVX_ERROR_INVALID_ARGUMENT, "interface number %d isn't known", interfacenum);
        if (major != KVX_VERSION_MAJOR)
            fail(KVX_ERROR_VERSION, "the caller is version %d.%d.%d, the solver library %d.%d.%d",
                 major, minor, technical, KVX_VERSION_MAJOR, KVX_VERSION_MINOR,
                 KVX_VERSION_TECHNICAL);
        configure(**envP);
    });
}

} // namespace

int KVXemptyenvadvinternal(KVXenv **envP, int interfacenum, int major, int minor, int technical,
                           void *, void *, void *, void *, void *, void *, void *) {
    return newEnv(envP, interfacenum, major, minor, technical, [](KVXenv &) {});
}

int KVXloadenvadv(KVXenv **envP, const char *logfile, int interfacenum, int major, int minor,
                  int technical, void *, void *, void *, void *, int key, int extra, void *, void *,
                  void *, void *, void *, void *) {
    return newEnv(envP, interfacenum, major, minor, technical, [&](KVXenv &env) {
        if (key != KVX_LOADENV_KEY)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the eleventh argument isn't KVX_LOADENV_KEY");
        setParam(env, "LogToConsole", extra ? 0 : 1);
        if (logfile)
            setParam(env, "LogFile", std::string(logfile));
        env.started = true;
    });
}

int KVXstartenv(KVXenv *env) {
    return guarded(env, [&] {
        if (env->started)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the environment has been started already");
        env->started = true;
    });
}

KVXenv *KVXgetenv(KVXmodel *model) {
    return model ? &model->env : nullptr;
}

KVXenv *KVXgetconcurrentenv(KVXmodel *model, int) {
    guardedRead(model, [&] {
        fail(KVX_ERROR_NOT_SUPPORTED, "a model isn't solved with several settings at once");
    });
    return nullptr;
}

void KVXdiscardconcurrentenvs(KVXmodel *) {}

KVXenv *KVXgetmultiobjenv(KVXmodel *model, int index) {
    KVXenv *result = nullptr;
    guarded(model, [&] {
        readIndex(index, std::max<size_t>(1, model->objectives.size()), "objective");
        auto found = model->objectiveEnvs.find(index);
        if (found == model->objectiveEnvs.end())
            found = model->objectiveEnvs.emplace(index, model->env).first;
        result = &found->second;
    });
    return result;
}

void KVXdiscardmultiobjenvs(KVXmodel *model) {
    guarded(model, [&] { model->objectiveEnvs.clear(); });
}

void KVXfreeenv(KVXenv *env) {
    if (!env || env->owner)
        return;
    std::string unused;
    guarded(unused, [&] { env->log->finishLine(*env); });
    delete env;
}

void KVXversion(int *major, int *minor, int *technical) {
    store(major, KVX_VERSION_MAJOR);
    store(minor, KVX_VERSION_MINOR);
    store(technical, KVX_VERSION_TECHNICAL);
}

const char *KVXgeterrormsg(KVXenv *env) {
    return env ? env->error.get() : "";
}
