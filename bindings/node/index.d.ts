/** Runs card scripts and drives smart-card readers. Failures are exceptions. */

/** The base of all failures. */
export class OrvaneError extends Error {}

/**
 * A failed statement, with its code from RunScript, SetVarValue or GetVarValue. A statement with a code
 * from 1 to 8 can fail too: the message is then the one that it left.
 */
export class ScriptError extends OrvaneError {
  constructor(code: number, message: string);
  readonly code: number;
}

/** A reader that doesn't open, reset, answer or close. */
export class ReaderError extends OrvaneError {}

/** Input that is refused before it is used. */
export class DataError extends OrvaneError {}

export const StatementKind: Readonly<{
  Assignment: 0, Expression: 1, SetReader: 2, SetSlot: 3, Reset: 4, Dollar: 5, Stop: 6, Compare: 7,
  OpenReader: 8,
}>;

export const ScriptCode: Readonly<{
  NoEngine: -1, Done: 0, NothingToRun: 100, UndefinedVariable: 1001, EmptyName: 1002, Exception: 1024,
}>;

/** The result of a statement. */
export type Result =
  /** An empty statement or a comment. */
  | { type: 'Nothing' }
  /**
   * A value was stored; this is its first 511 bytes. A failed script command leaves its message or
   * nothing in the value, so let scripts compare the lengths of computed values.
   */
  | { type: 'Assignment', value: string }
  /** An expression of whole octets in hexadecimal, at least four: send it to the card. */
  | { type: 'Command', hex: string }
  /** Any other expression, perhaps empty; do not send it to a card. */
  | { type: 'Value', text: string }
  /** `@setreader(reader)` */
  | { type: 'ReaderChoice', reader: string }
  /** `@setslot(slot)` */
  | { type: 'SlotChoice', slot: string }
  /** `@OPENREADER(reader)` */
  | { type: 'OpenRequest', reader: string }
  /** `@reset()` */
  | { type: 'ResetRequest' }
  /** `$` and a text for the host; read it from the statement. */
  | { type: 'Note' }
  /** `@stop()` */
  | { type: 'Stop' }
  /** `@compare(left, right, expected)`; met is true if the outcome is the expected one. */
  | { type: 'Comparison', met: boolean };

/**
 * The process's script engine and its variables. In texts that are not UTF-8, wrong bytes become U+FFFD.
 */
export class Script {
  /**
   * Runs one statement. Throws ScriptError if it fails: an undefined variable, an empty or failed
   * argument of a command for the host, `@reset()` or `@stop()` that does not stand alone, `(`, `)` or
   * `,` at its beginning, a text above 511 bytes, no memory.
   */
  static run(statement: string): Result;
  /** Stores a variable. Scripts can read it only if its name begins with `%`. */
  static set(name: string, value: string): void;
  /** True if a variable exists. */
  static has(name: string): boolean;
  /**
   * The whole value of a variable, with its letters' case. The name begins with `%`. Reads the value in
   * pieces, through the variable ORVANE.PIECE, which no script can read.
   */
  static get(name: string): string;
}

export const ReaderKind: Readonly<{
  TyUsb: 1, TyCom: 2, Pcsc: 3, Wd: 4, D8: 5, Fm8201: 6, S5009: 7, S5009Ats: 8, Tcp: 10, Icr: 11, Bsit: 12,
}>;
export type ReaderKind = (typeof ReaderKind)[keyof typeof ReaderKind];

/** True for the kinds whose answers end in a status word. */
export function hasStatusWord(kind: ReaderKind): boolean;
/** The most octets of a command to a reader of this kind. */
export function longestCommand(kind: ReaderKind): number;
/** The most octets of data in an answer, without its status word. */
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
  /** Four digits; empty if it is not known or the kind has none. */
  readonly statusWord: string;
  /**
   * True if the exchange ended in 9000 or, for a kind without status words, succeeded. Otherwise
   * statusWord is the answer's first two octets: the beginning of the data, if there is any.
   */
  readonly ok: boolean;
  /** The data's octets. */
  get octets(): Uint8Array;
  /** Splits the text from SendCommand by the rules of the kind; undefined if there was no answer. */
  static read(kind: ReaderKind, result: number, text: string): Response | undefined;
}

/** One of the sixteen readers that a process can have open. A forgotten reader stays open. */
export class Reader {
  private constructor();
  /** The readers of one kind. ports is how many to list if the kind cannot find its ports. */
  static list(kind: ReaderKind, ports?: number): ReaderInfo[];
  /**
   * Opens the reader of this name, as list gives it; a payment HSM by its address. On Windows: an ASCII
   * name.
   */
  static open(kind: ReaderKind, name: string): Reader;
  /** Opens the reader on this port. */
  static openPort(kind: ReaderKind, port: number): Reader;

  readonly kind: ReaderKind;
  get isOpen(): boolean;
  /**
   * Wakes the card and gives its ATR in hexadecimal, or what the kind gives instead. Does not reset a
   * card in a PC/SC reader.
   */
  reset(): string;
  /** Chooses a card slot, 0 to 255. Its meaning depends on the kind. */
  chooseSlot(slot: number): void;
  /**
   * Sends a command: hexadecimal digits, blanks allowed, or octets. Throws DataError and sends nothing
   * for any other text, for less than four octets (except for kinds without status words), and for more
   * than the reader takes. If a payment HSM does not answer, the reader is closed, so that a late answer
   * is not taken for the next command's.
   */
  send(command: string | Uint8Array): Response;
  /**
   * Closes the reader. Throws if its library refuses, but the reader is then closed too. Does nothing on
   * a closed reader.
   */
  close(): void;
}

/**
 * Replaces the vendors' libraries by the simulators of the package or of a folder, for the rest of the
 * process. Call it before a reader is listed or opened.
 */
export function loadSimulators(folder?: string): void;

/** Parses BER-TLV data. Every element of the tree, also a child, is found under its tag. */
export class TagTree {
  constructor(hex?: string);
  /**
   * Adds the elements of a hexadecimal text. Throws DataError at the first malformed element; those
   * before it are kept.
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
   * The whole list. Its size is known if only this class uses the dictionary in this process. Throws
   * DataError if records were added and there is no file yet (flush first), and if another program
   * changed the file while it was read.
   */
  static list(): TagEntry[];
  /** The first record with a tag, in either case. */
  static find(tag: string): TagEntry | undefined;
  /** Adds a record at the end. False if its tag is there, in either case. */
  static add(entry: TagEntry): boolean;
  /** Replaces the record with exactly this tag, or adds it. False if the tag is there in another case. */
  static replace(entry: TagEntry): boolean;
  /** Removes the first record with exactly this tag. False if there is none. */
  static remove(tag: string): boolean;
  /** Writes the list to the file. A failed write is not reported. */
  static flush(): void;
}

/** True if a text has only the digits 0 to 9, at least one. */
export function isDecimal(text: string): boolean;
/** True if a text has only hexadecimal digits, at least one, and no blanks. */
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
/** Escapes everything except ASCII letters and digits. */
export function urlEncode(text: string): string;
/** Reverses urlEncode and turns + into a blank. Does not check the escapes. */
export function urlDecode(text: string): string;
/** The stamp of the current second: the Unix time minus 28800. */
export function stamp(): number;
/** The same in decimal, followed by three digits of milliseconds on request. */
export function stampText(milliseconds?: boolean): string;
/** The current time in UTC, YYYY-MM-DD hh:mm:ss. */
export function timeText(): string;
/** The time of a stamp. */
export function timeOf(stamp: number): string;
/** The time of a text from stampText(true), followed by a colon and the milliseconds on request. */
export function timeOfText(stampText: string, milliseconds?: boolean): string;
/** Appends a text to a file. On Windows each line feed becomes CR LF. */
export function logText(path: string, text: string): void;
/** Appends octets as hexadecimal text. */
export function logHex(path: string, octets: Uint8Array): void;
