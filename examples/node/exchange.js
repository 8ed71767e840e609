// A script host for Node: runs a script on the simulated card and prints what goes to and fro.
//
//   npm install
//   node exchange.js ../exchange.orv [PREFIX]
//
// PREFIX is where Orvane is installed, /usr if it is not told; on Windows the folder of orvane.dll.
import { readFileSync } from 'node:fs';
import { resolve } from 'node:path';
import koffi from 'koffi';

// The codes of RunScript, and the kind of PC/SC readers: enum StatementKind and others in orvane.h.
const Kind = {
  Assignment: 0, Expression: 1, Reset: 4, Dollar: 5, Stop: 6, Compare: 7, NothingToRun: 100,
};
const ReaderKindPcsc = 3;

function fail(message) {
  console.error(message);
  process.exit(1);
}

const [script, prefix = '/usr'] = process.argv.slice(2);
if (!script) fail('usage: node exchange.js SCRIPT [PREFIX]');

const windows = process.platform === 'win32';
const library = koffi.load(resolve(prefix, windows ? 'orvane.dll' : 'lib/liborvane.so'));
const RunScript = library.func('int32_t RunScript(const char* script, _Out_ uint8_t* result)');
const SetVarValue = library.func('int32_t SetVarValue(const char* name, const char* value)');
const OpenReaderA = library.func('int32_t OpenReaderA(const char* name, int32_t kind)');
const CloseReader = library.func('int32_t CloseReader()');
const Reset = library.func('int32_t Reset(_Out_ uint8_t* atrHex)');
const SendCommand = library.func(
  'int32_t SendCommand(const char* cmdHex, int32_t hexLen, _Out_ uint8_t* respHex)');
const GetReaderList = library.func(
  'int32_t GetReaderList(int32_t kind, _Out_ uint8_t* list, int32_t count, int32_t max)');
const UpTagdictData = library.func('int32_t UpTagdictData(const uint8_t* record)');
const FindTagdictData = library.func('int32_t FindTagdictData(const char* tag, _Out_ uint8_t* out)');

// The library looks for the PC/SC module when a reader is opened, and takes what is loaded under
// its name by then.
const simulator = koffi.load(resolve(prefix,
  windows ? 'simulators/winscard.dll' : 'lib/orvane/simulators/libwinscard.so'));

// What the library wrote into a buffer, up to its terminator.
const text = (buffer) => buffer.toString('utf8', 0, buffer.indexOf(0));

// 32 records of 272 octets hold every list that asks for no ports and for at most 32. A name
// stands 12 octets behind a record's beginning.
function listReaders() {
  const list = Buffer.alloc(32 * 272);
  const count = GetReaderList(ReaderKindPcsc, list, 0, 32);
  for (let at = 0; at < count; ++at) console.log('reader', text(list.subarray(at * 272 + 12)));
}

// Edits the tag dictionary in memory; FlushTagdict would write it to dictdata.bin in the current
// folder. In a record the tag has 20 octets, the short text 200, the long one 1,024.
function noteTag(tag, meaning) {
  const entry = Buffer.alloc(1244);
  entry.write(tag, 0, 19);
  entry.write(meaning, 20, 199);
  if (!UpTagdictData(entry) || !FindTagdictData(tag, entry)) fail(`can't note ${tag}`);
  console.log('tag', text(entry), text(entry.subarray(20)));
}

function resetCard() {
  const atr = Buffer.alloc(1025);
  if (!Reset(atr)) fail('no answer to reset');
  console.log('ATR', text(atr));
  SetVarValue('%ATR', text(atr));
}

// A PC/SC reader answers with the data, or with 9000 where there is none. Without success it gives
// the first two octets of what came: the status word, unless data stood before it.
function send(command) {
  // Where a variable is not defined the text is a message: nothing of it may reach a card. A
  // script command that fails leaves the text shorter, which doesn't show here; for cards that
  // matter, try each on its own before, as the program orvane does.
  if (!/^([0-9A-F]{2}){4,}$/.test(command)) fail(`no command: ${command}`);
  console.log('>> ', command);
  const buffer = Buffer.alloc(8193);
  const done = SendCommand(command, command.length, buffer);
  const answer = text(buffer);
  if (!done && !answer) fail(`no answer to ${command}`);
  if (!done && answer === '9000') fail(`no status word in the answer to ${command}`);
  const statusWord = done ? '9000' : answer;
  const data = answer === statusWord ? '' : answer;
  console.log('<< ', ...(data ? [data, statusWord] : [statusWord]));
  SetVarValue('%RESP', data);
  SetVarValue('%SW', statusWord);
}

// Runs one statement and does what it asks of its host. False at the end of the script.
function run(statement) {
  const buffer = Buffer.alloc(512);
  const code = RunScript(statement, buffer);
  switch (code) {
    case Kind.Assignment:
    case Kind.NothingToRun:
      return true;
    case Kind.Dollar:
      console.log(statement);
      return true;
    case Kind.Reset:
      resetCard();
      return true;
    case Kind.Expression:
      send(text(buffer));
      return true;
    case Kind.Compare:
      if (text(buffer) !== '1') fail(`not as expected: ${statement}`);
      console.log('ok ', statement);
      return true;
    case Kind.Stop:
      return false;
    default: // a failure, or a statement that this host doesn't know
      return fail(`can't run: ${statement}`);
  }
}

listReaders();
if (!OpenReaderA('Simulated Reader 0', ReaderKindPcsc)) fail("can't open Simulated Reader 0");
readFileSync(script, 'utf8').split(/\r?\n/).every(run);
CloseReader();
noteTag('5F20', 'Cardholder Name');
simulator.unload();
