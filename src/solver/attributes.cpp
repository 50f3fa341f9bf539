// Attributes: the functions of all types and shapes over the table.
#include "attributes.h"
#include "text.h"

using namespace korvex;

namespace {

constexpr const char *typeNames[] = {"", "integer", "double", "text", "character"};
constexpr const char *elementNames[] = {
    "the model", "variables", "constraints", "SOS", "quadratic constraints", "general constraints"};

const Attribute &find(const char *name) {
    needed(name, "the attribute name");
    for (const Attribute &attribute : attributeTable())
        if (equalIgnoringCase(attribute.name, name))
            return attribute;
    fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "unknown attribute \"%s\"", name);
}

int typeOf(const Attribute &attribute) {
    return static_cast<int>(attribute.access.index()) + 1;
}

template <class T>
const Access<T> &accessOf(const Attribute &attribute, bool ofModel) {
    auto access = std::get_if<Access<T>>(&attribute.access);
    if (!access)
        fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "attribute %s is of the type %s", attribute.name,
             typeNames[typeOf(attribute)]);
    if (ofModel != (attribute.element == KVX_OF_MODEL))
        fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "attribute %s is one of %s", attribute.name,
             elementNames[attribute.element]);
    return *access;
}

void refuseMissing(const KVXmodel &model, const Attribute &attribute) {
    const Solution &solution = model.solution;
    const bool there[] = {true,           solution.status != KVX_STATUS_LOADED,
                          solution.hasX,  solution.hasDuals,
                          model.hasBasis, model.hasIis};
    bool needsNothing = attribute.needs == Needs::Nothing;
    if (!there[static_cast<size_t>(attribute.needs)] || (model.running && !needsNothing))
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "attribute %s isn't available", attribute.name);
}

// The elements that a call is about.
struct Elements {
    int start, count; // a range, or
    bool isList = false;
    const int *list = nullptr;

    size_t operator[](int k) const { return static_cast<size_t>(isList ? list[k] : start + k); }

    void check(const KVXmodel &model, const Attribute &attribute) const {
        const char *what = elementNames[attribute.element];
        const size_t sizes[] = {1,
                                model.vars.size(),
                                model.constrs.size(),
                                model.sos.size(),
                                model.qconstrs.size(),
                                model.genconstrs.size()};
        if (size_t number = readCount(count, what); number && !isList)
            readRange(start, number, sizes[attribute.element], what);
        if (isList)
            readArray(count, list, "indices");
        for (int k = 0; isList && k < count; k++)
            readIndex(list[k], sizes[attribute.element], what);
    }
};

template <class T>
int getAttr(KVXmodel *model, const char *name, bool ofModel, Elements elements, T *values) {
    return guardedRead(model, [&] {
        const Attribute &attribute = find(name);
        const Access<T> &access = accessOf<T>(attribute, ofModel);
        refuseMissing(*model, attribute);
        elements.check(*model, attribute);
        readArray(elements.count, values, "values");
        for (int k = 0; k < elements.count; k++)
            values[k] = access.get(*model, elements[k]);
    });
}

template <class T>
int setAttr(KVXmodel *model, const char *name, bool ofModel, Elements elements, const T *values) {
    return guarded(model, [&] {
        const Attribute &attribute = find(name);
        const Access<T> &access = accessOf<T>(attribute, ofModel);
        if (!access.set)
            fail(KVX_ERROR_READ_ONLY, "attribute %s can't be set", attribute.name);
        elements.check(*model, attribute);
        readArray(elements.count, values, "values");
        for (bool commit : {false, true})
            for (int k = 0; k < elements.count; k++)
                access.set(*model, elements[k], values[k], commit);
        if (attribute.changesOptimum)
            touch(*model);
    });
}

} // namespace

// The functions of one type.
#define KVX_ELEMENT_ATTRIBUTES(type, T)                                                            \
    int KVXget##type##attrelement(KVXmodel *model, const char *name, int element, T *value) {      \
        return getAttr<T>(model, name, false, {element, 1}, value);                                \
    }                                                                                              \
    int KVXget##type##attrarray(KVXmodel *model, const char *name, int start, int len,             \
                                T *values) {                                                       \
        return getAttr<T>(model, name, false, {start, len}, values);                               \
    }                                                                                              \
    int KVXget##type##attrlist(KVXmodel *model, const char *name, int len, const int *ind,         \
                               T *values) {                                                        \
        return getAttr<T>(model, name, false, {0, len, true, ind}, values);                        \
    }                                                                                              \
    int KVXset##type##attrelement(KVXmodel *model, const char *name, int element, T value) {       \
        return setAttr<T>(model, name, false, {element, 1}, &value);                               \
    }                                                                                              \
    int KVXset##type##attrarray(KVXmodel *model, const char *name, int start, int len,             \
                                T const *values) {                                                 \
        return setAttr<T>(model, name, false, {start, len}, values);                               \
    }                                                                                              \
    int KVXset##type##attrlist(KVXmodel *model, const char *name, int len, const int *ind,         \
                               T const *values) {                                                  \
        return setAttr<T>(model, name, false, {0, len, true, ind}, values);                        \
    }
#define KVX_MODEL_ATTRIBUTES(type, T)                                                              \
    int KVXget##type##attr(KVXmodel *model, const char *name, T *value) {                          \
        return getAttr<T>(model, name, true, {0, 1}, value);                                       \
    }                                                                                              \
    int KVXset##type##attr(KVXmodel *model, const char *name, T value) {                           \
        return setAttr<T>(model, name, true, {0, 1}, &value);                                      \
    }

KVX_MODEL_ATTRIBUTES(int, int)
KVX_MODEL_ATTRIBUTES(dbl, double)
KVX_MODEL_ATTRIBUTES(str, const char *)
KVX_ELEMENT_ATTRIBUTES(int, int)
KVX_ELEMENT_ATTRIBUTES(dbl, double)
KVX_ELEMENT_ATTRIBUTES(char, char)
KVX_ELEMENT_ATTRIBUTES(str, const char *)

int KVXgetattrinfo(KVXmodel *model, const char *name, int *type, int *element, int *settable) {
    return guardedRead(model, [&] {
        const Attribute &attribute = find(name);
        store(type, typeOf(attribute));
        store(element, attribute.element);
        store(settable,
              std::visit([](auto &access) { return access.set ? 1 : 0; }, attribute.access));
    });
}

int KVXprefetchattr(KVXmodel *model, const char *name) {
    return guardedRead(model, [&] { find(name); });
}
