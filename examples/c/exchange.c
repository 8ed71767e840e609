/*
 * A script host in C: runs a script on the simulated card and prints what goes to and fro.
 *
 *   cmake -S . -B build && cmake --build build
 *   build/exchange ../exchange.orv
 *
 * Without CMake (-Wl,-rpath for a library outside the system's folders):
 *
 *   cc -o exchange exchange.c $(pkg-config --cflags --libs orvane) \
 *     "-Wl,-rpath,$(pkg-config --variable=libdir orvane)" \
 *     "-DSIMULATOR=\"$(pkg-config --variable=simulators orvane)/libwinscard.so\""
 */
#include <orvane.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
/* A wide name: the folder's may have letters that the ANSI code page lacks. */
static int LoadSimulator(void) { return LoadLibraryW(L"" SIMULATOR) != NULL; }
#else
#include <dlfcn.h>
static int LoadSimulator(void) { return dlopen(SIMULATOR, RTLD_NOW) != NULL; }
#endif

static void Fail(const char* what, const char* text) {
  fprintf(stderr, "%s: %s\n", what, text);
  exit(1);
}

/* 32 records hold every list that asks for no ports and for at most 32. */
static void ListReaders(void) {
  ReaderInfo list[32];
  const int count = GetReaderList(ReaderKindPcsc, list, 0, 32);
  for (int at = 0; at < count; ++at) printf("reader %s\n", list[at].name);
}

/* Edits the tag dictionary in memory; FlushTagdict would write it to dictdata.bin in the current
 * folder. */
static void NoteTag(const char* tag, const char* meaning) {
  TagdictData entry = {0};
  snprintf(entry.tag, sizeof entry.tag, "%s", tag);
  snprintf(entry.shortText, sizeof entry.shortText, "%s", meaning);
  if (!UpTagdictData(&entry) || !FindTagdictData(tag, &entry)) Fail("can't note", tag);
  printf("tag %s %s\n", entry.tag, entry.shortText);
}

/* The library looks for the PC/SC module when a reader is opened, and takes what is loaded under
 * its name by then. Without this call a real PC/SC reader would be looked for; the name of the
 * simulated one makes sure that none is opened. */
static void OpenSimulatedReader(void) {
  if (!LoadSimulator()) Fail("can't load", SIMULATOR);
  ListReaders();
  if (!OpenReaderA("Simulated Reader 0", ReaderKindPcsc)) Fail("can't open", "Simulated Reader 0");
}

static void ResetCard(void) {
  char atr[1025];
  if (!Reset(atr)) Fail("no answer", "reset");
  printf("ATR %s\n", atr);
  SetVarValue("%ATR", atr);
}

/* A PC/SC reader answers with the data, or with 9000 where there is none. Without success it gives
 * the first two octets of what came: the status word, unless data stood before it. */
static void Send(const char* command) {
  char answer[8193];
  const char *data = "", *statusWord = "9000";
  int length = (int)strlen(command);
  /* Where a variable is not defined the text is a message: nothing of it may reach a card. A script
   * command that fails leaves the text shorter, which doesn't show here; for cards that matter, try
   * each on its own before, as the program orvane does. */
  if (length < 8 || length % 2 != 0 || CheckAsciiNum(command, 1, length) != 0) {
    Fail("no command", command);
  }
  printf(">>  %s\n", command);
  if (!SendCommand(command, length, answer)) {
    if (answer[0] == '\0') Fail("no answer", command);
    if (strcmp(answer, "9000") == 0) Fail("no status word", command);
    statusWord = answer;
  } else if (strcmp(answer, "9000") != 0) {
    data = answer;
  }
  printf("<<  %s%s%s\n", data, data[0] != '\0' ? " " : "", statusWord);
  SetVarValue("%RESP", data);
  SetVarValue("%SW", statusWord);
}

/* Runs one statement and does what it asks of its host. 0 at the end of the script. */
static int Run(const char* statement) {
  char text[512];
  switch (RunScript(statement, text)) {
    case KindAssignment:
    case ScriptNothingToRun:
      return 1;
    case KindDollar:
      puts(statement);
      return 1;
    case KindReset:
      ResetCard();
      return 1;
    case KindExpression:
      Send(text);
      return 1;
    case KindCompare:
      if (strcmp(text, "1") != 0) Fail("not as expected", statement);
      printf("ok  %s\n", statement);
      return 1;
    case KindStop:
      return 0;
    default: /* a failure, or a statement that this host doesn't know */
      Fail("can't run", statement);
      return 0;
  }
}

int main(int count, char** arguments) {
  char line[4096];
  FILE* script = count == 2 ? fopen(arguments[1], "r") : NULL;
  if (script == NULL) Fail("usage", "exchange SCRIPT");
  OpenSimulatedReader();
  while (fgets(line, sizeof line, script) != NULL) {
    if (strlen(line) == sizeof line - 1) Fail("too long", line);
    line[strcspn(line, "\r\n")] = '\0';
    if (!Run(line)) break;
  }
  fclose(script);
  CloseReader();
  NoteTag("5F20", "Cardholder Name");
  return 0;
}
