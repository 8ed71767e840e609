/** Runs card scripts and drives smart-card readers. What can't be done is thrown. */

/** What every failure is. */
export class OrvaneError extends Error {}

/**
 * A statement that failed, with its code of RunScript, SetVarValue or GetVarValue. Statements with the
 * codes 1 to 8 can fail too: the message is then the one that they left.
 */
export class ScriptError extends OrvaneError {
  constructor(code: number, message: string);
  readonly code: number;
}

/** A reader that doesn't open, reset, answer or close. */
export class ReaderError extends OrvaneError {}

/** Input that is refused before anything is done with it. */
export class DataError extends OrvaneError {}

export const StatementKind: Readonly<{
  Assignment: 0, Expression: 1, SetReader: 2, SetSlot: 3, Reset: 4, Dollar: 5, Stop: 6, Compare: 7,
  OpenReader: 8,
}>;

export const ScriptCode: Readonly<{
  NoEngine: -1, Done: 0, NothingToRun: 100, UndefinedVariable: 1001, EmptyName: 1002, Exception: 1024,
}>;

/** What a statement has come to. */
export type Result =
  /** An empty statement or a comment. */
  | { type: 'Nothing' }
  /**
   * A value was stored: its first 511 bytes. A script command that failed in it has left a message or
   * nothing in the value, so let scripts compare the length of what they have computed.
   */
  | { type: 'Assignment', value: string }
  /** An expression that is whole octets in hexadecimal, four at least: to be sent to the card. */
  | { type: 'Command', hex: string }
  /** Any other expression, perhaps empty; nothing for a card. */
  | { type: 'Value', text: string }
  /** `@setreader(reader)` */
  | { type: 'ReaderChoice', reader: string }
  /** `@setslot(slot)` */
  | { type: 'SlotChoice', slot: string }
  /** `@OPENREADER(reader)` */
  | { type: 'OpenRequest', reader: string }
  /** `@reset()` */
  | { type: 'ResetRequest' }
  /** `$` and a text for the host, which has it. */
  | { type: 'Note' }
  /** `@stop()` */
  | { type: 'Stop' }
  /** `@compare(left, right, expected)`; met tells whether it came out as expected. */
  | { type: 'Comparison', met: boolean };

/** The process's script engine and its variables. Texts that are no UTF-8 come with U+FFFD in them. */
export class Script {
  /**
   * Runs one statement. Throws ScriptError where it failed: an undefined variable in it, an argument of
   * a command for the host that is empty or failed, `@reset()` or `@stop()` that doesn't stand alone,
   * `(`, `)` or `,` in front, a text above 511 bytes, no memory.
   */
  static run(statement: string): Result;
  /** Stores a variable. The `%` of one that scripts can read is part of its name. */
  static set(name: string, value: string): void;
  /** Tells whether a variable exists. */
  static has(name: string): boolean;
  /**
   * The whole value of a variable, in its own case. The name begins with `%`. On its way the value
   * passes through the variable ORVANE.PIECE, which no script can read.
   */
  static get(name: string): string;
}

export const ReaderKind: Readonly<{
  TyUsb: 1, TyCom: 2, Pcsc: 3, Wd: 4, D8: 5, Fm8201: 6, S5009: 7, S5009Ats: 8, Tcp: 10, Icr: 11, Bsit: 12,
}>;
export type ReaderKind = (typeof ReaderKind)[keyof typeof ReaderKind];

/** True for the kinds whose answers end in a status word. */
export function hasStatusWord(kind: ReaderKind): boolean;
/** The most octets of a command that go out to a reader of this kind. */
export function longestCommand(kind: ReaderKind): number;
/** The most octets of data that an answer brings in beside its status word. */
export function mostData(kind: ReaderKind): number;

export interface ReaderInfo {
  kind: ReaderKind;
  port?: number;
  name: string;
}

/** A card's answer. */
export class Response {
  constructor(data: string, statusWord: string, ok: boolean);
  /** Hexadecimal text. */
  readonly data: string;
  /** Four digits; empty where it isn't known, or the kind has none. */
  readonly statusWord: string;
  /**
   * The exchange ended in 9000; on a kind without status word, it has worked. Otherwise statusWord is
   * the answer's first two octets: the beginning of data, if there was any.
   */
  readonly ok: boolean;
  /** The data's octets. */
  get octets(): Uint8Array;
  /** Sorts what SendCommand gave by the kind of the reader; undefined if there was no answer. */
  static read(kind: ReaderKind, result: number, text: string): Response | undefined;
}

/** One of the sixteen readers that a process can have open. One that is forgotten stays open. */
export class Reader {
  private constructor();
  /** The readers of one kind. ports is how many to offer where ports can't be asked for. */
  static list(kind: ReaderKind, ports?: number): ReaderInfo[];
  /** Opens by name, as list gives it; a payment HSM by its address. On Windows: an ASCII name. */
  static open(kind: ReaderKind, name: string): Reader;
  /** Opens by port. */
  static openPort(kind: ReaderKind, port: number): Reader;

  readonly kind: ReaderKind;
  get isOpen(): boolean;
  /**
   * Brings up the card and gives its ATR in hexadecimal, or what the kind gives instead. A card in a
   * PC/SC reader is not reset.
   */
  reset(): string;
  /** Chooses a card slot, 0 to 255; what a slot means is up to the kind. */
  chooseSlot(slot: number): void;
  /**
   * Sends a command: hexadecimal digits, between which blanks may stand, or octets. Throws DataError,
   * with nothing sent, for anything else, below four octets (but for kinds without status word), and
   * above what the reader takes. Where a payment HSM has not answered the reader is closed, so that an
   * answer that comes late is not taken for the next command's.
   */
  send(command: string | Uint8Array): Response;
  /** Closes the reader, also where its library refuses: that is thrown then. Closed already: nothing. */
  close(): void;
}

/**
 * Puts the simulators of the package, or of a folder, into the places of the vendors' libraries, for
 * the rest of the process. Call it before a reader is listed or opened.
 */
export function loadSimulators(folder?: string): void;

/** Takes BER-TLV data apart; every element of the tree, a child too, is found under its tag. */
export class TagTree {
  constructor(hex?: string);
  /**
   * Adds what a hexadecimal text holds. Throws DataError at the first element that is malformed; what
   * stands before it is kept.
   */
  parse(hex: string): void;
  /** The value of the last element with a tag, in hexadecimal; undefined if there is none. */
  find(tag: string): string | undefined;
}

/** A record of the dictionary: 19, 199 and 1,023 bytes at most. */
export interface TagEntry {
  tag: string;
  shortText: string;
  longText?: string;
}

/** The process's dictionary of tags, in the file dictdata.bin of the current folder. */
export class TagDictionary {
  /**
   * The whole list. How many records there are is known where a file was read or flushed through this
   * class, and no other code of the process uses the dictionary. Throws DataError before a first
   * flush, and if another program changed the file while it was read.
   */
  static list(): TagEntry[];
  /** The first record with a tag, in either case. */
  static find(tag: string): TagEntry | undefined;
  /** Adds a record at the end. False if its tag is there, in either case. */
  static add(entry: TagEntry): boolean;
  /**
   * Puts a record in the place of the one with exactly its tag, or adds it. False if the tag is there
   * in another case.
   */
  static replace(entry: TagEntry): boolean;
  /** Removes the first record with exactly this tag. False if there is none. */
  static remove(tag: string): boolean;
  /** Writes the list to the file. Whether it could is not told. */
  static flush(): void;
}

/** True if a text is made of the digits 0 to 9 alone, and not empty. */
export function isDecimal(text: string): boolean;
/** True if a text is made of hexadecimal digits alone, without blanks, and not empty. */
export function isHex(text: string): boolean;
/** Octets as upper-case digits. */
export function toHex(octets: Uint8Array): string;
/** The octets of a hexadecimal text. */
export function toOctets(hex: string): Uint8Array;
/** Hexadecimal text with `\x` before every two digits, as C and others write octets. */
export function toEscapes(hex: string): string;
/** The number that 1 to 4 octets form, most significant first; or 2, 4, 6 or 8 digits. */
export function toNumber(octets: string | Uint8Array): number;
/** The significant octets of a number as 2, 4, 6 or 8 digits. */
export function numberToHex(number: number): string;
/** The same as octets. */
export function numberToOctets(number: number): Uint8Array;
/** Escapes all but ASCII letters and digits. */
export function urlEncode(text: string): string;
/** Undoes urlEncode, and turns + into a blank. Escapes are not checked. */
export function urlDecode(text: string): string;
/** The stamp of the present second: the Unix time less 28800. */
export function stamp(): number;
/** The same in decimal, with three digits of milliseconds behind it if they are wanted. */
export function stampText(milliseconds?: boolean): string;
/** The present time, YYYY-MM-DD hh:mm:ss, in UTC. */
export function timeText(): string;
/** The time of a stamp. */
export function timeOf(stamp: number): string;
/** The time of a text of stampText(true), with its milliseconds behind a colon if they are wanted. */
export function timeOfText(stampText: string, milliseconds?: boolean): string;
/** Appends a text to a file, as it is. */
export function logText(path: string, text: string): void;
/** Appends octets as hexadecimal text. */
export function logHex(path: string, octets: Uint8Array): void;
