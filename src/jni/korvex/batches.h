/*
 * Batch requests.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_BATCHES_H
#define KORVEX_BATCHES_H

/*
 * Batches
 *
 * Attributes of a batch, as of the last KVXupdatebatch. The error text of a failed call is the
 * environment's.
 *
 *   attribute          type    of     meaning
 *   BatchID            string  batch  ID of the request
 *   BatchStatus        int     batch  how far it is: KVX_BATCH_SUBMITTED and so on
 *   BatchErrorCode     int     batch  why it failed: a status, or 0
 *   BatchErrorMessage  string  batch  the error text of the failure, or ""
 *   SubmitTime         string  batch  when it was submitted, in UTC, as ISO 8601
 *   EndTime            string  batch  when it ended; "" if it hasn't yet
 */

/** Submits a copy of the model. @param id receives the request's ID in at most KVX_TEXT_SIZE bytes,
 * terminator included */
int KVXoptimizebatch(KVXmodel *model, char *id);
/** Makes a local object for a request; KVX_ERROR_NOT_FOUND for an unknown ID. */
int KVXgetbatch(KVXenv *env, const char *id, KVXbatch **batchP);
/** Frees the local object; the request goes on. Null is allowed. */
int KVXfreebatch(KVXbatch *batch);
/** Refreshes the object's attributes. */
int KVXupdatebatch(KVXbatch *batch);
int KVXgetbatchintattr(KVXbatch *batch, const char *name, int *value);
/** Reads a text attribute. @param value receives a text of the library's, valid until the next
 * KVXupdatebatch or KVXfreebatch */
int KVXgetbatchstrattr(KVXbatch *batch, const char *name, const char **value);
/** Submits a failed or aborted request again. */
int KVXretrybatch(KVXbatch *batch);
/** Aborts a submitted or running request. */
int KVXabortbatch(KVXbatch *batch);
/** Removes an ended request and its data; its ID is unknown afterwards. */
int KVXdiscardbatch(KVXbatch *batch);
/** The solution of a completed request. @param textP receives a text to be freed with KVXfree */
int KVXgetbatchjsonsolution(KVXbatch *batch, char **textP);
/** Writes that solution to a file (.json, also .gz or .bz2). */
int KVXwritebatchjsonsolution(KVXbatch *batch, const char *filename);

#endif
