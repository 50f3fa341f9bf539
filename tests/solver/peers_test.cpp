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
    // Each model brings one feature that files hold, and says which peers don't know it there.
    const struct {
        double optimum;
        const char *text, *unknown;
    } models[] = {
        {-3,
         "min\n o: a - b + 2 c + d - e + 0.1 f\nst\n r: -3 <= a + b - c <= 4\n s: a - d >= -2\n"
         " t: b + e + f = 3\n u: 1 <= a + c <= 1e7\n v: -9 <= b - f <= -1\n"
         "bounds\n a free\n -inf <= b <= -1\n -4 <= c <= 9\n d = 2.5\n -inf <= e <= 7\n f <= "
         "30\nend\n",
         ""},
        {11,
         "max\n 3 x + 2 y - z\nst\n c: x + y <= 4\n d: x + 3 y - z <= 6\nbounds\n x <= 3\nend\n",
         "glpsol.mps"}, // which has no section for the sense
        {-40.5,
         "min\n -x - 2.5 y - 3 z - u - v - 0.3 w + t\nst\n c: 7 x + 3 y + 5 z + 2 u + v + w <= "
         "40.5\n"
         " d: 2 t + x >= -7.5\nbounds\n x <= 3\n y >= 1\n -4 <= z <= 4\n u <= 1\n v = 1\n"
         " w <= 0\n t free\ngenerals\n x y z u t\nbinaries\n v w\nend\n",
         ""},
        {14, "min\n x + y + 12.5\nst\n c: x + 2 y >= 3\nend\n", "glpsol.mps glpsol.lp cbc.lp"},
        {4,
         "min\n 3 x + y + 2 z\nst\n c: x + y + z >= 2.5\n d: x - y >= -2\n"
         "bounds\n 3 <= x <= 5\n 2 <= y <= 9\n 1 <= z <= 8\nsemis\n x y z\ngenerals\n y\nend\n",
         "glpsol.mps glpsol.lp"},
        {-16,
         "min\n -x - 2 y - 3 z - u - v\nst\n c: x + y + z + u + v <= 9\nbounds\n x <= 4\n y <= 3\n"
         " z <= 2\n u <= 5\n v <= 7\nsos\n s: S1:: x:1 y:2\n t: S2:: z:1 u:2 v:4\nend\n",
         "glpsol.mps glpsol.lp"},
        {1, "min\n x\nst\n c: x + y free\n d: x - y >= 1\nend\n", "glpsol.lp"},
        {0.5, "min\n x\nst\n c: 0 x <= 5\n d: -1 <= 0 x <= 1\n e: x >= 0.5\nend\n", ""},
        {8, "min\n x + 2 y\nbounds\n x >= 2\n y >= 3\nend\n", "glpsol.lp"}, // which needs a row
        {0, "min\nst\n c: x + y >= 1\nend\n", ""},
        {-1, // of the linear terms, which are all that cbc tells
         "min\n -x + [ 2 x ^2 + 2 x * y + 2 y ^2 ] / 2\nst\n c: x + y >= 1\nend\n",
         "glpsol.mps glpsol.lp cbc.lp"},
        {2480246.89125802,
         "min\n 2 a_name_of_more_than_8 + 1e5 \xc3\xa4 + e1\nst\n"
         " a_name_as_long_as_the_other: 1e-3 a_name_of_more_than_8 + e1 >= 12345.678901234567\n"
         " C_OBJ: a_name_of_more_than_8 >= 1234567.8901234567\n OBJ: e1 <= 1e15\nend\n",
         ""},
    };
    const struct {
        const char *name, *ending, *command, *marker;
    } peers[] = {{"glpsol", "mps", "glpsol --freemps ", "s "},
                 {"glpsol", "lp", "glpsol --lp ", "s "},
                 {"cbc", "mps", "cbc ", "Optimal"},
                 {"cbc", "lp", "cbc ", "Optimal"}};
    Env env;
    for (auto &[optimum, text, unknown] : models) {
        const std::string path = temporary("model.lp");
        store(path, text);
        KVXmodel *read = nullptr;
        ASSERT_EQ(KVX_OK, KVXreadmodel(env, path.c_str(), &read)) << KVXgeterrormsg(env) << text;
        Model model(read);
        for (const auto &[peer, ending, command, marker] : peers) {
            if (std::string(unknown).find(std::string(peer) + '.' + ending) != std::string::npos)
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
