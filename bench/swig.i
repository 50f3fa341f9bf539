// The two ways of SWIG's own library: Java arrays as a whole, which it copies one by one, and native
// arrays that Java fills element by element.
%module Swig
%{
#include "korvex.h"
%}
%include "arrays_java.i"
%include "carrays.i"
%array_functions(int, ints)
%array_functions(double, doubles)

int KVXgetintattr(KVXmodel *model, const char *name, int value[]);
int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names);

%inline %{
int addArrays(KVXmodel *model, int numvars, int numnz, int beg[], int ind[], double val[],
              double obj[], double lb[], double ub[], const char *types) {
    return KVXaddvars(model, numvars, numnz, beg, ind, val, obj, lb, ub, types, NULL);
}
%}
