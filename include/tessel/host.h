/* The host's side of the boundary: the types that cross it and the functions
 * that the host process exports to the library.
 *
 * A handle is a pointer to the pointer to its block. The host's memory manager
 * owns every block and may move it whenever the handle is resized, so a block
 * pointer is good only until the next call that may resize that handle.
 * A null handle is no block at all; for a string it means the empty string.
 *
 * Every function declared here is imported: the library calls it, the host
 * process provides it. Results of type int32_t are host codes: 0 success,
 * 1 missing destination, 2 allocation refused; the library passes them on
 * unchanged. The functions are called from whichever thread called the library
 * and must not throw. */
#ifndef TESSEL_HOST_H
#define TESSEL_HOST_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Any handle, whatever its block holds. */
typedef void* HostHandle;

/* The block of a host string: `count` bytes in the local code page, any byte
 * value allowed, not terminated. The block may be larger than 4 + count bytes;
 * only count says how many are valid. */
typedef struct HStrRecord {
  int32_t count;
  unsigned char bytes[1];
} HStrRecord;
typedef HStrRecord** HStr;

/* The block of a host array of reference ids: 8 + 8 * count bytes. An emptied
 * array keeps an 8-byte block with count 0. */
typedef struct GenericRefObjSessionArrayRecord {
  int32_t count;
  int32_t zero;
  uint64_t ids[1];
} GenericRefObjSessionArrayRecord;
typedef GenericRefObjSessionArrayRecord** GenericRefObjSessionArray;

/* A host path and a host mutex, opaque and passed by value. */
typedef struct HostPathObject* HostPath;
typedef struct HostMutexObject* HostMutex;

/* -- Memory manager ------------------------------------------------------- */

/* A new handle of `size` bytes, contents undefined; null when refused. */
HostHandle HostNewHandle(size_t size);

/* A new handle of `size` zero bytes; null when refused. */
HostHandle HostNewHandleClear(size_t size);

/* Resizes the block, keeping its contents up to the smaller size. */
int32_t HostSetHandleSize(HostHandle handle, size_t size);

/* As HostSetHandleSize, with the bytes beyond the old size zero. */
int32_t HostSetHandleSizeClear(HostHandle handle, size_t size);

/* The block's size in bytes. */
size_t HostGetHandleSize(HostHandle handle);

/* Frees the block and the handle. */
int32_t HostDisposeHandle(HostHandle handle);

/* A plain block of `size` zero bytes, not relocatable; null when refused. The
 * interface has no call that gives such a block back. */
void* HostNewPtrClear(size_t size);

/* Copies `count` bytes; the regions may overlap. */
void HostMoveBytes(const void* source, void* destination, size_t count);

/* The length of a NUL-terminated string in bytes, without the terminator. */
int32_t HostStrLen(const char* text);

/* Makes *string hold exactly `length` bytes, creating the handle when it is
 * null and resizing it otherwise. `bytes` is never inside the string's block. */
int32_t HostStringFromPtr(HStr* string, int32_t length, const void* bytes);

/* -- Paths ---------------------------------------------------------------- */

/* Non-zero for a valid path value. */
int32_t HostIsAPath(HostPath path);

/* Non-zero for a path that names nothing. */
int32_t HostIsEmptyPath(HostPath path);

/* A new handle whose block is the path in native form as a NUL-terminated byte
 * string; the library disposes of it. Null when the allocation is refused. */
HostHandle HostPathToNative(HostPath path);

/* -- Named mutexes -------------------------------------------------------- */

/* Stores a new mutex in *mutex. The name is for people: it need not be unique.
 * The library never takes a mutex that the calling thread already holds. */
void HostMutexCreate(HostMutex* mutex, const char* name);

/* Blocks until the calling thread owns the mutex. */
void HostMutexAcquire(HostMutex mutex);

/* Gives up a mutex that the calling thread owns. */
void HostMutexRelease(HostMutex mutex);

/* Frees a mutex that no thread owns. */
void HostMutexDestroy(HostMutex mutex);

#ifdef __cplusplus
}
#endif

#endif
