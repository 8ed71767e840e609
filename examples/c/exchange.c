/* A script host in C: runs a script on the simulated card and prints what goes to and fro. */
#include <orvane.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "load_simulator.h"

static void Fail(const char* what, const char* text) {
  fprintf(stderr, "%s: %s\n", what, text);
  exit(1);
}

static void ResetCard(void) {
  char atr[1025];
  if (!Reset(atr)) Fail("no answer", "reset");
  printf("ATR %s\n", atr);
  SetVarValue("%ATR", atr);
}

static void Send(const char* command) {
  char answer[8193];
  const int length = (int)strlen(command);
  /* A failed statement leaves a message or nothing: send only whole octets, four at least. */
  if (length < 8 || length % 2 != 0 || CheckAsciiNum(command, 1, length) != 0) {
    Fail("no command", command);
  }
  printf(">>  %s\n", command);
  const int done = SendCommand(command, length, answer);
  /* A PC/SC reader gives the data, or 9000 where there is none. Without success it gives the first
   * two octets of what came: the status word, unless data stood before it. */
  const int bare = strcmp(answer, "9000") == 0;
  if (!done && (bare || answer[0] == '\0')) Fail("no status word", command);
  const char* data = done && !bare ? answer : "";
  const char* statusWord = done ? "9000" : answer;
  printf("<<  %s%s%s\n", data, data[0] != '\0' ? " " : "", statusWord);
  SetVarValue("%RESP", data);
  SetVarValue("%SW", statusWord);
}

/* Runs one statement and does what it asks. 0 at the end of the script. */
static int Run(const char* statement) {
  char text[512] = "";
  const int kind = RunScript(statement, text);
  const int standsAlone = text[0] == '\0'; /* @reset() or @stop(): nothing stood before it */
  if (kind == KindStop && standsAlone) return 0;
  if (kind == KindReset && standsAlone) {
    ResetCard();
  } else if (kind == KindExpression) {
    Send(text);
  } else if (kind == KindDollar) {
    puts(statement);
  } else if (kind == KindCompare) {
    if (strcmp(text, "1") != 0) Fail("not as expected", statement);
    printf("ok  %s\n", statement);
  } else if (kind != KindAssignment && kind != ScriptNothingToRun) {
    Fail("can't run", statement); /* a failure, or a reader or slot that this host lacks */
  }
  return 1;
}

int main(int count, char** arguments) {
  char line[4096];
  ReaderInfo list[32]; /* room for every list that asks for no ports and for at most 32 */
  FILE* script = count == 2 ? fopen(arguments[1], "r") : NULL;
  if (script == NULL) Fail("usage", "exchange SCRIPT");
  if (!LoadSimulator()) Fail("can't load", SIMULATOR);
  const int readers = GetReaderList(ReaderKindPcsc, list, 0, 32);
  for (int at = 0; at < readers; ++at) printf("reader %s\n", list[at].name);
  if (!OpenReaderA("Simulated Reader 0", ReaderKindPcsc)) Fail("can't open", "the reader");
  while (fgets(line, sizeof line, script) != NULL) {
    if (strlen(line) == sizeof line - 1) Fail("too long", line);
    line[strcspn(line, "\r\n")] = '\0';
    if (!Run(line)) break;
  }
  fclose(script);
  CloseReader();
  return 0;
}
