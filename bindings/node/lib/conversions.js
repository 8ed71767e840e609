import { DataError } from './errors.js';
import { bytesOf, encode, encodeName, native, textOf } from './library.js';

function checkDigits(text, hex) {
  const octets = encode(text);
  return text !== '' && native.CheckAsciiNum(octets, hex, octets.length - 1) === 0;
}

export const isDecimal = (text) => checkDigits(text, 0);
export const isHex = (text) => checkDigits(text, 1);

export function toHex(octets) {
  const text = Buffer.alloc(2 * octets.length);
  native.HexToAscii(octets, text, octets.length);
  return text.toString('latin1');
}

export function toOctets(hex) {
  const text = encode(hex);
  const digits = hex.replaceAll(' ', '').length;
  if (digits % 2 !== 0) throw new DataError(`hexadecimal text of ${digits} digits`);
  const octets = Buffer.alloc(text.length);
  if (digits > 0 && !native.AsciiToHex(text, octets, text.length - 1)) {
    throw new DataError('hexadecimal text with another character');
  }
  return octets.subarray(0, digits / 2);
}

export function toEscapes(hex) {
  if (!isHex(hex) || hex.length % 2 !== 0) {
    throw new DataError('no hexadecimal text of whole octets');
  }
  const text = Buffer.alloc(2 * hex.length);
  native.AsciiToHexStr(encode(hex), text, hex.length);
  return text.toString('latin1');
}

export function toNumber(octets) {
  const number = [0];
  const done = typeof octets === 'string'
    ? isHex(octets) && [2, 4, 6, 8].includes(octets.length)
      && native.HexStrToInt(encode(octets), number, octets.length)
    : octets.length <= 4 && native.HexToInt(octets, number, octets.length);
  if (!done) throw new DataError('a number has 1 to 4 octets');
  return number[0];
}

function checkInt32(number) {
  if (number !== (number | 0)) throw new DataError(`${number} is no whole number of 32 bits`);
  return number;
}

export function numberToHex(number) {
  const text = Buffer.alloc(9);
  native.IntToHexStr(text, checkInt32(number), [0]);
  return textOf(text);
}

export function numberToOctets(number) {
  const octets = Buffer.alloc(4);
  const count = [0];
  native.IntToHex(octets, checkInt32(number), count);
  return octets.subarray(4 - count[0]);
}

export function urlEncode(text) {
  const octets = encode(text);
  const encoded = Buffer.alloc(3 * octets.length);
  native.URLEncode(octets, encoded);
  return textOf(encoded);
}

export function urlDecode(text) {
  const octets = bytesOf(encode(text));
  let length = 0;
  for (let at = 0; at < octets.length; ++length) {
    at += octets[at] === 0x25 && octets.length - at > 2 ? 3 : 1;
  }
  const decoded = Buffer.alloc(octets.length + 1);
  native.URLDecode(encode(text), decoded);
  return decoded.toString('utf8', 0, length);
}

export function stamp() {
  const value = [0];
  native.GetTimeStampInt(value);
  return value[0];
}

export function stampText(milliseconds = false) {
  const text = Buffer.alloc(15);
  native.GetTimeStampStr(text, milliseconds ? 1 : 0);
  return textOf(text);
}

export function timeText() {
  const text = Buffer.alloc(33);
  native.GetTimeStr(text);
  return textOf(text);
}

export function timeOf(stamp) {
  if (stamp !== stamp >>> 0) throw new DataError(`${stamp} is no stamp`);
  const text = Buffer.alloc(33);
  native.GetTimeStrFromTimeStampInt(text, stamp);
  return textOf(text);
}

export function timeOfText(stampText, milliseconds = false) {
  const stamp = encode(stampText);
  if (stamp.length < 5 || stamp.length > 26) throw new DataError('no stamp with milliseconds');
  const text = Buffer.alloc(37);
  native.GetTimeStrFromTimeStampStr(text, stamp, milliseconds ? 1 : 0);
  return textOf(text);
}

export function logText(path, text) {
  native.AsciiLog(encodeName(path), encode(text));
}

export function logHex(path, octets) {
  native.HexLog(encodeName(path), octets, octets.length);
}
