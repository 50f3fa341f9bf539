// The log of an environment and of its models: whole lines to the console, the log file and the
// environment's callback.
#ifndef KORVEX_SOLVER_LOG_H
#define KORVEX_SOLVER_LOG_H

#include "model.h"

#include <cstdio>
#include <deque>

namespace korvex {

class Log {
  public:
    // Writes a line to where the environment's parameters say and to the callback.
    void line(const KVXenv &env, std::string_view text);

    // Writes a text that may hold any number of lines; the rest after the last line feed waits for
    // the text that completes it.
    void text(const KVXenv &env, std::string_view text);

    // Writes the incomplete line, if there is one.
    void flush(const KVXenv &env);

    // Replaces the callback. Waits while another thread is inside the former one.
    void setCallback(KVXlogcallback callback, void *userdata);
    KVXlogcallback callback(void **userdata);

    // While it is held no line is delivered by another thread.
    std::unique_lock<std::recursive_mutex> lock() { return std::unique_lock(mutex); }

  private:
    void deliver(const KVXenv &env);

    // Held while lines are delivered, so that no other thread delivers or replaces meanwhile.
    // Recursive: a callback may log and may replace itself.
    std::recursive_mutex mutex;
    std::deque<std::string> waiting;
    std::string incomplete;
    bool delivering = false;
    KVXlogcallback function = nullptr;
    void *data = nullptr;
};

// printf of one line to the log of an environment.
void logLine(const KVXenv &env, const char *format, ...) __attribute__((format(printf, 2, 3)));

// The file, opened to append to; an empty name gives none.
std::shared_ptr<std::FILE> openLogFile(const std::string &name);

} // namespace korvex

#endif
