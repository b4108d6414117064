// Loads Debian's Underscore and Backbone as the page does: as classic scripts with global names.

import { readFileSync } from 'node:fs';
import { runInThisContext } from 'node:vm';

for (const library of ['underscore/underscore.js', 'backbone/backbone.js']) {
  runInThisContext(readFileSync(`/usr/share/javascript/${library}`, 'utf8'), { filename: library });
}
