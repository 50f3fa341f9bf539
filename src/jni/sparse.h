// Sparse data: parallel arrays of indices and values.
#ifndef KORVEX_SPARSE_H
#define KORVEX_SPARSE_H

#include "marshal.h"

#include <tuple>

// Buffers of equal length that lie beside each other: sparse lists, triplets, points. Each step
// goes through them in order, with the array of the same position where arrays are given.
template <class... Elements>
class Parallel {
  public:
    // Braces, since they alone fix the order in which the places are reserved.
    explicit Parallel(Call &call) : buffers{Scratch<Elements>(call)...}, call(call) {}

    void allocate(jint count) {
        std::apply([=](auto &...buffer) { (buffer.allocate(count), ...); }, buffers);
    }
    template <class... Arrays>
    void copy(jint count, Arrays... arrays) {
        std::apply([=](auto &...buffer) { (buffer.copy(arrays, count), ...); }, buffers);
    }
    template <class... Arrays>
    void take(jint count, Arrays... arrays) {
        allocate(count);
        copy(count, arrays...);
    }
    template <class... Arrays>
    void write(jint count, Arrays... arrays) {
        std::apply([=](auto &...buffer) { (buffer.write(arrays, count), ...); }, buffers);
    }
    // True if nothing failed, all arrays are given, and each holds `count` elements; a short one
    // ends the measuring.
    template <class... Arrays>
    bool fit(jint count, Arrays... arrays) const {
        return call.ok() && ((arrays != nullptr) && ...) &&
               ((call.jni->GetArrayLength(arrays) >= count) && ...);
    }

    std::tuple<Scratch<Elements>...> buffers;

  private:
    Call &call;
};

// A linear and a quadratic part. A part with a count of zero or less is absent: its arrays aren't
// touched.
struct LinearAndQuadratic {
    explicit LinearAndQuadratic(Call &call) : linear(call), quadratic(call) {}

    void take(jint numlnz, jintArray lind, jdoubleArray lval, jint numqnz, jintArray qrow,
              jintArray qcol, jdoubleArray qval) {
        if (numlnz > 0)
            linear.take(numlnz, lind, lval);
        if (numqnz > 0)
            quadratic.take(numqnz, qrow, qcol, qval);
    }

    Parallel<jint, jdouble> linear;
    Parallel<jint, jint, jdouble> quadratic;
};

#endif
