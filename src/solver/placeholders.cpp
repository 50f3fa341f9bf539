// Placeholders for functions that are not there yet: weak, so that a real one wins.
#include "korvex.h"

__attribute__((weak)) int KVXfeasrelax(KVXmodel *, int, int, const double *, const double *,
                                       const double *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgettuneresult(KVXmodel *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcomputeIIS(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXoptimizebatch(KVXmodel *, char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetbatch(KVXenv *, const char *, KVXbatch **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXfreebatch(KVXbatch *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXupdatebatch(KVXbatch *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetbatchintattr(KVXbatch *, const char *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetbatchstrattr(KVXbatch *, const char *, const char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXretrybatch(KVXbatch *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXabortbatch(KVXbatch *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdiscardbatch(KVXbatch *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetbatchjsonsolution(KVXbatch *, char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXwritebatchjsonsolution(KVXbatch *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXtunemodel(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
