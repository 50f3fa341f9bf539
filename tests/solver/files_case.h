// What the tests of files share: reading and writing models, and a model with a bit of all.
#ifndef KORVEX_TESTS_FILES_CASE_H
#define KORVEX_TESTS_FILES_CASE_H

#include "solver_case.h"

#include <sstream>

inline const char *const sampleMps =
    "NAME the sample\nOBJSENSE\n    MAX\n"
    "ROWS\n N cost\n L less\n G more\n E same\n G twosides\n N loose\n"
    "COLUMNS\n    x cost 0.1 less 1\n    x twosides 3.3333333333333335\n"
    "    M 'MARKER' 'INTORG'\n    i cost -2 more 1e-17\n    b same 123456789.12345679\n"
    "    n less 1\n    M 'MARKER' 'INTEND'\n    s less 2\n    unused cost 0\n"
    "RHS\n    RHS cost -7.5 less 10\n    RHS more -0.1 same 4\n    RHS twosides -0.3\n"
    "RANGES\n    RNG twosides 0.7\n"
    "BOUNDS\n FR BND x\n UP BND i 1e9\n BV BND b\n SC BND n 9\n LO BND s 2\n SC BND s 1e100\n"
    " UP BND unused -1\n"
    "ENDATA\n";

struct Files : testing::Test {
    Env env;
    std::string message;

    // Null, and the error text in message, when the file can't be read.
    Model read(const std::string &name) {
        KVXmodel *model = nullptr;
        int status = KVXreadmodel(env, temporary(name).c_str(), &model);
        message = KVXgeterrormsg(env);
        EXPECT_EQ(status, model ? KVX_OK : KVX_ERROR_FILE_READ) << message;
        return Model(model);
    }

    Model read(const std::string &name, const std::string &text) {
        store(temporary(name), text);
        return read(name);
    }

    static std::string data(const Model &model) {
        const char *name = nullptr;
        EXPECT_EQ(KVX_OK, KVXgetstrattr(model.get(), "ModelName", &name));
        std::ostringstream out;
        out.precision(17);
        out << described(model.get()) << "ObjCon " << dblAttr(model, "ObjCon") << "\nModelName "
            << name << '\n';
        return out.str();
    }

    static void write(const Model &model, const std::string &name, int expected = KVX_OK) {
        EXPECT_EQ(KVXwrite(model.get(), temporary(name).c_str()), expected)
            << KVXgetmerrormsg(model.get());
    }
};

#endif
