// The functions of orvane.h, and the conversion of texts for them.
import { existsSync } from 'node:fs';
import { join } from 'node:path';
import { fileURLToPath } from 'node:url';
import koffi from 'koffi';
import { DataError } from './errors.js';

export const windows = process.platform === 'win32';
export const folder = fileURLToPath(
  new URL(`../native/${process.platform}-${process.arch}`, import.meta.url));

// The package's own library, or else the system's.
const own = join(folder, windows ? 'orvane.dll' : 'liborvane.so');
const library = koffi.load(existsSync(own) ? own : windows ? 'orvane.dll' : 'liborvane.so.1');

koffi.opaque('TagParser');
export const native = Object.fromEntries([
  'int32_t RunScript(const uint8_t* script, _Out_ uint8_t* result)',
  'int32_t SetVarValue(const uint8_t* name, const uint8_t* value)',
  'int32_t GetVarValue(const uint8_t* name)',
  'int32_t GetReaderList(int32_t kind, _Out_ uint8_t* list, int32_t count, int32_t max)',
  'int32_t SetReader(uint32_t index)',
  'int32_t OpenReader(int32_t port, int32_t kind, int32_t baud)',
  'int32_t OpenReaderA(const uint8_t* name, int32_t kind)',
  'int32_t CloseReader()',
  'int32_t Reset(_Out_ uint8_t* atrHex)',
  'void ChangeSlot(const uint8_t* slotHex)',
  'int32_t SendCommand(const uint8_t* cmdHex, int32_t hexLen, _Out_ uint8_t* respHex)',
  'void URLEncode(const uint8_t* text, _Out_ uint8_t* out)',
  'void URLDecode(const uint8_t* text, _Out_ uint8_t* out)',
  'void HexToAscii(const uint8_t* octets, _Out_ uint8_t* text, int32_t count)',
  'int32_t AsciiToHex(const uint8_t* text, _Out_ uint8_t* octets, int32_t length)',
  'int32_t AsciiToHexStr(const uint8_t* text, _Out_ uint8_t* out, int32_t length)',
  'int32_t CheckAsciiNum(const uint8_t* text, int32_t allowHex, int32_t length)',
  'int32_t HexStrToInt(const uint8_t* text, _Out_ int32_t* value, int32_t length)',
  'int32_t HexToInt(const uint8_t* octets, _Out_ int32_t* value, int32_t count)',
  'int32_t IntToHex(_Out_ uint8_t* out, int32_t value, _Out_ int32_t* count)',
  'int32_t IntToHexStr(_Out_ uint8_t* out, int32_t value, _Out_ int32_t* length)',
  'void GetTimeStampInt(_Out_ uint32_t* stamp)',
  'void GetTimeStampStr(_Out_ uint8_t* out, int32_t withMs)',
  'void GetTimeStr(_Out_ uint8_t* out)',
  'void GetTimeStrFromTimeStampInt(_Out_ uint8_t* out, uint32_t stamp)',
  'void GetTimeStrFromTimeStampStr(_Out_ uint8_t* out, const uint8_t* stampText, int32_t withMs)',
  'void AsciiLog(const uint8_t* path, const uint8_t* text)',
  'void HexLog(const uint8_t* path, const uint8_t* octets, int32_t count)',
  'TagParser* TagParsing_Init()',
  'int32_t TagParsing_Parse(TagParser* parser, const uint8_t* text)',
  'int32_t TagParsing_GetTag(TagParser* parser, const uint8_t* tag, _Out_ uint8_t* out)',
  'void TagParsing_Free(TagParser* parser)',
  'int32_t GetTagdict(_Out_ uint8_t* records, _Out_ int32_t* count)',
  'int32_t FindTagdictData(const uint8_t* tag, _Out_ uint8_t* out)',
  'int32_t AddTagdictData(const uint8_t* record)',
  'int32_t DeleteTagdictData(const uint8_t* tag)',
  'int32_t UpTagdictData(const uint8_t* record)',
  'int32_t FlushTagdict()',
].map((declaration) => [declaration.match(/(\w+)\(/)[1], library.func(declaration)]));

// UTF-8 with a terminating zero.
export function encode(text) {
  if (typeof text !== 'string') throw new DataError(`not a text: ${text}`);
  if (text.includes('\0')) throw new DataError('a text has a zero octet in it');
  return Buffer.from(`${text}\0`);
}

// The name of a reader or a log file. On Windows it is in the ANSI code page, to which Node cannot
// convert: only ASCII is accepted, which is the same in all of them.
export function encodeName(name) {
  const octets = encode(name);
  if (windows && octets.length !== name.length + 1) {
    throw new DataError(`${name} has letters beyond ASCII: open the reader by its port`);
  }
  return octets;
}

// The content of an area, up to its terminator.
export function bytesOf(area) {
  const end = area.indexOf(0);
  return area.subarray(0, end < 0 ? area.length : end);
}

export const textOf = (area) => bytesOf(area).toString('utf8');
