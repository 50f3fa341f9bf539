// What the solver's tests share: owners of environments and models, and a model as text.
#ifndef KORVEX_TESTS_SOLVER_CASE_H
#define KORVEX_TESTS_SOLVER_CASE_H

#include "korvex.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

// A started environment that writes nothing to the console.
struct Env {
    KVXenv *env = nullptr;
    Env() {
        EXPECT_EQ(KVX_OK, KVXloadenvadv(&env, nullptr, KVX_INTERFACE_JAVA, KVX_VERSION_MAJOR, 0, 0,
                                        nullptr, nullptr, nullptr, nullptr, KVX_LOADENV_KEY, 1,
                                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
    Env(const Env &) = delete;
    Env &operator=(const Env &) = delete;
    ~Env() { KVXfreeenv(env); }
    operator KVXenv *() const { return env; }
};

struct FreeModel {
    void operator()(KVXmodel *model) const { EXPECT_EQ(KVX_OK, KVXfreemodel(model)); }
};
using Model = std::unique_ptr<KVXmodel, FreeModel>;

// A call on the model that must succeed; shows the error text otherwise.
#define MUST(model, call) ASSERT_EQ(KVX_OK, call) << KVXgetmerrormsg(&*(model))

// An attribute that must be there.
int intAttr(const Model &model, const char *name);
double dblAttr(const Model &model, const char *name);

// A model derived from another one by one of the functions that do.
Model derived(const Model &model, int (*derive)(KVXmodel *, KVXmodel **));

// The data of a model, all that can be read through the interface, as text.
std::string described(KVXmodel *model);

#endif
