// Memory that runs out: a call that fails for lack of it leaves the model as it was.
#include "solver_case.h"

#include <cstdlib>
#include <functional>
#include <new>

// Allocations until one fails; negative: none does.
static thread_local int allowed = -1;

__attribute__((noinline)) void *operator new(std::size_t size) {
    if (allowed >= 0 && allowed-- == 0)
        throw std::bad_alloc();
    if (void *memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
__attribute__((noinline)) void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return std::malloc(size ? size : 1);
}
__attribute__((noinline)) void operator delete(void *memory) noexcept {
    std::free(memory);
}
__attribute__((noinline)) void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

TEST(Memory, RunningOutLeavesTheModelAlone) {
    Env env;
    static const int begin[] = {0, 2, 4}, ind[] = {1, 0, 2, 1}, types[] = {1, 2, 1};
    static const int codes[] = {KVX_NL_SIN, KVX_NL_VARIABLE}, parents[] = {-1, 0};
    static const double val[] = {1, 2, 3, 4}, up[] = {5, 6, 7};
    static const char *const names[] = {"a name too long to be kept in place",
                                        "another that is too long", "the third of these names"};
    const std::function<int(KVXmodel *)> changes[] = {
        [](auto m) { return KVXaddvars(m, 3, 4, begin, ind, val, up, nullptr, up, "CIB", names); },
        [](auto m) { return KVXaddconstrs(m, 3, 4, begin, ind, val, "<>=", up, names); },
        [](auto m) { return KVXaddrangeconstrs(m, 3, 4, begin, ind, val, val, up, names); },
        [](auto m) { return KVXaddqpterms(m, 3, ind, ind + 1, val); },
        [](auto m) {
            return KVXaddqconstr(m, 2, ind, val, 3, ind, ind + 1, val, '<', 1, names[0]);
        },
        [](auto m) { return KVXaddsos(m, 3, 4, types, begin, ind, val); },
        [](auto m) { return KVXaddgenconstrMax(m, names[0], 0, 2, ind, 1); },
        [](auto m) { return KVXaddgenconstrIndicator(m, names[0], 0, 1, 2, ind, val, '<', 1); },
        [](auto m) { return KVXaddgenconstrPWL(m, names[0], 0, 1, 3, val, up); },
        [](auto m) { return KVXaddgenconstrPoly(m, nullptr, 0, 1, 3, val, names[0]); },
        [](auto m) { return KVXaddgenconstrNL(m, names[0], 0, 2, codes, val, parents); },
        [](auto m) {
            return KVXsetobjective(m, KVX_MAXIMIZE, 2, ind, val, 3, ind, ind + 1, val, 1);
        },
        [](auto m) { return KVXsetobjectiven(m, 0, 1, names[0], 2, ind, val, 0, 1, 0, 0); },
        [](auto m) { return KVXsetpwlobj(m, 1, 3, val, up); },
        [](auto m) { return KVXchgcoeffs(m, 3, begin, ind, val); },
        [](auto m) { return KVXsetstrattrarray(m, "VarName", 0, 3, names); },
        [](auto m) { return KVXsetstrattrarray(m, "ConstrName", 0, 3, names); },
        [](auto m) { return KVXsetdblattrarray(m, "Obj", 0, 3, up); },
        [](auto m) { return KVXdelvars(m, 2, ind); },
        [](auto m) { return KVXdelconstrs(m, 2, ind); },
    };
    for (const auto &change : changes) {
        Model model = Data{{1, 2, 3},
                           {},
                           {},
                           "BCI",
                           {{{1, 2, 0}, -inf, 4},
                            {{0, 1, 1}, 2, inf},
                            {{0, 0, 3}, 1, 1},
                            {{1, 1, 1}, -inf, 9},
                            {{1, 0, 1}, -inf, 9}}}
                          .build(env);
        const std::string before = described(model.get());
        int status = KVX_ERROR_OUT_OF_MEMORY;
        for (int count = 0; status == KVX_ERROR_OUT_OF_MEMORY && count < 1000; count++) {
            allowed = count;
            status = change(model.get());
            allowed = -1;
            if (status != KVX_OK) {
                ASSERT_EQ(before, described(model.get())) << &change - changes << ' ' << count;
            }
        }
        EXPECT_EQ(KVX_OK, status) << &change - changes << ' ' << KVXgetmerrormsg(model.get());
        EXPECT_NE(before, described(model.get())) << &change - changes;
    }
}

} // namespace
