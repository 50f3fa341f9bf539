// Special ordered sets.
#include "sparse.h"

JNI_METHOD(jint, KorvexJni, addsos)
(JNIEnv *jni, jclass, jlong model, jint numsos, jint nummembers, jintArray types, jintArray beg,
 jintArray ind, jdoubleArray weight) {
    if (numsos <= 0 || nummembers <= 0)
        return 0;
    Call call(jni);
    Parallel<jint, jint> sets(call);
    Parallel<jint, jdouble> members(call);
    auto &[typeCodes, begins] = sets.buffers;
    auto &[indices, weights] = members.buffers;
    sets.allocate(numsos);
    members.allocate(nummembers);
    sets.copy(numsos, types, beg);
    members.copy(nummembers, ind, weight);
    call.invoke(KVXaddsos, asModel(model), numsos, nummembers, typeCodes, begins, indices, weights);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, getsos)
(JNIEnv *jni, jclass, jlong model, jintArray nummembersslot, jintArray types, jintArray beg,
 jintArray ind, jdoubleArray weight, jint start, jint count) {
    Call call(jni);
    Scratch<jint> typeCodes(call), begins(call);
    Parallel<jint, jdouble> members(call);
    auto &[indices, weights] = members.buffers;
    jint nummembers = 0;
    call.invoke(KVXgetsos, asModel(model), &nummembers, nullptr, nullptr, nullptr, nullptr, start,
                count);
    if (call.handshake(nummembersslot, nummembers)) {
        typeCodes.allocate(count);
        begins.allocateWithClosing(count);
        members.allocate(nummembers);
        call.invoke(KVXgetsos, asModel(model), &nummembers, typeCodes, begins, indices, weights,
                    start, count);
        typeCodes.write(types, count);
        begins.write(beg, plusClosing(count));
        members.write(nummembers, ind, weight);
    }
    return call.status();
}
