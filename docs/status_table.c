/* Prints the status codes as others need them, from the one list:
 *   status_table markdown   the page of the manual
 *   status_table python     the names for the Python example */
#include <stdio.h>
#include <string.h>
#include <tessel/status_list.h>

typedef struct Row {
  int number;
  const char* name;
  const char* functions;
  const char* meaning;
  const char* advice;
} Row;

#define ROW(number, name, functions, meaning, advice) {number, #name, functions, meaning, advice},
static const Row kRows[] = {TSX_STATUS_LIST(ROW)};
#undef ROW
static const size_t kRowCount = sizeof kRows / sizeof *kRows;

static void print_markdown(void) {
  puts(
      "# Status codes {#status}\n\n"
      "0 is success, 1 and 2 are the host's own (missing destination, allocation refused), "
      "and these are the library's. `tessel explain CODE` prints one of them.\n\n"
      "\"Names no ...\" covers id 0, an id never issued or given back, an id whose object is "
      "gone, and one of another kind.\n\n"
      "| Code | Name | Meaning | Returned by | What to do |\n|---|---|---|---|---|");
  for (size_t i = 0; i < kRowCount; ++i) {
    const Row* row = &kRows[i];
    printf("| %d | \\anchor %s `%s` | %s | %s | %s |\n", row->number, row->name, row->name,
           row->meaning, row->functions, row->advice);
  }
}

static void print_python(void) {
  puts("\"\"\"Names and meanings of the status codes, made from tessel/status_list.h.\"\"\"\n");
  puts("STATUS = {\n    2: (\"hostErrRefused\", \"the host refused the memory\"),");
  for (size_t i = 0; i < kRowCount; ++i) {
    printf("    %d: (\"%s\", \"%s\"),\n", kRows[i].number, kRows[i].name, kRows[i].meaning);
  }
  puts("}");
}

int main(int argc, char** argv) {
  const char* form = argc == 2 ? argv[1] : "";
  if (strcmp(form, "markdown") == 0) {
    print_markdown();
  } else if (strcmp(form, "python") == 0) {
    print_python();
  } else {
    fputs("usage: status_table markdown|python\n", stderr);
    return 2;
  }
  return ferror(stdout) != 0;
}
