// Attributes of a model: one reader and one writer for the four value types, each in four shapes.
#include "marshal.h"

namespace {

// A buffer of plain numbers or texts, which has no second one to be ordered against.
template <class Element>
struct Plain : Scratch<Element> {
    Plain(Call &call, Order) : Scratch<Element>(call) {}
};

struct IntAttribute {
    using Value = jint;
    using Array = jintArray;
    using ReadBuffer = Plain<jint>;
    using WriteBuffer = Plain<jint>;
    static constexpr bool hasScalar = true;
    static constexpr auto getScalar = KVXgetintattr;
    static constexpr auto setScalar = KVXsetintattr;
    static constexpr auto getElement = KVXgetintattrelement;
    static constexpr auto setElement = KVXsetintattrelement;
    static constexpr auto getRange = KVXgetintattrarray;
    static constexpr auto setRange = KVXsetintattrarray;
    static constexpr auto getList = KVXgetintattrlist;
    static constexpr auto setList = KVXsetintattrlist;
};

struct DoubleAttribute {
    using Value = jdouble;
    using Array = jdoubleArray;
    using ReadBuffer = Plain<jdouble>;
    using WriteBuffer = Plain<jdouble>;
    static constexpr bool hasScalar = true;
    static constexpr auto getScalar = KVXgetdblattr;
    static constexpr auto setScalar = KVXsetdblattr;
    static constexpr auto getElement = KVXgetdblattrelement;
    static constexpr auto setElement = KVXsetdblattrelement;
    static constexpr auto getRange = KVXgetdblattrarray;
    static constexpr auto setRange = KVXsetdblattrarray;
    static constexpr auto getList = KVXgetdblattrlist;
    static constexpr auto setList = KVXsetdblattrlist;
};

struct CharAttribute {
    using Value = char;
    using Array = jcharArray;
    using ReadBuffer = Chars;
    using WriteBuffer = Chars;
    static constexpr bool hasScalar = false;
    static constexpr auto getElement = KVXgetcharattrelement;
    static constexpr auto setElement = KVXsetcharattrelement;
    static constexpr auto getRange = KVXgetcharattrarray;
    static constexpr auto setRange = KVXsetcharattrarray;
    static constexpr auto getList = KVXgetcharattrlist;
    static constexpr auto setList = KVXsetcharattrlist;
};

struct StringAttribute {
    using Value = const char *;
    using Array = jobjectArray;
    using ReadBuffer = Plain<const char *>;
    using WriteBuffer = Names;
    static constexpr bool hasScalar = true;
    static constexpr auto getScalar = KVXgetstrattr;
    static constexpr auto setScalar = KVXsetstrattr;
    static constexpr auto getElement = KVXgetstrattrelement;
    static constexpr auto setElement = KVXsetstrattrelement;
    static constexpr auto getRange = KVXgetstrattrarray;
    static constexpr auto setRange = KVXsetstrattrarray;
    static constexpr auto getList = KVXgetstrattrlist;
    static constexpr auto setList = KVXsetstrattrlist;
};

// count < 0: the model's own value; 0: element `start`; else a list of elements if `start` is -1,
// or a range from `start` on.
enum class Shape { scalar, element, list, range };

template <class Attribute>
Shape shapeOf(jint start, jint count) {
    if (count < 1)
        return count < 0 && Attribute::hasScalar ? Shape::scalar : Shape::element;
    return start == -1 ? Shape::list : Shape::range;
}

template <class Attribute>
jint readAttribute(JNIEnv *jni, jlong handle, jstring attrname, jint start, jint count,
                   jintArray ind, typename Attribute::Array values) {
    using Buffer = typename Attribute::ReadBuffer;
    KVXmodel *const model = asModel(handle);
    Call call(jni);
    const char *name = call.fetchRequired(attrname);
    const Shape shape = shapeOf<Attribute>(start, count);
    if (shape == Shape::list) {
        Scratch<jint> indices(call);
        Buffer buffer(call, Order::javaFirst);
        indices.allocate(count);
        buffer.allocate(count);
        indices.copy(ind, count);
        call.invoke(Attribute::getList, model, name, count, indices, buffer);
        buffer.write(values, count);
    } else if (shape == Shape::range) {
        Buffer buffer(call, Order::nativeFirst);
        buffer.allocate(count);
        call.invoke(Attribute::getRange, model, name, start, count, buffer);
        buffer.write(values, count);
    } else {
        typename Attribute::Value value = {};
        if constexpr (Attribute::hasScalar)
            if (shape == Shape::scalar)
                call.invoke(Attribute::getScalar, model, name, &value);
        if (shape == Shape::element)
            call.invoke(Attribute::getElement, model, name, start, &value);
        call.write(values, &value);
    }
    return call.status();
}

template <class Attribute>
jint writeAttribute(JNIEnv *jni, jlong handle, jstring attrname, jint start, jint count,
                    jintArray ind, typename Attribute::Array values) {
    using Buffer = typename Attribute::WriteBuffer;
    KVXmodel *const model = asModel(handle);
    Call call(jni);
    const char *name = call.fetchRequired(attrname);
    const Shape shape = shapeOf<Attribute>(start, count);
    if (shape == Shape::list) {
        Scratch<jint> indices(call);
        Buffer buffer(call, Order::nativeFirst);
        indices.allocate(count);
        buffer.allocate(count);
        indices.copy(ind, count);
        buffer.copy(values, count);
        call.invoke(Attribute::setList, model, name, count, indices, buffer);
    } else if (shape == Shape::range) {
        Buffer buffer(call, Order::nativeFirst);
        buffer.take(values, count);
        call.invoke(Attribute::setRange, model, name, start, count, buffer);
    } else {
        const typename Attribute::Value value = call.readFirst(values);
        if constexpr (Attribute::hasScalar)
            if (shape == Shape::scalar)
                call.invoke(Attribute::setScalar, model, name, value);
        if (shape == Shape::element)
            call.invoke(Attribute::setElement, model, name, start, value);
    }
    return call.status();
}

} // namespace

#define ATTRIBUTE_METHOD(method, access, Attribute)                                                \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jstring attrname, jint start, jint count, jintArray ind,   \
     Attribute::Array values) {                                                                    \
        return access<Attribute>(jni, model, attrname, start, count, ind, values);                 \
    }

ATTRIBUTE_METHOD(getintattrlist, readAttribute, IntAttribute)
ATTRIBUTE_METHOD(setintattrlist, writeAttribute, IntAttribute)
ATTRIBUTE_METHOD(getdblattrlist, readAttribute, DoubleAttribute)
ATTRIBUTE_METHOD(setdblattrlist, writeAttribute, DoubleAttribute)
ATTRIBUTE_METHOD(getcharattrlist, readAttribute, CharAttribute)
ATTRIBUTE_METHOD(setcharattrlist, writeAttribute, CharAttribute)
ATTRIBUTE_METHOD(getstrattrlist, readAttribute, StringAttribute)
ATTRIBUTE_METHOD(setstrattrlist, writeAttribute, StringAttribute)

JNI_METHOD(jint, KorvexJni, getattrinfo)
(JNIEnv *jni, jclass, jlong model, jstring attrname, jintArray info) {
    Call call(jni);
    jint values[3] = {};
    const char *name = call.fetchRequired(attrname);
    call.invoke(KVXgetattrinfo, asModel(model), name, &values[0], &values[1], &values[2]);
    call.write(info, values, 3);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, prefetchattr)(JNIEnv *jni, jclass, jlong model, jstring attrname) {
    return invokeWithText(jni, KVXprefetchattr, asModel(model), attrname);
}
