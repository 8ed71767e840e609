import { DataError, ScriptError } from './errors.js';
import { bytesOf, encode, native, textOf } from './library.js';

export const StatementKind = Object.freeze({
  Assignment: 0, Expression: 1, SetReader: 2, SetSlot: 3, Reset: 4, Dollar: 5, Stop: 6, Compare: 7,
  OpenReader: 8,
});

export const ScriptCode = Object.freeze({
  NoEngine: -1, Done: 0, NothingToRun: 100, UndefinedVariable: 1001, EmptyName: 1002, Exception: 1024,
});

// In an expression the message of a failed command is in upper case like the rest.
function namesUndefined(code, text) {
  if (code === StatementKind.Assignment) return false;
  return text.endsWith('" not define ')
    || (code === StatementKind.Expression && text.includes('" NOT DEFINE '));
}

function argument(code, text) {
  if (text === '') throw new ScriptError(code, 'an argument is empty, or failed');
  return text;
}

function expression(statement, text) {
  if (text === '' && /^[ \t]*[(),]/.test(statement)) {
    throw new ScriptError(StatementKind.Expression, "a statement can't begin with ( ) or ,");
  }
  return /^([0-9A-F]{2}){4,}$/.test(text) ? { type: 'Command', hex: text } : { type: 'Value', text };
}

function comparison(code, text) {
  if (text !== '0' && text !== '1') throw new ScriptError(code, 'an operand of @compare failed');
  return { type: 'Comparison', met: text === '1' };
}

function alone(code, text, type) {
  if (text !== '') throw new ScriptError(code, '@reset() and @stop() have to stand alone');
  return { type };
}

function check(code, name) {
  if (code === ScriptCode.Done) return;
  const messages = {
    [ScriptCode.UndefinedVariable]: `there is no ${name}`,
    [ScriptCode.EmptyName]: 'a variable without name',
  };
  throw new ScriptError(code, messages[code] ?? 'no memory');
}

export class Script {
  static run(statement) {
    const area = Buffer.alloc(512);
    const code = native.RunScript(encode(statement), area);
    const text = textOf(area);
    if (code === ScriptCode.NoEngine || code === ScriptCode.Exception) {
      throw new ScriptError(code, 'a text above 511 bytes, or no memory');
    }
    if (namesUndefined(code, text)) throw new ScriptError(code, text);
    switch (code) {
      case StatementKind.Assignment: return { type: 'Assignment', value: text };
      case StatementKind.Expression: return expression(statement, text);
      case StatementKind.SetReader: return { type: 'ReaderChoice', reader: argument(code, text) };
      case StatementKind.SetSlot: return { type: 'SlotChoice', slot: argument(code, text) };
      case StatementKind.OpenReader: return { type: 'OpenRequest', reader: argument(code, text) };
      case StatementKind.Compare: return comparison(code, text);
      case StatementKind.Dollar: return { type: 'Note' };
      case StatementKind.Reset: return alone(code, text, 'ResetRequest');
      case StatementKind.Stop: return alone(code, text, 'Stop');
      default: return { type: 'Nothing' };
    }
  }

  static set(name, value) {
    check(native.SetVarValue(encode(name), encode(value)), name);
  }

  static has(name) {
    const code = native.GetVarValue(encode(name));
    if (code !== ScriptCode.UndefinedVariable) check(code, name);
    return code === ScriptCode.Done;
  }

  static get(name) {
    if (!/^%[^ \t(),]*$/.test(name)) {
      throw new DataError('a variable that can be read has a name with % in front and no separator');
    }
    check(native.GetVarValue(encode(name)), name);
    const pieces = [];
    let length = 0;
    do {
      const area = Buffer.alloc(512);
      check(native.RunScript(encode(`ORVANE.PIECE=@strmid(${name},${length},511)`), area), name);
      pieces.push(bytesOf(area));
      length += pieces.at(-1).length;
    } while (pieces.at(-1).length === 511);
    native.SetVarValue(encode('ORVANE.PIECE'), encode(''));
    return Buffer.concat(pieces).toString('utf8');
  }
}
