/*
 * General constraints.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_GENERAL_H
#define KORVEX_GENERAL_H

/*
 * General constraints. name and options may be null. In functions y = f(x), the first variable is
 * x and the second is y; options says how the function is to be approximated. The development
 * solver takes and keeps all kinds; it can't solve norm 2, polynomials and the functions that
 * follow them.
 */

/** resvar = max(vars..., constant). */
int KVXaddgenconstrMax(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant);
/** resvar = min(vars..., constant). */
int KVXaddgenconstrMin(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant);
/** resvar = |argvar|. */
int KVXaddgenconstrAbs(KVXmodel *model, const char *name, int resvar, int argvar);
/** resvar = 1 if all of the binary vars are 1, else 0. */
int KVXaddgenconstrAnd(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars);
/** resvar = 1 if any of the binary vars is 1, else 0. */
int KVXaddgenconstrOr(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars);
/** resvar = norm of vars. @param which 0, 1, 2 or KVX_INFINITY. For 0 a continuous operand counts
 * from ten times the parameter "FeasibilityTol" on; what is less must be 0. */
int KVXaddgenconstrNorm(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                        double which);
/** If binvar = binval then the linear constraint holds. */
int KVXaddgenconstrIndicator(KVXmodel *model, const char *name, int binvar, int binval, int numlnz,
                             const int *lind, const double *lval, char sense, double rhs);
/** y = piecewise-linear function of x through npts breakpoints of non-decreasing xpts; beyond them
 * the first and the last segment go on, at a jump y is anywhere between both values. */
int KVXaddgenconstrPWL(KVXmodel *model, const char *name, int xvar, int yvar, int npts,
                       const double *xpts, const double *ypts);
/** y = coefs[0] x^(ncoef-1) + ... + coefs[ncoef-1]. @param ncoef at least 1 */
int KVXaddgenconstrPoly(KVXmodel *model, const char *name, int xvar, int yvar, int ncoef,
                        const double *coefs, const char *options);
/** y = e^x. */
int KVXaddgenconstrExp(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = base^x. @param base above 0 */
int KVXaddgenconstrExpA(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                        double base);
/** y = ln x. */
int KVXaddgenconstrLog(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = log x to the given base. @param base above 0, not 1 */
int KVXaddgenconstrLogA(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                        double base);
/** y = x^exponent. */
int KVXaddgenconstrPow(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                       double exponent);
/** y = sin x. */
int KVXaddgenconstrSin(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = cos x. */
int KVXaddgenconstrCos(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = tan x. */
int KVXaddgenconstrTan(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = 1 / (1 + e^-x). */
int KVXaddgenconstrLogistic(KVXmodel *model, const char *name, int xvar, int yvar,
                            const char *options);
/** resvar = an expression tree of nlcount nodes: operation code (KVX_NL_), constant or variable
 * index (as a double), and parent node of each. The first node is the root, with parent -1; every
 * other comes after its parent, operands in their order. Data of operators mean nothing, but are
 * finite and kept. */
int KVXaddgenconstrNL(KVXmodel *model, const char *name, int resvar, int nlcount,
                      const int *opcodes, const double *data, const int *parents);

/* Reading back: data are stored through every pointer that isn't null; a count pointer receives the
 * number of array entries, which arrays must have room for. A constraint of another kind is refused
 * with KVX_ERROR_INVALID_ARGUMENT. */
int KVXgetgenconstrMax(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                       double *constantP);
int KVXgetgenconstrMin(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                       double *constantP);
int KVXgetgenconstrAbs(KVXmodel *model, int genconstr, int *resvarP, int *argvarP);
int KVXgetgenconstrAnd(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars);
int KVXgetgenconstrOr(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars);
int KVXgetgenconstrNorm(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                        double *whichP);
int KVXgetgenconstrIndicator(KVXmodel *model, int genconstr, int *binvarP, int *binvalP,
                             int *numlnzP, int *lind, double *lval, char *senseP, double *rhsP);
int KVXgetgenconstrPWL(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *nptsP,
                       double *xpts, double *ypts);
int KVXgetgenconstrPoly(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *ncoefP,
                        double *coefs);
int KVXgetgenconstrExp(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrExpA(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *baseP);
int KVXgetgenconstrLog(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrLogA(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *baseP);
int KVXgetgenconstrPow(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *exponentP);
int KVXgetgenconstrSin(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrCos(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrTan(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrLogistic(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrNL(KVXmodel *model, int genconstr, int *resvarP, int *nlcountP, int *opcodes,
                      double *data, int *parents);

#endif
