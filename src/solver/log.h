// The log of an environment and of its models: whole lines to the console, the log file and the
// environment's callback.
#ifndef KORVEX_SOLVER_LOG_H
#define KORVEX_SOLVER_LOG_H

#include "model.h"

#include <string_view>

namespace korvex {

struct Log {
    // Writes a text that may hold any number of lines; the rest after the last line feed waits for
    // the text that completes it.
    void text(const KVXenv &env, std::string_view text);

    // Writes a line of its own.
    void line(const KVXenv &env, const std::string &text);

    // Completes the line that is waiting, if there is one.
    void finishLine(const KVXenv &env);

    // Held while lines are delivered, so that no other thread delivers, replaces the callback or
    // changes the environment's parameters meanwhile. Recursive, since a callback may do all that.
    std::recursive_mutex mutex;
    KVXlogcallback callback = nullptr;
    void *userdata = nullptr;

  private:
    std::string waiting;
    bool delivering = false;
};

// The file, opened to append to; an empty name gives none.
std::shared_ptr<std::FILE> openLogFile(const std::string &name);

} // namespace korvex

#endif
