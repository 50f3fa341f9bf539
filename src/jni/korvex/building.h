/*
 * Building a model: variables, constraints, sets, objectives.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_BUILDING_H
#define KORVEX_BUILDING_H

/*
 * Building
 *
 * Batches of columns, rows or sets come in compressed sparse layout: item k has the entries from
 * beg[k] to beg[k+1]-1 of ind and val, the last item up to the total. Begins must not decrease.
 * Coefficients of equal index in one item are summed; zeros are dropped.
 */

/**
 * Adds variables.
 * @param numvars,numnz number of variables and of coefficients over all of them
 * @param beg,ind,val columns: numvars begins, numnz constraint indices and coefficients
 * @param obj,lb,ub,types,names as for KVXnewmodel
 */
int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names);

/**
 * Adds linear constraints.
 * @param beg,ind,val rows: numconstrs begins, numnz variable indices and coefficients
 * @param senses,rhs numconstrs senses and right-hand sides
 * @param names numconstrs names, or null; elements may be null
 */
int KVXaddconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                  const double *val, const char *senses, const double *rhs,
                  const char *const *names);

/** Adds range constraints lower <= row <= upper. The sense of such a row reads as KVX_EQUAL when
 * both are equal, else by the finite side; see the attributes "RowLower" and "RowUpper". */
int KVXaddrangeconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                       const double *val, const double *lower, const double *upper,
                       const char *const *names);

/** Adds terms qval[k] * x[qrow[k]] * x[qcol[k]] to the objective. Terms with the same two
 * variables, in either order, are one, whose coefficients are summed; it is gone when that makes 0.
 * (The development solver takes and keeps all that is quadratic, and solves convex objectives, or
 * concave ones to be maximised, over continuous variables.) */
int KVXaddqpterms(KVXmodel *model, int numqnz, const int *qrow, const int *qcol,
                  const double *qval);
/** Removes the objective's quadratic terms. */
int KVXdelq(KVXmodel *model);
/** The objective's quadratic terms, by increasing indices, qrow[k] <= qcol[k]. @param numqnzP
 * receives their number; buffers of that many entries (attribute "NumQNZs"), each may be null */
int KVXgetq(KVXmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval);
/** Adds a quadratic constraint; its terms are summed like those of the objective. @param sense,rhs
 * sense and finite right-hand side @param name its name, or null */
int KVXaddqconstr(KVXmodel *model, int numlnz, const int *lind, const double *lval, int numqnz,
                  const int *qrow, const int *qcol, const double *qval, char sense, double rhs,
                  const char *name);
/** Reads a quadratic constraint back: always both counts, and every buffer that isn't null. Terms
 * come in the order of KVXgetq. */
int KVXgetqconstr(KVXmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP,
                  int *qrow, int *qcol, double *qval);

/**
 * Adds special ordered sets.
 * @param types numsos KVX_SOS_TYPE codes
 * @param beg,ind,weight sets: numsos begins, nummembers variable indices and weights
 */
int KVXaddsos(KVXmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight);
/** Reads count sets from start on: always their number of members, and every buffer that isn't
 * null. @param beg receives count + 1 begins, the last being the number of members */
int KVXgetsos(KVXmodel *model, int *nummembersP, int *types, int *beg, int *ind, double *weight,
              int start, int count);

/* Deleters: num indices in any order; the remaining items are renumbered. A deleted variable
 * disappears from linear constraints, SOS, objectives, and the linear part of an indicator, and so
 * do quadratic terms with it; one that a general constraint depends on otherwise is refused. */
int KVXdelvars(KVXmodel *model, int num, const int *ind);
int KVXdelconstrs(KVXmodel *model, int num, const int *ind);
int KVXdelsos(KVXmodel *model, int num, const int *ind);
int KVXdelqconstrs(KVXmodel *model, int num, const int *ind);
int KVXdelgenconstrs(KVXmodel *model, int num, const int *ind);

/** Changes numchgs matrix coefficients. @param cind,vind constraint and variable indices */
int KVXchgcoeffs(KVXmodel *model, int numchgs, const int *cind, const int *vind, const double *val);

/** Cleans a sparse list in place: sorts it by index, sums entries of equal index, drops zeros. */
void KVXclean2(int *lenP, int *ind, double *val);
/** The same for a list with two indices an entry. */
void KVXclean3(int *lenP, int *ind1, int *ind2, double *val);

/** Sets the whole objective: linear terms (all others become 0), quadratic terms, constant.
 * @param objsense KVX_MINIMIZE, KVX_MAXIMIZE, or 0 to leave it
 * @param numlnz,numqnz number of terms; a negative one counts as 0 */
int KVXsetobjective(KVXmodel *model, int objsense, int numlnz, const int *lind, const double *lval,
                    int numqnz, const int *qrow, const int *qcol, const double *qval,
                    double objcon);

/**
 * Sets one of several objectives; with the first the model becomes multi-objective. All share the
 * model's sense; a negative weight turns one around.
 * @param index number of the objective, from 0, at most the number there are
 * @param priority higher ones are optimised first; equal ones are blended by weight
 * @param name its name, or null
 * @param constant objective constant
 * @param weight factor in the blend
 * @param abstol,reltol how much later objectives may worsen this one: the larger of the two; a
 *        blend, by the sum over its members times their weights. The model's own linear objective
 *        counts for nothing then, and a quadratic or piecewise-linear one is refused.
 */
int KVXsetobjectiven(KVXmodel *model, int index, int priority, const char *name, int numlnz,
                     const int *lind, const double *lval, double constant, double weight,
                     double abstol, double reltol);

/** Gives a variable a piecewise-linear objective term by breakpoints of non-decreasing x; replaces
 * its linear coefficient. */
int KVXsetpwlobj(KVXmodel *model, int var, int npts, const double *x, const double *y);
/** Reads it back: always the number of breakpoints, and every buffer that isn't null. */
int KVXgetpwlobj(KVXmodel *model, int var, int *nptsP, double *x, double *y);

#endif
