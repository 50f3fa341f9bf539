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
 *   attribute         type      of             meaning
 *   NumVars           int       model          number of variables
 *   NumConstrs        int       model          number of linear constraints
 *   NumNZs            int       model          number of nonzero coefficients in linear constraints
 *   NumSOS            int       model          number of special ordered sets
 *   NumQConstrs       int       model          number of quadratic constraints
 *   NumGenConstrs     int       model          number of general constraints
 *   NumQNZs           int       model          number of quadratic terms in the objective
 *   NumIntVars        int       model          number of integer variables, binary ones among them
 *   NumBinVars        int       model          number of binary variables
 *   NumObj            int       model          number of objectives, at least 1
 *   NumScenarios      int       model          number of scenarios, at least 1
 *   ModelName         string w  model          name of the model; "" by default
 *   ModelSense        int w     model          KVX_MINIMIZE, the default, or KVX_MAXIMIZE
 *   ObjCon            double w  model          objective constant; 0 by default
 *   ObjNumber         int w     model          the objective that "ObjN" belongs to, from 0, the
 *                                              default, to "NumObj" - 1
 *   ScenarioNumber    int w     model          the current scenario, from 0, the default, to
 *                                              "NumScenarios" - 1
 *   IsMIP             int       model          1 if there are discrete variables, SOS or general
 *                                              constraints, else 0
 *   IsQP              int       model          1 if the objective has quadratic terms, else 0
 *   IsMultiObj        int       model          1 once KVXsetobjectiven made the model
 *                                              multi-objective, else 0
 *   Status            int       model          how the last run ended, KVX_STATUS_OPTIMAL and so
 *                                              on; KVX_STATUS_LOADED before the first run and after
 *                                              a change
 *   SolCount          int       model          number of solutions found
 *   ObjVal            double    model          objective value of the best solution; of several
 *                                              objectives, that of the highest priority
 *   ObjBound          double    model          best proven bound on the objective value; of several
 *                                              objectives, that of the highest priority
 *   MIPGap            double    model          relative gap between "ObjVal" and "ObjBound"
 *   Runtime           double    model          seconds that the last run took, or takes so far
 *   NodeCount         double    model          branch-and-bound nodes of the last run
 *   IterCount         double    model          simplex iterations of the last run
 *   TuneResultCount   int       model          number of settings that tuning found
 *   VarName           string w  variable       name; C and a number by default
 *   VarType           char w    variable       KVX_CONTINUOUS, the default, KVX_BINARY,
 *                                              KVX_INTEGER, KVX_SEMICONT or KVX_SEMIINT
 *   LB                double w  variable       lower bound, -KVX_INFINITY for none; 0 by default
 *   UB                double w  variable       upper bound; KVX_INFINITY, for none, by default
 *   Obj               double w  variable       coefficient in the model's own objective, 0 by
 *                                              default; a piecewise-linear term comes on top
 *   ObjN              double w  variable       coefficient in objective "ObjNumber"; that of "Obj"
 *                                              while there aren't several
 *   Start             double w  variable       value that a run starts from; KVX_UNDEFINED, for
 *                                              none, by default
 *   X                 double    variable       value in the best solution
 *   ReducedCost       double    variable       change of the objective value per unit of the bound,
 *                                              in the model's own sense
 *   VarBasis          int w     variable       status in the simplex basis: KVX_BASIC,
 *                                              KVX_NONBASIC_LOWER, KVX_NONBASIC_UPPER or
 *                                              KVX_SUPERBASIC
 *   IISLB             int       variable       1 if the lower bound belongs to the irreducible
 *                                              infeasible subsystem, else 0
 *   IISUB             int       variable       1 if the upper bound belongs to the irreducible
 *                                              infeasible subsystem, else 0
 *   ConstrName        string w  constraint     name; R and a number by default
 *   Sense             char w    constraint     KVX_LESS_EQUAL, KVX_GREATER_EQUAL or KVX_EQUAL; of a
 *                                              range, by its finite side
 *   RHS               double w  constraint     right-hand side; setting it leaves the other side of
 *                                              a range
 *   RowLower          double w  constraint     lower bound, -KVX_INFINITY for none
 *   RowUpper          double w  constraint     upper bound, KVX_INFINITY for none
 *   Dual              double    constraint     change of the objective value per unit of the
 *                                              right-hand side, in the model's own sense
 *   Slack             double    constraint     right-hand side minus activity
 *   ConstrBasis       int w     constraint     status of the logical variable in the simplex basis,
 *                                              with the values of "VarBasis"
 *   IISConstr         int       constraint     1 if it belongs to the irreducible infeasible
 *                                              subsystem, else 0
 *   QConstrName       string w  qconstraint    name; Q and a number by default
 *   QConstrSense      char w    qconstraint    KVX_LESS_EQUAL, KVX_GREATER_EQUAL or KVX_EQUAL
 *   QConstrRHS        double w  qconstraint    right-hand side, finite
 *   GenConstrType     int       genconstraint  kind: KVX_GENCONSTR_MAX and so on
 *   GenConstrName     string w  genconstraint  name; G and a number by default
 *   GenConstrOptions  string w  genconstraint  how a function is approximated; "" by default
 */
/** A value that isn't known, in start values and proposed solutions. */
#define KVX_UNDEFINED 1e101

/* Kind of a general constraint. */
#define KVX_GENCONSTR_MAX 0       /**< maximum of operands */
#define KVX_GENCONSTR_MIN 1       /**< minimum of operands */
#define KVX_GENCONSTR_ABS 2       /**< absolute value */
#define KVX_GENCONSTR_AND 3       /**< conjunction of binaries */
#define KVX_GENCONSTR_OR 4        /**< disjunction of binaries */
#define KVX_GENCONSTR_NORM 5      /**< norm of operands */
#define KVX_GENCONSTR_INDICATOR 6 /**< a binary implies a linear constraint */
#define KVX_GENCONSTR_PWL 7       /**< piecewise-linear function */
#define KVX_GENCONSTR_POLY 8      /**< polynomial */
#define KVX_GENCONSTR_EXP 9       /**< e^x */
#define KVX_GENCONSTR_EXPA 10     /**< base^x */
#define KVX_GENCONSTR_LOG 11      /**< natural logarithm */
#define KVX_GENCONSTR_LOGA 12     /**< logarithm to a base */
#define KVX_GENCONSTR_POW 13      /**< x^exponent */
#define KVX_GENCONSTR_SIN 14      /**< sine */
#define KVX_GENCONSTR_COS 15      /**< cosine */
#define KVX_GENCONSTR_TAN 16      /**< tangent */
#define KVX_GENCONSTR_LOGISTIC 17 /**< 1 / (1 + e^-x) */
#define KVX_GENCONSTR_NL 18       /**< expression tree */

/* Operation of an expression tree. */
#define KVX_NL_CONSTANT 0  /**< leaf: its data is the number */
#define KVX_NL_VARIABLE 1  /**< leaf: its data is the variable's index */
#define KVX_NL_PLUS 2      /**< sum of any number of operands */
#define KVX_NL_MINUS 3     /**< difference of two operands */
#define KVX_NL_MULTIPLY 4  /**< product of any number of operands */
#define KVX_NL_DIVIDE 5    /**< quotient of two operands */
#define KVX_NL_NEGATE 6    /**< its operand, negated */
#define KVX_NL_POWER 7     /**< first operand to the power of the second */
#define KVX_NL_SQRT 8      /**< square root */
#define KVX_NL_EXP 9       /**< e^x */
#define KVX_NL_LOG 10      /**< natural logarithm */
#define KVX_NL_SIN 11      /**< sine */
#define KVX_NL_COS 12      /**< cosine */
#define KVX_NL_TAN 13      /**< tangent */
#define KVX_NL_LOGISTIC 14 /**< 1 / (1 + e^-x) */

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
