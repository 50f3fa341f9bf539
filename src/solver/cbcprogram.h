// Cbc as its own program conducts it: with its preprocessing, cut generators and heuristics.
#ifndef KORVEX_SOLVER_CBCPROGRAM_H
#define KORVEX_SOLVER_CBCPROGRAM_H

#include <CbcModel.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace korvex {

struct CbcProgram {
    std::vector<const char *> options; // of its command line

    // Called before the search, with the model that is searched, and in the end, with the same
    // model in terms of the original columns; between them, when the search is over.
    std::function<void(CbcModel &)> begin, end;
    std::function<void()> afterSearch = [] {};
    // Called every now and then while another thread's program holds this one up; true ends it.
    std::function<bool()> isToEnd = [] { return false; };
    // Called with true when other threads' programs begin to wait for this one, and with false when
    // they go on. In between nobody may be called who might wait for such a thread.
    std::function<void(bool)> holdUp = [](bool) {};

    enum Result { searched, infeasible, failed };
    // infeasible: the program saw before the search that there are no solutions.
    Result conduct(std::unique_ptr<CbcModel> &model);
};

} // namespace korvex

#endif
