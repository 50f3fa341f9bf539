// Round trips by lazy constraints: optima that are known from dynamic programming, and agreement of
// different settings where it isn't.
#include "solver_case.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

class Tour {
  public:
    Tour(int cities, unsigned seed) : cities(cities) {
        std::mt19937 random(seed);
        for (int i = 0; i < cities; i++)
            for (int j = 0; j < i; j++) {
                edges.push_back({j, i});
                costs.push_back(10 + static_cast<int>(random() % 90));
            }
    }

    double solve(std::vector<std::pair<const char *, int>> params) {
        auto count = static_cast<int>(edges.size());
        KVXmodel *made = nullptr;
        std::vector<double> ones(edges.size(), 1);
        std::vector<char> types(edges.size(), KVX_BINARY);
        EXPECT_EQ(KVX_OK, KVXnewmodel(env, &made, "tour", count, costs.data(), nullptr, nullptr,
                                      types.data(), nullptr));
        Model model(made);
        for (int city = 0; city < cities; city++) {
            std::vector<int> ind;
            for (int e = 0; e < count; e++)
                if (edges[static_cast<size_t>(e)].first == city ||
                    edges[static_cast<size_t>(e)].second == city)
                    ind.push_back(e);
            const int begin = 0;
            const double two = 2;
            EXPECT_EQ(KVX_OK, KVXaddconstrs(made, 1, cities - 1, &begin, ind.data(), ones.data(),
                                            "=", &two, nullptr));
        }
        params.push_back({"LazyConstraints", 1});
        for (auto [name, value] : params)
            EXPECT_EQ(KVX_OK, KVXsetintparam(KVXgetenv(made), name, value));
        EXPECT_EQ(KVX_OK, KVXsetcallbackfunc(made, callback, this));
        EXPECT_EQ(KVX_OK, KVXoptimize(made)) << KVXgetmerrormsg(made);
        EXPECT_EQ(KVX_STATUS_OPTIMAL, intAttr(model, "Status"));
        std::vector<double> x(edges.size());
        EXPECT_EQ(KVX_OK, KVXgetdblattrarray(made, "X", 0, count, x.data()));
        EXPECT_EQ(static_cast<size_t>(cities), subtour(x).size());
        return dblAttr(model, "ObjVal");
    }

    // The shortest tour by dynamic programming over sets of cities: last city of the best path
    // from city 0 through all of a set.
    double shortest() const {
        size_t last = static_cast<size_t>(cities - 1), sets = size_t{1} << last;
        std::vector<std::vector<double>> best(sets, std::vector<double>(last, 1e9));
        for (size_t set = 1; set < sets; set++)
            for (size_t to = 0; to < last; to++) {
                if (!(set >> to & 1))
                    continue;
                size_t rest = set & ~(size_t{1} << to);
                if (rest == 0)
                    best[set][to] = cost(0, to + 1);
                for (size_t from = 0; from < last; from++)
                    if (rest >> from & 1)
                        best[set][to] =
                            std::min(best[set][to], best[rest][from] + cost(from + 1, to + 1));
            }
        double tour = 1e9;
        for (size_t to = 0; to < last; to++)
            tour = std::min(tour, best[sets - 1][to] + cost(0, to + 1));
        return tour;
    }

    int lazies = 0;

  private:
    double cost(size_t i, size_t j) const {
        auto [low, high] = std::minmax(i, j);
        return costs[high * (high - 1) / 2 + low];
    }

    // The cities of the shortest round trip in a solution.
    std::vector<int> subtour(const std::vector<double> &x) const {
        std::vector<int> part(static_cast<size_t>(cities));
        std::iota(part.begin(), part.end(), 0);
        for (size_t e = 0; e < x.size(); e++) {
            const int from = part[static_cast<size_t>(edges[e].first)];
            const int to = part[static_cast<size_t>(edges[e].second)];
            if (x[e] > 0.5)
                std::replace(part.begin(), part.end(), from, to);
        }
        std::vector<int> smallest;
        for (int number = 0; number < cities; number++) {
            std::vector<int> members;
            for (int city = 0; city < cities; city++)
                if (part[static_cast<size_t>(city)] == number)
                    members.push_back(city);
            if (!members.empty() && (smallest.empty() || members.size() < smallest.size()))
                smallest = members;
        }
        return smallest;
    }

    static int callback(KVXmodel *, void *cbdata, int where, void *userdata) {
        auto &tour = *static_cast<Tour *>(userdata);
        std::vector<double> x(tour.edges.size()), ones(x.size(), 1);
        if (where != KVX_CB_MIPSOL)
            return 0;
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_SOL, x.data()));
        std::vector<int> cities = tour.subtour(x), ind;
        if (cities.size() == static_cast<size_t>(tour.cities))
            return 0;
        auto inside = [&](int city) { return std::count(cities.begin(), cities.end(), city) > 0; };
        for (size_t e = 0; e < x.size(); e++)
            if (inside(tour.edges[e].first) && inside(tour.edges[e].second))
                ind.push_back(static_cast<int>(e));
        tour.lazies++;
        return KVXcblazy(cbdata, static_cast<int>(ind.size()), ind.data(), ones.data(), '<',
                         static_cast<double>(cities.size()) - 1);
    }

    Env env;
    const int cities;
    std::vector<std::pair<int, int>> edges;
    std::vector<double> costs;
};

TEST(Lazy, FindsTheShortestTours) {
    int lazies = 0;
    for (unsigned seed = 0; seed < 12; seed++) {
        Tour tour(6 + static_cast<int>(seed % 4), seed);
        EXPECT_EQ(tour.shortest(), tour.solve({})) << "seed " << seed;
        lazies += tour.lazies;
    }
    EXPECT_GT(lazies, 0);
}

TEST(Lazy, SettingsAgreeOnALongerTour) {
    Tour tour(25, 4711);
    double length = tour.solve({});
    EXPECT_EQ(length, tour.solve({{"Seed", 7}, {"Cuts", 0}}));
    EXPECT_EQ(length, tour.solve({{"Seed", 1}, {"Heuristics", 0}}));
}

} // namespace
