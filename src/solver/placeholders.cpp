// Placeholders for functions that are not there yet: weak, so that a real one wins.
#include "model.h"

namespace korvex {
__attribute__((weak)) void endRun(KVXmodel &) {}
} // namespace korvex

__attribute__((weak)) int KVXnewmodel(KVXenv *, KVXmodel **, const char *, int, const double *,
                                      const double *, const double *, const char *,
                                      const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXloadmodel(KVXenv *, KVXmodel **, const char *, int, int, int, double,
                                       const double *, const char *, const double *, const int *,
                                       const int *, const int *, const double *, const double *,
                                       const double *, const char *, const char *const *,
                                       const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXupdatemodel(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXreset(KVXmodel *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXfreemodel(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcopymodeltoenv(KVXmodel *, KVXenv *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXrelaxmodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXfixmodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXpresolvemodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdualmodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXfeasibility(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXlinearizemodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsinglescenariomodel(KVXmodel *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXfeasrelax(KVXmodel *, int, int, const double *, const double *,
                                       const double *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXreadmodel(KVXenv *, const char *, KVXmodel **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXread(KVXmodel *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXwrite(KVXmodel *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXismodelfile(const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXisattrfile(const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetjsonsolution(KVXmodel *, char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) void KVXfree(void *) {}
__attribute__((weak)) int KVXaddvars(KVXmodel *, int, int, const int *, const int *, const double *,
                                     const double *, const double *, const double *, const char *,
                                     const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddconstrs(KVXmodel *, int, int, const int *, const int *,
                                        const double *, const char *, const double *,
                                        const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddrangeconstrs(KVXmodel *, int, int, const int *, const int *,
                                             const double *, const double *, const double *,
                                             const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddqpterms(KVXmodel *, int, const int *, const int *, const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelq(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetq(KVXmodel *, int *, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddqconstr(KVXmodel *, int, const int *, const double *, int,
                                        const int *, const int *, const double *, char, double,
                                        const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetqconstr(KVXmodel *, int, int *, int *, double *, int *, int *,
                                        int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddsos(KVXmodel *, int, int, const int *, const int *, const int *,
                                    const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetsos(KVXmodel *, int *, int *, int *, int *, double *, int, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelvars(KVXmodel *, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelconstrs(KVXmodel *, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelsos(KVXmodel *, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelqconstrs(KVXmodel *, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXdelgenconstrs(KVXmodel *, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXchgcoeffs(KVXmodel *, int, const int *, const int *, const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) void KVXclean2(int *, int *, double *) {}
__attribute__((weak)) void KVXclean3(int *, int *, int *, double *) {}
__attribute__((weak)) int KVXsetobjective(KVXmodel *, int, int, const int *, const double *, int,
                                          const int *, const int *, const double *, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetobjectiven(KVXmodel *, int, int, const char *, int, const int *,
                                           const double *, double, double, double, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetpwlobj(KVXmodel *, int, int, const double *, const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetpwlobj(KVXmodel *, int, int *, double *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrMax(KVXmodel *, const char *, int, int, const int *,
                                             double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrMin(KVXmodel *, const char *, int, int, const int *,
                                             double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrAbs(KVXmodel *, const char *, int, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrAnd(KVXmodel *, const char *, int, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrOr(KVXmodel *, const char *, int, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrNorm(KVXmodel *, const char *, int, int, const int *,
                                              double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrIndicator(KVXmodel *, const char *, int, int, int,
                                                   const int *, const double *, char, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrPWL(KVXmodel *, const char *, int, int, int,
                                             const double *, const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrPoly(KVXmodel *, const char *, int, int, int,
                                              const double *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrExp(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrExpA(KVXmodel *, const char *, int, int, const char *,
                                              double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrLog(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrLogA(KVXmodel *, const char *, int, int, const char *,
                                              double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrPow(KVXmodel *, const char *, int, int, const char *,
                                             double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrSin(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrCos(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrTan(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrLogistic(KVXmodel *, const char *, int, int,
                                                  const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXaddgenconstrNL(KVXmodel *, const char *, int, int, const int *,
                                            const double *, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrMax(KVXmodel *, int, int *, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrMin(KVXmodel *, int, int *, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrAbs(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrAnd(KVXmodel *, int, int *, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrOr(KVXmodel *, int, int *, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrNorm(KVXmodel *, int, int *, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrIndicator(KVXmodel *, int, int *, int *, int *, int *,
                                                   double *, char *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrPWL(KVXmodel *, int, int *, int *, int *, double *,
                                             double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrPoly(KVXmodel *, int, int *, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrExp(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrExpA(KVXmodel *, int, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrLog(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrLogA(KVXmodel *, int, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrPow(KVXmodel *, int, int *, int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrSin(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrCos(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrTan(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrLogistic(KVXmodel *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetgenconstrNL(KVXmodel *, int, int *, int *, int *, double *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetintattr(KVXmodel *, const char *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetintattrelement(KVXmodel *, const char *, int, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetintattrarray(KVXmodel *, const char *, int, int, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetintattrlist(KVXmodel *, const char *, int, const int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetintattr(KVXmodel *, const char *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetintattrelement(KVXmodel *, const char *, int, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetintattrarray(KVXmodel *, const char *, int, int, const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetintattrlist(KVXmodel *, const char *, int, const int *,
                                            const int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetdblattr(KVXmodel *, const char *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetdblattrelement(KVXmodel *, const char *, int, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetdblattrarray(KVXmodel *, const char *, int, int, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetdblattrlist(KVXmodel *, const char *, int, const int *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetdblattr(KVXmodel *, const char *, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetdblattrelement(KVXmodel *, const char *, int, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetdblattrarray(KVXmodel *, const char *, int, int, const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetdblattrlist(KVXmodel *, const char *, int, const int *,
                                            const double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetcharattrelement(KVXmodel *, const char *, int, char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetcharattrarray(KVXmodel *, const char *, int, int, char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetcharattrlist(KVXmodel *, const char *, int, const int *, char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetcharattrelement(KVXmodel *, const char *, int, char) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetcharattrarray(KVXmodel *, const char *, int, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetcharattrlist(KVXmodel *, const char *, int, const int *,
                                             const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetstrattr(KVXmodel *, const char *, const char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetstrattrelement(KVXmodel *, const char *, int, const char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetstrattrarray(KVXmodel *, const char *, int, int, const char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetstrattrlist(KVXmodel *, const char *, int, const int *,
                                            const char **) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetstrattr(KVXmodel *, const char *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetstrattrelement(KVXmodel *, const char *, int, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetstrattrarray(KVXmodel *, const char *, int, int,
                                             const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetstrattrlist(KVXmodel *, const char *, int, const int *,
                                            const char *const *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetattrinfo(KVXmodel *, const char *, int *, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXprefetchattr(KVXmodel *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetcoeff(KVXmodel *, int, int, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetconstrs(KVXmodel *, int *, int *, int *, double *, int, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetvars(KVXmodel *, int *, int *, int *, double *, int, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetconstrbyname(KVXmodel *, const char *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetvarbyname(KVXmodel *, const char *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetcallbackfuncadv(KVXmodel *, KVXcallback, void *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsetcallbackfunc(KVXmodel *, KVXcallback, void *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXoptimize(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXoptimizeasync(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXsync(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXtunemodel(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgettuneresult(KVXmodel *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcomputeIIS(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetcbwhatinfo(void *, int, int *, int *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbget(void *, int, int, void *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbcut(void *, int, const int *, const double *, char, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcblazy(void *, int, const int *, const double *, char, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbsolution(void *, const double *, double *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbsetintparam(void *, const char *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbsetdblparam(void *, const char *, double) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbsetstrparam(void *, const char *, const char *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbproceed(void *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXcbstoponemultiobj(KVXmodel *, void *, int) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXterminate(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXFSolve(KVXmodel *, SparseVector *, SparseVector *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXBSolve(KVXmodel *, SparseVector *, SparseVector *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXBinvColj(KVXmodel *, int, SparseVector *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXBinvRowi(KVXmodel *, int, SparseVector *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
__attribute__((weak)) int KVXgetBasisHead(KVXmodel *, int *) {
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
__attribute__((weak)) int KVXconverttofixed(KVXmodel *) {
    return KVX_ERROR_NOT_SUPPORTED;
}
