// A script host for Node: runs a script on the simulated card and prints what goes to and fro.
//
//   npm install orvane-VERSION.tgz
//   node exchange.js ../exchange.orv
import { readFileSync } from 'node:fs';
import {
  OrvaneError, Reader, ReaderKind, Script, TagDictionary, loadSimulators,
} from 'orvane';

function resetCard(reader) {
  const atr = reader.reset();
  console.log('ATR', atr);
  Script.set('%ATR', atr);
}

function send(reader, command) {
  console.log('>> ', command);
  const { data, statusWord } = reader.send(command);
  console.log('<< ', ...(data ? [data, statusWord] : [statusWord]));
  Script.set('%RESP', data);
  Script.set('%SW', statusWord);
}

// Runs one statement and does what it asks of its host. False at the end of the script.
function run(reader, statement) {
  const result = Script.run(statement);
  switch (result.type) {
    case 'Nothing':
    case 'Assignment':
      return true;
    case 'Note':
      console.log(statement);
      return true;
    case 'ResetRequest':
      resetCard(reader);
      return true;
    case 'Command':
      send(reader, result.hex);
      return true;
    case 'Comparison':
      if (!result.met) throw new OrvaneError(`not as expected: ${statement}`);
      console.log('ok ', statement);
      return true;
    case 'Stop':
      return false;
    default: // a value for nobody, or a reader or slot that this host has no other of
      throw new OrvaneError(`can't run ${statement}`);
  }
}

function main(script) {
  loadSimulators(); // without this line a real PC/SC reader is looked for
  for (const { name } of Reader.list(ReaderKind.Pcsc)) console.log('reader', name);
  const reader = Reader.open(ReaderKind.Pcsc, 'Simulated Reader 0');
  try {
    const lines = readFileSync(script, 'utf8').replace(/^\uFEFF/, '').split(/\r?\n/);
    lines.every((line) => run(reader, line));
  } finally {
    reader.close();
  }
  TagDictionary.replace({ tag: '5F20', shortText: 'Cardholder Name' });
  const { tag, shortText } = TagDictionary.find('5F20');
  console.log('tag', tag, shortText);
}

try {
  if (process.argv.length !== 3) throw new OrvaneError('usage: node exchange.js SCRIPT');
  main(process.argv[2]);
} catch (failure) {
  console.error(failure.message);
  process.exitCode = 1;
}
