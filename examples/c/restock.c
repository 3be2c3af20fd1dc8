/* Orders what runs low: loads a stock list that is valid by our schema, finds the items by
 * XPath, writes a new count into each, tells its line in the file, and saves the list. Runs
 * on the stand-in host.
 *   restock FILE SCHEMA OUTPUT */
#define _GNU_SOURCE /* realpath */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tessel/standin.h>
#include <tessel/tessel.h>

#define ROW(number, name, functions, meaning, advice) \
  case number:                                        \
    return #name ": " meaning;

static const char* explain(TSXStatus status) {
  switch (status) {
    TSX_STATUS_LIST(ROW)
    default:
      return "the host refused";
  }
}

static void print(FILE* stream, HStr text) {
  if (text != NULL) fwrite((*text)->bytes, 1, (size_t)(*text)->count, stream);
}

/* Ends the program: it has no other work to go on with. */
static void require(TSXStatus status, const char* what, HStr details) {
  if (status == 0) return;
  fprintf(stderr, "restock: %s: %s\n", what, explain(status));
  print(stderr, details);
  exit(EXIT_FAILURE);
}

static HStr string_of(const char* text) {
  HStr string = StandinStringFromText(text, -1);
  if (string == NULL) require(2, "a string", NULL);
  return string;
}

/* A place in a pair is one word, and a relative one would be beside the list. */
static HStr place_of(const char* name_space, const char* file) {
  char* path = realpath(file, NULL);
  if (path == NULL) require(2, file, NULL);
  char* pair = malloc(strlen(name_space) + 3 * strlen(path) + 2);
  char* end = pair + sprintf(pair, "%s ", name_space);
  for (const char* from = path; *from != '\0'; ++from) {
    end = *from == ' ' ? stpcpy(end, "%20") : (*end = *from, end + 1);
  }
  *end = '\0';
  HStr place = string_of(pair);
  free(pair);
  free(path);
  return place;
}

/* What is not valid is not loaded, whatever schema the list itself may name. */
static void prepare(TSXRefId document, const char* schema) {
  const uint8_t on = 1;
  const int32_t always = 1;
  HStr place = place_of("urn:stock", schema);
  HStr prefix = string_of("s");
  HStr name_space = string_of("urn:stock");
  require(TSXSetDoNamespaces(document, 0, &on), "an option", NULL);
  require(TSXSetDoSchema(document, 0, &on), "an option", NULL);
  require(TSXSetValidateOnLoad(document, 0, &always), "an option", NULL);
  require(TSXSetSchemaLocation(document, 0, &place), schema, NULL);
  require(XPathBindPrefix(document, &prefix, &name_space), "a prefix", NULL);
  ClearString(&place);
  ClearString(&prefix);
  ClearString(&name_space);
}

static void load(TSXRefId document, const char* file) {
  const uint8_t on = 1;
  HostPath path = StandinPathFromText(file);
  HStr errors = NULL;
  require(TSXSetKeepPositions(document, 0, &on), "positions", NULL);
  HStr exception = NULL;
  const TSXStatus status = TSXLoadFile(document, path, &errors, &exception);
  require(status, file, errors != NULL ? errors : exception);
  ClearString(&errors);
  ClearString(&exception);
  StandinPathDispose(path);
}

static void save(TSXRefId document, const char* file) {
  HostPath path = StandinPathFromText(file);
  HStr error = NULL;
  require(TSXSaveFile(document, path, &error), file, NULL);
  ClearString(&error);
  StandinPathDispose(path);
}

/* The first node that an expression selects, owed back with TSXNodeClose. */
static TSXRefId first(TSXRefId context, const char* expression) {
  HStr text = string_of(expression);
  HStr error = NULL;
  TSXRefId node = 0;
  require(XPathEvaluateContextToNode(context, &text, &node, &error), expression, error);
  ClearString(&text);
  ClearString(&error);
  return node;
}

static double number(TSXRefId context, const char* expression) {
  HStr text = string_of(expression);
  HStr error = NULL;
  double value = 0;
  require(XPathEvaluateContextToNumber(context, &text, &value, &error), expression, error);
  ClearString(&text);
  ClearString(&error);
  return value;
}

static void restock_item(TSXRefId item, HStr* amount) {
  TSXRefId name = first(item, "s:name");
  TSXRefId count = first(item, "s:count");
  HStr text = NULL;
  int32_t line, column;
  int64_t begin, end;
  require(TSXGetSourcePosition(count, &line, &column, &begin, &end), "a place", NULL);
  require(TSXGetText(name, &text), "a name", NULL);
  printf("%d: ", (int)line);
  print(stdout, text);
  require(TSXGetText(count, &text), "a count", NULL);
  printf(": ");
  print(stdout, text);
  require(TSXSetText(count, amount), "a count", NULL);
  printf(" -> 10\n");
  ClearString(&text);
  TSXNodeClose(name);
  TSXNodeClose(count);
}

static void restock(TSXRefId document) {
  HStr expression = string_of("/s:stock/s:item[s:count < 10]");
  HStr amount = string_of("10");
  HStr error = NULL;
  GenericRefObjSessionArray items = NULL;
  printf("%.0f pieces\n", number(document, "sum(//s:count)"));
  require(XPathEvaluateContextToNodeArray(document, &expression, &items, &error), "query", error);
  for (int32_t i = 0; i < (*items)->count; ++i) {
    restock_item((*items)->ids[i], &amount);
    TSXNodeClose((*items)->ids[i]); /* each id in the array is a hand-out */
  }
  ClearArray(&items);
  ClearString(&expression);
  ClearString(&amount);
  ClearString(&error);
}

int main(int argc, char** argv) {
  TSXRefId document = 0;
  StandinLedger ledger;
  if (argc != 4) {
    fputs("usage: restock FILE SCHEMA OUTPUT\n", stderr);
    return 2;
  }
  TSXDocumentOpen(0, &document);
  prepare(document, argv[2]);
  load(document, argv[1]);
  restock(document);
  save(document, argv[3]);
  TSXDocumentClose(document);

  StandinReadLedger(&ledger);
  return ledger.handles == 0 && ledger.paths == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
