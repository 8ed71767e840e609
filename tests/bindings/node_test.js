// The package for Node does what the rows of cases.txt say: node --test, where it is installed.
import assert from 'node:assert';
import { mkdtempSync, readFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import test from 'node:test';
import * as orvane from 'orvane';

const { Reader, Response, Script, TagDictionary, TagTree } = orvane;
const joined = (...words) => words.filter((word) => word !== '' && word !== undefined).join(' ');
const yesOrNo = (value) => (value ? 'yes' : 'no');
const answer = (it) => (it ? joined(it.data, it.statusWord, it.ok ? 'ok' : '') : 'none');
const listed = (texts) => texts.join(', ') || 'none';
const expand = (text) => text.replace(/\{(?:(.+?)\*(\d+)|zero)\}/g, (_, unit, count) => unit?.repeat(count) ?? '\0');

let reader;
const tree = new TagTree();
const entry = (tag, shortText, longText) => ({ tag, shortText, longText });
const operations = {
  run(text) {
    const { type, ...fields } = Script.run(text);
    return joined(type, ...Object.values(fields).map((field) => (field === !!field ? yesOrNo(field) : field)));
  },
  set: Script.set,
  get: Script.get,
  has: (name) => yesOrNo(Script.has(name)),
  list: (kind, ports = 0) => listed(Reader.list(+kind, +ports).map((each) => joined(each.name, each.port))),
  open(kind, name) { reader = Reader.open(+kind, name); },
  open_port(kind, port) { reader = Reader.openPort(+kind, +port); },
  reset: () => reader.reset(),
  slot: (slot) => reader.chooseSlot(+slot),
  send: (command) => answer(reader.send(command)),
  send_octets: (command) => answer(reader.send(orvane.toOctets(command))),
  close: () => reader.close(),
  response: (kind, result, text) => answer(Response.read(+kind, +result, text)),
  parse: (hex) => tree.parse(hex),
  find: (tag) => tree.find(tag) ?? 'none',
  dictionary: () => listed(TagDictionary.list().map((each) => each.tag)),
  note: (...texts) => yesOrNo(TagDictionary.add(entry(...texts))),
  replace: (...texts) => yesOrNo(TagDictionary.replace(entry(...texts))),
  meaning: (tag) => joined(...Object.values(TagDictionary.find(tag) ?? { none: 'none' })),
  remove: (tag) => yesOrNo(TagDictionary.remove(tag)),
  flush: () => TagDictionary.flush(),
  to_octets: (text) => orvane.toHex(orvane.toOctets(text)),
  to_escapes: orvane.toEscapes,
  is_hex: (text) => yesOrNo(orvane.isHex(text)),
  is_decimal: (text) => yesOrNo(orvane.isDecimal(text)),
  to_number: (text) => String(orvane.toNumber(text)),
  octets_to_number: (text) => String(orvane.toNumber(orvane.toOctets(text))),
  number_to_hex: (text) => orvane.numberToHex(+text),
  number_to_octets: (text) => orvane.toHex(orvane.numberToOctets(+text)),
  url_encode: orvane.urlEncode,
  url_decode: orvane.urlDecode,
  time_of: (text) => orvane.timeOf(+text),
  time_of_text: (text, milliseconds) => orvane.timeOfText(text, milliseconds !== undefined),
};

function outcome(name, given) {
  try {
    return operations[name](...given) ?? 'done';
  } catch (error) {
    if (!(error instanceof orvane.OrvaneError)) throw error;
    return joined(error.name, error.code);
  }
}

test('the package does what the rows say', () => {
  const rows = readFileSync(process.env.CASES, 'utf8').split('\n')
    .filter((row) => !row.startsWith('#') && row.split(' |').length === 3);
  process.chdir(mkdtempSync(join(tmpdir(), 'orvane-')));
  orvane.loadSimulators();
  assert(rows.length > 100);
  for (const row of rows) {
    const [name, given, expected] = row.split(' |');
    const texts = given.split(' ::').map((text) => expand(text.slice(1)));
    assert.strictEqual(outcome(name, texts), expand(expected.slice(1)), row);
  }
});
