/* A host in C: calls every function of the library once and looks at what it gives. */
#include <stdio.h>
#include <string.h>

#include "orvane.h"

static int failures = 0;

static void Expect(int holds, const char* what) {
  if (holds) return;
  ++failures;
  fprintf(stderr, "not as expected: %s\n", what);
}

#define EXPECT(condition) Expect((condition), #condition)

static void UseScripts(void) {
  char text[512];
  EXPECT(SetVarValue("%K", "0400") == ScriptDone);
  EXPECT(GetVarValue("%k") == ScriptDone);
  EXPECT(RunScript("00a4 %K", text) == KindExpression && strcmp(text, "00A40400") == 0);
}

static void UseReaders(void) {
  ReaderInfo list[4];
  char answer[8193] = "";
  EXPECT(GetReaderList(ReaderKindTyCom, list, 4, 0) == 4 && strcmp(list[3].name, "COM4") == 0);
  EXPECT(SetReader(3) == 1);
  EXPECT(OpenReader(1, ReaderKindFm8201, 9600) == 0);
  EXPECT(OpenReaderA("COM1", ReaderKindFm8201) == 0);
  ChangeSlot("0C");
  EXPECT(Reset(answer) == 0);
  EXPECT(SendCommand("00A40400", 8, answer) == 1 && strcmp(answer, "") == 0);
  EXPECT(CloseReader() == 1);
}

static void UseConversions(void) {
  char text[64] = "";
  unsigned char octets[4] = {0, 0, 0, 0};
  int32_t number = 0;
  int32_t count = 0;
  URLEncode("a b", text);
  EXPECT(strcmp(text, "a%20b") == 0);
  memset(text, 0, sizeof text);
  URLDecode("a+b", text);
  EXPECT(strcmp(text, "a b") == 0);
  EXPECT(AsciiToHex("12 aB", octets, 5) == 1 && octets[0] == 0x12 && octets[1] == 0xAB);
  memset(text, 0, sizeof text);
  HexToAscii(octets, text, 2);
  EXPECT(strcmp(text, "12AB") == 0);
  memset(text, 0, sizeof text);
  EXPECT(AsciiToHexStr("AB", text, 2) == 1 && strcmp(text, "\\xAB") == 0);
  EXPECT(CheckAsciiNum("12G", 1, 3) == 3);
  EXPECT(HexStrToInt("1234", &number, 4) == 1 && number == 0x1234);
  EXPECT(HexToInt(octets, &number, 2) == 1 && number == 0x12AB);
  EXPECT(IntToHex(octets, 0x56, &count) == 1 && count == 1 && octets[3] == 0x56);
  memset(text, 0, sizeof text);
  EXPECT(IntToHexStr(text, 0x789, &count) == 1 && count == 4 && strcmp(text, "0789") == 0);
  memset(text, 0, sizeof text);
  ASCII2UTF_8("plain", text);
  EXPECT(strcmp(text, "plain") == 0);
  memset(text, 0, sizeof text);
  UTF_82ASCII("plain", text);
  EXPECT(strcmp(text, "plain") == 0);
}

static void UseTimesAndLogs(void) {
  char text[36] = "";
  uint32_t stamp = 0;
  FILE* log;
  GetTimeStampInt(&stamp);
  EXPECT(stamp != 0);
  GetTimeStampStr(text, 0);
  EXPECT(strlen(text) > 0);
  GetTimeStr(text);
  EXPECT(strlen(text) == 19);
  GetTimeStrFromTimeStampInt(text, 951840000);
  EXPECT(strcmp(text, "2000-03-01 00:00:00") == 0);
  GetTimeStrFromTimeStampStr(text, "951840000123", 1);
  EXPECT(strcmp(text, "2000-03-01 00:00:00:123") == 0);

  remove("every_export.log");
  AsciiLog("every_export.log", "card ");
  HexLog("every_export.log", (const unsigned char*)"\x90", 1);
  log = fopen("every_export.log", "r");
  EXPECT(log != NULL && fgets(text, sizeof text, log) != NULL && strcmp(text, "card 90") == 0);
  if (log != NULL) fclose(log);
  remove("every_export.log");
}

static void UseTags(void) {
  TagParser* const parser = TagParsing_Init();
  TagRecord record;
  EXPECT(parser != NULL);
  EXPECT(TagParsing_Parse(parser, "70 03 5A 01 12") == 1);
  EXPECT(TagParsing_GetTag(parser, "5a", (char*)&record) == 1 && strcmp(record.value, "12") == 0);
  TagParsing_Free(parser);
}

static void UseDictionary(void) {
  TagdictData record;
  TagdictData found;
  TagdictData all[2];
  int32_t count = 0;
  remove("dictdata.bin");
  memset(&record, 0, sizeof record);
  strcpy(record.tag, "5A");
  strcpy(record.shortText, "PAN");
  EXPECT(AddTagdictData(&record) == 1);
  EXPECT(FindTagdictData("5a", &found) == 1 && strcmp(found.shortText, "PAN") == 0);
  strcpy(record.shortText, "account");
  EXPECT(UpTagdictData(&record) == 1);
  EXPECT(GetTagdict(all, &count) == 1 && count == 1 && strcmp(all[0].shortText, "account") == 0);
  EXPECT(DeleteTagdictData("5A") == 1);
  EXPECT(FlushTagdict() == 1);
  EXPECT(remove("dictdata.bin") == 0);
}

int main(void) {
  UseScripts();
  UseReaders();
  UseConversions();
  UseTimesAndLogs();
  UseTags();
  UseDictionary();
  return failures == 0 ? 0 : 1;
}
