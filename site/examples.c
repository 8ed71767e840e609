/* What the pages of the functions show, on the simulated card. */
#include <orvane.h>
#include <stdio.h>
#include <string.h>

static void RunScript_example(void) {
  char text[512];
  int32_t code = RunScript("00A40000 02 @strmidh(3F00FF, 0, 2)", text);
  printf("%d %s\n", (int)code, text); /* 1 00A40000023F00 */
}

static void SetVarValue_example(void) {
  char text[512];
  SetVarValue("%AID", "F04F5256414E4501");
  RunScript("00A40400 08 %AID 00", text);
  printf("%s\n", text); /* 00A4040008F04F5256414E450100 */
}

static void GetReaderList_example(void) {
  ReaderInfo list[32];
  int32_t found = GetReaderList(ReaderKindPcsc, list, 31, 32);
  if (found > 0) printf("%d: %s\n", (int)found, list[0].name); /* 2: Simulated Reader 0 */
}

static void OpenReaderA_example(void) {
  if (SetReader(0) != 1 || OpenReaderA("Simulated Reader 0", ReaderKindPcsc) != 1) {
    fprintf(stderr, "The reader can't be opened.\n");
  }
}

static void Reset_example(void) {
  char atr[1025];
  if (Reset(atr) == 1) printf("%s\n", atr); /* 3B6A0000803180664F5256414E45 */
}

static void SendCommand_example(void) {
  const char command[] = "00A4040008F04F5256414E450100";
  char answer[8193];
  int32_t done = SendCommand(command, (int32_t)strlen(command), answer);
  printf("%s %.8s\n", done == 1 ? "9000" : answer, answer); /* 9000 6F298408 */
}

static void CheckAsciiNum_example(void) {
  const char text[] = "00A4Z4";
  printf("%d\n", (int)CheckAsciiNum(text, 1, (int32_t)strlen(text))); /* 5 */
}

static void HexToAscii_example(void) {
  const unsigned char octets[] = {0x3F, 0x00};
  char text[5] = ""; /* the zero behind the digits is the caller's */
  HexToAscii(octets, text, 2);
  printf("%s\n", text); /* 3F00 */
}

static void AsciiToHex_example(void) {
  unsigned char octets[2];
  if (AsciiToHex("3F 00", octets, 5) == 1) printf("%d %d\n", octets[0], octets[1]); /* 63 0 */
}

static void TagParsing_Parse_example(void) {
  TagParser* parser = TagParsing_Init();
  TagRecord record;
  if (TagParsing_Parse(parser, "6F06 8404 A0000000") == 1 &&
      TagParsing_GetTag(parser, "84", (char*)&record) == 1) {
    printf("%s %s\n", record.lengthText, record.value); /* 04 A0000000 */
  }
  TagParsing_Free(parser);
}

static void FindTagdictData_example(void) {
  TagdictData record = {"84", "DF Name", "Name of the application"};
  TagdictData found;
  AddTagdictData(&record);
  if (FindTagdictData("84", &found) == 1) printf("%s\n", found.shortText); /* DF Name */
}

int main(void) {
  RunScript_example();
  SetVarValue_example();
  GetReaderList_example();
  OpenReaderA_example();
  Reset_example();
  SendCommand_example();
  CheckAsciiNum_example();
  HexToAscii_example();
  AsciiToHex_example();
  TagParsing_Parse_example();
  FindTagdictData_example();
  return 0;
}
