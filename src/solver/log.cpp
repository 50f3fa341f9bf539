#include "log.h"

#include "guard.h"
#include "params.h"
#include "text.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>

namespace korvex {

void Log::line(const KVXenv &env, std::string_view text) {
    std::lock_guard lock(mutex);
    flush(env);
    waiting.emplace_back(validUtf8(text));
    deliver(env);
}

void Log::text(const KVXenv &env, std::string_view text) {
    std::lock_guard lock(mutex);
    for (size_t end; (end = text.find('\n')) != text.npos; text.remove_prefix(end + 1)) {
        incomplete += text.substr(0, end);
        waiting.push_back(validUtf8(incomplete));
        incomplete.clear();
    }
    incomplete += text;
    deliver(env);
}

void Log::flush(const KVXenv &env) {
    std::lock_guard lock(mutex);
    if (!incomplete.empty()) {
        waiting.push_back(validUtf8(incomplete));
        incomplete.clear();
        deliver(env);
    }
}

// A line that the callback itself writes waits until the callback has returned.
void Log::deliver(const KVXenv &env) {
    if (delivering)
        return;
    struct Delivery { // ends with an exception, too
        bool &delivering;
        ~Delivery() { delivering = false; }
    } delivery{delivering = true};
    for (; !waiting.empty(); waiting.pop_front()) {
        std::string text = waiting.front() + '\n';
        for (std::FILE *file :
             {intParam(env, "LogToConsole") ? stdout : nullptr, env.logFile.get()})
            if (file) {
                std::fwrite(text.data(), 1, text.size(), file);
                std::fflush(file);
            }
        if (function)
            function(waiting.front().c_str(), data);
    }
}

void Log::setCallback(KVXlogcallback callback, void *userdata) {
    std::lock_guard lock(mutex);
    function = callback;
    data = userdata;
}

KVXlogcallback Log::callback(void **userdata) {
    std::lock_guard lock(mutex);
    *userdata = data;
    return function;
}

void logLine(const KVXenv &env, const char *format, ...) {
    char buffer[1024]; // Longer lines are cut off.
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    env.log->line(env, buffer);
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
        KVXlogcallback function = env->log->callback(needed(userdata, "userdata"));
        if (callback)
            *callback = function;
    });
}

int KVXsetlogcallbackfuncenv(KVXenv *env, KVXlogcallback callback, void *userdata) {
    return guardedRead(env, [&] {
        if (!callback && userdata)
            fail(KVX_ERROR_INVALID_ARGUMENT, "user data without a log callback");
        env->log->setCallback(callback, userdata);
    });
}

void KVXmsg(KVXenv *env, const char *text) {
    std::string unused; // Any thread may log at any moment, so the error text isn't touched.
    if (env && text)
        guarded(unused, [&] { env->log->text(*env, text); });
}
