/* Loads and unloads the library again and again in one process: every mutex that
 * it made is gone after each turn, and the next turn works as the first.
 * Usage: reload LIBRARY */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <tessel/standin.h>
#include <tessel/tessel.h>

typedef TSXStatus OpenFunction(uint64_t, TSXRefId*);
typedef TSXStatus LoadFunction(TSXRefId, HStr*, HStr*, HStr*);
typedef TSXStatus QueryFunction(TSXRefId, HStr*, TSXRefId*, HStr*);
typedef void CloseFunction(TSXRefId);

/* A symbol as a function; the detour keeps ISO C content. */
static void Find(void* library, const char* name, void* function) {
  void* symbol = dlsym(library, name);
  memcpy(function, &symbol, sizeof symbol);
}

static int Turn(const char* path) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  OpenFunction* open = NULL;
  LoadFunction* load = NULL;
  CloseFunction* close = NULL;
  QueryFunction* query = NULL;
  TSXRefId document = 0;
  TSXRefId found = 0;
  HStr errors = NULL;
  HStr exception = NULL;
  HStr text = StandinStringFromText("<r><a/></r>", -1);
  HStr expression = StandinStringFromText("/r/a", -1);
  TSXStatus status = -1;
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  Find(library, "TSXDocumentOpen", &open);
  Find(library, "TSXLoadString", &load);
  Find(library, "TSXDocumentClose", &close);
  Find(library, "XPathEvaluateContextToNode", &query);
  open(0, &document);
  status = load(document, &text, &errors, &exception);
  if (status == 0) status = query(document, &expression, &found, &errors);
  close(document);
  HostDisposeHandle(text);
  HostDisposeHandle(expression);
  if (dlclose(library) != 0 || dlopen(path, RTLD_NOW | RTLD_NOLOAD) != NULL) {
    fprintf(stderr, "the library stays loaded\n");
    return 1;
  }
  return status == 0 && found != 0 ? 0 : 1;
}

int main(int count, char** arguments) {
  StandinLedger ledger;
  int turn;
  if (count != 2) return 2;
  for (turn = 0; turn < 10; ++turn) {
    if (Turn(arguments[1]) != 0) return 1;
    StandinReadLedger(&ledger);
    if (ledger.mutexes != 0 || ledger.handles != 0 || ledger.violations != 0) {
      fprintf(stderr, "turn %d leaves %ld mutexes, %ld handles, %ld violations\n", turn,
              (long)ledger.mutexes, (long)ledger.handles, (long)ledger.violations);
      return 1;
    }
  }
  return 0;
}
