export class OrvaneError extends Error {
  get name() {
    return this.constructor.name;
  }
}

export class ScriptError extends OrvaneError {
  constructor(code, message) {
    super(message);
    this.code = code;
  }
}

export class ReaderError extends OrvaneError {}

export class DataError extends OrvaneError {}
