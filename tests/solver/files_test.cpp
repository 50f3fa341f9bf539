// Model files: what was written reads back the same; damage ends in a status and a text.
#include "files_case.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

// Via every ending, a model comes back the same.
TEST_F(Files, ModelsComeBackTheSame) {
    Model model = read("sample.mps", sampleMps);
    ASSERT_TRUE(model) << message;
    EXPECT_EQ(dblAttrs(model, "LB", 6), (Vector{-inf, 0, 0, 0, 2, -inf}));
    EXPECT_EQ(dblAttrs(model, "UB", 6), (Vector{inf, 1e9, 1, 9, inf, -1}));
    char types[6];
    MUST(model, KVXgetcharattrarray(model.get(), "VarType", 0, 6, types));
    EXPECT_EQ(std::string(types, 6), "CIBNSC");
    EXPECT_EQ(dblAttrs(model, "RowLower", 5), (Vector{-inf, -0.1, 4, -0.3, -inf}));
    EXPECT_EQ(dblAttrs(model, "RowUpper", 5), (Vector{10, inf, 4, 0.4, inf}));
    EXPECT_EQ(dblAttr(model, "ObjCon"), 7.5);
    for (const char *name : {"a.mps", "a.mps.gz", "a.MPS.bz2", "a.lp", "a.lp.gz", "a.lp.bz2"}) {
        write(model, name);
        Model again = read(name);
        ASSERT_TRUE(again) << name << ": " << message;
        EXPECT_EQ(data(again), data(model)) << name << contents(temporary(name));
    }
    MUST(model, KVXaddgenconstrAbs(model.get(), nullptr, 0, 1));
    write(model, "a.mps", KVX_ERROR_NOT_SUPPORTED);
}

// Numbers of all magnitudes, with all digits; bounds, sides, types and sets of all shapes.
TEST_F(Files, WhatIsWrittenReadsBackExactly) {
    Random random(11);
    auto number = [&] {
        const double special[] = {0, 1, -1, 0.1, -0.3, 0.7, 2.5, 5e-324, -1e99};
        const int kind = random(0, 24);
        return kind < 9
                   ? special[kind]
                   : std::ldexp(random(-1073741823, 1073741823) * 1.2345678901, random(-60, 40));
    };
    auto spread = [&](double &lower, double &upper) {
        const double a = number(), b = random(0, 3) ? number() : a;
        lower = lower <= -inf ? lower : std::min(a, b);
        upper = upper >= inf ? upper : std::max(a, b);
    };
    for (int k = 0; k < 300; k++) {
        Data made = randomData(random, 6, 5, "CCIIBSN");
        for (size_t j = 0; j < 6; j++) {
            made.obj[j] = random(0, 2) ? number() : 0;
            spread(made.lb[j], made.ub[j]);
            if (made.types[j] == KVX_BINARY || random(0, 3) == 0) {
                made.lb[j] = random(0, 2) * 0.25;
                made.ub[j] = random(1, 2) * 0.5;
            }
        }
        for (Row &row : made.rows) {
            spread(row.lower, row.upper);
            const bool isEmpty = random(0, 9) == 0;
            for (double &value : row.val)
                value = isEmpty || random(0, 1) ? 0 : number();
        }
        made.constant = random(0, 1) ? number() : 0;
        Model model = made.build(env);
        const int types[] = {KVX_SOS_TYPE2, KVX_SOS_TYPE1}, begins[] = {0, random(0, 5)};
        const int members[] = {3, 0, 5, 2, 1}, sets = random(0, 2);
        const double weights[] = {1, -2.5, number(), number(), 7};
        MUST(model, KVXaddsos(model.get(), sets, sets ? 5 : 0, types, begins, members, weights));
        const int rows[] = {random(0, 5), 1, 5, 3}, columns[] = {random(0, 5), 2, 4, 3};
        const int linear[] = {0, 2, 3, 5};
        const Vector factors = {number(), number(), number(), 1e200};
        const int products = random(0, 4);
        MUST(model, KVXaddqpterms(model.get(), products, rows, columns, factors.data()));
        for (int q = random(0, 2); q > 0; q--)
            MUST(model, KVXaddqconstr(model.get(), random(0, 4), linear, factors.data(), products,
                                      columns, rows, factors.data(), "<>="[random(0, 2)],
                                      std::min(number(), 2.5), q == 1 ? "a" : nullptr));
        const char *names[] = {"", "a", "two words", "is Free", "FREE"};
        MUST(model, KVXsetstrattr(model.get(), "ModelName", names[random(0, 4)]));
        for (const char *name : {"r.mps", "r.lp"}) {
            write(model, name);
            Model again = read(name);
            ASSERT_TRUE(again) << message << contents(temporary(name));
            ASSERT_EQ(data(again), data(model)) << contents(temporary(name));
        }
    }
}

// The same models as other programs write them.
TEST_F(Files, OtherSpellingsReadTheSame) {
    const std::string quadraticRows =
        "ROWS\n N o\n L c\n L f\n G d\n E e\nCOLUMNS\n x o 1 c 1\n x f 1\n y o 1 f 1\n z o 1\n"
        "RHS\n c 4 f 1\n d -1 e 2\n";
    auto quadratic = [&](const char *sections) { return quadraticRows + sections + "ENDATA\n"; };
    const struct {
        const char *plain, *name;
        std::vector<std::string> texts;
    } models[] = {
        {"max\n x + 2 y - 3\nst\n c: x + y <= 4\n end: x - y >= -1.5\nbounds\n y <= 8\n"
         "generals\n y\nend\n",
         "a.lp",
         {"MAXIMUM obj: x + 2 y - 3 such that c: x + y <= 4 end: x - y >= -1.5 bound 8 >= y int y",
          "Maximise\n x + y + 0 x\n\\ st\n + y - 3 - 0\nSubject  To\n c: x\n + y =< 4\n"
          " end: 1 * x\n - y > -15e-1\nBounds y < 8 Integer y End",
          "maximize x + 2 y - 3\nst. c: 4 >= x + 1 y + 0\n end: x - y => -1.5\nBOUND\n"
          " 0 <= y <= 8\ngen\nbin\nint\n y\n"}},
        {"min\n x + st + z\nst\n c: 1 <= x + st <= 4\n d: x + z >= 1\nbounds\n 2 <= x <= 5\n"
         " z >= 1\n -inf <= st\nsemis\n x z\nsos\n s: S1:: x: 1 st: 2\n S2:: st: -1 z: 2 x: "
         "3\nend\n",
         "b.lp",
         {"min x + st + z\nst c: x + st >= 1\n x + st <= 4\n d: x + z >= 1\nbounds x >= 2 x <= 5\n"
          " z >= 1 st free\nsemi-continuous x z sos1 s: x:1 st:2 sos2 st:-1 z:2 x:3",
          "minimum x + st\n + z\nst\n c: x + st <= 4\n x + st >= 1\n d: x + z >= 1\nbounds\n x <= "
          "5\n"
          " x >= 2\n z >= 1\n -inf <= st <= inf\nsec x\nsemi continuous\n z\nsos\nS1::x:1 st:2\n"
          " t:S2:: st: -1 z:2 x:3"}},
        {"\\Problem name: m\nmax\n x + 0 y - 7\nst\n L: x + y <= 4\n G: x - y >= -2\n E: x = 1\n"
         " F: y free\n R: 3 <= y <= 5\n S: -1 <= x <= 3\n T: -2 <= x <= -1\n U: -2 <= y <= 1\n"
         "bounds\n -inf <= y <= -1\nend\n",
         "a.mps",
         {"NAME  m FREE\r\nOBJSENSE maximize\r\nROWS\n N o\n L L\n G G\n E E\n N F\n L R\n G S\n"
          " E T\n E U\nCOLUMNS\n x o 1. L 1D0\n x G 1 E 1\n x S 1 T 1\n y o 0 L 1d+0 $ comment\n"
          " y G -1 F 1\n y R 1 U 1\nRHS\n B o 7 L 4\n B G -2 E 1\n B R 5 S -1\n B T -2 U 1\n"
          "RANGES\n Q R 2 S -4\n Q T 1 U -3\nBOUNDS\n UP y -1\nENDATA\n",
          "* comment\nname          m\nobjsense\n    Max\nrows\n n  o\n l  L\n g  G\n e  E\n n  F\n"
          " l  R\n g  S\n e  T\n e  U\ncolumns\n x o 1 L 1\n x G 1 E 1\n x S 1 T 1\n y L 1 G -1\n"
          " y F 1 R 1\n y U 1\nrhs\n o 7 L 4\n G -2 E 1\n R 5 S -1\n T -2 U 1\nranges\n R 2 S 4\n"
          " T 1 U -3\nbounds\n mi y\n up y -1\nendata\n"}},
        {"min\n i + m + b + n + k + l + p + s + t + u + f\nst\nbounds\n i <= 4\n -inf <= m <= -1\n "
         "n = 1\n"
         " 2 <= p <= 3\n 1 <= s <= 5\n t <= 6\n f free\n k <= 1\n l <= 1\ngenerals\n i m p f t k "
         "l\nbinaries\n b n\n"
         "semis\n s t u\nsos\n S1:: i: 1 m: 2\n S2:: p: 3 s: 4\nend\n",
         "b.mps",
         {"NAME\nROWS\n N o\nCOLUMNS\n M 'MARKER' 'INTORG'\n i o 1\n m o 1\n b o 1\n n o 1\n"
          " k o 1\n l o 1\n M 'MARKER' 'INTEND'\n p o 1\n s o 1\n t o 1\n u o 1\n f o "
          "1\nRHS\nBOUNDS\n UP i 4\n"
          " UP m -1\n FX n 1\n LI k 0\n UP k 1\n UI l 1\n LI p 2\n UI p 3\n LO s 1\n SC s 5\n SI t "
          "6\n SC u\n LI f 1\n FR f "
          "0\n"
          "SOS\n S1 SOS s1\n i 1\n m 2\n S2 SOS b 5\n b p 3\n b s 4\nENDATA\n",
          "NAME\nROWS\n N o\nCOLUMNS\n i o 1\n m o 1\n b o 1\n m2 'marker' 'intorg'\n n o 1\n"
          " k o 1\n l o 1\n p o 1\n m2 'marker' 'intend'\n s o 1\n t o 1\n u o 1\n f o "
          "1\nRHS\nBOUNDS\n LI B i 0\n UI B i "
          "4\n"
          " UI B m -1\n BV B b\n FX B n 1\n UI B k 1\n UP B l 1\n LI B l 0\n LO B p 2\n UP B p 3\n "
          "LO B s 1\n SC B s 5\n UI B t 6\n"
          " SC B t 6\n SC B u\n UI B f 1\n FR B f\nSOS1\n s1 i 1\n s1 m 2\nSOS2\n p 3\n s 4\n"
          "ENDATA\n"}},
        {"NAME fixed\nROWS\n N o\n L c_1\nCOLUMNS\n x_y_z o 1 c_1 2\n w o 3\nRHS\n RHS c_1 4\n"
         "BOUNDS\n UP BND x_y_z 5\n FR BND w\nENDATA\n",
         "c.mps",
         {"NAME          fixed\nROWS\n N  o\n L  c 1\nCOLUMNS\n"
          "    x y z     o                  1.0   c 1                2.0\n"
          "    w         o                    3\nRHS\n"
          "              c 1                4.0\nBOUNDS\n"
          " UP BND       x y z              5.0\n FR BND       w         $ none\nENDATA\n"}},
        {"min\n x + y + z + [ 2 x ^2 - 6 x * y + 8 y ^2 + 3 y * z ] / 2 + 1\nst\n"
         " c: x + [ x ^2 - 3 x * y ] <= 4\n d: [ 2.5 z ^2 ] >= -1\n e: y + [ z * z + x * z ] = "
         "2\nend\n",
         "q.lp",
         {"min x + y + z + 1 + [ 3 z * y - 6 y * x - - 2 x^2 + 4 y^2 ] / 2 - [ - 4 * y * y ]/2 st\n"
          "c: 4 >= [ - 3 x*y + x^2 ] + x d: [ 2.5 * z ^ 2 ] + 1 >= 0\n"
          "e: [ z^2 ] + y + [ z * x + 0 y^2 ] = 2"}},
        {"min\n x + y + z + [ 2 x ^2 - 6 x * y + 8 y ^2 + 3 y * z ] / 2\nst\n f: x + y <= 1\n"
         " c: x + [ x ^2 - 3 x * y ] <= 4\n d: [ 2.5 z ^2 + 4 x * y ] >= -1\n e: [ z * z ] = 2\n"
         "end\n",
         "q.mps",
         {
             quadratic("QUADOBJ\n x x 2\n x y -3 z 0\n y y 8\n z y 1.5\nQCMATRIX c\n x x 1\n "
                       "x y -1\n y x -2\nQCMATRIX d\n z z 2.5\n x y 4\nqcmatrix e\n z z 1\n"),
             quadratic("QMATRIX\n x x 2\n x y -3\n y x -3\n y y 8\n y z 1.5\n z y 1.5\n"
                       "QSECTION d\n z z 5\n x y 4\nQMATRIX c\n x x 2 y -6\nQSECTION e\n z z "
                       "2\n"),
         }},
    };
    for (const auto &[plain, name, texts] : models) {
        Model model = read(*plain == 'N' ? "plain.mps" : "plain.lp", plain);
        ASSERT_TRUE(model) << message << plain;
        std::string expected = data(model);
        std::replace(expected.begin(), expected.end(), '_', ' ');
        for (const std::string &text : texts) {
            Model other = read(name, text);
            ASSERT_TRUE(other) << message << text;
            EXPECT_EQ(data(other), expected) << text;
        }
    }
}

TEST_F(Files, DamagedFilesAreRefusedWithFileAndLine) {
    const struct {
        const char *name, *text, *message;
    } damaged[] = {
        {"a.mps", "", "line 0: the file ends where ENDATA is expected"},
        {"a.mps", "NAME\nROWS\n X c\nENDATA\n",
         "line 3: 'X c' stands where N, L, G or E and a row is expected"},
        {"a.mps", "NAME\nROWS\n L c\n G c\nENDATA\n", "line 4: 'c' is there twice"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1e999\nENDATA\n",
         "line 4: '1e999' stands where a number is expected"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1 c 2\nENDATA\n", "line 4: 'c' is there twice"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x d 1\nENDATA\n", "line 4: 'd' is unknown"},
        {"a.mps", "ROWS\n L c\nCSECTION\n", "line 3: 'CSECTION' is no section"},
        {"a.mps", "OBJSENSE\n MAXI\n", "line 2: 'MAXI' stands where MAX or MIN is expected"},
        {"a.mps", "ROWS\n L c\n L d\nRHS\n r c 1\n s d 1\n", "line 6: 's' is a second set"},
        {"a.mps", "ROWS\n L c\nRANGES\n c 1\n s c 1\n", "line 5: 's' is a second set"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n FR x\n UP B x 1\n", "'B' is a second"},
        {"a.mps", "ROWS\n L c\nRHS\n c 1\n c 2\n", "line 5: 'c' is there twice"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n XX x 2\n", "'XX' stands where UP, LO"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nSOS\n x 2\n", "'x' stands where S1 or S2"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nSOS1\n x 2\n x 3\nENDATA\n",
         "SOS 0: a variable is in it"},
        {"a.mps", "ROWS\n L c d\n", "line 2: 'L c d' stands where SENSE ROW is expected"},
        {"a.mps", "ROWS\n L  a c\nCOLUMNS\n    x         d         1\n", "line 4: 'd' is unknown"},
        {"a.mps", "ROWS\n L c\nENDATA\n N d\n", "line 4: 'N' stands behind ENDATA"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n UP B x nan\nENDATA\n", "'nan'"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n LO B x 3\n UP B x 2\nENDATA\n",
         "line 8: variable 0: the bounds 3 and 2 contradict each other"},
        {"a.mps", "\177ELF\x02\x01\n\xff\xfe", "isn't UTF-8 text"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c inf\nENDATA\n", "must be a finite number"},
        {"a.lp", "", "line 0: the file ends where minimize or maximize is"},
        {"a.lp", "min\n x\nst\n x <> 2\nend\n", "line 4: '<>' stands where a relation is expected"},
        {"a.lp", "min\n x\nst\n c: x + >= 2\nend\n", "line 4: '>=' stands where a variable"},
        {"a.lp", "min\n x\nst\n c: x >= y\nend\n", "line 4: 'y' stands where a number is expected"},
        {"a.lp", "min\n x\nst\n c: x >= 2 +\nend\n", "line 5: 'end' stands where a variable"},
        {"a.lp", "min\n x\nend\n y >= 1\n", "line 4: 'y' stands behind the end"},
        {"a.lp", "min\n x\nst\n 2 <= x >= 1\nend\n", "line 4: '1' stands where a side that fits"},
        {"a.lp", "min\n x\nst\n c: x +\n end >= 1\n", "line 5: 'end' stands where a variable"},
        {"a.lp", "min\n x\nbounds\n 2 x <= 1\n", "line 4: '2' begins what is no bound"},
        {"a.lp", "min\n x\nsos\n s: x: 1\n", "line 4: 'x' stands where S1:: or S2::"},
        {"a.lp", "min\n x\nsos1\n s: y: 1\n", "line 4: 'y' is unknown"},
        {"a.lp", "min\n x\nsos1\n s: x: 1 x: 2\n", "SOS 0: a variable is in it twice"},
        {"a.lp", "min\n x\nint\n x y\n", "line 4: 'y' is unknown"},
        {"a.lp", "min\n x\nst\n c: b = 1 -> x >= 2\n", "line 4: '>' stands where a"},
        {"a.lp", "min\n x\nst\nbounds\n y <= 2\nend\n", "line 5: 'y' is unknown"},
        {"a.lp", "min\n x\nmin\n x\nend\n", "line 3: there is a second objective"},
        {"a.mps", "ROWS\n L c\nQUADOBJ\n", "line 3: 'QUADOBJ' needs an objective row"},
        {"a.mps", "ROWS\n N o\nCOLUMNS\n x o 1\n y o 1\nQUADOBJ\n x y 1\n y x 2\n",
         "8: 'x' is there twice"},
        {"a.mps", "ROWS\n N o\nCOLUMNS\n x o 1\nQMATRIX\n x x 1\n x x 2\n",
         "7: 'x' is there twice"},
        {"a.mps", "ROWS\n N o\nCOLUMNS\n x o 1\nQMATRIX\n x y 1\n", "6: 'y' is unknown"},
        {"a.mps", "ROWS\n N o\nQCMATRIX o\n", "line 3: 'o' is no row with a side"},
        {"a.mps", "ROWS\n N o\n N p\nQSECTION p\n", "line 4: 'p' is no row with a side"},
        {"a.mps", "ROWS\n N o\nQUADOBJ o\n", "'QUADOBJ o' stands where QUADOBJ alone"},
        {"a.mps", "QCMATRIX\n", "line 1: 'QCMATRIX' stands where QCMATRIX ROW is expected"},
        {"a.mps", "ROWS\n N o\nQUADOBJ\nQSECTION o\n", "line 4: 'o' is quadratic twice"},
        {"a.mps", "ROWS\n L c\nRANGES\n c 1\nQCMATRIX c\nENDATA\n", "'c' is quadratic and has a"},
        {"a.lp", "min\n [ x ^2 ]\nst\n", "line 3: 'st' stands where / 2 is expected"},
        {"a.lp", "min\nst\n [ x ^2 ] / 2 <= 1\n", "line 3: '/' stands where a relation"},
        {"a.lp", "min\nst\n [ x ^3 ] <= 1\n", "line 3: '3' stands where 2 is expected"},
        {"a.lp", "min\nst\n [ x ] <= 1\n", "line 3: ']' stands where ^ 2 or * and a variable"},
        {"a.lp", "min\nst\n [ x ^2 y ^2 ] <= 1\n", "line 3: 'y' stands where +, - or ] is"},
        {"a.lp", "min\nst\n 1 <= [ x ^2 ] <= 2\n", "a quadratic constraint needs one side"},
        {"a.lp", "min\nst\n [ x ^2 ] free\n", "a quadratic constraint needs one side"},
        {"a.lp", "min\n x\nbounds\n x + [ x ^2 ] <= 1\n", "line 4: 'x' begins what is no bound"},
        {"a.lp", "min\n [ x ^2 +", "line 2: the file ends where a variable is expected"},
        {"a.mps.gz", "NAME\nROWS\n", "not packed as its name says"},
        {"a.mps.bz2", "", "damaged or cut off"},
        {"a.txt", "", "the name doesn't end like that of such a file"},
    };
    for (auto &[name, text, expected] : damaged) {
        EXPECT_FALSE(read(name, text)) << text;
        EXPECT_NE(message.find(temporary(name)), std::string::npos) << message;
        EXPECT_NE(message.find(expected), std::string::npos) << message << "\nnot " << expected;
    }
    std::filesystem::create_directory(temporary("folder.lp"));
    for (auto [name, expected] :
         {std::pair{"absent.mps", "No such file"}, {"folder.lp", "direct"}}) {
        EXPECT_FALSE(read(name));
        EXPECT_NE(message.find(expected), std::string::npos) << message;
    }
    for (const char *name : {"whole.mps.bz2", "whole.mps.gz"}) {
        write(read("a.mps", sampleMps), name);
        std::string whole = contents(temporary(name));
        for (size_t length = 0; length < whole.size(); length += 7)
            EXPECT_FALSE(read(name, whole.substr(0, length))) << name << " " << length;
    }
}

TEST_F(Files, NamesThatAFormatCantHoldAreReplaced) {
    Model model = read("a.lp", "max\n a + b + c + d\nst\n r: a <= 1\n s: b <= 1\nend\n");
    ASSERT_TRUE(model) << message;
    std::string log;
    auto keep = [](const char *line, void *text) {
        *static_cast<std::string *>(text) = line;
        return 0;
    };
    EXPECT_EQ(KVXsetlogcallbackfuncenv(env, keep, &log), 0);
    const std::string many(300, 'n'), other(5000, 'n');
    using Names = std::vector<std::string>; // of the variables, then of the constraints
    const struct {
        Names given, inMps, inLp;
        const char *log;
    } cases[] = {
        {{"x y", "3x", "End", "inf", "$", "a:b"},
         {"x0", "3x", "End", "inf", "c0", "a:b"},
         {"x0", "x1", "x2", "x3", "$", "c1"},
         "a.lp: 5 names can't be written"},
        {{"x3", "'", "\xc3\xa4", "x3", "c1", "free"},
         {"x3", "x1", "\xc3\xa4", "x3_", "c1", "free"},
         {"x3", "'", "x2", "x3_", "c1", "c1_"},
         "a.lp: 3 names can't be written"},
        {{many, other, "e", "E1", "st.", "_"},
         {many, other, "e", "E1", "st.", "_"},
         {"x0", "x1", "e", "E1", "c0", "_"},
         "a.lp: 3 names can't be written"},
    };
    for (const auto &[given, inMps, inLp, line] : cases) {
        for (int k = 0; k < 6; k++)
            MUST(model, KVXsetstrattrelement(model.get(), k < 4 ? "VarName" : "ConstrName", k % 4,
                                             given[static_cast<size_t>(k)].c_str()));
        for (const auto &[name, expected] : {std::pair{"a.mps", inMps}, {"a.lp", inLp}}) {
            write(model, name);
            Model again = read(name);
            ASSERT_TRUE(again) << message << contents(temporary(name));
            const char *got[6];
            MUST(again, KVXgetstrattrarray(again.get(), "VarName", 0, 4, got));
            MUST(again, KVXgetstrattrarray(again.get(), "ConstrName", 0, 2, got + 4));
            EXPECT_EQ(Names(got, got + 6), expected);
        }
        EXPECT_NE(log.find(line), std::string::npos) << log;
    }
    EXPECT_EQ(KVXsetlogcallbackfuncenv(env, nullptr, nullptr), 0);
    for (const char *name : {" x", "#x"}) {
        EXPECT_EQ(KVXsetstrattrelement(model.get(), "VarName", 0, name), 0);
        write(model, "r.mst", KVX_ERROR_FILE_WRITE);
        EXPECT_NE(std::string(KVXgetmerrormsg(model.get())).find(name), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(temporary("r.mst")));
    }
    write(model, "a.txt", KVX_ERROR_FILE_WRITE);
    EXPECT_EQ(KVXwrite(model.get(), "/nowhere/a.mps"), KVX_ERROR_FILE_WRITE);
}

// Whatever is done to a file, reading it ends in a model or in a text.
TEST_F(Files, NoDamageCrashesTheReaders) {
    write(read("sample.mps", sampleMps), "sample.lp");
    Random random(7);
    for (const char *name : {"sample.mps", "sample.lp"}) {
        const std::string whole = contents(temporary(name));
        auto below = [&](size_t limit) { return random.engine() % limit; };
        for (int k = 0; k < 1500; k++) {
            const size_t place = below(whole.size()), from = below(whole.size());
            std::string text = whole.substr(0, place);
            switch (k % 4) {
            case 0:
                break;
            case 1:
                text += static_cast<char>(random.engine()) + whole.substr(place + 1);
                break;
            default: // leaves something out or repeats something
                text += whole.substr(from, below(60)) + whole.substr(k % 4 == 2 ? place : from);
            }
            read(std::string("damaged-") + name, text);
        }
    }
}

} // namespace
