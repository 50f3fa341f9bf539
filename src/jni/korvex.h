/*
 * The C interface of the Korvex solver library, libkorvex130.so: every function that the JNI
 * bridge calls. Plain C, usable from C and C++. Its parts lie in the directory korvex.
 *
 * Rules that hold throughout, unless a function says otherwise:
 *
 *  - A function with an int result returns a status: 0 (KVX_OK) or one of the KVX_ERROR_ codes.
 *    After a failure KVXgeterrormsg (environment) or KVXgetmerrormsg (model) explains it to the
 *    thread that made the call, and the model stays as it was. A success leaves the error text
 *    alone. Output arguments are written on success only.
 *  - Arrays belong to the caller and are only used during the call. Indices count from 0. A count
 *    of 0 or less goes with arrays that may be null; a negative one is refused with
 *    KVX_ERROR_INVALID_ARGUMENT, except where a function takes it as 0.
 *  - Texts are NUL-terminated UTF-8. (From Java they come in JNI's modified form, in which a
 *    character beyond U+FFFF is two surrogates of three bytes each, and go back as they came.) A
 *    text that the library hands out belongs to the library and stays valid until the next call on
 *    the same object, except where KVXfree is named.
 *  - Bounds of +-KVX_INFINITY or beyond mean "no bound". Bounds that contradict each other are
 *    refused, and so are bounds of a binary variable outside 0 and 1 when an attribute is set; when
 *    it is added or becomes binary, its bounds are cut off there.
 *  - Names have neither control characters nor, in the development solver, characters beyond
 *    U+FFFF. An element without one gets one when it is made: a letter (C for variables, R for
 *    constraints, Q for quadratic and G for general constraints) and the number of those that were
 *    made before it.
 *  - A null handle is refused with KVX_ERROR_INVALID_ARGUMENT.
 *  - An object may be used by one thread at a time, and beside it by the callbacks of its run;
 *    KVXterminate and KVXmsg may be called from any thread at any moment. Different environments,
 *    and different models of one environment, may be used by different threads at once.
 */
#ifndef KORVEX_H
#define KORVEX_H

/* Visible in whatever way the library itself is compiled. */
#pragma GCC visibility push(default)

#ifdef __cplusplus
extern "C" {
#endif

#include "korvex/types.h"

#include "korvex/attributes.h"
#include "korvex/basis.h"
#include "korvex/batches.h"
#include "korvex/building.h"
#include "korvex/environments.h"
#include "korvex/general.h"
#include "korvex/models.h"
#include "korvex/runs.h"

#ifdef __cplusplus
}
#endif

#pragma GCC visibility pop

#endif
