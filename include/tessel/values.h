/* Host values: build, copy, convert and clear the host's strings and arrays.
 *
 * Any thread may call; a handle must not be used by two threads at once.
 * Counts and sizes are bytes. A null string handle is the empty string. Results
 * are host codes (0 success, 1 missing destination, 2 allocation refused, or
 * whatever the host's own function returned), never a TSXStatus. Nothing here
 * throws but HStrToCStr, when the heap is exhausted. A failure leaves the
 * destination as it was unless the entry says otherwise. */
#ifndef TESSEL_VALUES_H
#define TESSEL_VALUES_H

#include <stdint.h>
#include <tessel/export.h>
#include <tessel/host.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Gives a handle a block of `size` bytes: resizes an existing handle, creates
 * one (contents undefined) where the variable is null. `handleVariable` points
 * to a handle variable of any type. A negative size is refused with 2. */
TSX_API int32_t domSetHandleSizeOrNewHandle(void* handleVariable, int32_t size);

/* Appends a NUL-terminated byte string (null: nothing is appended) and keeps
 * the block at exactly 4 + count bytes. Creates the handle where it is null. */
TSX_API int32_t domHStrAppendCStr(HStr* string, const unsigned char* text);

/* Makes *destination a copy of `source`, count included. Returns 1 for a null
 * `destination`. An empty source leaves a null destination null and gives an
 * existing one the count 0. A block whose count already equals the source's is
 * not resized, whatever its size. */
TSX_API int32_t domCopyHStr(HStr source, HStr* destination);

/* Appends a string to `destination`, which must be a handle, and never shrinks
 * its block: a block that is large enough is not resized, so repeated appends
 * into a generously sized handle cost no reallocation. `source` is a block, not
 * a handle, and must not lie in `destination`. */
TSX_API int32_t domHStrCatEfficient(HStr destination, const HStrRecord* source);

/* As domHStrCatEfficient, then trims the block to exactly 4 + count bytes. */
TSX_API int32_t domHStrCat(HStr destination, const HStrRecord* source);

/* Disposes of any array's handle and stores null. A null pointer or a null
 * handle is 0. `handleVariable` points to a handle variable of any type. */
TSX_API int32_t ClearArray(void* handleVariable);

/* Disposes of a string's handle and stores null, as ClearArray does. */
TSX_API int32_t ClearString(HStr* string);

/* Returns a new NUL-terminated copy of the string's bytes. A NUL byte inside
 * the string is copied, so a reader of the copy sees the text cut there. The
 * copy comes from array new (`new char[]`) and is freed
 * with array delete: this one is for C++ callers. Throws std::bad_alloc. */
TSX_API char* HStrToCStr(HStr* string);

/* Makes *string hold the bytes of a NUL-terminated string; null clears it. On
 * any failure *string is disposed of and null. */
TSX_API int32_t CStrToHStr(const char* text, HStr* string);

/* Empties an array of reference ids and keeps its handle, with an 8-byte block.
 * A null handle stays null. The ids are not given back. */
TSX_API void ClearSessionArray(GenericRefObjSessionArray* array);

#ifdef __cplusplus
}
#endif

#endif
