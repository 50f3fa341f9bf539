/*
 * Attributes of a model, and its structure.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_ATTRIBUTES_H
#define KORVEX_ATTRIBUTES_H

/*
 * Attributes
 *
 * Names are matched without regard to case. Shapes: the whole model's value; one element; a range
 * of len elements from start on; a list of len elements given by ind. "w" marks those that can be
 * set. Solution attributes give KVX_ERROR_DATA_NOT_AVAILABLE while there is no solution.
 *
 *   of the model
 *     int:    NumVars NumConstrs NumNZs NumSOS NumQConstrs NumGenConstrs NumQNZs NumIntVars
 *             NumBinVars NumObj ModelSense(w) IsMIP IsQP IsMultiObj Status SolCount
 *             ObjNumber(w) ScenarioNumber(w) NumScenarios TuneResultCount
 *     double: ObjCon(w) ObjVal ObjBound MIPGap Runtime NodeCount IterCount
 *     string: ModelName(w)
 *   of a variable
 *     double: LB(w) UB(w) Obj(w) Start(w: KVX_UNDEFINED for none) X ReducedCost ObjN(w: of
 *             objective ObjNumber)
 *     int:    VarBasis(w) IISLB IISUB
 *     char:   VarType(w)
 *     string: VarName(w)
 *   of a linear constraint
 *     double: RHS(w) RowLower(w) RowUpper(w) Dual Slack
 *     int:    ConstrBasis(w) IISConstr
 *     char:   Sense(w)
 *     string: ConstrName(w)
 *   of a general constraint
 *     int:    GenConstrType (KVX_GENCONSTR_)
 *     string: GenConstrName(w)
 *
 * Signs: ReducedCost and Dual are the change of the objective value per unit of bound or right-hand
 * side, in the model's own sense. Of several objectives, ObjVal and ObjBound belong to the highest
 * priority. Slack is right-hand side minus activity. Obj is the model's
 * own objective, ObjN the same while there aren't several; a piecewise-linear term comes on top.
 * Setting RHS leaves the other side of a range.
 */
#define KVX_UNDEFINED 1e101

#define KVX_GENCONSTR_MAX 0
#define KVX_GENCONSTR_MIN 1
#define KVX_GENCONSTR_ABS 2
#define KVX_GENCONSTR_AND 3
#define KVX_GENCONSTR_OR 4
#define KVX_GENCONSTR_NORM 5
#define KVX_GENCONSTR_INDICATOR 6
#define KVX_GENCONSTR_PWL 7
#define KVX_GENCONSTR_POLY 8
#define KVX_GENCONSTR_EXP 9
#define KVX_GENCONSTR_EXPA 10
#define KVX_GENCONSTR_LOG 11
#define KVX_GENCONSTR_LOGA 12
#define KVX_GENCONSTR_POW 13
#define KVX_GENCONSTR_SIN 14
#define KVX_GENCONSTR_COS 15
#define KVX_GENCONSTR_TAN 16
#define KVX_GENCONSTR_LOGISTIC 17
#define KVX_GENCONSTR_NL 18

#define KVX_NL_CONSTANT 0 /**< leaf: its data is the number */
#define KVX_NL_VARIABLE 1 /**< leaf: its data is the variable's index */
#define KVX_NL_PLUS 2     /**< sum of any number of operands */
#define KVX_NL_MINUS 3
#define KVX_NL_MULTIPLY 4 /**< product of any number of operands */
#define KVX_NL_DIVIDE 5
#define KVX_NL_NEGATE 6
#define KVX_NL_POWER 7
#define KVX_NL_SQRT 8
#define KVX_NL_EXP 9
#define KVX_NL_LOG 10 /**< natural logarithm */
#define KVX_NL_SIN 11
#define KVX_NL_COS 12
#define KVX_NL_TAN 13
#define KVX_NL_LOGISTIC 14

int KVXgetintattr(KVXmodel *model, const char *name, int *value);
int KVXgetintattrelement(KVXmodel *model, const char *name, int element, int *value);
int KVXgetintattrarray(KVXmodel *model, const char *name, int start, int len, int *values);
int KVXgetintattrlist(KVXmodel *model, const char *name, int len, const int *ind, int *values);
int KVXsetintattr(KVXmodel *model, const char *name, int value);
int KVXsetintattrelement(KVXmodel *model, const char *name, int element, int value);
int KVXsetintattrarray(KVXmodel *model, const char *name, int start, int len, const int *values);
int KVXsetintattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const int *values);

int KVXgetdblattr(KVXmodel *model, const char *name, double *value);
int KVXgetdblattrelement(KVXmodel *model, const char *name, int element, double *value);
int KVXgetdblattrarray(KVXmodel *model, const char *name, int start, int len, double *values);
int KVXgetdblattrlist(KVXmodel *model, const char *name, int len, const int *ind, double *values);
int KVXsetdblattr(KVXmodel *model, const char *name, double value);
int KVXsetdblattrelement(KVXmodel *model, const char *name, int element, double value);
int KVXsetdblattrarray(KVXmodel *model, const char *name, int start, int len, const double *values);
int KVXsetdblattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const double *values);

int KVXgetcharattrelement(KVXmodel *model, const char *name, int element, char *value);
int KVXgetcharattrarray(KVXmodel *model, const char *name, int start, int len, char *values);
int KVXgetcharattrlist(KVXmodel *model, const char *name, int len, const int *ind, char *values);
int KVXsetcharattrelement(KVXmodel *model, const char *name, int element, char value);
int KVXsetcharattrarray(KVXmodel *model, const char *name, int start, int len, const char *values);
int KVXsetcharattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                       const char *values);

/* Texts handed out belong to the library and stay valid until the model changes. */
int KVXgetstrattr(KVXmodel *model, const char *name, const char **value);
int KVXgetstrattrelement(KVXmodel *model, const char *name, int element, const char **value);
int KVXgetstrattrarray(KVXmodel *model, const char *name, int start, int len, const char **values);
int KVXgetstrattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const char **values);
/* A null or empty text is refused as the name of an element; the model may be without one. */
int KVXsetstrattr(KVXmodel *model, const char *name, const char *value);
int KVXsetstrattrelement(KVXmodel *model, const char *name, int element, const char *value);
int KVXsetstrattrarray(KVXmodel *model, const char *name, int start, int len,
                       const char *const *values);
int KVXsetstrattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const char *const *values);

/** Describes an attribute. @param type KVX_TYPE_ @param element KVX_OF_ @param settable 1 or 0 */
int KVXgetattrinfo(KVXmodel *model, const char *name, int *type, int *element, int *settable);
/** Says that an attribute will be read soon; refuses unknown names. */
int KVXprefetchattr(KVXmodel *model, const char *name);

/*
 * Structure
 */

/** One matrix coefficient, 0 where there is none. */
int KVXgetcoeff(KVXmodel *model, int constr, int var, double *value);
/** Reads count rows from start on: always the number of nonzeros, and every buffer that isn't null.
 * @param beg receives count + 1 begins, the last being the number of nonzeros */
int KVXgetconstrs(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
                  int count);
/** The same for columns. */
int KVXgetvars(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start, int count);
/** The lowest index with that name; KVX_ERROR_NOT_FOUND when there is none. */
int KVXgetconstrbyname(KVXmodel *model, const char *name, int *indexP);
int KVXgetvarbyname(KVXmodel *model, const char *name, int *indexP);

#endif
