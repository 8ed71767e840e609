// index.d.ts describes each of these.
export * from './lib/conversions.js';
export * from './lib/errors.js';
export {
  Reader, ReaderKind, Response, hasStatusWord, loadSimulators, longestCommand, mostData,
} from './lib/readers.js';
export { Script, ScriptCode, StatementKind } from './lib/script.js';
export { TagDictionary, TagTree } from './lib/tags.js';
