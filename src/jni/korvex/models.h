/*
 * Models: making, freeing, deriving; files.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_MODELS_H
#define KORVEX_MODELS_H

/*
 * Models: making, freeing
 */

/**
 * Makes a model with numvars variables and no constraints.
 * @param modelP receives the model
 * @param name model name, or null
 * @param numvars number of variables, at least 0
 * @param obj,lb,ub numvars values each; null for all 0, all 0, all infinite
 * @param types numvars type characters; null for all continuous
 * @param names numvars names; the array and its elements may be null (named by index then)
 */
int KVXnewmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, const double *obj,
                const double *lb, const double *ub, const char *types, const char *const *names);

/**
 * Makes a whole model.
 * @param objsense KVX_MINIMIZE or KVX_MAXIMIZE
 * @param objcon objective constant
 * @param senses,rhs numconstrs sense characters and right-hand sides
 * @param beg,len numvars begin positions and lengths of the columns in ind and val; all null for no
 *        coefficients
 * @param ind,val constraint indices and coefficients
 * @param lb,ub,types,varnames,constrnames as for KVXnewmodel, one entry a variable or constraint
 */
int KVXloadmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, int numconstrs,
                 int objsense, double objcon, const double *obj, const char *senses,
                 const double *rhs, const int *beg, const int *len, const int *ind,
                 const double *val, const double *lb, const double *ub, const char *types,
                 const char *const *varnames, const char *const *constrnames);

/** Applies pending changes. (A library may change the model at once; then nothing is pending.) */
int KVXupdatemodel(KVXmodel *model);

/** Forgets the solution; with a non-zero argument the start values and the basis, too. */
int KVXreset(KVXmodel *model, int clearall);

/**
 * Frees a model with everything it owns; null is allowed. A run that goes on in the background is
 * terminated and waited for. Refused with KVX_ERROR_IN_PROGRESS inside one of its callbacks.
 */
int KVXfreemodel(KVXmodel *model);

/*
 * Derived models: each stores a new, independent model through newP, to be freed by the caller
 */

/** A copy that belongs to another environment. @param env must not be null */
int KVXcopymodeltoenv(KVXmodel *model, KVXenv *env, KVXmodel **newP);
/** The model without integrality, SOS and general constraints, whatever their kind; semi-continuous
 * variables may be anywhere between 0 and their bounds. */
int KVXrelaxmodel(KVXmodel *model, KVXmodel **newP);
/** The model in which all variables that aren't continuous are fixed at the best solution, which
 * stays optimal. (The development solver takes models with linear constraints and one linear
 * objective.) */
int KVXfixmodel(KVXmodel *model, KVXmodel **newP);
/** The same in place. */
int KVXconverttofixed(KVXmodel *model);
/** The model after presolve; same optimal value. The model itself where presolve finds that it has
 * no optimum. For models with linear constraints and one linear objective. */
int KVXpresolvemodel(KVXmodel *model, KVXmodel **newP);
/** The dual of a linear model; same optimal value. Its constraints are the model's variables; each
 * finite side of a constraint or bound is a variable, an equation's two sides one. */
int KVXdualmodel(KVXmodel *model, KVXmodel **newP);
/** The model that minimises the sum of violations of its linear constraints; all else is kept. */
int KVXfeasibility(KVXmodel *model, KVXmodel **newP);
/** The model with general constraints, semi-continuous variables and piecewise-linear objective
 * terms replaced by linear constraints, integer variables and SOS. Its first variables and
 * constraints are those of the model. */
int KVXlinearizemodel(KVXmodel *model, KVXmodel **newP);
/** The model of the current scenario (attribute "ScenarioNumber"). (A model of this library has one
 * scenario, itself.) */
int KVXsinglescenariomodel(KVXmodel *model, KVXmodel **newP);

/**
 * Turns the model into its feasibility relaxation.
 * @param penalty 0: sum of violations; 1: sum of squares; 2: number of violations
 * @param minrelax 0: minimise the penalty alone; 1: find the least penalty, then the best
 *        original objective at that penalty
 * @param lbpen,ubpen NumVars weights for violated lower and upper bounds, or null: bounds are kept;
 *        a weight of KVX_INFINITY or more keeps that one bound
 * @param conpen NumConstrs weights for violated constraints, or null: constraints are kept
 * @param result the least penalty when minrelax is 1, else 0
 */
int KVXfeasrelax(KVXmodel *model, int penalty, int minrelax, const double *lbpen,
                 const double *ubpen, const double *conpen, double *result);

/*
 * Files
 *
 * The ending of a name selects the format: .mps and .lp are model files; .sol (solution), .mst
 * (start), .bas (basis) and .prm (parameters) attribute files; .json a solution, write only. Each
 * may be followed by .gz or .bz2.
 */

/** Reads a model file into a new model. The error text names file and line. */
int KVXreadmodel(KVXenv *env, const char *filename, KVXmodel **modelP);
/** Reads an attribute file into a model. */
int KVXread(KVXmodel *model, const char *filename);
/** Writes a model or attribute file. Names that the format can't hold are refused; by the
 * development solver, models with SOS, general or quadratic constraints, several, quadratic or
 * piecewise-linear objectives in model files, too. */
int KVXwrite(KVXmodel *model, const char *filename);
/** 0: not the name of a model file; 1: MPS; 2: LP. */
int KVXismodelfile(const char *filename);
/** 0: not the name of an attribute file; 1: solution; 2: start; 3: basis; 4: parameters. */
int KVXisattrfile(const char *filename);
/** The solution as JSON text. @param textP receives a text to be freed with KVXfree */
int KVXgetjsonsolution(KVXmodel *model, char **textP);
/** Frees a text that the library allocated for the caller; null is allowed. */
void KVXfree(void *text);

#endif
