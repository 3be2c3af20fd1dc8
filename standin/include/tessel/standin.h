/* The stand-in host: a memory manager, paths and named mutexes behind the
 * functions of <tessel/host.h>, for programs without a host runtime of their own
 * and for tests.
 *
 * This header holds what the host interface does not: how a program makes the
 * values that it passes in, a ledger of what is alive, and faults to order. Any
 * thread may call anything here at any time, also before main and while the
 * process ends; nothing throws.
 *
 * Misuse never crashes: a call on a value that is not alive, or a mutex used
 * against its rules, is counted as a violation, changes nothing, and returns 1
 * where it returns a code. Null is a plain 1 for handles and no violation. A
 * disposed handle is recognised until its place is used again, which happens
 * after 128 more disposals at the earliest.
 *
 * Texts that this header returns live as long as the process. */
#ifndef TESSEL_STANDIN_H
#define TESSEL_STANDIN_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <tessel/host.h>

#ifdef __cplusplus
#define STANDIN_API extern "C" __attribute__((visibility("default")))
#else
#define STANDIN_API extern __attribute__((visibility("default")))
#endif

/* -- Values --------------------------------------------------------------- */

/* A new string of `length` bytes of `text`; a negative length takes all bytes up
 * to its NUL. Dispose of it with HostDisposeHandle. Null when refused. */
STANDIN_API HStr StandinStringFromText(const char* text, int32_t length);

/* A new path from its native form, a NUL-terminated byte string that is copied.
 * Null or "" makes an empty path. Null when the heap is exhausted. */
STANDIN_API HostPath StandinPathFromText(const char* text);

/* Frees a path. Null is a plain 1. */
STANDIN_API int32_t StandinPathDispose(HostPath path);

/* Frees every block of HostNewPtrClear, which the host interface has no call
 * for, and returns how many there were. Nobody may use such a block any more.
 * The end of the process does the same. */
STANDIN_API size_t StandinDisposePointers(void);

/* -- Ledger --------------------------------------------------------------- */

typedef struct StandinLedger {
  int64_t handles;     /* alive */
  int64_t handleBytes; /* sizes of the live handles' blocks, added up */
  int64_t pointers;    /* alive */
  int64_t paths;       /* alive */
  int64_t mutexes;     /* alive */
  int64_t requests;    /* allocations asked for, refused ones included */
  int64_t refusals;    /* of these, refused on order */
  int64_t violations;
  int64_t deepest; /* most mutexes that one thread held at once */
} StandinLedger;

/* Fills *ledger. Exact while no other thread calls the host. */
STANDIN_API void StandinReadLedger(StandinLedger* ledger);

/* What the latest violation was; null for none. */
STANDIN_API const char* StandinLastViolation(void);

/* Starts requests, refusals, violations, deepest and the mutex pairs anew; what
 * is alive stays counted. */
STANDIN_API void StandinForgetHistory(void);

/* -- Faults --------------------------------------------------------------- */

/* Refuses the n-th allocation from now, 1 being the next, and grants those after
 * it; 0 or less refuses none. New handles (native paths and strings made by
 * StandinStringFromText included), pointers and growth of a handle count, one
 * each; a resize that does not grow never does. The order is of all threads
 * together, and a new one replaces it. */
STANDIN_API void StandinFailAllocation(int64_t n);

/* As StandinFailAllocation, and refuses all later ones too, until the next
 * order. */
STANDIN_API void StandinFailAllocationsFrom(int64_t n);

/* While on, every resize, to a smaller or the same size too, moves the block to
 * another address and overwrites the old one, and bytes with no defined
 * contents are filled with junk. On from the start where the environment sets
 * TESSEL_STANDIN_MOVE to anything but "" or "0". */
STANDIN_API void StandinMoveOnResize(bool on);

/* -- Mutexes -------------------------------------------------------------- */

/* The calling thread's number, counted from 1 in the order in which threads
 * first called the host; never reused. */
STANDIN_API uint64_t StandinThread(void);

/* How many live mutexes have the name; null counts all. */
STANDIN_API int64_t StandinLiveMutexes(const char* name);

typedef struct StandinMutex {
  const char* name;
  uint64_t owner; /* the number of the thread that holds it, 0 for none */
} StandinMutex;

/* A pair of names: some thread took `taken` while it held `held`. */
typedef struct StandinMutexPair {
  const char* held;
  const char* taken;
} StandinMutexPair;

typedef enum StandinMutexAction {
  StandinMutexCreated,
  StandinMutexAcquired,
  StandinMutexReleased,
  StandinMutexDestroyed
} StandinMutexAction;

typedef struct StandinMutexEvent {
  StandinMutexAction action;
  const char* name;
  uint64_t thread;
} StandinMutexEvent;

/* These fill at most `capacity` elements and return how many there are. Live
 * mutexes come in the order of their creation, pairs in no order and each once,
 * events in the order in which they happened. */
STANDIN_API size_t StandinReadMutexes(StandinMutex* mutexes, size_t capacity);
STANDIN_API size_t StandinReadMutexPairs(StandinMutexPair* pairs, size_t capacity);
STANDIN_API size_t StandinReadTrace(StandinMutexEvent* events, size_t capacity);

/* Starts recording what happens to mutexes, beginning with an empty trace. Every
 * event costs a lock that all threads share, and memory. */
STANDIN_API void StandinTraceStart(void);

/* Stops recording; the trace stays readable. */
STANDIN_API void StandinTraceStop(void);

#endif
