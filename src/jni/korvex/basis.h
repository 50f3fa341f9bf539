/*
 * Solves with the simplex basis.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_BASIS_H
#define KORVEX_BASIS_H

/*
 * Basis of a solved linear model. Rows of basic variables are numbered as in KVXgetBasisHead. The
 * basis matrix B has the columns of the model's variables and, for constraint i, the i-th unit
 * vector (the row's logical variable).
 *
 * A result vector must have room for what it receives: at most NumConstrs entries, for
 * KVXBinvRowi NumVars + NumConstrs. A len that is too small gives KVX_ERROR_INVALID_ARGUMENT; on
 * return it never exceeds what it was.
 */

/** Solves B x = b. @param b indices count constraints @param x indices count basic positions */
int KVXFSolve(KVXmodel *model, SparseVector *b, SparseVector *x);
/** Solves B^T x = b. @param b indices count basic positions @param x indices count constraints */
int KVXBSolve(KVXmodel *model, SparseVector *b, SparseVector *x);
/** Column j of B^-1 A, for j < NumVars of the matrix, else of the logical of row j - NumVars. */
int KVXBinvColj(KVXmodel *model, int j, SparseVector *x);
/** Row i of B^-1 A, over NumVars structural and NumConstrs logical columns. */
int KVXBinvRowi(KVXmodel *model, int i, SparseVector *x);
/** The basic variables. @param head room for NumConstrs indices, however many are wanted: a
 * variable's, or NumVars + i for the logical of constraint i */
int KVXgetBasisHead(KVXmodel *model, int *head);

#endif
