// COIN's libraries end the process by assert, abort or exit when something astonishes them. What
// they do inside protect ends in a Failure instead.
#ifndef KORVEX_SOLVER_ASSERTION_H
#define KORVEX_SOLVER_ASSERTION_H

#include <functional>
#include <memory>

namespace korvex {

// Whether the work came to its end. If not, the frames that it had called were left by a jump: none
// of their destructors has run, which leaks memory instead of ending the process. So nothing in
// them may hold a lock.
bool comesToItsEnd(const std::function<void()> &work);

// Throws what has kept this thread's last work from its end.
[[noreturn]] void failByAssertion();

// Runs what COIN does with some objects, each owned by a std::unique_ptr. If it doesn't come to its
// end nobody knows what state they are in, so they are never destructed.
template <class... Objects>
bool survives(const std::function<void()> &work, std::unique_ptr<Objects> &...objects) {
    const bool isDone = comesToItsEnd(work);
    if (!isDone)
        (static_cast<void>(objects.release()), ...);
    return isDone;
}
template <class... Objects>
void protect(const std::function<void()> &work, std::unique_ptr<Objects> &...objects) {
    if (!survives(work, objects...))
        failByAssertion();
}

// Stands at the start of every function that COIN calls: a jump must not leave its frame, let alone
// one of the callback's in a virtual machine. What fails in it ends the process, unless it is
// protected in turn.
class CalledByCoin {
  public:
    CalledByCoin();
    ~CalledByCoin();
    CalledByCoin(const CalledByCoin &) = delete;
    CalledByCoin &operator=(const CalledByCoin &) = delete;

  private:
    void *protection;
};

} // namespace korvex

#endif
