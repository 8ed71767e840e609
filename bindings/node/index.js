// What each of these is for stands in index.d.ts.
export * from './lib/conversions.js';
export * from './lib/errors.js';
export {
  Reader, ReaderKind, Response, hasStatusWord, loadSimulators, longestCommand, mostData,
} from './lib/readers.js';
export { Script, ScriptCode, StatementKind } from './lib/script.js';
export { TagDictionary, TagTree } from './lib/tags.js';
