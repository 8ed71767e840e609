import { closeSync, fstatSync, openSync, readSync, statSync } from 'node:fs';
import { DataError } from './errors.js';
import { encode, native, textOf } from './library.js';

const parsers = new FinalizationRegistry((parser) => native.TagParsing_Free(parser));

export class TagTree {
  #parser;

  constructor(hex) {
    this.#parser = native.TagParsing_Init();
    if (!this.#parser) throw new RangeError('no memory');
    parsers.register(this, this.#parser);
    if (hex !== undefined) this.parse(hex);
  }

  parse(hex) {
    if (!native.TagParsing_Parse(this.#parser, encode(hex))) {
      throw new DataError('malformed BER-TLV data, or a tag above one octet');
    }
  }

  find(tag) {
    const record = Buffer.alloc(2050);
    if (!native.TagParsing_GetTag(this.#parser, encode(tag), record)) return undefined;
    return textOf(record.subarray(4));
  }
}

const recordSize = 1244;
// Where each text of a record begins and ends.
const fields = { tag: [0, 20], shortText: [20, 220], longText: [220, 1244] };

function recordOf(entry) {
  const record = Buffer.alloc(recordSize);
  for (const [field, [begin, end]] of Object.entries(fields)) {
    const text = encode(entry[field] ?? '');
    if (text.length > end - begin) throw new DataError('a text of the dictionary is too long');
    text.copy(record, begin);
  }
  return record;
}

function entryOf(record) {
  return Object.fromEntries(Object.entries(fields)
    .map(([field, [begin, end]]) => [field, textOf(record.subarray(begin, end))]));
}

// What the library would read now: the stated number of records, each of at least three octets.
function look() {
  const nothing = { read: false, records: 0, state: '' };
  let file;
  try {
    if (!statSync('dictdata.bin').isFile()) return nothing;
    file = openSync('dictdata.bin');
    const said = Buffer.alloc(4);
    readSync(file, said);
    const { size, mtimeMs } = fstatSync(file);
    const records = Math.min(Math.max(said.readInt32LE(), 0), Math.floor(size / 3));
    return { read: true, records, state: `${size} ${mtimeMs} ${records}` };
  } catch {
    return nothing;
  } finally {
    if (file !== undefined) closeSync(file);
  }
}

export class TagDictionary {
  static #loaded = false;
  static #known = true;
  static #fileRecords = 0;
  static #added = 0;

  static list() {
    this.#load();
    if (!this.#loaded && this.#added === 0) return [];
    if (!this.#loaded) throw new DataError('there is no dictdata.bin yet: flush first');
    if (!this.#known) throw new DataError('dictdata.bin changed while it was read');
    const records = Buffer.alloc((this.#fileRecords + this.#added + 1) * recordSize);
    const count = [0];
    if (!native.GetTagdict(records, count)) throw new RangeError('no memory');
    return Array.from({ length: count[0] },
      (_, at) => entryOf(records.subarray(at * recordSize, (at + 1) * recordSize)));
  }

  static find(tag) {
    this.#load();
    const record = Buffer.alloc(recordSize);
    return native.FindTagdictData(encode(tag), record) ? entryOf(record) : undefined;
  }

  static add(entry) {
    this.#load();
    this.#added += 1;
    return native.AddTagdictData(recordOf(entry)) !== 0;
  }

  static replace(entry) {
    this.#load();
    this.#added += 1;
    return native.UpTagdictData(recordOf(entry)) !== 0;
  }

  static remove(tag) {
    this.#load();
    return native.DeleteTagdictData(encode(tag)) !== 0;
  }

  static flush() {
    this.#load();
    native.FlushTagdict();
    this.#fileRecords = Math.max(this.#fileRecords, look().records);
  }

  // The library reads the file in the first call that finds it, and does not say how much it was.
  static #load() {
    if (this.#loaded) return;
    const before = look();
    native.FindTagdictData(encode(''), Buffer.alloc(recordSize));
    const after = look();
    this.#loaded = before.read && after.read;
    this.#known &&= before.state === after.state;
    this.#fileRecords = Math.max(this.#fileRecords, before.records, after.records);
  }
}
