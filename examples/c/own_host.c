/* A host program in strict C that brings its own host functions: nothing here is
 * shared with the stand-in host. It loads text, walks the tree by ids, writes an
 * element back, closes everything, and exits non-zero on any mismatch, on misuse
 * of its functions, and when a block of its own is still alive at the end. */
#define _XOPEN_SOURCE 700 /* error-checking mutexes */

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tessel/tessel.h>

/* -- The host: memory manager --------------------------------------------- */

/* A handle is the address of this record. */
typedef struct Block {
  unsigned char* bytes;
  size_t size;
} Block;

/* Stands before the bytes of a pointer; the union aligns them. */
typedef union Pointer {
  union Pointer* next;
  long double alignment;
} Pointer;

static pthread_mutex_t g_CounterLock = PTHREAD_MUTEX_INITIALIZER;
static long g_LiveHandles;
static long g_MadeHandles;
static long g_LiveMutexes;
static long g_HeldMutexes;
static Pointer* g_pPointers;

static void require(int truth, const char* what) {
  if (truth) return;
  fprintf(stderr, "own_host: %s\n", what);
  abort();
}

static void count(long* counter, long change) {
  pthread_mutex_lock(&g_CounterLock);
  *counter += change;
  pthread_mutex_unlock(&g_CounterLock);
}

static size_t at_least_one(size_t size) { return size != 0 ? size : 1; }

static HostHandle adopt(void* bytes, size_t size) {
  Block* block = malloc(sizeof *block);
  if (bytes == NULL || block == NULL) {
    free(bytes);
    free(block);
    return NULL;
  }
  block->bytes = bytes;
  block->size = size;
  count(&g_LiveHandles, 1);
  count(&g_MadeHandles, 1);
  return block;
}

HostHandle HostNewHandle(size_t size) { return adopt(malloc(at_least_one(size)), size); }

HostHandle HostNewHandleClear(size_t size) { return adopt(calloc(at_least_one(size), 1), size); }

int32_t HostSetHandleSize(HostHandle handle, size_t size) {
  Block* block = handle;
  unsigned char* bytes = realloc(block->bytes, at_least_one(size));
  if (bytes == NULL) return 2;
  block->bytes = bytes;
  block->size = size;
  return 0;
}

int32_t HostSetHandleSizeClear(HostHandle handle, size_t size) {
  const Block* block = handle;
  const size_t oldSize = block->size;
  const int32_t status = HostSetHandleSize(handle, size);
  if (status == 0 && size > oldSize) memset(block->bytes + oldSize, 0, size - oldSize);
  return status;
}

size_t HostGetHandleSize(HostHandle handle) { return ((const Block*)handle)->size; }

int32_t HostDisposeHandle(HostHandle handle) {
  if (handle == NULL) return 1;
  free(((Block*)handle)->bytes);
  free(handle);
  count(&g_LiveHandles, -1);
  return 0;
}

void* HostNewPtrClear(size_t size) {
  Pointer* pointer = calloc(1, sizeof *pointer + size);
  if (pointer == NULL) return NULL;
  pthread_mutex_lock(&g_CounterLock);
  pointer->next = g_pPointers;
  g_pPointers = pointer;
  pthread_mutex_unlock(&g_CounterLock);
  return pointer + 1;
}

static void free_pointers(void) {
  while (g_pPointers != NULL) {
    Pointer* next = g_pPointers->next;
    free(g_pPointers);
    g_pPointers = next;
  }
}

void HostMoveBytes(const void* source, void* destination, size_t size) {
  memmove(destination, source, size);
}

int32_t HostStrLen(const char* text) { return (int32_t)strlen(text); }

int32_t HostStringFromPtr(HStr* string, int32_t length, const void* bytes) {
  const size_t size = offsetof(HStrRecord, bytes) + (size_t)length;
  if (*string == NULL) {
    *string = HostNewHandle(size);
    if (*string == NULL) return 2;
  } else if (HostSetHandleSize(*string, size) != 0) {
    return 2;
  }
  (**string)->count = length;
  memcpy((**string)->bytes, bytes, (size_t)length);
  return 0;
}

/* -- The host: paths and mutexes ------------------------------------------ */

/* This host has no paths: no value is one. */
int32_t HostIsAPath(HostPath path) {
  (void)path;
  return 0;
}

int32_t HostIsEmptyPath(HostPath path) {
  (void)path;
  return 1;
}

HostHandle HostPathToNative(HostPath path) {
  (void)path;
  return NULL;
}

struct HostMutexObject {
  pthread_mutex_t lock;
};

void HostMutexCreate(HostMutex* mutex, const char* name) {
  pthread_mutexattr_t attributes;
  *mutex = malloc(sizeof **mutex);
  require(*mutex != NULL && name != NULL && *name != '\0', "a mutex could not be made");
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
  pthread_mutex_init(&(*mutex)->lock, &attributes);
  pthread_mutexattr_destroy(&attributes);
  count(&g_LiveMutexes, 1);
}

void HostMutexAcquire(HostMutex mutex) {
  require(pthread_mutex_lock(&mutex->lock) == 0, "a mutex was taken by its owner");
  count(&g_HeldMutexes, 1);
}

void HostMutexRelease(HostMutex mutex) {
  count(&g_HeldMutexes, -1);
  require(pthread_mutex_unlock(&mutex->lock) == 0, "a mutex was given up by a non-owner");
}

/* Called after main too, when the library is unloaded. */
void HostMutexDestroy(HostMutex mutex) {
  require(pthread_mutex_destroy(&mutex->lock) == 0, "a mutex was destroyed while it was held");
  free(mutex);
  count(&g_LiveMutexes, -1);
}

/* -- The program ---------------------------------------------------------- */

static const char kText[] =
    "<stock><box id=\"1\">three<lid/></box><!-- packed --><box><![CDATA[<]]></box></stock>";

/* Each node's depth and name, in the order of the walk. */
static const char* const kWalk[] = {"0 #document", "1 stock",    "2 box", "3 #text",
                                    "3 lid",       "2 #comment", "2 box", "3 #cdata-section"};
static const size_t kWalkLength = sizeof kWalk / sizeof *kWalk;

static int g_Failures;
static size_t g_Visited;

static void expect(int truth, const char* what) {
  if (truth) return;
  fprintf(stderr, "own_host: mismatch: %s\n", what);
  ++g_Failures;
}

static HStr string_of(const char* text) {
  HStr string = NULL;
  require(HostStringFromPtr(&string, HostStrLen(text), text) == 0, "out of memory");
  return string;
}

static int holds(HStr string, const char* text) {
  const size_t length = strlen(text);
  return string != NULL && (size_t)(*string)->count == length &&
         memcmp((*string)->bytes, text, length) == 0;
}

static void clear(HStr* string) {
  if (*string != NULL) HostDisposeHandle(*string);
  *string = NULL;
}

static void check_name(TSXRefId node, int depth) {
  HStr name = NULL;
  char line[64];
  expect(TSXGetNodeName(node, 0, &name) == 0 && name != NULL, "a node has a name");
  snprintf(line, sizeof line, "%d %.*s", depth, name != NULL ? (int)(*name)->count : 0,
           name != NULL ? (const char*)(*name)->bytes : "");
  expect(g_Visited < kWalkLength && strcmp(line, kWalk[g_Visited]) == 0, line);
  ++g_Visited;
  clear(&name);
}

/* Visits a node and all below it, and gives back every id that it was given. */
static void walk(TSXRefId node, int depth) {
  TSXRefId child = 0;
  check_name(node, depth);
  expect(TSXGetFirstChild(node, 0, &child) == 0, "first child");
  while (child != 0) {
    TSXRefId next = 0;
    walk(child, depth + 1);
    expect(TSXGetNextSibling(child, 0, &next) == 0, "next sibling");
    TSXNodeClose(child);
    child = next;
  }
}

static void load(TSXRefId document, const char* text, int isWellFormed) {
  HStr xml = string_of(text);
  HStr errors = NULL;
  HStr exception = NULL;
  const TSXStatus status = TSXLoadString(document, &xml, &errors, &exception);
  expect(status == (isWellFormed ? 0 : domErrParse), "the status of a load");
  expect((errors == NULL) == isWellFormed, "a load tells errors when there are some");
  expect(exception == NULL, "a load without an exception has no text of one");
  clear(&xml);
  clear(&errors);
  clear(&exception);
}

static void check_written(TSXRefId document) {
  TSXRefId root = 0;
  HStr xml = NULL;
  expect(TSXGetFirstChild(document, 0, &root) == 0, "the root element");
  expect(TSXGetXML(root, &xml) == 0, "the root element is written");
  expect(holds(xml, kText), "the text written is the text read");
  clear(&xml);
  TSXNodeClose(root);
}

static void check_closed(TSXRefId document) {
  TSXRefId child = 7;
  expect(TSXGetFirstChild(document, 0, &child) == domErrRefGetFirstChild && child == 0,
         "the id of a closed document is dead");
}

int main(void) {
  TSXRefId document = 0;
  expect(TSXDocumentOpen(0, &document) == 0 && document != 0, "a document opens");
  load(document, "<stock><box></stock>", 0);
  load(document, kText, 1);
  walk(document, 0);
  expect(g_Visited == kWalkLength, "the walk sees every node");
  check_written(document);
  TSXDocumentClose(document);
  check_closed(document);

  free_pointers();
  expect(g_MadeHandles > 0 && g_LiveMutexes > 0, "the library uses this host");
  expect(g_LiveHandles == 0, "no handle is alive");
  expect(g_HeldMutexes == 0, "no mutex is held");
  return g_Failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
