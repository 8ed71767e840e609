import { readdirSync } from 'node:fs';
import { join } from 'node:path';
import koffi from 'koffi';
import { toHex, toOctets } from './conversions.js';
import { DataError, ReaderError } from './errors.js';
import { encode, encodeName, folder as ownFolder, native, textOf, windows } from './library.js';

export const ReaderKind = Object.freeze({
  TyUsb: 1, TyCom: 2, Pcsc: 3, Wd: 4, D8: 5, Fm8201: 6, S5009: 7, S5009Ats: 8, Tcp: 10, Icr: 11, Bsit: 12,
});

const keepsStatusWord = [ReaderKind.Wd, ReaderKind.S5009, ReaderKind.S5009Ats];
const repliesData = [ReaderKind.TyUsb, ReaderKind.TyCom];
const s5009 = [ReaderKind.S5009, ReaderKind.S5009Ats];

export function hasStatusWord(kind) {
  return ![ReaderKind.Fm8201, ReaderKind.Tcp, ReaderKind.Icr].includes(kind);
}

export function longestCommand(kind) {
  if (kind === ReaderKind.D8 || kind === ReaderKind.Wd) return 255;
  return s5009.includes(kind) ? 133 : 4096;
}

export function mostData(kind) {
  if (s5009.includes(kind)) return 126;
  return repliesData.includes(kind) ? 256 : 254;
}

export class Response {
  constructor(data, statusWord, ok) {
    Object.assign(this, { data, statusWord, ok });
    Object.freeze(this);
  }

  get octets() {
    return toOctets(this.data);
  }

  static read(kind, result, text) {
    if (!hasStatusWord(kind)) return result ? new Response(text, '', true) : undefined;
    if (!result) {
      // This answer does not end in 9000: if it begins so, it must not look like success.
      return text ? new Response('', text === '9000' ? '' : text, false) : undefined;
    }
    // For the kinds 1 and 2 all text is data; the others give 9000 if there is no data.
    const ends = keepsStatusWord.includes(kind)
      ? text.endsWith('9000') : !repliesData.includes(kind) && text === '9000';
    return new Response(ends ? text.slice(0, -4) : text, '9000', true);
  }
}

const recordSize = 272;
const taken = new Set();

export class Reader {
  #number;

  constructor(kind, what, opening) {
    if (!Object.values(ReaderKind).includes(kind)) throw new DataError(`there is no kind ${kind}`);
    this.kind = kind;
    const free = Array.from({ length: 16 }, (_, number) => number).find((number) => !taken.has(number));
    if (free === undefined) throw new ReaderError('sixteen readers are open');
    native.SetReader(free);
    if (!opening()) throw new ReaderError(`${what} doesn't open`);
    this.#number = free;
    taken.add(free);
  }

  static list(kind, ports = 0) {
    if (!(ports >= 0 && ports <= 256)) throw new DataError('a list has 0 to 256 ports');
    const most = Math.max(ports + 1, 64);
    const records = Buffer.alloc(most * recordSize);
    const count = native.GetReaderList(kind, records, ports, most);
    return Array.from({ length: count }, (_, at) => {
      const record = records.subarray(at * recordSize, (at + 1) * recordSize);
      return {
        kind: record.readInt32LE(0),
        port: record.readInt32LE(4) ? record.readInt32LE(8) : undefined,
        name: textOf(record.subarray(12, 268)),
      };
    });
  }

  static open(kind, name) {
    const octets = encodeName(name);
    return new Reader(kind, name, () => native.OpenReaderA(octets, kind));
  }

  static openPort(kind, port) {
    return new Reader(kind, `port ${port}`, () => native.OpenReader(port, kind, 9600));
  }

  get isOpen() {
    return this.#number !== undefined;
  }

  reset() {
    this.#select();
    const atr = Buffer.alloc(1025);
    if (!native.Reset(atr)) throw new ReaderError('no answer to reset');
    return textOf(atr);
  }

  chooseSlot(slot) {
    if (!Number.isInteger(slot) || slot < 0 || slot > 255) throw new DataError(`there is no slot ${slot}`);
    this.#select();
    native.ChangeSlot(encode(toHex(Buffer.of(slot))));
  }

  send(command) {
    const octets = typeof command === 'string' ? toOctets(command) : command;
    this.#select();
    const [least, most] = [hasStatusWord(this.kind) ? 4 : 1, longestCommand(this.kind)];
    if (!(octets.length >= least && octets.length <= most)) {
      throw new DataError(
        `a command of ${octets.length} octets: this reader takes ${least} to ${most}`);
    }
    const digits = toHex(octets);
    const answer = Buffer.alloc(8193);
    const result = native.SendCommand(encode(digits), digits.length, answer);
    const response = Response.read(this.kind, result, textOf(answer));
    if (response) return response;
    if (this.kind === ReaderKind.Tcp) this.#release();
    throw new ReaderError('no answer from the card or its reader');
  }

  close() {
    if (this.isOpen && !this.#release()) {
      throw new ReaderError("the reader's library refuses to close it");
    }
  }

  #select() {
    if (!this.isOpen) throw new ReaderError('the reader is closed');
    native.SetReader(this.#number);
  }

  #release() {
    this.#select();
    taken.delete(this.#number);
    this.#number = undefined;
    return native.CloseReader() !== 0;
  }
}

const simulators = [];

export function loadSimulators(folder = join(ownFolder, 'simulators')) {
  const modules = readdirSync(folder).filter((file) => file.endsWith(windows ? '.dll' : '.so')).sort();
  if (modules.length === 0) throw new ReaderError(`there are no simulators in ${folder}`);
  simulators.push(...modules.map((file) => koffi.load(join(folder, file))));
}
