// What we write, other programs read: GLPK's and COIN's find the optimum.
#include "solver_case.h"

#include <cstdlib>
#include <sstream>

namespace {

// Runs a peer on a file; its objective value as text, and all that it said if there is none.
std::string optimumOf(const std::string &command, const std::string &marker) {
    const std::string result = temporary("result"), log = temporary("log");
    store(result, "");
    const bool isRun = std::system((command + result + " >" + log + " 2>&1").c_str()) == 0;
    std::istringstream lines(contents(result));
    for (std::string line; isRun && std::getline(lines, line);)
        if (line.rfind(marker, 0) == 0)
            return line.substr(line.find_last_of(' ') + 1);
    return contents(log) + contents(result);
}

TEST(Peers, FindTheOptimumInWhatWeWrite) {
    const struct {
        const char *name, *ending, *command, *marker;
    } peers[] = {{"glpsol", "mps", "glpsol --freemps ", "s "},
                 {"glpsol", "lp", "glpsol --lp ", "s "},
                 {"cbc", "mps", "cbc ", "Optimal"},
                 {"cbc", "lp", "cbc ", "Optimal"}};
    Env env;
    for (const auto &[title, text] : readCases("peers.txt")) {
        const double optimum = std::atof(title.c_str());
        Model model = fromText(env, text);
        for (const auto &[peer, ending, command, marker] : peers) {
            if (title.find(std::string(peer) + '.' + ending) != std::string::npos)
                continue;
            const std::string file = temporary(std::string("peer.") + ending);
            MUST(model, KVXwrite(model.get(), file.c_str()));
            // Of an MPS file cbc ignores the sense, and wants it to be said once more.
            const bool isMax = intAttr(model, "ModelSense") == KVX_MAXIMIZE;
            const std::string options = *peer == 'g' ? " -w "
                                        : isMax      ? " -max -solve -solu "
                                                     : " -solve -solu ";
            const std::string found = optimumOf(command + file + options, marker);
            EXPECT_NEAR(optimum, std::atof(found.c_str()), 1e-6 * (1 + std::abs(optimum)))
                << peer << ": " << found << contents(file);
        }
    }
}

} // namespace
