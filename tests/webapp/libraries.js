// The page's environment: Debian's Underscore and Backbone, loaded as classic scripts with global names, a storage and
// frames.

import { readFileSync } from 'node:fs';
import { runInThisContext } from 'node:vm';

for (const library of ['underscore/underscore.js', 'backbone/backbone.js']) {
  runInThisContext(readFileSync(`/usr/share/javascript/${library}`, 'utf8'), { filename: library });
}

export const stored = new Map();
globalThis.localStorage = {
  getItem: (key) => stored.get(key) ?? null, setItem: (key, value) => stored.set(key, value),
};

export const frames = [];
globalThis.requestAnimationFrame = (frame) => frames.push(frame);
