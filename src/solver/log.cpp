#include "log.h"

#include "guard.h"
#include "params.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace korvex {

void Log::text(const KVXenv &env, std::string_view text) {
    std::lock_guard lock(mutex);
    waiting += text;
    if (delivering) // Lines that the callback itself writes wait until it has returned.
        return;
    for (size_t end; (end = waiting.find('\n')) != waiting.npos;) {
        std::string line = validUtf8(waiting.substr(0, end));
        waiting.erase(0, end + 1);
        for (std::FILE *file :
             {intParam(env, "LogToConsole") ? stdout : nullptr, env.logFile.get()})
            if (file) {
                std::fprintf(file, "%s\n", line.c_str());
                std::fflush(file);
            }
        delivering = true;
        if (callback)
            callback(line.c_str(), userdata);
        delivering = false;
    }
}

void Log::line(const KVXenv &env, const std::string &text) {
    std::lock_guard lock(mutex);
    finishLine(env);
    this->text(env, text + '\n');
}

void Log::finishLine(const KVXenv &env) {
    std::lock_guard lock(mutex);
    if (!waiting.empty() && waiting.back() != '\n')
        text(env, "\n");
}

std::shared_ptr<std::FILE> openLogFile(const std::string &name) {
    if (name.empty())
        return nullptr;
    std::FILE *file = std::fopen(name.c_str(), "a");
    if (!file)
        fail(KVX_ERROR_FILE_WRITE, "%s: can't open the log file: %s", name.c_str(),
             std::strerror(errno));
    return {file, std::fclose};
}

} // namespace korvex

using namespace korvex;

int KVXgetlogcallbackfuncenv(KVXenv *env, KVXlogcallback *callback, void **userdata) {
    return guardedRead(env, [&] {
        std::lock_guard lock(env->log->mutex);
        *needed(userdata, "userdata") = env->log->userdata;
        if (callback)
            *callback = env->log->callback;
    });
}

// Waits while another thread is inside the former callback.
int KVXsetlogcallbackfuncenv(KVXenv *env, KVXlogcallback callback, void *userdata) {
    return guardedRead(env, [&] {
        if (!callback && userdata)
            fail(KVX_ERROR_INVALID_ARGUMENT, "user data without a log callback");
        std::lock_guard lock(env->log->mutex);
        env->log->callback = callback;
        env->log->userdata = userdata;
    });
}

void KVXmsg(KVXenv *env, const char *text) {
    std::string unused; // Any thread may log at any moment, so the error text isn't touched.
    if (env && text)
        guarded(unused, [&] { env->log->text(*env, text); });
}
