// Round trips by lazy constraints: the shortest of all tours where they are few, and agreement of
// different settings where they aren't.
#include "solver_case.h"

#include <algorithm>
#include <numeric>

namespace {

struct Tour {
    Env env;
    const size_t cities;
    std::vector<std::pair<size_t, size_t>> edges; // (0, 1), (0, 2), (1, 2), (0, 3) ...
    Data data;
    int lazies = 0;

    Tour(size_t cities, unsigned seed) : cities(cities) {
        Random random(seed);
        for (size_t i = 0; i < cities; i++)
            for (size_t j = 0; j < i; j++) {
                edges.push_back({j, i});
                data.obj.push_back(random(10, 99));
            }
        data.types.assign(edges.size(), KVX_BINARY);
        for (size_t city = 0; city < cities; city++) {
            Vector val;
            for (auto [i, j] : edges)
                val.push_back(i == city || j == city);
            data.rows.push_back({val, 2, 2});
        }
    }

    double solve(std::vector<std::pair<const char *, int>> params) {
        Model model = data.build(env);
        params.push_back({"LazyConstraints", 1});
        for (auto [name, value] : params)
            EXPECT_EQ(KVX_OK, KVXsetintparam(KVXgetenv(model.get()), name, value));
        EXPECT_EQ(KVX_OK, KVXsetcallbackfunc(model.get(), callback, this));
        auto [status, length] = solved(model);
        EXPECT_EQ(KVX_STATUS_OPTIMAL, status);
        EXPECT_EQ(cities, trip(dblAttrs(model, "X", edges.size())).second);
        return length;
    }

    double shortest() const {
        std::vector<size_t> order(cities);
        std::iota(order.begin(), order.end(), 0);
        double best = inf;
        do {
            double length = 0;
            for (size_t k = 0; k < cities; k++) {
                auto [low, high] = std::minmax(order[k], order[(k + 1) % cities]);
                length += data.obj[high * (high - 1) / 2 + low];
            }
            best = std::min(best, length);
        } while (std::next_permutation(order.begin() + 1, order.end()));
        return best;
    }

    // Edges among the cities of the round trip through city 0, and the number of those cities.
    std::pair<std::vector<int>, size_t> trip(const Vector &x) const {
        std::vector<char> isReached(cities);
        isReached[0] = true;
        std::vector<int> inside;
        for (size_t round = 0; round < cities; round++)
            for (size_t e = 0; e < x.size(); e++)
                if (auto [i, j] = edges[e]; x[e] > 0.5 && (isReached[i] || isReached[j]))
                    isReached[i] = isReached[j] = true;
        for (size_t e = 0; e < x.size(); e++)
            if (isReached[edges[e].first] && isReached[edges[e].second])
                inside.push_back(static_cast<int>(e));
        return {inside, std::accumulate(isReached.begin(), isReached.end(), size_t{0})};
    }

    static int callback(KVXmodel *, void *cbdata, int where, void *userdata) {
        auto &tour = *static_cast<Tour *>(userdata);
        if (where != KVX_CB_MIPSOL)
            return 0;
        Vector x(tour.edges.size()), ones(x.size(), 1);
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_SOL, x.data()));
        auto [ind, reached] = tour.trip(x);
        if (reached == tour.cities)
            return 0;
        tour.lazies++;
        return KVXcblazy(cbdata, static_cast<int>(ind.size()), ind.data(), ones.data(), '<',
                         static_cast<double>(reached) - 1);
    }
};

TEST(Lazy, FindsTheShortestTours) {
    int lazies = 0;
    for (unsigned seed = 0; seed < 12; seed++) {
        Tour tour(6 + seed % 3, seed);
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
