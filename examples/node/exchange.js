// A script host for Node: runs a script on the simulated card and prints what goes to and fro.
import { readFileSync } from 'node:fs';
import { OrvaneError, Reader, ReaderKind, Script, loadSimulators } from 'orvane';

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

// Runs one statement and does what it asks. False at the end of the script.
function run(reader, statement) {
  const result = Script.run(statement);
  if (result.type === 'Note') {
    console.log(statement);
  } else if (result.type === 'ResetRequest') {
    resetCard(reader);
  } else if (result.type === 'Command') {
    send(reader, result.hex);
  } else if (result.type === 'Comparison') {
    if (!result.met) throw new OrvaneError(`not as expected: ${statement}`);
    console.log('ok ', statement);
  } else if (!['Nothing', 'Assignment', 'Stop'].includes(result.type)) {
    // A value for nobody, or a reader or slot that this host lacks.
    throw new OrvaneError(`can't run ${statement}`);
  }
  return result.type !== 'Stop';
}

try {
  if (process.argv.length !== 3) throw new OrvaneError('usage: node exchange.js SCRIPT');
  const lines = readFileSync(process.argv[2], 'utf8').replace(/^\uFEFF/, '').split(/\r?\n/);
  loadSimulators(); // without this line a real PC/SC reader is looked for
  for (const { name } of Reader.list(ReaderKind.Pcsc)) console.log('reader', name);
  const reader = Reader.open(ReaderKind.Pcsc, 'Simulated Reader 0');
  try {
    lines.every((line) => run(reader, line));
  } finally {
    reader.close();
  }
} catch (failure) {
  console.error(failure.message);
  process.exitCode = 1;
}
